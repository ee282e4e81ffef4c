// Text of a checked job command stream: one line per record and a verdict.
// Copyright 2026 The rastertobrellian authors.
#include "lib/job_text.h"

#include <cinttypes>
#include <cstdarg>
#include <cstdio>

#include "jobstream/records.h"

namespace {

const char* const PANEL_NAMES[] = {"color", "k", "uv", "po"};

// 'Text_Format()' - printf into a std::string.
std::string Text_Format(const char* fmt, ...) {
  char text[512];
  va_list ap;
  va_start(ap, fmt);
  vsnprintf(text, sizeof text, fmt, ap);
  va_end(ap);
  return text;
}

// 'YesNo()' - "yes" for a non-zero flag byte, "no" for 0.
const char* YesNo(uint8_t flag) { return flag ? "yes" : "no"; }

// 'Text_Quote()' - A string field in double quotes; quotes, backslashes and
// bytes outside printable ASCII become \xNN.
std::string Text_Quote(const std::string& s) {
  std::string q = "\"";
  for (unsigned char c : s) {
    if (c < 0x20 || c >= 0x7F || c == '"' || c == '\\')
      q += Text_Format("\\x%02X", c);
    else
      q += static_cast<char>(c);
  }
  return q + "\"";
}

// 'Text_Track()' - One magnetic track: "-" when empty, else its format,
// length and character codes in hex.
std::string Text_Track(const TMagTrackFields& t) {
  if (t.format == 0) return "-";
  std::string s = Text_Format("format=0x%02X length=%u [", t.format, t.length);
  for (size_t i = 0; i < t.length && i < t.chars.size(); ++i) s += Text_Format(i ? " %02X" : "%02X", t.chars[i]);
  return s + "]";
}

// 'Text_LUT()' - "identity", or the entries 0, 128 and 255 of each colour.
std::string Text_LUT(const TStreamRecord& rec) {
  uint8_t lut[3][256];
  if (!Stream_DecodeLUTTable(rec, lut[0], lut[1], lut[2])) return "";
  bool identity = true;
  for (int c = 0; c < 3; ++c)
    for (int i = 0; i < 256; ++i) identity = identity && lut[c][i] == i;
  if (identity) return "identity";
  return Text_Format("custom red=%u/%u/%u green=%u/%u/%u blue=%u/%u/%u (entries 0/128/255)", lut[0][0], lut[0][128],
                     lut[0][255], lut[1][0], lut[1][128], lut[1][255], lut[2][0], lut[2][128], lut[2][255]);
}

// 'Text_Line()' - Offset, name and fields of one listing line.
std::string Text_Line(uint64_t offset, const char* name, const std::string& fields) {
  std::string line = Text_Format("%10" PRIu64 "  %-16s", offset, name);
  if (fields.empty()) {
    while (!line.empty() && line.back() == ' ') line.pop_back();
    return line;
  }
  return line + " " + fields;
}

}  // namespace

// 'Inspect_PanelTypeName()' - Short name of a panel type.
const char* Inspect_PanelTypeName(uint32_t panelType) { return panelType < 4 ? PANEL_NAMES[panelType] : "unknown"; }

// 'Inspect_Fields()' - The decoded fields of a record as name=value words.
std::string Inspect_Fields(const TStreamRecord& rec) {
  TStartJobFields job;
  TStartCardFields card;
  TStartSideFields side;
  TStartImageFields image;
  TMagTrackFields tracks[3];
  uint32_t jobId = 0;
  uint64_t cardId = 0;
  int32_t sideNo = 0;
  if (Stream_DecodeStartJob(rec, &job))
    return Text_Format("printer=%" PRIu32 " job=%" PRIu32 " copies=%" PRIu32 " title=", job.printer, job.jobId,
                       job.copies) +
           Text_Quote(job.title) + " plugin=" + Text_Quote(job.plugin) + " queue=" + Text_Quote(job.queue);
  if (Stream_DecodeEndJob(rec, &jobId)) return Text_Format("job=%" PRIu32, jobId);
  if (Stream_DecodeStartCard(rec, &card))
    return Text_Format("card=%" PRIu64 " copies=%" PRIu32 " duplex=%s laminate=%s magEncode=%s entryFlip=%s "
                       "magEncodeFlip=%s magPOMode=%u thickness=%u ejectExisting=%u",
                       card.cardId, card.copies, YesNo(card.duplex), YesNo(card.laminate), YesNo(card.magEncode),
                       YesNo(card.entryFlip), YesNo(card.magEncodeFlip), card.magPOMode, card.cardThickness,
                       card.ejectExisting);
  if (Stream_DecodeEndCard(rec, &cardId)) return Text_Format("card=%" PRIu64, cardId);
  if (Stream_DecodeMagEncode(rec, tracks))
    return "track1=" + Text_Track(tracks[0]) + " track2=" + Text_Track(tracks[1]) + " track3=" + Text_Track(tracks[2]);
  if (Stream_DecodeStartSide(rec, &side))
    return Text_Format("side=%" PRId32 " YMC=%s K=%s UV=%s PO=%s MAC=%u secureErase=%s LUT=%u", side.side,
                       YesNo(side.ymc), YesNo(side.k), YesNo(side.uv), YesNo(side.po), side.mac,
                       YesNo(side.secureErase), side.lut);
  if (Stream_DecodeEndSide(rec, &sideNo)) return Text_Format("side=%" PRId32, sideNo);
  if (Stream_DecodeStartImage(rec, &image))
    return Text_Format("%u x %u panel=%u (%s)", image.width, image.height, image.panel,
                       Inspect_PanelTypeName(image.panel));
  if (rec.type == ICMD_LUTTABLE) return Text_LUT(rec);
  return "";
}

// 'Inspect_Listing()' - One line per record, image chunks summarised.
std::vector<std::string> Inspect_Listing(const TStreamCheck& check, bool eachChunk) {
  std::vector<std::string> lines;
  const std::vector<TStreamRecord>& recs = check.records;
  size_t image = 0;  // index of the next panel in check.panels
  for (size_t i = 0; i < recs.size(); ++i) {
    const TStreamRecord& rec = recs[i];
    const char* name = Stream_RecordName(rec.type);
    if (rec.type == ICMD_STARTIMAGE) ++image;
    if (rec.type != ICMD_IMAGE) {
      lines.push_back(Text_Line(rec.offset, name, Inspect_Fields(rec)));
      continue;
    }
    const TStreamPanel& panel = check.panels[image - 1];
    uint64_t rowBytes = static_cast<uint64_t>(panel.width) * panel.bytesPerPixel;
    if (eachChunk) {
      lines.push_back(Text_Line(rec.offset, name, Text_Format("%" PRIu32 " bytes, %" PRIu64 " rows", rec.length,
                                                              rec.length / rowBytes)));
      continue;
    }
    size_t j = i;
    uint64_t bytes = 0, largest = 0;
    for (; j < recs.size() && recs[j].type == ICMD_IMAGE; ++j) {
      bytes += recs[j].length;
      if (recs[j].length > largest) largest = recs[j].length;
    }
    lines.push_back(Text_Line(rec.offset, name,
                              Text_Format("%zu records, %" PRIu64 " bytes, %" PRIu64 " rows, largest %" PRIu64
                                          " bytes",
                                          j - i, bytes, bytes / rowBytes, largest)));
    i = j - 1;
  }
  return lines;
}

// 'Inspect_Verdict()' - The OK, CUT or ERROR line.
std::string Inspect_Verdict(const TStreamCheck& check) {
  if (!check.ok) return Text_Format("ERROR at offset %" PRIu64 ": ", check.errorOffset) + check.error;
  size_t panels = check.panels.size();
  if (check.complete)
    return Text_Format("OK: complete job, %zu records, %zu panels", check.records.size(), panels);
  return Text_Format("CUT: the stream stops before ICMD_ENDJOB with %zu records and %zu panels; still open: ",
                     check.records.size(), panels) +
         check.openLevel;
}
