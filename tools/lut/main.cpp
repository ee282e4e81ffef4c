// brellian-lut: check colour lookup table files and write identity or gamma tables.
// Copyright 2026 The rastertobrellian authors.
#include <getopt.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "lib/atomic_file.h"
#include "brellian_paths.h"
#include "options/lut_format.h"
#include "lib/tool_file.h"
#include "lib/tool_model.h"
#include "util/safe_file.h"

// Exit statuses.
constexpr int LUT_OK = 0;
constexpr int LUT_BAD = 1;     // a table is not usable
constexpr int LUT_USAGE = 2;   // bad arguments
constexpr int LUT_FILE = 3;    // a file could not be read or written

static const char USAGE[] =
    "Usage: brellian-lut check FILE.csv...\n"
    "   or: brellian-lut [-o FILE | --install NAME [--serial SERIAL --preset N]] identity\n"
    "   or: brellian-lut [-o FILE | --install NAME [--serial SERIAL --preset N]] gamma G | R,G,B\n"
    "\n"
    "A colour lookup table file (" BRELLIAN_LUT_DIR "/NAME.csv, chosen by the job\n"
    "options LUT1-LUT3 through the names lut.1-lut.3 of the printer's settings) holds\n"
    "comment lines (\"#\" first) and blank lines anywhere, a header line\n"
    "\"level,red,green,blue\" and 256 rows \"i,r,g,b\" with i = 0 to 255 in order and\n"
    "every value 0 to 255.\n"
    "\n"
    "Commands:\n"
    "  check FILE...   read each FILE with the filter's own reader; print \"FILE: OK\" or\n"
    "                  the first fault, \"FILE: line N: reason\" (\"FILE: reason\" when the\n"
    "                  fault is the file as a whole)\n"
    "  identity        write the table that changes nothing (entry i holds i)\n"
    "  gamma G         write entry i = 255 x (i / 255) ^ (1 / G), rounded half up, in\n"
    "                  all three colours (G above 1 lightens the mid-tones, below 1\n"
    "                  darkens them); R,G,B gives each colour its own value (0.1 to 10)\n"
    "\n"
    "Options (before the command):\n"
    "  -o, --output FILE   write the table to FILE instead of standard output\n"
    "      --install NAME  write it as " BRELLIAN_LUT_DIR "/NAME.csv\n"
    "  -s, --serial SERIAL with --install: also set lut.N = NAME in the printer's settings\n"
    "  -p, --preset N      file (brellian-settings names the same file), N 1-3\n"
    "  -h, --help          show this text\n"
    "\n"
    "Files are written to a temporary file, flushed and renamed into place.\n"
    "\n"
    "Examples:\n"
    "  brellian-lut gamma 1.2 > lighter.csv   (then edit it and check it)\n"
    "\n"
    "  brellian-lut check lighter.csv\n"
    "\n"
    "  brellian-lut --install warm --serial AB12 --preset 1 gamma 1.1,1,0.9\n"
    "\n"
    "Exit status: 0 done (every FILE usable), 1 a FILE is not usable, 2 bad arguments,\n"
    "3 a file could not be read or written.\n";

// 'Lut_ToolFail()' - Print "brellian-lut: message" and return status.
static int Lut_ToolFail(int status, const std::string& message) {
  fprintf(stderr, "brellian-lut: %s\n", message.c_str());
  return status;
}

// 'Lut_Check()' - Check each file; LUT_BAD when one is not usable.
static int Lut_Check(int argc, char** argv) {
  if (argc == 0) return Lut_ToolFail(LUT_USAGE, "check takes at least one FILE");
  int status = LUT_OK;
  for (int i = 0; i < argc; ++i) {
    uint8_t table[3][LUT_ENTRIES];
    TLutError error{0, ""};
    int32_t rc = Lut_Load(argv[i], table, &error);
    if (rc == -1) {
      fprintf(stderr, "brellian-lut: cannot read %s: %s\n", argv[i], strerror(errno));
      status = LUT_FILE;
    } else if (rc != 0) {
      if (error.line > 0) printf("%s: line %d: %s\n", argv[i], static_cast<int>(error.line), error.reason);
      else printf("%s: %s\n", argv[i], error.reason);
      if (status == LUT_OK) status = LUT_BAD;
    } else {
      printf("%s: OK\n", argv[i]);
    }
  }
  return status;
}

// 'Lut_ParseGammas()' - "G" or "R,G,B" into three values.
static bool Lut_ParseGammas(const char* text, double gamma[3]) {
  const char* p = text;
  int n = 0;
  while (n < 3) {
    char* end;
    errno = 0;
    gamma[n++] = strtod(p, &end);
    if (end == p || errno != 0) return false;
    p = end;
    if (*p != ',') break;
    ++p;
  }
  if (*p != '\0' || (n != 1 && n != 3)) return false;
  if (n == 1) gamma[1] = gamma[2] = gamma[0];
  return true;
}

// 'main()' - Options, then the command; the exit status says how it went.
int main(int argc, char** argv) {
  Tool_Init();
  static const struct option kOptions[] = {
      {"output", required_argument, nullptr, 'o'}, {"install", required_argument, nullptr, 'I'},
      {"serial", required_argument, nullptr, 's'}, {"preset", required_argument, nullptr, 'p'},
      {"help", no_argument, nullptr, 'h'},         {nullptr, 0, nullptr, 0},
  };
  std::string output, install, serial, error;
  int preset = 0;
  int c;
  while ((c = getopt_long(argc, argv, "+o:s:p:h", kOptions, nullptr)) != -1) {
    switch (c) {
      case 'o': output = optarg; break;
      case 'I': install = optarg; break;
      case 's': serial = optarg; break;
      case 'p':
        // The job options name LUT1-LUT3: the filter reads lut.1-lut.3 only.
        if (!Tool_ParsePreset(optarg, 3, &preset, &error)) return Lut_ToolFail(LUT_USAGE, error);
        break;
      case 'h': fputs(USAGE, stdout); return LUT_OK;
      default: fputs(USAGE, stderr); return LUT_USAGE;
    }
  }
  if (optind >= argc) return Lut_ToolFail(LUT_USAGE, "no command given (--help shows the usage)");
  std::string cmd = argv[optind];
  int nargs = argc - optind - 1;
  char** args = argv + optind + 1;
  if (serial.empty() != (preset == 0) || (!serial.empty() && (install.empty() || cmd == "check")))
    return Lut_ToolFail(LUT_USAGE, "--serial and --preset go together, with --install");
  if (cmd == "check") return Lut_Check(nargs, args);
  uint8_t table[3][LUT_ENTRIES];
  std::string comment;
  if (cmd == "identity" && nargs == 0) {
    Lut_MakeIdentity(table);
    comment = "Identity table: entry i holds i.";
  } else if (cmd == "gamma" && nargs == 1) {
    double gamma[3];
    if (!Lut_ParseGammas(args[0], gamma) || !Lut_MakeGamma(gamma, table))
      return Lut_ToolFail(LUT_USAGE, std::string("gamma \"") + args[0] + "\" is not G or R,G,B with values 0.1 to 10");
    comment = std::string("Gamma table ") + args[0] + ": entry i = 255 x (i / 255) ^ (1 / gamma).";
  } else {
    return Lut_ToolFail(LUT_USAGE, "unknown command or wrong operands: \"" + cmd + "\"");
  }
  if (!output.empty() && !install.empty()) return Lut_ToolFail(LUT_USAGE, "give -o or --install, not both");
  std::string text = Lut_Format(table, comment.c_str());
  TBrellianSettings settings;
  const TSettingsKey key{SETKEY_LUT_NAME, 0, 0, preset - 1};
  if (!install.empty()) {
    if (!File_IsSafeName(install.c_str()))
      return Lut_ToolFail(LUT_USAGE, "\"" + install + "\" is not a plain file name");
    if (!serial.empty()) {
      int rc = Tool_SetPresetName(serial, key, install, &settings, &error);
      if (rc != 0) return Lut_ToolFail(rc == 1 ? LUT_BAD : LUT_FILE, error);
    }
    mkdir(BRELLIAN_CONF_DIR, 0777);
    mkdir(BRELLIAN_LUT_DIR, 0777);
    output = std::string(BRELLIAN_LUT_DIR "/") + install + ".csv";
  }
  if (output.empty() || output == "-")
    return Tool_WriteAll(stdout, text) ? LUT_OK : Lut_ToolFail(LUT_FILE, "cannot write standard output");
  if (!Tool_ReplaceFile(output, text, 0644, &error)) return Lut_ToolFail(LUT_FILE, error);
  if (install.empty()) return LUT_OK;
  printf("installed %s\n", output.c_str());
  if (serial.empty()) return LUT_OK;
  return Tool_SavePrinterSettings(settings, key, &error) ? LUT_OK : Lut_ToolFail(LUT_FILE, error);
}
