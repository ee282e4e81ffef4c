// A private CUPS setup for end-to-end tests.
// Copyright 2026 The rastertobrellian authors.
#include "support/cups_env.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/process.h"

namespace {

const char* kSystemServerBin = "/usr/lib/cups";

bool Cups_IsExecutable(const std::string& path) { return access(path.c_str(), X_OK) == 0; }

std::string Cups_Which(const std::string& name) {
  for (const char* dir : {"/usr/sbin", "/usr/bin", "/sbin", "/bin"}) {
    std::string path = std::string(dir) + "/" + name;
    if (Cups_IsExecutable(path)) return path;
  }
  return "";
}

void Cups_Link(const std::string& target, const std::string& link) {
  unlink(link.c_str());
  if (symlink(target.c_str(), link.c_str()) != 0) perror(link.c_str());
}

const char* kCaptureBackend =
    "#!/bin/sh\n"
    "# capture: writes the job to the file named by the device URI.\n"
    "if [ $# -eq 0 ]; then echo 'direct capture \"Unknown\" \"Capture to a file\"'; exit 0; fi\n"
    "out=\"${DEVICE_URI#capture:}\"\n"
    "if [ -n \"$6\" ]; then cat \"$6\" > \"$out.part\"; else cat > \"$out.part\"; fi\n"
    "mv \"$out.part\" \"$out\"\n"
    "exit 0\n";

}  // namespace

bool Cups_HaveTools() {
  for (const char* tool : {"cupsfilter", "cupsd", "lpadmin", "lp", "lpstat", "gs"})
    if (Cups_Which(tool).empty()) return false;
  return Cups_IsExecutable(std::string(kSystemServerBin) + "/filter/gstoraster");
}

std::string Cups_PpdPath(int model) {
  return Test_GeneratedPPD(model);
}

std::string Cups_SampleCardPdf() {
  return std::string(BRELLIAN_SOURCE_DIR) + "/docs/samples/sample-card.pdf";
}

std::string Cups_WorkDir(const std::string& name) {
  std::string dir = std::string(BRELLIAN_BINARY_DIR) + "/e2e/" + name;
  Test_RemoveTree(dir);
  Test_MakeDirs(dir);
  chmod(dir.c_str(), 0777);
  return dir;
}

std::string Cups_MakeServerBin(const std::string& dir) {
  std::string sb = dir + "/serverbin";
  Test_MakeDirs(sb + "/filter");
  Test_MakeDirs(sb + "/backend");
  for (const char* sub : {"filter", "backend"}) {
    std::string from = std::string(kSystemServerBin) + "/" + sub;
    if (DIR* d = opendir(from.c_str())) {
      while (struct dirent* e = readdir(d)) {
        std::string name = e->d_name;
        if (name == "." || name == "..") continue;
        Cups_Link(from + "/" + name, sb + "/" + sub + "/" + name);
      }
      closedir(d);
    }
  }
  for (const char* sub : {"cgi-bin", "daemon", "driver", "monitor", "notifier"})
    Cups_Link(std::string(kSystemServerBin) + "/" + sub, sb + "/" + sub);
  Cups_Link(BRELLIAN_FILTER_PATH, sb + "/filter/rastertobrellian");
  for (const char* chain : {"pdftobrellian", "texttobrellian"})
    Cups_Link(std::string(BRELLIAN_SOURCE_DIR) + "/filters/" + chain, sb + "/filter/" + chain);
  std::string backend = sb + "/backend/capture";
  Test_WriteFile(backend, kCaptureBackend);
  chmod(backend.c_str(), 0755);
  return sb;
}

std::string Cups_WriteFilesConf(const std::string& dir, const std::string& serverBin) {
  std::string path = dir + "/cups-files.conf";
  Test_WriteFile(path, "ServerBin " + serverBin + "\n");
  return path;
}

TTestSpooler::TTestSpooler(const std::string& dir) : dir_(dir), socket_(dir + "/cups.sock") {}

TTestSpooler::~TTestSpooler() {
  if (pid_ > 0) {
    kill(pid_, SIGTERM);
    int status;
    for (int i = 0; i < 100 && waitpid(pid_, &status, WNOHANG) == 0; ++i) usleep(50000);
    if (waitpid(pid_, &status, WNOHANG) == 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, &status, 0);
    }
  }
}

void TTestSpooler::SetEnv(const std::string& name, const std::string& value) {
  extraConf_ += "SetEnv " + name + " " + value + "\n";
}

void TTestSpooler::AddBackend(const std::string& name, const std::string& program, mode_t mode) {
  backends_ += name + "\t" + program + "\t" + std::to_string(mode) + "\n";
}

void TTestSpooler::AddModels(const std::string& name, const std::string& dir) {
  models_ += name + "\t" + dir + "\n";
}

// 'Cups_MakeDataDir()' - A DataDir under dir that links every entry of the
// system's but model/, whose own model/ links the system's models and the
// given "name\tdir" lines.  Returns its path.
static std::string Cups_MakeDataDir(const std::string& dir, const std::string& models) {
  const std::string system = "/usr/share/cups";
  std::string data = dir + "/datadir";
  Test_MakeDirs(data + "/model");
  if (DIR* d = opendir(system.c_str())) {
    while (struct dirent* e = readdir(d)) {
      std::string name = e->d_name;
      if (name == "." || name == ".." || name == "model") continue;
      Cups_Link(system + "/" + name, data + "/" + name);
    }
    closedir(d);
  }
  if (DIR* d = opendir((system + "/model").c_str())) {
    while (struct dirent* e = readdir(d)) {
      std::string name = e->d_name;
      if (name == "." || name == "..") continue;
      Cups_Link(system + "/model/" + name, data + "/model/" + name);
    }
    closedir(d);
  }
  size_t pos = 0;
  while (pos < models.size()) {
    size_t tab = models.find('\t', pos), end = models.find('\n', pos);
    Cups_Link(models.substr(tab + 1, end - tab - 1), data + "/model/" + models.substr(pos, tab - pos));
    pos = end + 1;
  }
  return data;
}

bool TTestSpooler::Start(std::string* error) {
  std::string sb = Cups_MakeServerBin(dir_);
  for (size_t pos = 0; pos < backends_.size();) {
    size_t t1 = backends_.find('\t', pos), t2 = backends_.find('\t', t1 + 1);
    size_t end = backends_.find('\n', pos);
    std::string target = sb + "/backend/" + backends_.substr(pos, t1 - pos);
    unlink(target.c_str());
    Test_WriteFile(target, Test_ReadFile(backends_.substr(t1 + 1, t2 - t1 - 1)));
    chmod(target.c_str(), static_cast<mode_t>(std::stoul(backends_.substr(t2 + 1, end - t2 - 1))));
    pos = end + 1;
  }
  std::string dataDir = models_.empty() ? "/usr/share/cups" : Cups_MakeDataDir(dir_, models_);
  for (const char* sub : {"spool/tmp", "cache", "state", "log", "ppd", "out"}) Test_MakeDirs(dir_ + "/" + sub);
  chmod((dir_ + "/spool/tmp").c_str(), 01777);
  chmod((dir_ + "/out").c_str(), 01777);
  Test_WriteFile(dir_ + "/cupsd.conf",
                 "Listen " + socket_ + "\n"
                 "LogLevel debug\nWebInterface No\nBrowsing No\n"
                 "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
                 "<Policy default>\n  <Limit All>\n    Order deny,allow\n  </Limit>\n</Policy>\n");
  Test_WriteFile(dir_ + "/cups-files.conf",
                 "ServerRoot " + dir_ + "\nServerBin " + sb + "\nDataDir " + dataDir + "\n"
                 "RequestRoot " + dir_ + "/spool\nCacheDir " + dir_ + "/cache\n"
                 "StateDir " + dir_ + "/state\nTempDir " + dir_ + "/spool/tmp\n"
                 "AccessLog " + dir_ + "/log/access_log\nErrorLog " + dir_ + "/log/error_log\n"
                 "PageLog " + dir_ + "/log/page_log\nFileDevice Yes\nUser lp\nGroup lp\n"
                 "SystemGroup root\n" + extraConf_);
  std::string cupsd = Cups_Which("cupsd");
  pid_ = fork();
  if (pid_ == 0) {
    std::string conf = dir_ + "/cupsd.conf", files = dir_ + "/cups-files.conf";
    FILE* null = freopen("/dev/null", "w", stdout);
    (void)null;
    execl(cupsd.c_str(), "cupsd", "-f", "-c", conf.c_str(), "-s", files.c_str(), nullptr);
    _exit(127);
  }
  for (int i = 0; i < 100; ++i) {
    std::string out;
    if (Run("lpstat -r", &out) == 0 && out.find("is running") != std::string::npos) return true;
    int status;
    if (waitpid(pid_, &status, WNOHANG) == pid_) {
      pid_ = -1;
      *error = "the spooler ended at start-up: " + ErrorLog();
      return false;
    }
    usleep(100000);
  }
  *error = "the spooler did not answer: " + ErrorLog();
  return false;
}

int TTestSpooler::Run(const std::string& command, std::string* out) {
  std::string full = "CUPS_SERVER='" + socket_ + "' " + command + " 2>&1";
  out->clear();
  FILE* p = popen(full.c_str(), "r");
  if (!p) return -1;
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, p)) > 0) out->append(buf, n);
  int status = pclose(p);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool TTestSpooler::WaitIdle(int seconds) {
  for (int i = 0; i < seconds * 10; ++i) {
    std::string out;
    if (Run("lpstat -o", &out) == 0 && out.empty()) return true;
    usleep(100000);
  }
  return false;
}

std::string TTestSpooler::ErrorLog() const { return Test_ReadFile(dir_ + "/log/error_log"); }
