// Reading and checking a job command stream: records, framing and panels.
// Copyright 2026 The rastertobrellian authors.
#include "jobstream/stream_reader.h"

#include <cinttypes>
#include <cstdarg>
#include <cstdio>

#include "jobstream/records.h"

namespace {

// Framing state while walking the records.
struct TReaderState {
  bool jobOpen = false, jobEnded = false;
  bool cardOpen = false, sideOpen = false, imageOpen = false;
  uint32_t jobId = 0, cards = 0, sides = 0, imagesOnSide = 0;
  uint64_t cardId = 0;
  int32_t side = 0;
  uint16_t previous = 0;  // type of the previous record, 0 before the first
  // False while a part of a job is read whose opening records came before it.
  bool jobIdKnown = true, cardIdKnown = true, sidesKnown = true, sideKnown = true;
  TStreamCheck* out = nullptr;
  // The open image: always the last panel begun.
  TStreamPanel* Image() const { return &out->panels.back(); }
};

// 'Stream_Fail()' - Record the first violation; returns 1.
int32_t Stream_Fail(TStreamCheck* out, uint64_t offset, const char* fmt, ...) {
  char text[256];
  va_list ap;
  va_start(ap, fmt);
  vsnprintf(text, sizeof text, fmt, ap);
  va_end(ap);
  out->ok = false;
  out->complete = false;
  out->errorOffset = offset;
  out->error = text;
  return 1;
}

// 'Stream_CheckOrder()' - Check that a record of a known type and length
// may come now; returns 0 or 1 (violation recorded).
int32_t Stream_CheckOrder(TReaderState* s, const TStreamRecord& rec, TStreamCheck* out) {
  uint64_t at = rec.offset;
  uint16_t t = rec.type;
  if (s->jobEnded) return Stream_Fail(out, at, "%s after ICMD_ENDJOB", Stream_RecordName(t));
  if (!s->jobOpen && t != ICMD_STARTJOB)
    return Stream_Fail(out, at, "the stream must begin with ICMD_STARTJOB, not %s", Stream_RecordName(t));
  if (s->previous == ICMD_STARTSIDE && t != ICMD_LUTTABLE)
    return Stream_Fail(out, at, "ICMD_STARTSIDE must be followed by ICMD_LUTTABLE, not %s", Stream_RecordName(t));
  if (s->imageOpen && t != ICMD_IMAGE && t != ICMD_ENDIMAGE)
    return Stream_Fail(out, at, "%s inside an open image (%" PRIu32 " of %" PRIu32 " rows read)", Stream_RecordName(t),
                       s->Image()->rows, s->Image()->height);
  switch (t) {
    case ICMD_STARTJOB:
      if (s->jobOpen) return Stream_Fail(out, at, "a second ICMD_STARTJOB");
      break;
    case ICMD_ENDJOB:
      if (s->cardOpen) return Stream_Fail(out, at, "ICMD_ENDJOB inside an open card");
      break;
    case ICMD_STARTCARD:
      if (s->cardOpen) return Stream_Fail(out, at, "ICMD_STARTCARD inside an open card");
      if (s->cards > 0) return Stream_Fail(out, at, "a second ICMD_STARTCARD (a job holds one card)");
      break;
    case ICMD_ENDCARD:
      if (!s->cardOpen) return Stream_Fail(out, at, "ICMD_ENDCARD without an open card");
      if (s->sideOpen) return Stream_Fail(out, at, "ICMD_ENDCARD inside an open side");
      break;
    case ICMD_MAGENCODE:
      if (s->previous != ICMD_STARTCARD)
        return Stream_Fail(out, at, "ICMD_MAGENCODE must come right after ICMD_STARTCARD");
      break;
    case ICMD_STARTSIDE:
      if (!s->cardOpen) return Stream_Fail(out, at, "ICMD_STARTSIDE outside a card");
      if (s->sideOpen) return Stream_Fail(out, at, "ICMD_STARTSIDE inside an open side");
      if (s->sides >= 2) return Stream_Fail(out, at, "a third ICMD_STARTSIDE in one card");
      break;
    case ICMD_ENDSIDE:
      if (!s->sideOpen) return Stream_Fail(out, at, "ICMD_ENDSIDE without an open side");
      break;
    case ICMD_LUTTABLE:
      if (s->previous != ICMD_STARTSIDE)
        return Stream_Fail(out, at, "ICMD_LUTTABLE must come right after ICMD_STARTSIDE");
      break;
    case ICMD_STARTIMAGE:
      if (!s->sideOpen) return Stream_Fail(out, at, "ICMD_STARTIMAGE outside a side");
      if (s->imageOpen) return Stream_Fail(out, at, "ICMD_STARTIMAGE inside an open image");
      break;
    case ICMD_IMAGE:
      if (!s->imageOpen) return Stream_Fail(out, at, "ICMD_IMAGE outside an image");
      break;
    case ICMD_ENDIMAGE:
      if (!s->imageOpen) return Stream_Fail(out, at, "ICMD_ENDIMAGE without ICMD_STARTIMAGE");
      break;
  }
  return 0;
}

// 'Stream_Apply()' - Check the fields of a record that is in order and
// update the framing state; image rows go into the open panel.
int32_t Stream_Apply(TReaderState* s, const TStreamRecord& rec, const uint8_t* payload, TStreamCheck* out) {
  uint64_t at = rec.offset;
  switch (rec.type) {
    case ICMD_STARTJOB: {
      uint32_t word = Rec_Get32(payload + STARTJOB_FORMAT - ICMD_HEADER_BYTES);
      if (word != ICMD_FORMAT_WORD)
        return Stream_Fail(out, at, "ICMD_STARTJOB format word is 0x%08" PRIx32 ", not 0x00010001", word);
      s->jobOpen = true;
      s->jobId = Rec_Get32(payload + STARTJOB_JOBID - ICMD_HEADER_BYTES);
      break;
    }
    case ICMD_ENDJOB:
      if (s->jobIdKnown && Rec_Get32(payload) != s->jobId)
        return Stream_Fail(out, at, "ICMD_ENDJOB job id %" PRIu32 " differs from ICMD_STARTJOB job id %" PRIu32,
                           Rec_Get32(payload), s->jobId);
      s->jobOpen = false;
      s->jobEnded = true;
      break;
    case ICMD_STARTCARD:
      s->cardOpen = true;
      s->cards++;
      s->sides = 0;
      s->cardId = Rec_Get64(payload + STARTCARD_ID - ICMD_HEADER_BYTES);
      break;
    case ICMD_ENDCARD:
      if (s->cardIdKnown && Rec_Get64(payload) != s->cardId)
        return Stream_Fail(out, at, "ICMD_ENDCARD card id %" PRIu64 " differs from ICMD_STARTCARD card id %" PRIu64,
                           Rec_Get64(payload), s->cardId);
      s->cardOpen = false;
      break;
    case ICMD_STARTSIDE: {
      int32_t side = static_cast<int32_t>(Rec_Get32(payload + STARTSIDE_SIDE - ICMD_HEADER_BYTES));
      if (s->sidesKnown ? side != static_cast<int32_t>(s->sides) : side != 0 && side != 1)
        return Stream_Fail(out, at, "ICMD_STARTSIDE for side %" PRId32 ", expected side %" PRIu32, side, s->sides);
      s->sideOpen = true;
      s->side = side;
      s->sides = static_cast<uint32_t>(side) + 1;
      s->sidesKnown = s->sideKnown = true;
      s->imagesOnSide = 0;
      break;
    }
    case ICMD_ENDSIDE: {
      int32_t side = static_cast<int32_t>(Rec_Get32(payload));
      if (s->sideKnown && side != s->side)
        return Stream_Fail(out, at, "ICMD_ENDSIDE for side %" PRId32 " while side %" PRId32 " is open", side, s->side);
      if (!s->sideKnown) s->sides = static_cast<uint32_t>(side) + 1;
      s->side = side;
      s->sidesKnown = s->sideKnown = true;
      s->sideOpen = false;
      break;
    }
    case ICMD_STARTIMAGE: {
      TStreamPanel panel;
      panel.side = s->side;
      panel.index = s->imagesOnSide++;
      panel.width = Rec_Get16(payload + STARTIMAGE_WIDTH - ICMD_HEADER_BYTES);
      panel.height = Rec_Get16(payload + STARTIMAGE_HEIGHT - ICMD_HEADER_BYTES);
      panel.panelType = payload[STARTIMAGE_PANEL - ICMD_HEADER_BYTES];
      panel.offset = at;
      if (panel.panelType > 3)
        return Stream_Fail(out, at, "ICMD_STARTIMAGE panel type %" PRIu32 " is not 0-3", panel.panelType);
      if (panel.width == 0 || panel.height == 0)
        return Stream_Fail(out, at, "ICMD_STARTIMAGE of %" PRIu32 " x %" PRIu32 " pixels is empty", panel.width,
                           panel.height);
      panel.bytesPerPixel = panel.panelType == 0 ? 3 : 1;
      if (panel.width * panel.bytesPerPixel > IMAGE_CHUNK_BYTES)
        return Stream_Fail(out, at, "ICMD_STARTIMAGE rows of %" PRIu32 " bytes do not fit an ICMD_IMAGE record",
                           panel.width * panel.bytesPerPixel);
      out->panels.push_back(panel);
      s->imageOpen = true;
      break;
    }
    case ICMD_IMAGE: {
      TStreamPanel* p = s->Image();
      uint32_t rowBytes = p->width * p->bytesPerPixel;
      if (rec.length == 0) return Stream_Fail(out, at, "ICMD_IMAGE without pixel data");
      if (rec.length % rowBytes != 0)
        return Stream_Fail(out, at, "ICMD_IMAGE payload of %" PRIu32 " bytes is not whole rows of %" PRIu32 " bytes",
                           rec.length, rowBytes);
      uint32_t rows = rec.length / rowBytes;
      if (p->rows + rows > p->height)
        return Stream_Fail(out, at, "ICMD_IMAGE brings the image to %" PRIu32 " rows, more than its height %" PRIu32,
                           p->rows + rows, p->height);
      p->pixels.insert(p->pixels.end(), payload, payload + rec.length);
      p->rows += rows;
      p->chunks++;
      break;
    }
    case ICMD_ENDIMAGE:
      if (s->Image()->rows != s->Image()->height)
        return Stream_Fail(out, at, "ICMD_ENDIMAGE after %" PRIu32 " of %" PRIu32 " rows", s->Image()->rows,
                           s->Image()->height);
      s->Image()->complete = true;
      s->imageOpen = false;
      break;
  }
  return 0;
}

// 'Stream_OpenLevel()' - Describe what a stream that stopped leaves open.
std::string Stream_OpenLevel(const TReaderState& s) {
  char text[128];
  if (s.imageOpen)
    snprintf(text, sizeof text, "image (%" PRIu32 " of %" PRIu32 " rows) of side %" PRId32, s.Image()->rows,
             s.Image()->height, s.side);
  else if (s.sideOpen)
    snprintf(text, sizeof text, "side %" PRId32, s.side);
  else if (s.cardOpen)
    snprintf(text, sizeof text, "card");
  else if (s.jobOpen)
    snprintf(text, sizeof text, "job");
  else
    snprintf(text, sizeof text, "nothing (empty stream)");
  return text;
}

// 'Stream_OpenFrom()' - For a part of a job: take as open the levels that a
// first record of type first lies in.  False when no part can begin so.
bool Stream_OpenFrom(TReaderState* s, uint16_t first) {
  switch (first) {
    case ICMD_STARTJOB: return true;
    case ICMD_STARTCARD: case ICMD_ENDJOB: break;
    case ICMD_MAGENCODE: case ICMD_STARTSIDE: case ICMD_ENDCARD:
      s->cardOpen = true;
      break;
    case ICMD_LUTTABLE: case ICMD_STARTIMAGE: case ICMD_ENDSIDE:
      s->cardOpen = s->sideOpen = true;
      break;
    default: return false;
  }
  s->jobOpen = true;
  s->jobIdKnown = false;
  if (s->cardOpen) {
    s->cards = 1;
    s->cardIdKnown = s->sidesKnown = false;
    if (first == ICMD_MAGENCODE) s->previous = ICMD_STARTCARD;
  }
  if (s->sideOpen) {
    s->sideKnown = false;
    s->side = -1;
    if (first == ICMD_LUTTABLE) s->previous = ICMD_STARTSIDE;
  }
  return true;
}

// 'Stream_Walk()' - Walk the records: header, length, order, fields; a part
// of a job begins with the levels its first record implies open.
int32_t Stream_Walk(const uint8_t* data, size_t size, bool part, TStreamCheck* out) {
  *out = TStreamCheck();
  TReaderState s;
  s.out = out;
  if (part && size >= 2 && !Stream_OpenFrom(&s, Rec_Get16(data)))
    return Stream_Fail(out, 0, "no part of a job begins with record type %u", Rec_Get16(data));
  size_t at = 0;
  while (at < size) {
    size_t left = size - at;
    if (left < ICMD_HEADER_BYTES)
      return Stream_Fail(out, at, "a record header cut short: %zu of 6 bytes", left);
    TStreamRecord rec;
    rec.offset = at;
    rec.type = Rec_Get16(data + at);
    rec.length = Rec_Get32(data + at + 2);
    const char* name = Stream_RecordName(rec.type);
    int64_t expected = Stream_PayloadLength(rec.type);
    if (!name) return Stream_Fail(out, at, "unknown record type %u", rec.type);
    if (expected >= 0 && rec.length != expected)
      return Stream_Fail(out, at, "%s payload is %" PRIu32 " bytes, expected %" PRId64, name, rec.length, expected);
    if (expected < 0 && rec.length > IMAGE_CHUNK_BYTES)
      return Stream_Fail(out, at, "ICMD_IMAGE payload is %" PRIu32 " bytes, more than %" PRIu32, rec.length,
                         IMAGE_CHUNK_BYTES);
    if (rec.length > left - ICMD_HEADER_BYTES)
      return Stream_Fail(out, at, "%s claims %" PRIu32 " payload bytes but only %zu follow", name,
                         rec.length, left - ICMD_HEADER_BYTES);
    const uint8_t* payload = data + at + ICMD_HEADER_BYTES;
    if (Stream_CheckOrder(&s, rec, out) || Stream_Apply(&s, rec, payload, out)) return 1;
    if (rec.type != ICMD_IMAGE) rec.payload.assign(payload, payload + rec.length);
    out->records.push_back(std::move(rec));
    s.previous = out->records.back().type;
    at += ICMD_HEADER_BYTES + out->records.back().length;
  }
  out->complete = s.jobEnded;
  if (!out->complete) out->openLevel = Stream_OpenLevel(s);
  return 0;
}

}  // namespace

int32_t Stream_Read(const uint8_t* data, size_t size, TStreamCheck* out) {
  return Stream_Walk(data, size, false, out);
}

int32_t Stream_ReadPart(const uint8_t* data, size_t size, TStreamCheck* out) {
  return Stream_Walk(data, size, true, out);
}

int32_t Stream_Read(const std::string& bytes, TStreamCheck* out) {
  return Stream_Read(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), out);
}

int32_t Stream_ReadPart(const std::string& bytes, TStreamCheck* out) {
  return Stream_ReadPart(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), out);
}
