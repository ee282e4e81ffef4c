// brellian-rasterwrite: write a CUPS raster stream from PNG files or generated pages.
// Copyright 2026 The rastertobrellian authors.
#include <getopt.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "lib/png_io.h"
#include "lib/raster_content.h"
#include "lib/raster_writer.h"
#include "lib/tool_file.h"

static const char USAGE[] =
    "Usage: brellian-rasterwrite [options] PAGE...\n"
    "Write a CUPS raster stream with one page per PAGE argument:\n"
    "  FILE.png             the image at its own size (any PNG, read as 8-bit RGB)\n"
    "  solid:R,G,B          a page of one colour, --width x --height dots\n"
    "  pattern              colour bars over a grey ramp, --width x --height dots\n"
    "Options:\n"
    "  -o, --output FILE    write to FILE instead of standard output\n"
    "  -W, --width N        width of generated pages in dots (default 1036)\n"
    "  -H, --height N       height of generated pages in dots (default 664)\n"
    "  -r, --dpi N          HWResolution of every page (default 300)\n"
    "      --color-space N  cupsColorSpace written in the headers (default 1, RGB)\n"
    "      --bits N         cupsBitsPerColor written in the headers (default 8)\n"
    "      --bits-per-pixel N  cupsBitsPerPixel written in the headers (default 24)\n"
    "      --bytes-per-line N  cupsBytesPerLine; each row's data is cut or padded\n"
    "                       with zero bytes to this length (default 3 x width)\n"
    "      --claim-height N cupsHeight written in the headers, whatever the rows\n"
    "      --duplex         set Duplex in every header\n"
    "      --tumble         set Tumble in every header\n"
    "      --copies N       NumCopies (default 1)\n"
    "  -c, --compressed     write a compressed stream (default uncompressed)\n"
    "      --pwg            write a PWG raster stream (sRGB, as IPP clients send it)\n"
    "      --apple          write an Apple raster (URF) stream (sRGB)\n"
    "      --page-bytes N   keep only the first N bytes of each page's pixel data\n"
    "      --truncate N     stop the whole stream after N bytes\n"
    "  -h, --help           show this text\n"
    "Exit status: 0 written, 1 a page or the output failed, 2 bad arguments.\n";

// Header values and stream settings from the command line.
struct TWriteOptions {
  std::string output;
  uint32_t width = 1036, height = 664, dpi = 300;
  long colorSpace = -1, bits = -1, bitsPerPixel = -1, bytesPerLine = -1, claimHeight = -1;
  long copies = -1, pageBytes = -1, truncateAt = -1;
  bool duplex = false, tumble = false, compressed = false, pwg = false, apple = false;
};

enum {
  OPT_COLORSPACE = 256, OPT_BITS, OPT_BPP, OPT_BPL, OPT_CLAIM, OPT_DUPLEX, OPT_TUMBLE,
  OPT_COPIES, OPT_PAGEBYTES, OPT_TRUNCATE, OPT_PWG, OPT_APPLE
};

static const struct option LONG_OPTIONS[] = {
    {"output", required_argument, nullptr, 'o'},      {"width", required_argument, nullptr, 'W'},
    {"height", required_argument, nullptr, 'H'},      {"dpi", required_argument, nullptr, 'r'},
    {"color-space", required_argument, nullptr, OPT_COLORSPACE},
    {"bits", required_argument, nullptr, OPT_BITS},   {"bits-per-pixel", required_argument, nullptr, OPT_BPP},
    {"bytes-per-line", required_argument, nullptr, OPT_BPL},
    {"claim-height", required_argument, nullptr, OPT_CLAIM},
    {"duplex", no_argument, nullptr, OPT_DUPLEX},     {"tumble", no_argument, nullptr, OPT_TUMBLE},
    {"copies", required_argument, nullptr, OPT_COPIES},
    {"compressed", no_argument, nullptr, 'c'},        {"pwg", no_argument, nullptr, OPT_PWG},          {"apple", no_argument, nullptr, OPT_APPLE},        {"page-bytes", required_argument, nullptr, OPT_PAGEBYTES},
    {"truncate", required_argument, nullptr, OPT_TRUNCATE},
    {"help", no_argument, nullptr, 'h'},              {nullptr, 0, nullptr, 0},
};

// 'Write_Number()' - Parse a whole decimal number of at most 4294967295.
static bool Write_Number(const char* text, long* out) {
  if (!text || !*text) return false;
  errno = 0;
  char* end = nullptr;
  unsigned long long v = strtoull(text, &end, 10);
  if (errno || *end || text[0] == '-' || v > 4294967295ull) return false;
  *out = static_cast<long>(v);
  return true;
}

// 'Write_ParseOptions()' - Fill options from argv; returns the index of the
// first PAGE argument, -1 after --help, -2 on a bad option.
static int Write_ParseOptions(int argc, char** argv, TWriteOptions* o) {
  int c;
  while ((c = getopt_long(argc, argv, "o:W:H:r:ch", LONG_OPTIONS, nullptr)) != -1) {
    long v = 0;
    bool numeric = c != 'o' && c != 'c' && c != 'h' && c != OPT_DUPLEX && c != OPT_TUMBLE && c != OPT_PWG && c != OPT_APPLE;
    if (c == '?') return -2;
    if (numeric && !Write_Number(optarg, &v)) {
      fprintf(stderr, "brellian-rasterwrite: not a number: %s\n", optarg);
      return -2;
    }
    switch (c) {
      case 'o': o->output = optarg; break;
      case 'W': o->width = static_cast<uint32_t>(v); break;
      case 'H': o->height = static_cast<uint32_t>(v); break;
      case 'r': o->dpi = static_cast<uint32_t>(v); break;
      case OPT_COLORSPACE: o->colorSpace = v; break;
      case OPT_BITS: o->bits = v; break;
      case OPT_BPP: o->bitsPerPixel = v; break;
      case OPT_BPL: o->bytesPerLine = v; break;
      case OPT_CLAIM: o->claimHeight = v; break;
      case OPT_DUPLEX: o->duplex = true; break;
      case OPT_TUMBLE: o->tumble = true; break;
      case OPT_COPIES: o->copies = v; break;
      case 'c': o->compressed = true; break;
      case OPT_PWG: o->pwg = true; break;
      case OPT_APPLE: o->apple = true; break;
      case OPT_PAGEBYTES: o->pageBytes = v; break;
      case OPT_TRUNCATE: o->truncateAt = v; break;
      case 'h': fputs(USAGE, stdout); return -1;
      default: return -2;
    }
  }
  return optind;
}

// 'Write_MakePage()' - The page named by one PAGE argument; false with a
// message on standard error when it cannot be made.
static bool Write_MakePage(const char* arg, const TWriteOptions& o, TRasterPage* page) {
  unsigned r, g, b;
  char tail;
  if (strcmp(arg, "pattern") == 0) {
    *page = Raster_MakeTestPattern(o.width, o.height, o.dpi);
    return true;
  }
  if (strncmp(arg, "solid:", 6) == 0) {
    if (sscanf(arg + 6, "%u,%u,%u%c", &r, &g, &b, &tail) != 3 || r > 255 || g > 255 || b > 255) {
      fprintf(stderr, "brellian-rasterwrite: bad colour (want solid:R,G,B with 0-255): %s\n", arg);
      return false;
    }
    *page = Raster_MakeRGBPage(o.width, o.height, o.dpi, static_cast<uint8_t>(r),
                               static_cast<uint8_t>(g), static_cast<uint8_t>(b));
    return true;
  }
  TPngImage image;
  std::string error;
  if (!Png_ReadRGB(arg, &image, &error)) {
    fprintf(stderr, "brellian-rasterwrite: %s: %s\n", arg, error.c_str());
    return false;
  }
  *page = Raster_PageFromImage(image, o.dpi);
  return true;
}

// 'Write_ApplyHeader()' - Put the header values of the options into a page;
// a new line length re-lays each row (cut or zero-padded).
static void Write_ApplyHeader(const TWriteOptions& o, TRasterPage* page) {
  cups_page_header2_t& h = page->header;
  if (o.colorSpace >= 0) h.cupsColorSpace = static_cast<cups_cspace_t>(o.colorSpace);
  if (o.bits >= 0) h.cupsBitsPerColor = static_cast<unsigned>(o.bits);
  if (o.bitsPerPixel >= 0) h.cupsBitsPerPixel = static_cast<unsigned>(o.bitsPerPixel);
  if (o.bytesPerLine >= 0 && static_cast<unsigned>(o.bytesPerLine) != h.cupsBytesPerLine) {
    size_t oldLine = h.cupsBytesPerLine, newLine = static_cast<size_t>(o.bytesPerLine);
    std::vector<uint8_t> rows(newLine * h.cupsHeight, 0);
    for (size_t y = 0; y < h.cupsHeight; ++y)
      memcpy(rows.data() + y * newLine, page->data.data() + y * oldLine, std::min(oldLine, newLine));
    page->data.swap(rows);
    h.cupsBytesPerLine = static_cast<unsigned>(newLine);
  }
  if (o.claimHeight >= 0) h.cupsHeight = static_cast<unsigned>(o.claimHeight);
  if (o.copies >= 0) h.NumCopies = static_cast<unsigned>(o.copies);
  h.Duplex = o.duplex ? CUPS_TRUE : CUPS_FALSE;
  h.Tumble = o.tumble ? CUPS_TRUE : CUPS_FALSE;
  if (o.pageBytes >= 0 && static_cast<size_t>(o.pageBytes) < page->data.size())
    page->data.resize(static_cast<size_t>(o.pageBytes));
}

int main(int argc, char** argv) {
  TWriteOptions o;
  int first = Write_ParseOptions(argc, argv, &o);
  if (first == -1) return 0;
  if (first < 0 || first >= argc) {
    if (first >= argc) fputs("brellian-rasterwrite: no PAGE given\n", stderr);
    fputs(USAGE, stderr);
    return 2;
  }
  std::vector<TRasterPage> pages;
  for (int i = first; i < argc; ++i) {
    TRasterPage page;
    if (!Write_MakePage(argv[i], o, &page)) return 1;
    Write_ApplyHeader(o, &page);
    pages.push_back(std::move(page));
  }
  std::string bytes;
  size_t cut = o.truncateAt >= 0 ? static_cast<size_t>(o.truncateAt) : SIZE_MAX;
  bool written = o.pwg || o.apple ? Raster_WritePwgStream(pages, &bytes, o.apple)
                                  : Raster_WriteStream(pages, o.compressed, &bytes, cut);
  if (!written) {
    fputs("brellian-rasterwrite: libcups refused a page header or its pixels\n", stderr);
    return 1;
  }
  bool ok = o.output.empty() ? Tool_WriteAll(stdout, bytes) : Tool_WriteFile(o.output, bytes);
  if (!ok) {
    fprintf(stderr, "brellian-rasterwrite: cannot write %s\n",
            o.output.empty() ? "standard output" : o.output.c_str());
    return 1;
  }
  return 0;
}
