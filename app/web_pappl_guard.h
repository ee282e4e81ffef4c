// Guards in front of PAPPL 1.3.1 pages that change state without asking who is changing it.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

// 'Web_GuardPrinterHome()' - Put an access check in front of the printer's
// home page: its POST forms (hold new jobs, pause, set as default, test
// page) then need this machine or a signed-in administrator, like every
// other change.  Called once per printer, when it is created or loaded.
void Web_GuardPrinterHome(pappl_printer_t* printer);
