// Tests of what the generated PPD files tell a user: the custom-area and
// track-data options name their format, and every page size is the whole
// panel without margins.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "support/cups_env.h"
#include "support/process.h"

namespace {

// 'Line()' - The PPD line that starts with prefix, or "".
std::string Line(int model, const std::string& prefix) {
  std::istringstream in(Test_ReadFile(Cups_PpdPath(model)));
  std::string line;
  while (std::getline(in, line))
    if (line.compare(0, prefix.size(), prefix) == 0) return line;
  return "";
}

}  // namespace

TEST(PPDTexts, CustomAreasTellTheirFormatWithAnExample) {
  for (int model : {1030, 1035, 1060})
    for (const char* side : {"front", "back"})
      for (const char* group : {"ResinInclude", "ResinExclude", "PeelOff", "NonPeelOff"})
        for (int k = 1; k <= 5; ++k) {
          std::string key = std::string(side) + group + std::to_string(k);
          std::string line = Line(model, "*ParamCustom" + key + " Text/");
          EXPECT_NE(std::string::npos, line.find("left+top+width+height")) << model << " " << line;
          EXPECT_NE(std::string::npos, line.find("mm, cm, in or px")) << model << " " << line;
          EXPECT_NE(std::string::npos, line.find("e.g. 5mm+30mm+50mm+15mm")) << model << " " << line;
        }
}

TEST(PPDTexts, TrackDataAndPlugInTellWhatTheyTake) {
  for (int model : {1030, 1035, 1060}) {
    for (int t = 1; t <= 3; ++t) {
      std::string line = Line(model, "*ParamCustommagEncodeData" + std::to_string(t) + " Text/");
      EXPECT_NE(std::string::npos, line.find("up to 127 characters")) << line;
      EXPECT_NE(std::string::npos, line.find("e.g.")) << line;
    }
    EXPECT_NE(std::string::npos, Line(model, "*ParamCustomprinterPlugin Text/").find("quote")) << model;
  }
}

TEST(PPDTexts, EveryPageSizeIsTheWholePanelWithoutMargins) {
  for (int model : {1030, 1035, 1060}) {
    for (const char* size : {"CR80", "Panel"}) {
      std::string area = Line(model, std::string("*ImageableArea ") + size + "/");
      double x0 = -1, y0 = -1, x1 = 0, y1 = 0;
      ASSERT_EQ(4, sscanf(area.c_str() + area.find('"') + 1, "%lf %lf %lf %lf", &x0, &y0, &x1, &y1)) << area;
      EXPECT_EQ(0, x0);
      EXPECT_EQ(0, y0);
      EXPECT_NEAR(248.64, x1, 0.01) << area;
      EXPECT_NEAR(159.36, y1, 0.01) << area;
    }
    for (const char* size : {"CR80Portrait", "PanelPortrait"}) {
      std::string area = Line(model, std::string("*ImageableArea ") + size + "/");
      EXPECT_NE(std::string::npos, area.find("\"0 0 159.36")) << area;
    }
  }
}
