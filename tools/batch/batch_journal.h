// The batch journal: which card went out as which job and how each job ended, kept so that a run killed at any moment can be resumed.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What the journal knows of one card.
enum TCardState : uint8_t {
  CARD_PENDING = 0,  // nothing sent
  CARD_INTENT,       // about to be sent: a job of its name may or may not exist
  CARD_SENT,         // sent as jobId, final state not yet known
  CARD_PRINTED,      // the job completed
  CARD_FAILED,       // the job was aborted or cancelled
  CARD_UNCONFIRMED,  // sent as jobId, and the printer no longer knows the job
};

// One card's entry: 8 bytes, so that the journal of a batch of any size
// stays small in memory.
struct TCardEntry {
  TCardState state = CARD_PENDING;
  bool cancelled = false;  // CARD_FAILED: cancelled rather than aborted
  int32_t jobId = 0;
};

// The journal file: a header written whole (temporary file, fsync, rename),
// then one line per event appended and flushed to disk before the tool acts
// on it.  Each line ends with a checksum, so a line cut short by a crash is
// recognised and dropped when the journal is read again.
class TBatchJournal {
 public:
  TBatchJournal() = default;
  ~TBatchJournal();
  TBatchJournal(const TBatchJournal&) = delete;
  TBatchJournal& operator=(const TBatchJournal&) = delete;

  // 'Create()' - A new journal at path for cards cards to dest, with a new
  // random batch id.  Fails when a file is already there.
  bool Create(const std::string& path, int32_t cards, const std::string& dest, std::string* error);
  // 'Load()' - Read an existing journal and open it for appending; a torn
  // last line is cut off.  *error says what is wrong with a damaged file.
  bool Load(const std::string& path, std::string* error);

  // 'Intent()', 'Sent()', 'Ended()' - Record an event of card (0-based)
  // and flush it to disk; false (with *error) when it could not be written,
  // in which case the tool must not go on.
  bool Intent(int32_t card, std::string* error);
  bool Sent(int32_t card, int32_t jobId, std::string* error);
  bool Ended(int32_t card, TCardState state, bool cancelled, std::string* error);

  int32_t Cards() const { return static_cast<int32_t>(entries_.size()); }
  const TCardEntry& Entry(int32_t card) const { return entries_[static_cast<size_t>(card)]; }
  const std::string& BatchId() const { return batchId_; }
  const std::string& Destination() const { return dest_; }

 private:
  bool Append(const std::string& text, std::string* error);
  bool Apply(const std::string& text);

  int fd_ = -1;
  std::string path_;
  std::string batchId_;
  std::string dest_;
  std::vector<TCardEntry> entries_;
};

// 'Journal_Crc32()' - The CRC-32 (IEEE) of bytes, as used for each line.
uint32_t Journal_Crc32(const std::string& bytes);
