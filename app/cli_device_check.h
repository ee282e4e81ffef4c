// The "file:" device of an "add" or "modify" command, checked before the request is sent.
// Copyright 2026 The rastertobrellian authors.
#pragma once

// 'Cli_CheckFileDevice()' - For the sub-commands "add" and "modify": when
// "-v" names a "file:" device whose file or directory cannot be written
// (PAPPL then answers only "Unsupported smi55357-device-uri uri value."),
// write why on standard error, naming the path and the cause, and return
// false.  True for every other command line.
bool Cli_CheckFileDevice(int argc, char* argv[]);
