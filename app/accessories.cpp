// Installed accessories of one printer: defaults, the per-printer file and its text form.
// Copyright 2026 The rastertobrellian authors.
#include "app/accessories.h"

#include <unistd.h>

#include <cstring>

const char* const g_ribbonTypes[5] = {"YMCK", "YMCKK", "YMCK-PO", "YMCK-UV", "Black"};
const char* const g_ribbonLabels[5] = {"YMCK", "YMCKK", "YMCK + Overlay", "YMCK + UV", "Black"};

// 'Acc_SerialFromUri()' - Find "serial=" after the "?".
std::string Acc_SerialFromUri(const char* uri) {
  if (!uri) return "";
  const char* q = strchr(uri, '?');
  if (!q) return "";
  for (const char* p = q + 1; *p;) {
    const char* end = strchr(p, '&');
    size_t len = end ? static_cast<size_t>(end - p) : strlen(p);
    if (len > 7 && strncmp(p, "serial=", 7) == 0) {
      std::string s(p + 7, len - 7);
      return Acc_IsSafeSerial(s) ? s : "";
    }
    if (!end) break;
    p = end + 1;
  }
  return "";
}

// 'Acc_IsSafeSerial()' - Letters, digits, "-" and "_" only.
bool Acc_IsSafeSerial(const std::string& serial) {
  if (serial.empty() || serial.size() > 64) return false;
  for (char c : serial)
    if (!isalnum(static_cast<unsigned char>(c)) && c != '-' && c != '_') return false;
  return true;
}

// 'Acc_Defaults()' - What a new printer starts with.
TAccessories Acc_Defaults(const TAppModel& model, const char* deviceUri) {
  TAccessories acc;
  acc.flipTurn = model.twoSided;
  acc.serial = Acc_SerialFromUri(deviceUri);
  return acc;
}

// 'Acc_Parse()' - Read the text form.
void Acc_Parse(const std::string& text, TAccessories* acc) {
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(pos, end - pos);
    pos = end + 1;
    size_t eq = line.find('=');
    if (eq == std::string::npos) continue;
    std::string key = line.substr(0, eq), value = line.substr(eq + 1);
    bool on = value == "installed";
    if (key == "ribbon-type") {
      for (const char* r : g_ribbonTypes)
        if (value == r) acc->ribbonType = r;
    } else if (key == "flip-turn") {
      acc->flipTurn = on;
    } else if (key == "laminator") {
      acc->laminator = on;
    } else if (key == "mag-encoder") {
      acc->magEncoder = on;
    } else if (key == "ic-encoder") {
      acc->icEncoder = on;
    } else if (key == "ic-encoder-contactless") {
      acc->icEncoderContactless = on;
    } else if (key == "serial") {
      acc->serial = Acc_IsSafeSerial(value) ? value : "";
    }
  }
}

// 'Acc_Format()' - Write the text form.
std::string Acc_Format(const TAccessories& acc) {
  auto inst = [](bool on) { return on ? "installed\n" : "not-installed\n"; };
  return "ribbon-type=" + acc.ribbonType + "\nflip-turn=" + inst(acc.flipTurn) + "laminator=" + inst(acc.laminator) +
         "mag-encoder=" + inst(acc.magEncoder) + "ic-encoder=" + inst(acc.icEncoder) +
         "ic-encoder-contactless=" + inst(acc.icEncoderContactless) + "serial=" + acc.serial + "\n";
}

// 'Acc_Load()' - Read the printer's file, if any.
TAccessories Acc_Load(pappl_printer_t* printer, const TAppModel& model) {
  TAccessories acc = Acc_Defaults(model, papplPrinterGetDeviceURI(printer));
  char fname[1024];
  int fd = papplPrinterOpenFile(printer, fname, sizeof(fname), nullptr, "accessories", "conf", "r");
  if (fd < 0) return acc;
  std::string text;
  char buf[1024];
  ssize_t n;
  while ((n = read(fd, buf, sizeof(buf))) > 0 && text.size() < 16384) text.append(buf, static_cast<size_t>(n));
  close(fd);
  Acc_Parse(text, &acc);
  if (!model.twoSided) acc.flipTurn = false;
  return acc;
}

// 'Acc_Save()' - Write the printer's file.
bool Acc_Save(pappl_printer_t* printer, const TAccessories& acc) {
  char fname[1024];
  int fd = papplPrinterOpenFile(printer, fname, sizeof(fname), nullptr, "accessories", "conf", "w");
  if (fd < 0) return false;
  std::string text = Acc_Format(acc);
  bool ok = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  return close(fd) == 0 && ok;
}
