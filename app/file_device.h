// The application's "file:" devices: job streams written into a directory or a file without following links.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>

// Longest file name, without the extension, made from a job name.
constexpr size_t FILEDEV_MAX_NAME = 96;

// 'FileDev_Register()' - Register the "file" scheme of the application.
// Must be called before the PAPPL system is created: PAPPL keeps the
// first handler of a scheme, so this one replaces its own.
void FileDev_Register();

// 'FileDev_OutputName()' - The file name of a job's stream in a directory
// device: the job name with every byte that is not a letter, digit, '-',
// '_' or '.' replaced by '_', cut to FILEDEV_MAX_NAME bytes, never
// starting with '.' (a hidden or "." / ".." name) and "job" when empty;
// then "." and the extension.
std::string FileDev_OutputName(const char* jobName, const std::string& ext);

// 'FileDev_Extension()' - The extension of a "file:" device URI's
// "?ext=" option: letters and digits only, at most 16 of them; "prn"
// when absent or unusable.
std::string FileDev_Extension(const char* options);
