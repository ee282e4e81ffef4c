// Installs the access rules into PAPPL and keeps the control socket owner-only.
// Copyright 2026 The rastertobrellian authors.
#include "app/web_security.h"

#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

#include "app/web_access.h"

namespace {

// 'Web_SocketModeTimer()' - PAPPL's main loop creates the control socket
// with mode 0777 just before the server starts, and PAPPL has no hook at
// that point: this timer runs at once when the loop starts and every
// minute after, and makes the socket owner-only.  Anyone who can connect
// to it is treated by PAPPL as an administrator.
bool Web_SocketModeTimer(pappl_system_t*, void* data) {
  const std::string* path = static_cast<const std::string*>(data);
  struct stat st;
  if (lstat(path->c_str(), &st) == 0 && S_ISSOCK(st.st_mode) && st.st_uid == geteuid() &&
      (st.st_mode & 0777) != 0600)
    chmod(path->c_str(), 0600);
  return true;
}

}  // namespace

// 'Web_ControlSocketPath()' - As PAPPL's main loop names it.
std::string Web_ControlSocketPath() {
  if (getuid() == 0) return "/run/brellian-printer-app.sock";
  return std::string(papplGetTempDir()) + "/brellian-printer-app" + std::to_string(getuid()) + ".sock";
}

// 'Web_InstallSecurity()' - Callbacks and the socket timer.
void Web_InstallSecurity(pappl_system_t* system, const char* authService) {
  if (!authService || !*authService) papplSystemSetAuthCallback(system, "Basic", Web_AuthCallback, nullptr);
  static const std::string path = Web_ControlSocketPath();
  papplSystemAddTimerCallback(system, time(nullptr), 60, Web_SocketModeTimer, const_cast<std::string*>(&path));
}
