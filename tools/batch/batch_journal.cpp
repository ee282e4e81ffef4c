// The batch journal: header, appended event lines with checksums, and reading it back.
// Copyright 2026 The rastertobrellian authors.
#include "tools/batch/batch_journal.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "lib/atomic_file.h"
#include "util/safe_file.h"

namespace {

const char kMagic[] = "brellian-batch journal 1";
constexpr int32_t JOURNAL_MAX_CARDS = 10000000;

// 'Journal_Line()' - text followed by " *" and its checksum, and a newline.
std::string Journal_Line(const std::string& text) {
  char sum[16];
  snprintf(sum, sizeof sum, " *%08" PRIx32 "\n", Journal_Crc32(text));
  return text + sum;
}

// 'Journal_Check()' - The text of a line (without its newline) when its
// checksum holds.
bool Journal_Check(const std::string& line, std::string* text) {
  size_t star = line.rfind(" *");
  if (star == std::string::npos || line.size() - star != 10) return false;
  *text = line.substr(0, star);
  char sum[16];
  snprintf(sum, sizeof sum, "%08" PRIx32, Journal_Crc32(*text));
  return line.compare(star + 2, 8, sum) == 0;
}

}  // namespace

uint32_t Journal_Crc32(const std::string& bytes) {
  uint32_t crc = 0xFFFFFFFFu;
  for (unsigned char c : bytes) {
    crc ^= c;
    for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

TBatchJournal::~TBatchJournal() {
  if (fd_ >= 0) close(fd_);
}

// 'TBatchJournal::Create()' - Header written atomically, then opened for appending.
bool TBatchJournal::Create(const std::string& path, int32_t cards, const std::string& dest,
                           std::string* error) {
  struct stat st;
  if (lstat(path.c_str(), &st) == 0) {
    *error = "a journal of an earlier run is already there: " + path;
    return false;
  }
  unsigned char raw[8] = {};
  int rnd = open("/dev/urandom", O_RDONLY | O_CLOEXEC);
  if (rnd < 0 || read(rnd, raw, sizeof raw) != static_cast<ssize_t>(sizeof raw)) {
    if (rnd >= 0) close(rnd);
    *error = "cannot read /dev/urandom for the batch id";
    return false;
  }
  close(rnd);
  char id[17];
  for (int i = 0; i < 8; ++i) snprintf(id + 2 * i, 3, "%02x", raw[i]);
  batchId_ = id;
  dest_ = dest;
  entries_.assign(static_cast<size_t>(cards), TCardEntry());
  std::string header = Journal_Line(kMagic) +
                       Journal_Line("batch " + batchId_ + " cards " + std::to_string(cards) + " dest " + dest);
  if (!Tool_ReplaceFile(path, header, 0644, error)) return false;
  path_ = path;
  fd_ = File_OpenRegular(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  if (fd_ < 0) {
    *error = path + ": " + strerror(errno);
    return false;
  }
  return true;
}

// 'TBatchJournal::Load()' - Replay every whole line, one at a time (the
// file is never held whole); cut off a torn tail.
bool TBatchJournal::Load(const std::string& path, std::string* error) {
  FILE* in = File_FOpenRegular(path.c_str(), "rb");
  if (!in) {
    *error = path + ": cannot be read (" + strerror(errno) + ")";
    return false;
  }
  long good = 0;
  int lineNo = 0;
  bool ok = true;
  char* buffer = nullptr;
  size_t capacity = 0;
  ssize_t n;
  while (ok && (n = getline(&buffer, &capacity, in)) > 0) {
    std::string text;
    if (buffer[n - 1] != '\n' || !Journal_Check(std::string(buffer, static_cast<size_t>(n - 1)), &text))
      break;  // torn or damaged: the last line a crash left
    ++lineNo;
    if (lineNo == 1) {
      ok = text == kMagic;
      if (!ok) *error = path + ": not a brellian-batch journal";
    } else if (lineNo == 2) {
      std::istringstream header(text);
      std::string w1, w2, w3;
      long cards = -1;
      header >> w1 >> batchId_ >> w2 >> cards >> w3;
      std::getline(header, dest_);
      if (!dest_.empty() && dest_[0] == ' ') dest_.erase(0, 1);
      ok = w1 == "batch" && w2 == "cards" && w3 == "dest" && cards >= 0 && cards <= JOURNAL_MAX_CARDS;
      if (ok) entries_.assign(static_cast<size_t>(cards), TCardEntry());
      else *error = path + ": the journal's header is damaged";
    } else if (!Apply(text)) {
      ok = false;
      *error = path + ": line " + std::to_string(lineNo) + " names no card of the batch";
    }
    good = ftell(in);
  }
  free(buffer);
  fclose(in);
  if (!ok) return false;
  if (lineNo < 2) {
    *error = path + ": the journal's header is missing or damaged";
    return false;
  }
  path_ = path;
  fd_ = File_OpenRegular(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (fd_ < 0 || ftruncate(fd_, static_cast<off_t>(good)) != 0 || lseek(fd_, 0, SEEK_END) < 0 ||
      fsync(fd_) != 0) {
    *error = path + ": cannot be written (" + strerror(errno) + ")";
    return false;
  }
  return true;
}

// 'TBatchJournal::Apply()' - Fold one event line into the card entries.
bool TBatchJournal::Apply(const std::string& text) {
  std::istringstream in(text);
  std::string what, state;
  long card = -1, job = 0;
  in >> what >> card;
  if (card < 0 || card >= static_cast<long>(entries_.size())) return false;
  TCardEntry& e = entries_[static_cast<size_t>(card)];
  if (what == "intent") {
    e = TCardEntry();
    e.state = CARD_INTENT;
  } else if (what == "sent") {
    in >> job;
    e.state = CARD_SENT;
    e.jobId = static_cast<int32_t>(job);
  } else if (what == "ended") {
    in >> state;
    e.state = state == "printed" ? CARD_PRINTED : state == "unconfirmed" ? CARD_UNCONFIRMED : CARD_FAILED;
    e.cancelled = state == "cancelled";
  } else {
    return false;
  }
  return true;
}

// 'TBatchJournal::Append()' - Write one line and flush it to disk.
bool TBatchJournal::Append(const std::string& text, std::string* error) {
  std::string line = Journal_Line(text);
  const char* p = line.data();
  size_t left = line.size();
  while (left > 0) {
    ssize_t n = write(fd_, p, left);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      *error = "cannot write the journal " + path_ + ": " + strerror(errno);
      return false;
    }
    p += n;
    left -= static_cast<size_t>(n);
  }
  while (fdatasync(fd_) != 0) {
    if (errno == EINTR) continue;
    *error = "cannot flush the journal " + path_ + " to disk: " + strerror(errno);
    return false;
  }
  if (!Apply(text)) {
    *error = "journal line for a card outside the batch: " + text;
    return false;
  }
  return true;
}

bool TBatchJournal::Intent(int32_t card, std::string* error) {
  return Append("intent " + std::to_string(card), error);
}

bool TBatchJournal::Sent(int32_t card, int32_t jobId, std::string* error) {
  return Append("sent " + std::to_string(card) + " " + std::to_string(jobId), error);
}

bool TBatchJournal::Ended(int32_t card, TCardState state, bool cancelled, std::string* error) {
  const char* word = state == CARD_PRINTED ? "printed" : state == CARD_UNCONFIRMED ? "unconfirmed"
                     : cancelled ? "cancelled" : "aborted";
  int32_t job = entries_[static_cast<size_t>(card)].jobId;
  if (!Append("ended " + std::to_string(card) + " " + word, error)) return false;
  entries_[static_cast<size_t>(card)].jobId = job;
  return true;
}
