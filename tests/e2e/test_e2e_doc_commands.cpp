// Every shell command of the user guide and of the preset tools' guide, run
// as written against a spooler of the test's own whose printer is a capture
// backend; each job stream that a command prints is checked against the
// options the command gives, so that the guides cannot drift from what the
// driver does.  Blocks marked "doc-test: skip" are listed with their reason.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <dirent.h>
#include <map>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "support/cups_env.h"
#include "support/process.h"
#include "support/doc_commands.h"

namespace {

// 'Replace()' - Every occurrence of from in s replaced by to.
void Replace(std::string* s, const std::string& from, const std::string& to) {
  for (size_t at = s->find(from); at != std::string::npos; at = s->find(from, at + to.size()))
    s->replace(at, from.size(), to);
}

// The test's sudo: the test runs as root, so it runs the command as it
// is, or as the user named with -u, as sudo would.
const char* kSudo =
    "#!/bin/sh\n"
    "if [ \"$1\" = -u ]; then user=\"$2\"; shift 2; exec runuser -u \"$user\" -- \"$@\"; fi\n"
    "exec \"$@\"\n";

// 'Localise()' - A command of the guide as it runs in the test: the
// installed paths become the build's and the printer's USB device a
// capture file.
std::string Localise(std::string cmd, const std::string& out) {
  Replace(&cmd, "/usr/share/ppd/brellian/", std::string(BRELLIAN_BINARY_DIR) + "/ppd/");
  Replace(&cmd, "/usr/lib/cups/filter/rastertobrellian", BRELLIAN_FILTER_PATH);
  Replace(&cmd, "usbbr://", "capture:" + out + "/");
  return cmd;
}

// 'NewestFile()' - The one regular file below dir (a captured job).
std::string FindFile(const std::string& dir) {
  DIR* d = opendir(dir.c_str());
  std::string found;
  while (d && found.empty()) {
    struct dirent* e = readdir(d);
    if (!e) break;
    std::string name = e->d_name, path = dir + "/" + name;
    struct stat st;
    if (name == "." || name == ".." || stat(path.c_str(), &st) != 0) continue;
    if (S_ISDIR(st.st_mode)) found = FindFile(path);
    else if (S_ISREG(st.st_mode) && name.find(".part") == std::string::npos) found = path;
  }
  if (d) closedir(d);
  return found;
}

// 'ClearFiles()' - Remove the captured jobs below dir, keeping the folders.
void ClearFiles(const std::string& dir) {
  std::string file;
  while (!(file = FindFile(dir)).empty()) unlink(file.c_str());
}

// 'PresetOptions()' - The options a job's presets stand for, from the
// settings that brellian-settings commands of the guides set: the include
// areas of resin preset N as custom areas, and the plug-in when the job
// leaves it to the settings.
void PresetOptions(const std::map<std::string, std::string>& settings, std::map<std::string, std::string>* o) {
  std::string resin = (*o)["frontResin"];
  if (resin.compare(0, 6, "Preset") == 0) {
    (*o)["frontResin"] = "CustomAreas";
    for (int k = 1; k <= 3; ++k) {
      auto it = settings.find("resin." + resin.substr(6) + ".include." + std::to_string(k));
      if (it != settings.end()) (*o)["frontResinInclude" + std::to_string(k)] = "Custom." + it->second;
    }
  }
  auto plugin = settings.find("plugin");
  if (plugin != settings.end() && (o->count("printerPlugin") == 0 || (*o)["printerPlugin"] == "Default"))
    (*o)["printerPlugin"] = "Custom." + plugin->second;
}

}  // namespace

TEST(DocCommands, EveryShellCommandOfTheGuidesWorksAsWritten) {
  if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
  if (geteuid() != 0) GTEST_SKIP() << "the test spooler must start as root";
  std::string dir = Cups_WorkDir("doc-commands");
  TTestSpooler spooler(dir);
  std::string error;
  ASSERT_TRUE(spooler.Start(&error)) << error;
  std::string out = dir + "/out", work = dir + "/work";
  Test_MakeDirs(out + "/Brellian");
  chmod((out + "/Brellian").c_str(), 0777);
  Test_MakeDirs(work);
  // The files the guides print: a card (the shipped sample card) and a
  // CUPS raster page of the 1060's panel.
  Test_WriteFile(work + "/card.pdf", Test_ReadFile(Cups_SampleCardPdf()));
  TProcessResult ras = Test_RunProcess({std::string(BRELLIAN_TOOLS_DIR) + "/brellian-rasterwrite", "-W", "2072",
                                        "-H", "1328", "-r", "600", "-o", work + "/page.ras", "pattern"});
  ASSERT_EQ(0, ras.status) << ras.err;
  Test_RemoveTree(Test_ConfDir() + "/settings");

  Test_MakeDirs(dir + "/bin");
  Test_WriteFile(dir + "/bin/sudo", kSudo);
  chmod((dir + "/bin/sudo").c_str(), 0755);
  chmod(work.c_str(), 0777);

  TProcessOptions env;
  env.env["CUPS_SERVER"] = dir + "/cups.sock";
  env.env["PATH"] = dir + "/bin:" + BRELLIAN_TOOLS_DIR + ":/usr/sbin:/usr/bin:/sbin:/bin";
  std::map<std::string, std::map<std::string, std::string>> queueDefaults;
  std::map<std::string, std::string> settings;   // what brellian-settings set
  std::vector<std::string> skipped;
  int run = 0, jobs = 0;
  for (const char* guide : {"user-guide.md", "preset-tools.md"}) {
    std::string text = Test_ReadFile(std::string(BRELLIAN_SOURCE_DIR) + "/docs/" + guide);
    ASSERT_FALSE(text.empty()) << guide;
    for (const TDocBlock& block : Doc_ExtractBlocks(text)) {
      std::string where = std::string(guide) + ":" + std::to_string(block.line);
      if (!block.skipReason.empty()) {
        skipped.push_back(where + ": " + block.skipReason);
        continue;
      }
      for (const TDocCommand& c : block.commands) {
        SCOPED_TRACE(std::string(guide) + ":" + std::to_string(c.line) + ": " + c.text);
        std::string cmd = Localise(c.text, out);
        std::vector<std::string> words = Doc_SplitWords(cmd);
        ASSERT_FALSE(words.empty());
        if (words[0] == "sudo" && words.size() > 1)
          words.erase(words.begin(), words.begin() + (words[1] == "-u" && words.size() > 3 ? 3 : 1));
        bool lp = words[0] == "lp", lpadmin = words[0] == "lpadmin";
        if (lp) ClearFiles(out);
        TProcessResult r = Test_RunProcess({"/bin/bash", "-c", "cd '" + work + "' && " + cmd}, env);
        ++run;
        ASSERT_EQ(0, r.status) << r.out << r.err;
        std::string queue;
        for (size_t i = 0; i + 1 < words.size(); ++i)
          if (words[i] == "-d" || words[i] == "-p") queue = words[i + 1];
        std::map<std::string, std::string> options = Doc_JobOptions(words);
        if (words[0] == "brellian-settings") {
          size_t set = std::find(words.begin(), words.end(), "set") - words.begin();
          for (size_t i = set + 1; i + 1 < words.size(); i += 2) settings[words[i]] = words[i + 1];
        }
        if (lpadmin) {
          for (const auto& o : options) queueDefaults[queue][o.first] = o.second;
        } else if (lp) {
          ASSERT_TRUE(spooler.WaitIdle(120)) << spooler.ErrorLog();
          std::string file = FindFile(out);
          ASSERT_FALSE(file.empty()) << "no job stream captured\n" << spooler.ErrorLog();
          std::map<std::string, std::string> all = queueDefaults[queue];
          for (const auto& o : options) all[o.first] = o.second;
          PresetOptions(settings, &all);
          for (const std::string& fault : Doc_CheckJob(Test_ReadFile(file), all)) ADD_FAILURE() << fault;
          ++jobs;
        } else if (cmd.find("> job.bin") != std::string::npos) {
          for (const std::string& fault : Doc_CheckJob(Test_ReadFile(work + "/job.bin"), {}))
            ADD_FAILURE() << fault;
          ++jobs;
        }
      }
    }
  }
  printf("ran %d commands, checked %d job streams; skipped %zu blocks:\n", run, jobs, skipped.size());
  for (const std::string& s : skipped) printf("  %s\n", s.c_str());
  EXPECT_GE(jobs, 4);
  // Only installing, building and what needs a printer on USB or the
  // installed PPD files are left out.
  EXPECT_LE(skipped.size(), 5u);
}

TEST(DocCommands, ExtractionJoinsContinuationsAndKeepsSkipReasons) {
  std::vector<TDocBlock> b = Doc_ExtractBlocks(
      "text\n\n<!-- doc-test: skip: needs the printer -->\n\n```sh\nsudo lpadmin -x cards\n```\n"
      "```\nnot a shell block\n```\n```sh\n# comment\nlp -d cards \\\n   -o 'a=b c' card.pdf\n\nlpstat\n```\n");
  ASSERT_EQ(2u, b.size());
  EXPECT_EQ("needs the printer", b[0].skipReason);
  EXPECT_TRUE(b[1].skipReason.empty());
  ASSERT_EQ(2u, b[1].commands.size());
  EXPECT_EQ(13, b[1].commands[0].line);
  std::vector<std::string> w = Doc_SplitWords(b[1].commands[0].text);
  ASSERT_EQ(6u, w.size());
  EXPECT_EQ("a=b c", w[4]);
  std::map<std::string, std::string> o =
      Doc_JobOptions(Doc_SplitWords("lp -o \"magEncodeData1='Custom.JOHN SMITH'\" -o x=Custom.5mm+1mm"));
  EXPECT_EQ("Custom.JOHN SMITH", o["magEncodeData1"]);
  EXPECT_EQ("Custom.5mm+1mm", o["x"]);
}
