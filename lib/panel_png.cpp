// Panels of a job command stream as PNG images.
// Copyright 2026 The rastertobrellian authors.
#include "lib/panel_png.h"

#include "lib/job_text.h"
#include "lib/png_io.h"

// 'Inspect_PanelFileName()' - side<S>-panel<I>-<type>.png.
std::string Inspect_PanelFileName(const TStreamPanel& panel) {
  return "side" + std::to_string(panel.side) + "-panel" + std::to_string(panel.index) + "-" +
         Inspect_PanelTypeName(panel.panelType) + ".png";
}

// 'Inspect_PanelImage()' - RGB as sent; one-byte panels inverted to grey.
std::vector<uint8_t> Inspect_PanelImage(const TStreamPanel& panel) {
  std::vector<uint8_t> image(panel.pixels);
  if (panel.bytesPerPixel == 1)
    for (uint8_t& b : image) b = static_cast<uint8_t>(255 - b);
  return image;
}

// 'Inspect_WritePanelPng()' - Write the panel's picture as a PNG in dir.
bool Inspect_WritePanelPng(const std::string& dir, const TStreamPanel& panel, std::string* path,
                        const std::string& prefix) {
  *path = dir + "/" + prefix + Inspect_PanelFileName(panel);
  if (panel.rows == 0 || panel.width == 0) return false;
  std::vector<uint8_t> image = Inspect_PanelImage(panel);
  if (panel.bytesPerPixel == 3) return Png_WriteRGB(*path, panel.width, panel.rows, image.data());
  return Png_WriteGray(*path, panel.width, panel.rows, image.data());
}
