// Card sides and the area groups of each side's resin and overlay options.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

// Side indices of the per-side option arrays.
constexpr int32_t SIDE_FRONT = 0;
constexpr int32_t SIDE_BACK = 1;
// Resin area groups and overlay area groups.
constexpr int32_t AREA_GROUP_INCLUDE = 0;   // resin: areas that take resin
constexpr int32_t AREA_GROUP_EXCLUDE = 1;   // resin: areas kept out
constexpr int32_t AREA_GROUP_PEELOFF = 0;   // overlay: areas where it is removed
constexpr int32_t AREA_GROUP_KEEP = 1;      // overlay: areas where it stays
constexpr int32_t AREAS_PER_GROUP = 5;
// Black rendering of a side: the whole side diffused when it has any grey
// dot ("Diffuse"), or pure black kept solid and the rest diffused
// ("SolidBlack").
constexpr int32_t BLACK_MODE_DIFFUSE = 0;
constexpr int32_t BLACK_MODE_SOLID = 1;
// Resin selection "Card": the pure black of the colour page over the whole
// card, with no black page (beside 0 "Page", 1-10 presets, 11 custom areas).
constexpr int32_t RESIN_CARD = 12;
