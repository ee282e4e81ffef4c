// Batches of cards for the brellian-batch tests: a merged PDF, a CSV of tracks, a spooler whose backend keeps each job apart, and reading the captured jobs back.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "support/cups_env.h"
#include "support/process.h"

// 'Batch_MakeMergedPdf()' - A PDF of cards CR80 pages at path, as a mail
// merge gives: page i (from 1) is white with a black bar from the left edge
// i * 3.5 mm wide, so each card's page can be told from its job stream.
bool Batch_MakeMergedPdf(const std::string& path, int cards);

// 'Batch_Track1()', 'Batch_Track2()' - The track data of card i (from 1) in
// the test CSVs: "CARD 07 HOLDER" (6-bit set) and "400007=2612" (4-bit set).
std::string Batch_Track1(int card);
std::string Batch_Track2(int card);

// 'Batch_WriteCsv()' - A CSV with the header "track1,track2" and one row of
// Batch_Track1/2 per card.
void Batch_WriteCsv(const std::string& path, int cards);

// One job stream read back: what identifies the card.
struct TBatchCapture {
  bool complete = false;  // a whole, valid job stream
  std::string title;      // the job's name
  std::string track1, track2;
  double bar = -1;        // width of the black bar of the first panel, as a part of the panel's width
  int panels = 0;
};

// 'Batch_ReadCapture()' - Check one captured stream and decode its tracks
// (as text) and the bar of its first panel.
TBatchCapture Batch_ReadCapture(const std::string& bytes);

// 'Batch_ReadCaptures()' - Every "*.bin" / "*.brj" file of dir, read back.
std::vector<TBatchCapture> Batch_ReadCaptures(const std::string& dir);

// A private spooler with the queue "cards" (model 1030, magnetic encoder
// installed) whose backend writes each job to <captureDir>/job-<id>.bin.
// While <captureDir>/fail-card holds a card number N, the backend fails the
// job named "... card N of ...", so the spooler stops the queue; while
// <captureDir>/cancel-card holds N, it cancels that job (the queue goes on).
class TBatchSpooler {
 public:
  explicit TBatchSpooler(const std::string& dir);
  bool Start(std::string* error);
  std::string CaptureDir() const { return dir_ + "/capture"; }
  std::string Socket() const { return dir_ + "/cups.sock"; }
  // 'ClearCaptures()' - Remove every captured job (between trials).
  void ClearCaptures();
  int Run(const std::string& command, std::string* out) { return spooler_.Run(command, out); }
  bool WaitIdle(int seconds) { return spooler_.WaitIdle(seconds); }
  std::string ErrorLog() const { return spooler_.ErrorLog(); }

 private:
  std::string dir_;
  TTestSpooler spooler_;
};

// 'Batch_Tool()' - The built brellian-batch.
std::string Batch_Tool();

// 'Batch_RunTool()' - Run brellian-batch with args against the spooler.
TProcessResult Batch_RunTool(const TBatchSpooler& spooler, const std::vector<std::string>& args,
                             double deadlineSeconds = 240);
