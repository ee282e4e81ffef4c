// A private CUPS setup for end-to-end tests: filter directory, cupsfilter
// configuration and a spooler of the test's own.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>
#include <sys/types.h>

// 'Cups_HaveTools()' - True when cupsfilter, cupsd, lpadmin, lp and
// ghostscript are installed.
bool Cups_HaveTools();

// 'Cups_PpdPath()' - The generated PPD file of a model (1030, 1035, 1060).
std::string Cups_PpdPath(int model);

// 'Cups_SampleCardPdf()' - The shipped two-page CR80 sample card.
std::string Cups_SampleCardPdf();

// 'Cups_WorkDir()' - A fresh directory under the build tree for one test.
std::string Cups_WorkDir(const std::string& name);

// 'Cups_MakeServerBin()' - A ServerBin directory under dir whose filter/
// holds the system's CUPS filters, the built rastertobrellian and the
// shipped pdftobrellian and texttobrellian, whose
// backend/ holds the "capture" test backend (device URI
// "capture:/path/to/file" writes the job to that file), with the other
// folders linked to the system's.  Returns its path.
std::string Cups_MakeServerBin(const std::string& dir);

// 'Cups_WriteFilesConf()' - A cups-files.conf for cupsfilter that points at
// serverBin.  Returns its path.
std::string Cups_WriteFilesConf(const std::string& dir, const std::string& serverBin);

// A spooler of its own, in dir, listening only on a local socket.  The
// destructor stops it, also when a test fails.
class TTestSpooler {
 public:
  explicit TTestSpooler(const std::string& dir);
  ~TTestSpooler();
  TTestSpooler(const TTestSpooler&) = delete;
  TTestSpooler& operator=(const TTestSpooler&) = delete;

  // Before Start: 'SetEnv()' adds a SetEnv line to the spooler's
  // file configuration (filters, backends and device discovery see it);
  // 'AddBackend()' copies program into the backend directory with mode
  // (0700: run as root); 'AddModels()' lets the spooler's driver list
  // see the PPD files of dir, as DataDir/model/<name>.
  void SetEnv(const std::string& name, const std::string& value);
  void AddBackend(const std::string& name, const std::string& program, mode_t mode);
  void AddModels(const std::string& name, const std::string& dir);

  bool Start(std::string* error);
  // 'Run()' - Run a client command (lpadmin, lp, lpstat) against this
  // spooler; returns its exit status, output in *out.
  int Run(const std::string& command, std::string* out);
  // 'WaitIdle()' - Wait until no job is pending or processing.
  bool WaitIdle(int seconds);
  std::string ErrorLog() const;

 private:
  std::string dir_;
  std::string socket_;
  std::string extraConf_;
  std::string backends_;  // "name\tprogram\tmode\n" lines
  std::string models_;    // "name\tdir\n" lines
  pid_t pid_ = -1;
};
