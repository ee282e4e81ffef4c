// The cards of a batch: which document and pages each card prints and which job options it takes.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/batch/batch_csv.h"
#include "tools/batch/batch_ipp.h"

// What the command line says about the batch's input.
struct TPlanInput {
  std::vector<std::string> documents;  // one: a document of every card; more: one per card
  std::string csv;                     // per-card options, one row per card; may be empty
  int32_t pagesPerCard = 0;            // 0: 1, or 2 when the options ask for two-sided cards
  int32_t cards = 0;                   // --cards: the number of cards, 0 when not given
  std::vector<TJobOption> options;     // -o: options of every card
};

// What the printer takes, as far as the plan needs it.
struct TPlanPrinter {
  bool appVocabulary = false;  // track columns become brellian-mag-track-N-...
  bool takesPdf = true;        // false: a PDF is turned into PWG raster first
  int resolution = 300;        // of that raster
};

// One card ready to send.
struct TCard {
  int32_t index = 0;  // from 0
  TCardDocument doc;
  std::vector<TJobOption> options;
};

// The batch's cards, given out in order, reading the CSV one row at a time.
class TBatchPlan {
 public:
  // 'Setup()' - Check the input, count the cards, read the CSV header.
  // False with *error when the input does not make a batch.
  bool Setup(const TPlanInput& input, const TPlanPrinter& printer, std::string* error);
  // 'Next()' - The next card (the first after Setup); 1 for a card, 0 after
  // the last, -1 with *error for a malformed CSV row.
  int32_t Next(TCard* card, std::string* error);
  int32_t Cards() const { return cards_; }
  int32_t PagesPerCard() const { return pagesPerCard_; }
  // 'Describe()' - "pages 3-4 of people.pdf" or "badge-7.png" for a card.
  static std::string Describe(const TCard& card);

 private:
  bool RowOptions(const std::vector<std::string>& row, TCard* card, std::string* error);

  TPlanInput input_;
  TPlanPrinter printer_;
  TCsvReader csv_;
  std::vector<std::string> columns_;
  std::string csvDir_;
  std::string format_;  // of the one document
  int32_t cards_ = 0;
  int32_t pagesPerCard_ = 1;
  int32_t pages_ = 0;
  int32_t next_ = 0;
};

// 'Plan_Format()' - The MIME type of a file from its first bytes:
// application/pdf, application/postscript, image/pwg-raster, image/urf,
// image/png, image/jpeg, else application/octet-stream.
std::string Plan_Format(const std::string& path);
// 'Plan_PdfPages()' - The number of pages of a PDF file (pdfinfo), -1 when unknown.
int32_t Plan_PdfPages(const std::string& path);
// 'Plan_Quote()' - text quoted for the shell.
std::string Plan_Quote(const std::string& text);
