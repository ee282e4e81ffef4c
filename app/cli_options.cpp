// Job options of the "submit" sub-command and the option list of "options".
// Copyright 2026 The rastertobrellian authors.
#include "app/cli_options.h"

#include <strings.h>

#include <cstring>
#include <string>

#include "app/vendor_table.h"

namespace {

// 'Cli_Value()' - Value i of an attribute as text.
std::string Cli_Value(ipp_attribute_t* attr, int i) {
  if (!attr) return "";
  switch (ippGetValueTag(attr)) {
    case IPP_TAG_INTEGER: return std::to_string(ippGetInteger(attr, i));
    case IPP_TAG_BOOLEAN: return ippGetBoolean(attr, i) ? "true" : "false";
    case IPP_TAG_ENUM: {
      const char* s = ippEnumString(ippGetName(attr), ippGetInteger(attr, i));
      return s ? s : std::to_string(ippGetInteger(attr, i));
    }
    case IPP_TAG_RESOLUTION: {
      ipp_res_t units;
      int y = 0, x = ippGetResolution(attr, i, &y, &units);
      return x == y ? std::to_string(x) + "dpi" : std::to_string(x) + "x" + std::to_string(y) + "dpi";
    }
    default: {
      const char* s = ippGetString(attr, i, nullptr);
      return s ? s : "";
    }
  }
}

// 'Cli_PrintChoices()' - One line per supported value of NAME.
void Cli_PrintChoices(ipp_t* attrs, const std::string& name, FILE* out) {
  ipp_attribute_t* sup = ippFindAttribute(attrs, (name + "-supported").c_str(), IPP_TAG_ZERO);
  ipp_attribute_t* def = ippFindAttribute(attrs, (name + "-default").c_str(), IPP_TAG_ZERO);
  if (!sup && !def) return;
  std::string defValue = Cli_Value(def, 0);
  if (sup && ippGetValueTag(sup) == IPP_TAG_BOOLEAN) {
    fprintf(out, "  -o %s=true|false (default: %s)\n", name.c_str(), defValue.c_str());
    return;
  }
  if (!sup || ippGetValueTag(sup) == IPP_TAG_RANGE) {
    fprintf(out, "  -o %s='TEXT' (default: '%s')\n", name.c_str(), defValue.c_str());
    return;
  }
  for (int i = 0; i < ippGetCount(sup); ++i) {
    std::string v = Cli_Value(sup, i);
    fprintf(out, "  -o %s=%s%s\n", name.c_str(), v.c_str(), v == defValue ? " (default)" : "");
  }
}

}  // namespace

// 'Cli_DocumentFormat()' - Magic bytes first, then the extension.
const char* Cli_DocumentFormat(const char* file) {
  unsigned char head[8] = {};
  if (FILE* f = fopen(file, "rb")) {
    size_t n = fread(head, 1, sizeof(head), f);
    fclose(f);
    if (n >= 4 && !memcmp(head, "RaS2", 4)) return "image/pwg-raster";
    if (n >= 7 && !memcmp(head, "UNIRAST", 7)) return "image/urf";
    if (n >= 3 && head[0] == 0xFF && head[1] == 0xD8 && head[2] == 0xFF) return "image/jpeg";
    if (n >= 8 && !memcmp(head, "\x89PNG\r\n\x1a\n", 8)) return "image/png";
    if (n >= 5 && !memcmp(head, "%PDF-", 5)) return "application/pdf";
    if (n >= 2 && !memcmp(head, "%!", 2)) return "application/postscript";
  }
  const char* dot = strrchr(file, '.');
  if (dot && !strcasecmp(dot, ".brj")) return "application/vnd.brellian-job";
  return "application/octet-stream";
}

// 'Cli_AddJobOptions()' - Card options by their table, the rest by CUPS.
void Cli_AddJobOptions(ipp_t* request, int numOptions, cups_option_t* options) {
  for (int i = 0; i < numOptions; ++i) {
    const TVendorAttr* a = Vendor_Find(options[i].name);
    if (!a) {
      cupsEncodeOption(request, IPP_TAG_JOB, options[i].name, options[i].value);
    } else if (a->kind == VENDOR_BOOLEAN) {
      const char* v = options[i].value;
      bool on = !strcasecmp(v, "true") || !strcasecmp(v, "yes") || !strcasecmp(v, "on") || !strcmp(v, "1");
      ippAddBoolean(request, IPP_TAG_JOB, options[i].name, on ? 1 : 0);
    } else {
      ippAddString(request, IPP_TAG_JOB, a->kind == VENDOR_KEYWORD ? IPP_TAG_KEYWORD : IPP_TAG_TEXT, options[i].name,
                   nullptr, options[i].value);
    }
  }
}

// 'Cli_PrintOptions()' - Standard options, then the card options.
void Cli_PrintOptions(ipp_t* attrs, FILE* out) {
  fputs("Print job options:\n", out);
  if (ipp_attribute_t* copies = ippFindAttribute(attrs, "copies-supported", IPP_TAG_RANGE)) {
    int upper = 1;
    ippGetRange(copies, 0, &upper);
    fprintf(out, "  -n COPIES (1 to %d)\n", upper);
  }
  for (const char* name : {"media", "media-source", "media-type", "orientation-requested", "print-color-mode",
                           "print-content-optimize", "print-quality", "printer-resolution", "sides"})
    Cli_PrintChoices(attrs, name, out);
  fputs("\nCard options:\n", out);
  for (const TVendorAttr& a : Vendor_Table()) Cli_PrintChoices(attrs, a.name, out);
}
