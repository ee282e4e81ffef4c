// The sub-commands "delete", "submit" and "options", done by the application itself.
// Copyright 2026 The rastertobrellian authors.
#pragma once

// 'Cli_Handles()' - Whether the application runs this sub-command itself
// instead of PAPPL's main loop.  PAPPL 1.3.1's "delete" fails on a printer
// added since the server started (it is told printer-id 0), its "submit"
// ignores -n, and its "options" lists none of the card options.
bool Cli_Handles(const char* subcommand);

// 'Cli_Run()' - Run argv[1] (one that Cli_Handles() takes) with the options
// of the usage text (-d, -u, -n, -o and files); the exit status.
int Cli_Run(int argc, char* argv[]);
