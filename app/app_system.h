// The PAPPL system of the application: server options, drivers, web pages, state file.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

// Where the labels of the card attributes are served.
#define APP_STRINGS_PATH "/en.strings"

// 'App_SystemCallback()' - Create the system from the "server" options.
pappl_system_t* App_SystemCallback(int num_options, cups_option_t* options, void* data);

// 'App_PrinterCreated()' - Per printer: its accessories applied, its
// "Card presets" and "Device settings" pages registered.
void App_PrinterCreated(pappl_printer_t* printer, void* data);

// 'App_UsageText()' - The usage text of --help.
const char* App_UsageText();
