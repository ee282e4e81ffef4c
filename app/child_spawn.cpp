// Child processes of the server: the filter and the upstream PDF filters, isolated the same way.
// Copyright 2026 The rastertobrellian authors.
#include "app/child_spawn.h"

#include <fcntl.h>
#include <grp.h>
#include <pthread.h>
#include <pwd.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace {

// 'Child_CloseOnExecAbove2()' - Mark every descriptor above 2 close-on-exec.
// Async-signal-safe (called between fork and exec): close_range where the
// kernel has it, else one fcntl per possible descriptor below maxFd.
void Child_CloseOnExecAbove2(int maxFd) {
  if (close_range(3, ~0U, CLOSE_RANGE_CLOEXEC) == 0) return;
  for (int fd = 3; fd < maxFd; ++fd) {
    int flags = fcntl(fd, F_GETFD);
    if (flags >= 0) fcntl(fd, F_SETFD, flags | FD_CLOEXEC);
  }
}

}  // namespace

// 'Child_User()' - The children's user when the server runs as root.
bool Child_User(uid_t* uid, gid_t* gid) {
  if (geteuid() != 0) return false;
  const char* name = getenv("BRELLIAN_FILTER_USER");
  if (!name) name = "lp";
  if (!*name) return false;
  struct passwd pw, *found = nullptr;
  char buf[4096];
  if (getpwnam_r(name, &pw, buf, sizeof(buf), &found) != 0 || !found) return false;
  *uid = pw.pw_uid;
  *gid = pw.pw_gid;
  return true;
}

// 'Child_Spawn()' - fork, isolate, exec; the exec's result through a pipe.
pid_t Child_Spawn(const TChildCommand& cmd, int* error) {
  std::vector<char*> argv, envp;
  for (const std::string& a : cmd.argv) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  for (const std::string& e : cmd.env) envp.push_back(const_cast<char*>(e.c_str()));
  envp.push_back(nullptr);
  uid_t uid = 0;
  gid_t gid = 0;
  bool drop = Child_User(&uid, &gid);
  struct rlimit limit;
  int maxFd = getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY
                  ? static_cast<int>(limit.rlim_cur) : 65536;
  int failPipe[2];
  if (pipe2(failPipe, O_CLOEXEC) != 0) failPipe[0] = failPipe[1] = -1;
  pid_t pid = fork();
  if (pid == 0) {
    // Child: only async-signal-safe calls until execve.
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    signal(SIGTERM, SIG_DFL);
    int code = 0;
    if (dup2(cmd.in, 0) < 0 || dup2(cmd.out, 1) < 0 || dup2(cmd.err, 2) < 0) code = errno;
    // No other descriptor of the server (a device, a client's socket, a
    // listener, a file PAPPL opened without close-on-exec) reaches the
    // child: all above 2 close at exec; the failure pipe stays usable
    // until then.
    if (!code) Child_CloseOnExecAbove2(maxFd);
    if (!code && drop && (setgroups(0, nullptr) != 0 || setgid(gid) != 0 || setuid(uid) != 0)) code = errno;
    if (!code) {
      execve(cmd.path.c_str(), argv.data(), envp.data());
      code = errno;
    }
    if (failPipe[1] >= 0) (void)!write(failPipe[1], &code, sizeof(code));
    _exit(127);
  }
  if (failPipe[1] >= 0) close(failPipe[1]);
  int childErr = pid < 0 ? errno : 0;
  if (pid > 0 && failPipe[0] >= 0 && read(failPipe[0], &childErr, sizeof(childErr)) != sizeof(childErr)) childErr = 0;
  if (failPipe[0] >= 0) close(failPipe[0]);
  if (childErr != 0) {
    if (pid > 0)
      while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
      }
    *error = childErr;
    return -1;
  }
  return pid;
}
