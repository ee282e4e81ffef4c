// Help texts that name the models, written from the model table.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>

// 'Model_Expand()' - text with each model token replaced by what the model
// table says, so that no help text lists the models by hand:
//   {ids} {ids-and} {ids-or} the model numbers, "A, B, C", "A, B and C", "A, B or C"
//   {names-and} {names-or}   the display names, joined the same way
//   {drivers} {drivers-or}   the application's driver names, comma-separated
//   {ppds}                   the PPD file names, comma-separated
//   {default-id} {default-name} {default-ppd}   the default model's
//   {default-name-lower}     its display name in lower case
//   {first-id}               the first model's number
//   {panel-sizes}            each panel size and resolution with its models,
//                            "W x H dots at R dpi for models A and B, ..."
// Any other text, braces included, is kept as it is.
std::string Model_Expand(const std::string& text);
