// Panels of a job command stream as PNG images.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <string>
#include <vector>

#include "jobstream/stream_reader.h"

// 'Inspect_PanelFileName()' - "side<S>-panel<I>-<type>.png", e.g.
// "side0-panel0-color.png", "side1-panel2-uv.png"; I counts the images of
// the side from 0.
std::string Inspect_PanelFileName(const TStreamPanel& panel);

// 'Inspect_PanelImage()' - The picture of a panel: a colour panel as its RGB
// bytes; a one-byte panel as grey 255 - byte, so that dots where the panel
// is applied (255) show dark and dots without it (0) white.  Only the rows
// read are included.
std::vector<uint8_t> Inspect_PanelImage(const TStreamPanel& panel);

// 'Inspect_WritePanelPng()' - Write the panel's picture into dir under its
// file name, preceded by prefix (e.g. "job2-" for the second job of a
// capture); *path gets the full name.  False when the panel holds no rows
// or the file cannot be written.
bool Inspect_WritePanelPng(const std::string& dir, const TStreamPanel& panel, std::string* path,
                        const std::string& prefix = "");
