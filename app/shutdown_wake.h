// A Shutdown-All-Printers request ends an idle server at once instead of up to 30 seconds later.
// Copyright 2026 The rastertobrellian authors.
#pragma once

// 'Shutdown_Arm()' - Note the calling thread (the one that will run the
// server's main loop) and give it a do-nothing handler for SIGUSR2, the
// signal that wakes it.  main() calls it before papplMainloop(); false
// when built against a PAPPL other than 1.3, whose main loop is left as
// it is.
bool Shutdown_Arm();
