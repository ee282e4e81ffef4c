// brellian-settings: create, show, export, import and change a printer's settings file.
// Copyright 2026 The rastertobrellian authors.
#include <getopt.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "brellian_paths.h"
#include "lib/settings_keys.h"
#include "lib/settings_text.h"
#include "lib/tool_file.h"
#include "lib/tool_model.h"
#include "status/model_text.h"
#include "util/safe_file.h"

// Exit statuses.
constexpr int SET_OK = 0;
constexpr int SET_REFUSED = 1;   // a value, a key or the text was refused; nothing written
constexpr int SET_USAGE = 2;     // bad arguments
constexpr int SET_FILE = 3;      // a file could not be read or written

static const char USAGE[] =
    "Usage: brellian-settings [--model MODEL] --serial SERIAL [--force] COMMAND [ARG...]\n"
    "   or: brellian-settings [--model MODEL] --file PATH [--force] COMMAND [ARG...]\n"
    "\n"
    "Create and change the settings file of a printer: the resin and overlay area\n"
    "presets, the names of its lookup tables and UV images, the flag bytes, the\n"
    "plug-in name and the card thickness and overlay-over-stripe defaults that the\n"
    "filter reads for the printer's jobs.\n"
    "\n"
    "Options (before COMMAND):\n"
    "  -s, --serial SERIAL  the printer's serial number (the part of DEVICE_URI after\n"
    "                       \"?serial=\"); the file is " BRELLIAN_SETTINGS_DIR "/\n"
    "                       brellian_{default-name-lower}_<serial>.dat, the serial lower-cased\n"
    "  -m, --model MODEL    the printer's model ({ids} or its display name):\n"
    "                       areas are checked at its resolution only (default: at every\n"
    "                       model's).  The file is the same for every model: the filter\n"
    "                       looks each printer's settings up under the name {default-name}\n"
    "  -f, --file PATH      work on the settings file at PATH instead\n"
    "      --force          let \"create\" replace an existing file\n"
    "  -h, --help           show this text\n"
    "\n"
    "Commands:\n"
    "  create               write a file with every preset empty (refused when the file\n"
    "                       exists, unless --force)\n"
    "  show                 print the file name and every value that is set\n"
    "  export [TEXT]        write every value in the text form to TEXT (default: standard\n"
    "                       output)\n"
    "  import TEXT          replace every value by those of the text form in TEXT (\"-\":\n"
    "                       standard input); values it does not give are cleared\n"
    "  set KEY VALUE...     change one or more values (pairs of KEY and VALUE); a missing\n"
    "                       file is created\n"
    "  keys                 list every key\n"
    "  path                 print the file name\n"
    "\n"
    "Keys: resin.P.include.K, resin.P.exclude.K, po.P.peel-off.K, po.P.keep.K (P 1-10,\n"
    "K 1-3; an area \"left top width height\", each value a number with a unit px, mm,\n"
    "cm, in or \"), lut.N and uv.N (N 1-5; file names), flag.N (N 1-10; 0-255; flag.1 and\n"
    "flag.2 are the front and back resin thresholds), plugin, card-thickness (unset,\n"
    "standard, thin), mag-po-mode (unset, disabled, enabled).  Every area is checked with\n"
    "the filter's own area reader; one the filter would read as no area is refused, and\n"
    "an area whose last value has no unit (read as inches) is noted on standard error.\n"
    "\n"
    "Files are written to a temporary file in the same directory, flushed to disk and\n"
    "renamed over the old file: an interrupted write leaves the old file as it was.\n"
    "\n"
    "Examples:\n"
    "  brellian-settings --serial AB12 create\n"
    "\n"
    "  brellian-settings --serial AB12 set resin.1.include.1 '5mm 5mm 50mm 30mm' flag.1 40\n"
    "\n"
    "  brellian-settings --serial AB12 export > ab12.txt; brellian-settings --serial AB12 import ab12.txt\n"
    "\n"
    "Exit status: 0 done, 1 a value or the text was refused (nothing written), 2 bad\n"
    "arguments, 3 a file could not be read or written.\n";

struct TSettingsTarget {
  std::string path;
  std::string model, serial;   // printer mode when serial is set
};

// 'Set_Fail()' - Print "brellian-settings: message" and return status.
static int Set_Fail(int status, const std::string& message) {
  fprintf(stderr, "brellian-settings: %s\n", message.c_str());
  return status;
}

// 'Set_Load()' - Read the target into *s: 0 read, 1 missing, -1 error.
static int32_t Set_Load(TSettingsTarget* t, TBrellianSettings* s, std::string* error) {
  if (t->serial.empty()) return Tool_LoadSettingsFile(t->path, s, error);
  int32_t rc = Tool_LoadPrinterSettings(t->model, t->serial, s, error);
  t->path = s->FilePath();
  return rc;
}

// 'Set_Save()' - Write *s to the target (making the settings directories
// of a printer's file first), then read it back and compare.
static int Set_Save(const TSettingsTarget& t, const TBrellianSettings& s) {
  if (!t.serial.empty()) {
    mkdir(BRELLIAN_CONF_DIR, 0777);
    mkdir(BRELLIAN_SETTINGS_DIR, 0777);
  }
  std::string error;
  if (!Tool_SaveSettingsFile(t.path, s, &error)) return Set_Fail(SET_FILE, error);
  TBrellianSettings back;
  if (Tool_LoadSettingsFile(t.path, &back, &error) != 0 || back.SaveToBytes() != s.SaveToBytes())
    return Set_Fail(SET_FILE, "the file written does not read back the same: " + t.path);
  return SET_OK;
}

// 'Set_NoteAreas()' - A warning on standard error for each area value of
// keys that the filter takes but probably not as meant.
static void Set_NoteAreas(const TBrellianSettings& s, const std::vector<TSettingsKey>& keys) {
  for (const TSettingsKey& key : keys) {
    if (key.kind != SETKEY_RESIN_AREA && key.kind != SETKEY_PO_AREA) continue;
    std::string note = Settings_AreaNote(Settings_GetValue(s, key));
    if (!note.empty()) fprintf(stderr, "brellian-settings: warning: %s: %s\n", Settings_KeyName(key).c_str(), note.c_str());
  }
}

// 'Set_Command()' - Run one command on the target.
static int Set_Command(TSettingsTarget* t, bool force, const std::string& cmd, int argc, char** argv) {
  if (cmd == "keys") {
    for (const TSettingsKey& key : Settings_AllKeys()) puts(Settings_KeyName(key).c_str());
    return SET_OK;
  }
  TBrellianSettings s;
  std::string error;
  int32_t loaded = Set_Load(t, &s, &error);
  if (loaded < 0) return Set_Fail(SET_FILE, error);
  if (cmd == "path") return puts(t->path.c_str()), SET_OK;
  if (cmd == "create") {
    if (argc != 0) return Set_Fail(SET_USAGE, "create takes no arguments");
    if (loaded == 0 && !force) return Set_Fail(SET_REFUSED, t->path + " exists (--force replaces it)");
    TBrellianSettings empty;
    int rc = Set_Save(*t, empty);
    if (rc == SET_OK) printf("created %s\n", t->path.c_str());
    return rc;
  }
  if (cmd == "set") {
    if (argc == 0 || argc % 2 != 0) return Set_Fail(SET_USAGE, "set takes pairs of KEY and VALUE");
    std::vector<TSettingsKey> keys;
    for (int i = 0; i < argc; i += 2) {
      TSettingsKey key;
      if (!Settings_FindKey(argv[i], &key))
        return Set_Fail(SET_REFUSED, std::string("unknown key \"") + argv[i] + "\" (\"keys\" lists them)");
      if (!Settings_SetValue(&s, key, argv[i + 1], &error)) return Set_Fail(SET_REFUSED, error);
      keys.push_back(key);
    }
    int rc = Set_Save(*t, s);
    if (rc == SET_OK) Set_NoteAreas(s, keys);
    return rc;
  }
  if (cmd == "import") {
    if (argc != 1) return Set_Fail(SET_USAGE, "import takes one TEXT file");
    std::string text;
    bool read = strcmp(argv[0], "-") == 0 ? Tool_ReadAll(stdin, SETTINGS_FILE_MAX, &text)
                                          : File_ReadCapped(argv[0], SETTINGS_FILE_MAX, &text) == 0;
    if (!read) return Set_Fail(SET_FILE, std::string("cannot read ") + argv[0] + ": " + strerror(errno));
    if (!Settings_FromText(text, &s, &error)) return Set_Fail(SET_REFUSED, std::string(argv[0]) + ": " + error);
    int rc = Set_Save(*t, s);
    if (rc == SET_OK) Set_NoteAreas(s, Settings_AllKeys());
    return rc;
  }
  if (cmd != "show" && cmd != "export") return Set_Fail(SET_USAGE, "unknown command \"" + cmd + "\"");
  if (loaded == 1) return Set_Fail(SET_FILE, "no settings file " + t->path + " (\"create\" makes one)");
  if (cmd == "show") {
    if (argc != 0) return Set_Fail(SET_USAGE, "show takes no arguments");
    printf("Settings file: %s\n", t->path.c_str());
    fputs(Settings_ShowText(s).c_str(), stdout);
    return SET_OK;
  }
  if (argc > 1) return Set_Fail(SET_USAGE, "export takes at most one TEXT file");
  std::string text = Settings_ToText(s);
  if (argc == 0 || strcmp(argv[0], "-") == 0)
    return Tool_WriteAll(stdout, text) ? SET_OK : Set_Fail(SET_FILE, "cannot write standard output");
  if (!Tool_WriteFile(argv[0], text))
    return Set_Fail(SET_FILE, std::string("cannot write ") + argv[0] + ": " + strerror(errno));
  return SET_OK;
}

// 'main()' - Options, then the command; the exit status says how it went.
int main(int argc, char** argv) {
  Tool_Init();
  static const struct option kOptions[] = {
      {"serial", required_argument, nullptr, 's'}, {"model", required_argument, nullptr, 'm'},
      {"file", required_argument, nullptr, 'f'},   {"force", no_argument, nullptr, 'F'},
      {"help", no_argument, nullptr, 'h'},         {nullptr, 0, nullptr, 0},
  };
  TSettingsTarget target;
  std::string model;
  bool force = false;
  int c;
  // "+": options end at COMMAND, so values such as "-5mm ..." stay values.
  while ((c = getopt_long(argc, argv, "+s:m:f:h", kOptions, nullptr)) != -1) {
    switch (c) {
      case 's': target.serial = optarg; break;
      case 'm': model = optarg; break;
      case 'f': target.path = optarg; break;
      case 'F': force = true; break;
      case 'h': fputs(Model_Expand(USAGE).c_str(), stdout); return SET_OK;
      default: fputs(USAGE, stderr); return SET_USAGE;
    }
  }
  if (optind >= argc) return Set_Fail(SET_USAGE, "no COMMAND given (--help shows the usage)");
  std::string cmd = argv[optind];
  bool needsTarget = cmd != "keys";
  if (needsTarget && target.serial.empty() == target.path.empty())
    return Set_Fail(SET_USAGE, "give either --serial or --file");
  // The model chooses the checks only: every printer's file carries the
  // name the filter looks it up by.
  uint32_t id = 0;
  if (!model.empty() && !Tool_ParseModel(model, &id))
    return Set_Fail(SET_USAGE, Model_Expand("--model must be {ids} or a model's display name"));
  Settings_SetCheckModel(id);
  target.model = Tool_SettingsModelName();
  return Set_Command(&target, force, cmd, argc - optind - 1, argv + optind + 1);
}
