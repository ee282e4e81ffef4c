// A Shutdown-All-Printers request ends an idle server at once instead of up to 30 seconds later.
// Copyright 2026 The rastertobrellian authors.
//
// PAPPL 1.3.1's main loop waits in poll() on its listening sockets for up
// to 30 seconds between rounds and looks at a shutdown request only when
// it wakes, so "brellian-printer-app shutdown" (a Shutdown-All-Printers
// request) used to take up to 30 seconds on an idle server; SIGTERM, which
// interrupts the poll, ended it at once.  The application replaces
// _papplClientProcessIPP() (exported by libpappl 1.3.1 and called through
// its procedure linkage table): PAPPL's own runs and sends the response; after a
// successful Shutdown-All-Printers the main loop's thread gets SIGUSR2, whose handler
// does nothing but end the poll.  PAPPL then finds the request at once and
// stops when no job is active, as it always did.
#include "app/shutdown_wake.h"

#ifdef BRELLIAN_PAPPL_1_3

#include <dlfcn.h>
#include <pappl/pappl.h>
#include <pthread.h>
#include <signal.h>

#include <atomic>

namespace {

std::atomic<bool> g_shutdownArmed{false};
pthread_t g_mainLoopThread;

// 'Shutdown_Nothing()' - The SIGUSR2 handler: its only effect is that the
// poll it interrupts returns.
void Shutdown_Nothing(int) {}

}  // namespace

// '_papplClientProcessIPP()' - PAPPL's processing of an IPP request,
// which ends by sending the response, then the wake-up after a
// Shutdown-All-Printers it accepted.  Waking the main loop only after the
// response is out keeps the server from ending before its client has the
// answer.
extern "C" bool _papplClientProcessIPP(pappl_client_t* client) {
  using TProcess = bool (*)(pappl_client_t*);
  static TProcess pappl = reinterpret_cast<TProcess>(dlsym(RTLD_NEXT, "_papplClientProcessIPP"));
  bool kept = pappl(client);
  ipp_t* response = papplClientGetResponse(client);
  if (g_shutdownArmed && papplClientGetOperation(client) == IPP_OP_SHUTDOWN_ALL_PRINTERS && response &&
      ippGetStatusCode(response) <= IPP_STATUS_OK_CONFLICTING) {
    httpFlushWrite(papplClientGetHTTP(client));
    pthread_kill(g_mainLoopThread, SIGUSR2);
  }
  return kept;
}

// 'Shutdown_Arm()' - Note the main loop's thread and the handler (no
// SA_RESTART: poll() returns EINTR either way).
bool Shutdown_Arm() {
  struct sigaction action = {};
  action.sa_handler = Shutdown_Nothing;
  sigemptyset(&action.sa_mask);
  if (sigaction(SIGUSR2, &action, nullptr) != 0) return false;
  g_mainLoopThread = pthread_self();
  g_shutdownArmed = true;
  return true;
}

#else

// 'Shutdown_Arm()' - Another PAPPL: its main loop is left as it is.
bool Shutdown_Arm() { return false; }

#endif
