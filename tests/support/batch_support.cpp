// Batches of cards for the brellian-batch tests.
// Copyright 2026 The rastertobrellian authors.
#include "support/batch_support.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>

#include "jobstream/stream_reader.h"

namespace {

const char kBatchCapture[] =
    "#!/bin/sh\n"
    "# batchcap: each job to <dir>/job-<id>.bin; fails the card named in <dir>/fail-card,\n"
    "# cancels the one named in <dir>/cancel-card.\n"
    "if [ $# -eq 0 ]; then echo 'direct batchcap \"Unknown\" \"Batch capture\"'; exit 0; fi\n"
    "dir=\"${DEVICE_URI#batchcap:}\"\n"
    "if [ -f \"$dir/fail-card\" ]; then\n"
    "  case \"$3\" in *\" card $(cat \"$dir/fail-card\") of \"*) echo 'ERROR: capture refused' >&2; exit 1;; esac\n"
    "fi\n"
    "if [ -f \"$dir/cancel-card\" ]; then\n"
    "  case \"$3\" in *\" card $(cat \"$dir/cancel-card\") of \"*) echo 'ERROR: capture cancelled' >&2; exit 5;; esac\n"
    "fi\n"
    "if [ -n \"$6\" ]; then cat \"$6\" > \"$dir/job-$1.part\"; else cat > \"$dir/job-$1.part\"; fi\n"
    "mv \"$dir/job-$1.part\" \"$dir/job-$1.bin\"\n"
    "exit 0\n";

// 'Batch_TrackText()' - Track characters back to text: the 6-bit and
// 7-bit sets start at blank, the 4-bit set at "0".
std::string Batch_TrackText(const TMagTrackFields& t) {
  std::string text;
  char base = t.format == 180 || t.format == 196 ? '0' : ' ';
  for (int i = 0; i < t.length && i < static_cast<int>(t.chars.size()); ++i)
    text += static_cast<char>(base + t.chars[static_cast<size_t>(i)]);
  return text;
}

}  // namespace

bool Batch_MakeMergedPdf(const std::string& path, int cards) {
  std::string ps = path + ".ps";
  std::string text = "%!PS\n<< /PageSize [242.65 153.07] >> setpagedevice\n"
                     "/card { 0 setgray 0 0 3 -1 roll 9.9213 mul 153.07 rectfill showpage } def\n";
  for (int i = 1; i <= cards; ++i) text += std::to_string(i) + " card\n";
  Test_WriteFile(ps, text);
  std::string command = "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pdfwrite -sOutputFile='" + path + "' '" + ps + "'";
  return system(command.c_str()) == 0;
}

std::string Batch_Track1(int card) {
  char text[32];
  snprintf(text, sizeof text, "CARD %02d HOLDER", card);
  return text;
}

std::string Batch_Track2(int card) {
  char text[32];
  snprintf(text, sizeof text, "4000%02d=2612", card);
  return text;
}

void Batch_WriteCsv(const std::string& path, int cards) {
  std::string text = "track1,track2\n";
  for (int i = 1; i <= cards; ++i) text += Batch_Track1(i) + "," + Batch_Track2(i) + "\n";
  Test_WriteFile(path, text);
}

TBatchCapture Batch_ReadCapture(const std::string& bytes) {
  TBatchCapture c;
  TStreamCheck stream;
  Stream_Read(bytes, &stream);
  c.complete = stream.complete;
  c.panels = static_cast<int>(stream.panels.size());
  for (const TStreamRecord& r : stream.records) {
    TStartJobFields job;
    TMagTrackFields tracks[3];
    if (Stream_DecodeStartJob(r, &job)) c.title = job.title;
    if (Stream_DecodeMagEncode(r, tracks)) {
      c.track1 = Batch_TrackText(tracks[0]);
      c.track2 = Batch_TrackText(tracks[1]);
    }
  }
  if (!stream.panels.empty() && stream.panels[0].bytesPerPixel == 3 && stream.panels[0].rows > 0) {
    // The bar is the columns of the middle row that differ from the white
    // at the far end of the row.
    const TStreamPanel& p = stream.panels[0];
    const uint8_t* row = p.pixels.data() + static_cast<size_t>(p.rows / 2) * p.width * 3;
    const uint8_t* white = row + static_cast<size_t>(p.width - 1) * 3;
    int dark = 0;
    for (uint32_t x = 0; x < p.width; ++x)
      if (abs(row[x * 3] - white[0]) + abs(row[x * 3 + 1] - white[1]) + abs(row[x * 3 + 2] - white[2]) > 96) ++dark;
    c.bar = static_cast<double>(dark) / p.width;
  }
  return c;
}

std::vector<TBatchCapture> Batch_ReadCaptures(const std::string& dir) {
  std::vector<TBatchCapture> all;
  if (DIR* d = opendir(dir.c_str())) {
    while (struct dirent* e = readdir(d)) {
      std::string name = e->d_name;
      if (name.size() > 4 && (name.compare(name.size() - 4, 4, ".bin") == 0 ||
                              name.compare(name.size() - 4, 4, ".brj") == 0))
        all.push_back(Batch_ReadCapture(Test_ReadFile(dir + "/" + name)));
    }
    closedir(d);
  }
  return all;
}

TBatchSpooler::TBatchSpooler(const std::string& dir) : dir_(dir), spooler_(dir) {}

bool TBatchSpooler::Start(std::string* error) {
  std::string backend = dir_ + "/batchcap";
  Test_WriteFile(backend, kBatchCapture);
  chmod(backend.c_str(), 0755);
  spooler_.AddBackend("batchcap", backend, 0755);
  Test_MakeDirs(CaptureDir());
  chmod(CaptureDir().c_str(), 0777);
  if (!spooler_.Start(error)) return false;
  std::string out;
  if (spooler_.Run("lpadmin -p cards -E -v batchcap:" + CaptureDir() + " -P " + Cups_PpdPath(1030) +
                   " -o magEncoder=Installed -o printer-error-policy=stop-printer", &out) != 0) {
    *error = "lpadmin: " + out;
    return false;
  }
  return true;
}

void TBatchSpooler::ClearCaptures() {
  Test_RemoveTree(CaptureDir());
  Test_MakeDirs(CaptureDir());
  chmod(CaptureDir().c_str(), 0777);
}

std::string Batch_Tool() { return std::string(BRELLIAN_TOOLS_DIR) + "/brellian-batch"; }

TProcessResult Batch_RunTool(const TBatchSpooler& spooler, const std::vector<std::string>& args,
                             double deadlineSeconds) {
  std::vector<std::string> argv = {Batch_Tool()};
  argv.insert(argv.end(), args.begin(), args.end());
  TProcessOptions options;
  options.env["CUPS_SERVER"] = spooler.Socket();
  options.deadlineSeconds = deadlineSeconds;
  return Test_RunProcess(argv, options);
}
