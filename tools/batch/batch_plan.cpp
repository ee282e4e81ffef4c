// The cards of a batch: counting them, and each card's document, pages and options.
// Copyright 2026 The rastertobrellian authors.
#include "tools/batch/batch_plan.h"

#include <cstdio>
#include <cstring>
#include <strings.h>

namespace {

// 'Plan_TwoSided()' - True when the options ask for two-sided cards.
bool Plan_TwoSided(const std::vector<TJobOption>& options) {
  for (const TJobOption& o : options) {
    if (o.name == "sides" && o.value.rfind("two-sided", 0) == 0) return true;
    if (o.name == "Duplex" && (o.value == "DuplexNoTumble" || o.value == "DuplexTumble")) return true;
  }
  return false;
}

// 'Plan_DirOf()' - The folder of path with a trailing "/", or "".
std::string Plan_DirOf(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

// 'Plan_Set()' - Set option name to value, replacing an earlier value (a
// CSV cell over an -o option of the same name).
void Plan_Set(std::vector<TJobOption>* options, const std::string& name, const std::string& value) {
  for (TJobOption& o : *options)
    if (o.name == name) {
      o.value = value;
      return;
    }
  options->push_back({name, value});
}

// Default recording formats of the track columns: the ISO formats of each track.
const char* const kTrackFormat[3] = {"ISO6-79", "ISO4-37", "ISO4-104"};

}  // namespace

std::string Plan_Format(const std::string& path) {
  unsigned char head[8] = {};
  FILE* f = fopen(path.c_str(), "rb");
  size_t n = f ? fread(head, 1, sizeof head, f) : 0;
  if (f) fclose(f);
  if (n >= 4 && !memcmp(head, "%PDF", 4)) return "application/pdf";
  if (n >= 2 && !memcmp(head, "%!", 2)) return "application/postscript";
  if (n >= 4 && !memcmp(head, "RaS2", 4)) return "image/pwg-raster";
  if (n >= 7 && !memcmp(head, "UNIRAST", 7)) return "image/urf";
  if (n >= 8 && !memcmp(head, "\x89PNG\r\n\x1a\n", 8)) return "image/png";
  if (n >= 3 && head[0] == 0xFF && head[1] == 0xD8 && head[2] == 0xFF) return "image/jpeg";
  return "application/octet-stream";
}

std::string Plan_Quote(const std::string& text) {
  std::string q = "'";
  for (char c : text) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

int32_t Plan_PdfPages(const std::string& path) {
  FILE* p = popen(("pdfinfo -- " + Plan_Quote(path) + " 2>/dev/null").c_str(), "r");
  if (!p) return -1;
  char line[512];
  int32_t pages = -1;
  while (fgets(line, sizeof line, p))
    if (!strncmp(line, "Pages:", 6)) pages = static_cast<int32_t>(strtol(line + 6, nullptr, 10));
  return pclose(p) == 0 ? pages : -1;
}

// 'TBatchPlan::Setup()' - Cards from the documents, the page count and the CSV rows.
bool TBatchPlan::Setup(const TPlanInput& input, const TPlanPrinter& printer, std::string* error) {
  input_ = input;
  printer_ = printer;
  pagesPerCard_ = input.pagesPerCard > 0 ? input.pagesPerCard : Plan_TwoSided(input.options) ? 2 : 1;
  int32_t rows = -1;
  if (!input.csv.empty()) {
    TCsvReader counter;
    std::vector<std::string> row;
    if (!counter.Open(input.csv, error) || !csv_.Open(input.csv, error)) return false;
    int32_t r;
    rows = 0;
    while ((r = counter.Next(&row, error)) == 1) ++rows;
    if (r < 0) {
      *error = input.csv + ": " + *error;
      return false;
    }
    if (rows < 1 || csv_.Next(&columns_, error) != 1) {
      *error = input.csv + ": no header row naming the columns";
      return false;
    }
    --rows;
    csvDir_ = Plan_DirOf(input.csv);
    for (const std::string& c : columns_)
      if (c == "document") cards_ = rows;
  }
  if (input.documents.size() > 1) {
    cards_ = static_cast<int32_t>(input.documents.size());
  } else if (input.documents.size() == 1) {
    format_ = Plan_Format(input.documents[0]);
    if (format_ == "application/pdf") pages_ = Plan_PdfPages(input.documents[0]);
    if (pages_ > 0) {
      if (pages_ % pagesPerCard_ != 0) {
        *error = input.documents[0] + " has " + std::to_string(pages_) + " pages, not a whole number of cards of " +
                 std::to_string(pagesPerCard_) + " pages (--pages-per-card)";
        return false;
      }
      cards_ = pages_ / pagesPerCard_;
    } else if (input.cards > 0) {
      cards_ = input.cards;
    } else if (rows >= 0) {
      cards_ = rows;
    } else {
      *error = "the number of pages of " + input.documents[0] + " is not known: give --cards N or --csv FILE";
      return false;
    }
  } else if (cards_ == 0) {
    *error = "no document: give a document of every card, one document per card, or a CSV column \"document\"";
    return false;
  }
  if (input.cards > 0 && input.cards != cards_) {
    *error = "--cards " + std::to_string(input.cards) + " but the input has " + std::to_string(cards_) + " cards";
    return false;
  }
  if (rows >= 0 && rows != cards_) {
    *error = input.csv + " has " + std::to_string(rows) + " rows of cards, the documents make " +
             std::to_string(cards_) + " cards";
    return false;
  }
  return true;
}

// 'TBatchPlan::Next()' - Document and options of the next card.
int32_t TBatchPlan::Next(TCard* card, std::string* error) {
  if (next_ >= cards_) return 0;
  *card = TCard();
  card->index = next_++;
  card->options = input_.options;
  if (input_.documents.size() > 1) {
    card->doc.path = input_.documents[static_cast<size_t>(card->index)];
    card->doc.format = Plan_Format(card->doc.path);
  } else if (input_.documents.size() == 1) {
    card->doc.path = input_.documents[0];
    card->doc.format = format_;
    card->doc.firstPage = card->index * pagesPerCard_ + 1;
    card->doc.lastPage = card->doc.firstPage + pagesPerCard_ - 1;
  }
  if (!input_.csv.empty()) {
    std::vector<std::string> row;
    int32_t r = csv_.Next(&row, error);
    if (r != 1) {
      *error = input_.csv + ": " + (r == 0 ? "fewer rows than cards" : *error);
      return -1;
    }
    if (!RowOptions(row, card, error)) return -1;
  }
  if (card->doc.format == "application/pdf" && !printer_.takesPdf) {
    // The printer takes no PDF: the card's pages go as PWG raster, 8-bit sRGB.
    bool duplex = false;
    for (const TJobOption& o : card->options)
      if (o.name == "sides" && o.value.rfind("two-sided", 0) == 0) duplex = true;
    std::string range = card->doc.firstPage > 0 ? " -dFirstPage=" + std::to_string(card->doc.firstPage) +
                                                       " -dLastPage=" + std::to_string(card->doc.lastPage)
                                                 : "";
    card->doc.command = "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pwgraster -dcupsColorSpace=19 "
                        "-dcupsBitsPerColor=8 -r" + std::to_string(printer_.resolution) +
                        (duplex ? " -dDuplex" : "") + range + " -sOutputFile=- -f " + Plan_Quote(card->doc.path) +
                        " 2>/dev/null";  // its progress lines would break the progress line
    card->doc.format = "image/pwg-raster";
  }
  return 1;
}

// 'TBatchPlan::RowOptions()' - The options of one CSV row.
bool TBatchPlan::RowOptions(const std::vector<std::string>& row, TCard* card, std::string* error) {
  std::string formats[3];
  for (size_t c = 0; c < columns_.size() && c < row.size(); ++c)
    for (int t = 0; t < 3; ++t)
      if (columns_[c] == "track" + std::to_string(t + 1) + "-format" && !row[c].empty()) formats[t] = row[c];
  for (size_t c = 0; c < columns_.size(); ++c) {
    const std::string& name = columns_[c];
    std::string value = c < row.size() ? row[c] : "";
    if (name.empty() || value.empty() || (name.find("-format") != std::string::npos && name.rfind("track", 0) == 0))
      continue;
    if (name == "document") {
      card->doc.path = value[0] == '/' ? value : csvDir_ + value;
      card->doc.format = Plan_Format(card->doc.path);
      card->doc.firstPage = card->doc.lastPage = 0;
    } else if (name.size() == 6 && name.rfind("track", 0) == 0 && name[5] >= '1' && name[5] <= '3') {
      int t = name[5] - '1';
      std::string format = formats[t].empty() ? kTrackFormat[t] : formats[t];
      std::string n = std::to_string(t + 1);
      if (printer_.appVocabulary) {
        for (char& ch : format) ch = static_cast<char>(tolower(static_cast<unsigned char>(ch)));
        Plan_Set(&card->options, "brellian-mag-track-" + n + "-format", format);
        Plan_Set(&card->options, "brellian-mag-track-" + n + "-data", value);
      } else {
        Plan_Set(&card->options, "magEncodeFormat" + n, format);
        Plan_Set(&card->options, "magEncodeData" + n, "Custom." + value);
      }
    } else {
      Plan_Set(&card->options, name, value);
    }
  }
  if (row.size() > columns_.size()) {
    *error = "line " + std::to_string(csv_.Line()) + " has more fields than the header row";
    return false;
  }
  return true;
}

// 'TBatchPlan::Describe()' - Which pages or file a card prints.
std::string TBatchPlan::Describe(const TCard& card) {
  std::string name = card.doc.path.substr(card.doc.path.rfind('/') + 1);
  if (card.doc.firstPage <= 0) return name;
  if (card.doc.firstPage == card.doc.lastPage) return "page " + std::to_string(card.doc.firstPage) + " of " + name;
  return "pages " + std::to_string(card.doc.firstPage) + "-" + std::to_string(card.doc.lastPage) + " of " + name;
}
