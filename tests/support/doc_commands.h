// Reading the shell commands out of the guides and checking the job
// streams they produce against the options they give.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <map>
#include <string>
#include <vector>

// One command of a fenced "sh" block; continuation lines are kept joined
// by their backslash and line feed, as a shell reads them.
struct TDocCommand {
  int line = 0;
  std::string text;
};

// One fenced "sh" block.  A line "<!-- doc-test: skip: REASON -->" right
// before the fence (blank lines between are allowed) marks the block as one
// that cannot run here, with the reason.
struct TDocBlock {
  int line = 0;
  std::string skipReason;
  std::vector<TDocCommand> commands;
};

// 'Doc_ExtractBlocks()' - Every "sh" block of a Markdown text.
std::vector<TDocBlock> Doc_ExtractBlocks(const std::string& markdown);

// 'Doc_SplitWords()' - The words of a command as the shell makes them:
// quotes removed, backslash escapes and continuations applied.
std::vector<std::string> Doc_SplitWords(const std::string& command);

// 'Doc_JobOptions()' - The "-o name=value" options of an lp or lpadmin
// command, with one level of quotes inside the value removed, as
// cupsParseOptions reads it.
std::map<std::string, std::string> Doc_JobOptions(const std::vector<std::string>& words);

// 'Doc_CheckJob()' - What is wrong with a captured job stream, given the
// options in force (the queue's defaults and the job's own); empty when
// the stream is complete and shows every option the checks know.
std::vector<std::string> Doc_CheckJob(const std::string& stream, const std::map<std::string, std::string>& options);
