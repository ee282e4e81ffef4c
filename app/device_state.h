// Why a printer's device cannot be opened, kept where the printer's state message can show it.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <string>

// How long after a failed open the failure still counts when no new
// attempt is under way: PAPPL 1.3.1 retries every 5 seconds while a job
// waits for the device.
constexpr int DEVSTATE_FRESH_SECONDS = 15;

// 'DevState_Opening()' - An attempt to open the device at uri starts.
void DevState_Opening(const char* uri);

// 'DevState_Failed()' - The attempt failed, for the reason in message.
void DevState_Failed(const char* uri, const std::string& message);

// 'DevState_Opened()' - The attempt succeeded: the failure is forgotten.
void DevState_Opened(const char* uri);

// 'DevState_Message()' - The reason the device at uri cannot be opened,
// while it counts: its last open failed and either a new attempt is under
// way or the failure is at most DEVSTATE_FRESH_SECONDS old.  "" otherwise.
std::string DevState_Message(const char* uri);

// 'DevState_PrinterMessage()' - The printer's state message in place of
// PAPPL's "Stopped.": the device's failure while the printer is stopped
// and it counts; "" otherwise.  Takes no PAPPL lock, so it may be called
// while PAPPL holds the printer's lock.
std::string DevState_PrinterMessage(pappl_printer_t* printer);

// 'DevState_Active()' - Whether the state message names the device's
// failure (built against PAPPL 1.3, whose "Stopped." it replaces).
// main() calls it, which also keeps the replacements in the executable.
bool DevState_Active();
