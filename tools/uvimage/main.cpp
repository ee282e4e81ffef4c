// brellian-uvimage: make UV preset files from PNG pictures, show them as PNG, install and check them.
// Copyright 2026 The rastertobrellian authors.
#include <getopt.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "lib/atomic_file.h"
#include "brellian_paths.h"
#include "imaging/panel.h"
#include "lib/settings_keys.h"
#include "lib/tool_model.h"
#include "status/model_text.h"
#include "util/safe_file.h"
#include "lib/uv_image.h"

// Exit statuses.
constexpr int UV_OK = 0;
constexpr int UV_REFUSED = 1;   // the input does not fit the model or the format
constexpr int UV_USAGE = 2;     // bad arguments
constexpr int UV_FILE = 3;      // a file could not be read or written

static const char USAGE[] =
    "Usage: brellian-uvimage --model MODEL [--fit MODE] to-raw PICTURE.png OUTPUT\n"
    "   or: brellian-uvimage --model MODEL to-png UVFILE PICTURE.png\n"
    "   or: brellian-uvimage --model MODEL [--fit MODE] [--serial SERIAL --preset N] install PICTURE.png NAME\n"
    "   or: brellian-uvimage --model MODEL check UVFILE\n"
    "\n"
    "A UV preset file is the UV panel of one card side as the filter sends it: the\n"
    "model's panel size W x H ({panel-sizes}),\n"
    "one byte per dot, rows top to bottom, no header; 255 applies UV, 0 none.  A picture becomes a UV file as the filter makes a UV panel from a page:\n"
    "each pixel gives 255 minus its luminance (0.299 R + 0.587 G + 0.114 B, cut to a\n"
    "whole number), so black prints UV and white none; transparency counts as white.\n"
    "The picture's top-left pixel is the panel's first dot, before any rotation the\n"
    "job asks for.\n"
    "\n"
    "Commands:\n"
    "  to-raw PICTURE OUTPUT  write the UV file of PICTURE to OUTPUT (\"-\": standard output)\n"
    "  to-png UVFILE PICTURE  write the UV file as a grey picture: 255 minus each byte,\n"
    "                         so UV dots show black\n"
    "  install PICTURE NAME   write the UV file of PICTURE as " BRELLIAN_CONF_DIR "/uv/NAME,\n"
    "                         the name a settings file's uv.N refers to\n"
    "  check UVFILE           say whether the filter can use UVFILE for the model: it\n"
    "                         must be exactly the model's W x H bytes\n"
    "\n"
    "Options (before the command):\n"
    "  -m, --model MODEL   {ids-or} or a model's display name (required)\n"
    "      --fit MODE      a picture of another size: exact (default) refuses it; fit\n"
    "                      scales it keeping its aspect ratio, centred, the margins without\n"
    "                      UV; stretch scales it to the panel (both nearest neighbour)\n"
    "  -s, --serial SERIAL with install: also set uv.N = NAME in the printer's settings\n"
    "  -p, --preset N      file (brellian-settings names the same file), N 1-5\n"
    "  -h, --help          show this text\n"
    "\n"
    "Files: " BRELLIAN_CONF_DIR "/uv/ holds the installed UV files; every file is\n"
    "written to a temporary file, flushed and renamed into place.\n"
    "\n"
    "Examples:\n"
    "  brellian-uvimage --model {first-id} --fit fit install logo.png logo.uv\n"
    "\n"
    "  brellian-uvimage --model {first-id} --serial AB12 --preset 1 install logo.png logo.uv\n"
    "\n"
    "  brellian-uvimage --model {default-id} to-png " BRELLIAN_CONF_DIR "/uv/logo.uv logo-check.png\n"
    "\n"
    "Exit status: 0 done, 1 the picture or file does not fit the model, 2 bad\n"
    "arguments, 3 a file could not be read or written.\n";

struct TUvArgs {
  uint32_t model = 0;
  TUvFit fit = UVFIT_EXACT;
  std::string serial;
  int preset = 0;
};

// 'Uv_Fail()' - Print "brellian-uvimage: message" and return status.
static int Uv_Fail(int status, const std::string& message) {
  fprintf(stderr, "brellian-uvimage: %s\n", message.c_str());
  return status;
}

// 'Uv_MakeRaw()' - The UV file bytes of the picture at path.
static int Uv_MakeRaw(const TUvArgs& a, const std::string& path, std::string* raw) {
  TPngImage rgb;
  std::string error;
  if (!Png_ReadRGB(path, &rgb, &error)) return Uv_Fail(UV_FILE, path + ": " + error);
  TPanelGeometry g = Panel_ModelGeometry(a.model);
  std::vector<uint8_t> panel;
  if (!Uv_FromImage(rgb, g.width, g.height, a.fit, &panel, &error)) return Uv_Fail(UV_REFUSED, path + ": " + error);
  raw->assign(panel.begin(), panel.end());
  return UV_OK;
}

// 'Uv_ReadRaw()' - A UV file of exactly the model's panel.  The filter
// refuses a shorter file and reads the first W x H bytes of a longer one,
// which are then rows of another width: a file of another size is always
// the wrong file for the model, and is refused.
static int Uv_ReadRaw(const TUvArgs& a, const std::string& path, std::string* raw) {
  TPanelGeometry g = Panel_ModelGeometry(a.model);
  size_t need = static_cast<size_t>(g.width) * g.height;
  if (File_ReadCapped(path.c_str(), 64u * 1024u * 1024u, raw) != 0)
    return Uv_Fail(UV_FILE, "cannot read " + path + ": " + strerror(errno));
  if (raw->size() == need) return UV_OK;
  std::string other;
  for (const auto& entry : g_panelGeometry) {
    if (static_cast<size_t>(entry.second.width) * entry.second.height == raw->size() && other.empty())
      other = " (the size of the " + std::to_string(entry.second.width) + " x " + std::to_string(entry.second.height) +
              " panel of model " + std::to_string(entry.first) + ")";
  }
  return Uv_Fail(UV_REFUSED, path + ": " + std::to_string(raw->size()) + " bytes" + other + ", but model " +
                                 std::to_string(a.model) + " takes exactly " + std::to_string(g.width) + " x " +
                                 std::to_string(g.height) + " = " + std::to_string(need) +
                                 (raw->size() < need ? " (the filter would print no UV)"
                                                     : " (the filter would print its first bytes as a garbled UV "
                                                       "image)"));
}

// 'Uv_Install()' - Write the UV file as BRELLIAN_CONF_DIR/uv/name; with a
// serial and a preset, record the name in the printer's settings too.
static int Uv_Install(const TUvArgs& a, const std::string& picture, const std::string& name) {
  if (!File_IsSafeName(name.c_str()))
    return Uv_Fail(UV_USAGE, "\"" + name + "\" is not a plain file name (no \"/\", no leading \".\")");
  TBrellianSettings settings;
  std::string error;
  const TSettingsKey key{SETKEY_UV_NAME, 0, 0, a.preset - 1};
  if (!a.serial.empty()) {
    int rc = Tool_SetPresetName(a.serial, key, name, &settings, &error);
    if (rc != 0) return Uv_Fail(rc == 1 ? UV_REFUSED : UV_FILE, error);
  }
  std::string raw;
  if (int rc = Uv_MakeRaw(a, picture, &raw)) return rc;
  mkdir(BRELLIAN_CONF_DIR, 0777);
  mkdir(BRELLIAN_CONF_DIR "/uv", 0777);
  std::string path = std::string(BRELLIAN_CONF_DIR "/uv/") + name;
  if (!Tool_ReplaceFile(path, raw, 0644, &error)) return Uv_Fail(UV_FILE, error);
  printf("installed %s\n", path.c_str());
  if (a.serial.empty()) return UV_OK;
  return Tool_SavePrinterSettings(settings, key, &error) ? UV_OK : Uv_Fail(UV_FILE, error);
}

// 'Uv_Command()' - Run one command with its two (or one) operands.
static int Uv_Command(const TUvArgs& a, const std::string& cmd, int argc, char** argv) {
  int want = cmd == "check" ? 1 : 2;
  if (argc != want) return Uv_Fail(UV_USAGE, cmd + " takes " + (want == 1 ? "one operand" : "two operands"));
  std::string error, raw;
  TPanelGeometry g = Panel_ModelGeometry(a.model);
  size_t need = static_cast<size_t>(g.width) * g.height;
  if (cmd == "to-raw") {
    if (int rc = Uv_MakeRaw(a, argv[0], &raw)) return rc;
    if (strcmp(argv[1], "-") == 0)
      return fwrite(raw.data(), 1, raw.size(), stdout) == raw.size() && fflush(stdout) == 0
                 ? UV_OK
                 : Uv_Fail(UV_FILE, "cannot write standard output");
    return Tool_ReplaceFile(argv[1], raw, 0644, &error) ? UV_OK : Uv_Fail(UV_FILE, error);
  }
  if (cmd == "install") return Uv_Install(a, argv[0], argv[1]);
  if (int rc = Uv_ReadRaw(a, argv[0], &raw)) return rc;
  if (cmd == "check") {
    printf("%s: usable for model %u (%u x %u)\n", argv[0], a.model, g.width, g.height);
    return UV_OK;
  }
  std::vector<uint8_t> gray = Uv_ToGray(reinterpret_cast<const uint8_t*>(raw.data()), need);
  if (!Png_WriteGray(argv[1], g.width, g.height, gray.data()))
    return Uv_Fail(UV_FILE, std::string("cannot write ") + argv[1]);
  return UV_OK;
}

// 'main()' - Options, then the command; the exit status says how it went.
int main(int argc, char** argv) {
  Tool_Init();
  static const struct option kOptions[] = {
      {"model", required_argument, nullptr, 'm'}, {"fit", required_argument, nullptr, 'F'},
      {"serial", required_argument, nullptr, 's'}, {"preset", required_argument, nullptr, 'p'},
      {"help", no_argument, nullptr, 'h'},         {nullptr, 0, nullptr, 0},
  };
  TUvArgs a;
  std::string model, error;
  int c;
  while ((c = getopt_long(argc, argv, "+m:s:p:h", kOptions, nullptr)) != -1) {
    switch (c) {
      case 'm': model = optarg; break;
      case 'F':
        if (!Uv_ParseFit(optarg, &a.fit)) return Uv_Fail(UV_USAGE, std::string("unknown --fit \"") + optarg + "\"");
        break;
      case 's': a.serial = optarg; break;
      case 'p':
        if (!Tool_ParsePreset(optarg, SETTINGS_NAMES, &a.preset, &error)) return Uv_Fail(UV_USAGE, error);
        break;
      case 'h': fputs(Model_Expand(USAGE).c_str(), stdout); return UV_OK;
      default: fputs(USAGE, stderr); return UV_USAGE;
    }
  }
  if (optind >= argc) return Uv_Fail(UV_USAGE, "no command given (--help shows the usage)");
  std::string cmd = argv[optind];
  if (cmd != "to-raw" && cmd != "to-png" && cmd != "install" && cmd != "check")
    return Uv_Fail(UV_USAGE, "unknown command \"" + cmd + "\"");
  if (model.empty() || !Tool_ParseModel(model, &a.model))
    return Uv_Fail(UV_USAGE, Model_Expand("--model must be {ids-or}"));
  if (a.serial.empty() != (a.preset == 0) || (!a.serial.empty() && cmd != "install"))
    return Uv_Fail(UV_USAGE, "--serial and --preset go together, with install");
  return Uv_Command(a, cmd, argc - optind - 1, argv + optind + 1);
}
