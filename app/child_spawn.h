// Child processes of the server: the filter and the upstream PDF filters, isolated the same way.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

// What a child is started with.
struct TChildCommand {
  std::string path;               // program to execute
  std::vector<std::string> argv;  // argv[0] and the arguments
  std::vector<std::string> env;   // "NAME=value" entries, the whole environment
  int in = -1, out = -1, err = -1;  // become the child's 0, 1 and 2
};

// 'Child_User()' - The user children run as when the server runs as root:
// $BRELLIAN_FILTER_USER, else "lp" (an empty value keeps root).  False:
// children keep the server's user.
bool Child_User(uid_t* uid, gid_t* gid);

// 'Child_Spawn()' - fork and exec cmd.path.  In the child: the signal
// mask cleared, SIGPIPE and SIGTERM at their defaults, descriptors 0-2
// from cmd, every other descriptor of the server closed at exec, and,
// when the server runs as root, the user $BRELLIAN_FILTER_USER (default
// "lp", the spooler's user; empty keeps root) with no supplementary
// groups.  Returns the child's pid once it has executed the program, or
// -1 with *error set to the errno of what failed (fork, dup2, the user
// change or execve); a failed child has been reaped.  The caller keeps
// its own descriptors open and closes them.
pid_t Child_Spawn(const TChildCommand& cmd, int* error);
