// The lower layer of the usbbr backend: the spooler's own USB backend, run
// to list the printers and to send a job.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

#include "backend/backend_line.h"

// Results of Usbbr_ListLower.
constexpr int32_t USBBR_LIST_OK = 0;         // the lower backend ran; its lines are parsed
constexpr int32_t USBBR_LIST_NOT_RUN = -1;   // it could not be started
constexpr int32_t USBBR_LIST_CANCELLED = -2; // *cancel was set while it ran

// 'Usbbr_LowerPath()' - The USB backend usbbr builds on: the spooler's
// "usb" backend in its backend directory.  Only a test build can name a
// stand-in, through the environment variable BRELLIAN_USBBR_LOWER.
std::string Usbbr_LowerPath();

// 'Usbbr_ListLower()' - Run the lower backend without arguments (its
// device discovery) and parse every line of its standard output into
// *devices.  Its standard error goes to ours, or to /dev/null when
// quietStderr.  When cancel is given and becomes non-zero while the lower
// backend runs (a signal handler sets it), the lower backend is killed.
// *exitStatus receives its exit status (-1 when it did not end normally).
int32_t Usbbr_ListLower(const std::string& path, bool quietStderr, volatile sig_atomic_t* cancel,
                        std::vector<TBackendDevice>* devices, int* exitStatus, std::string* error);
