// Tests of the generated PPD files: cupstestppd passes, and every keyword
// and choice the option reader understands is offered.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "options/read_context.h"
#include "support/process.h"

namespace {

const int kModels[] = {1030, 1035, 1060};

std::string PPDPath(int model) { return Test_GeneratedPPD(model); }

// 'FindProgram()' - Full path of a program on $PATH (or the usual places).
std::string FindProgram(const std::string& name) {
  const char* env = getenv("PATH");
  std::string path = std::string(env ? env : "") + ":/usr/bin:/usr/sbin:/bin";
  std::istringstream in(path);
  std::string dir;
  while (std::getline(in, dir, ':')) {
    std::string candidate = dir + "/" + name;
    if (!dir.empty() && access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  return std::string();
}

// 'Lines()' - The PPD's lines.
std::vector<std::string> Lines(int model) {
  std::vector<std::string> lines;
  std::istringstream in(Test_ReadFile(PPDPath(model)));
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

bool HasPrefix(const std::vector<std::string>& lines, const std::string& prefix) {
  for (const std::string& l : lines)
    if (l.compare(0, prefix.size(), prefix) == 0) return true;
  return false;
}

// 'Group()' - The group that the OpenUI of keyword stands in.
std::string Group(const std::vector<std::string>& lines, const std::string& keyword) {
  std::string group;
  for (const std::string& l : lines) {
    if (l.compare(0, 12, "*OpenGroup: ") == 0) group = l.substr(12, l.find('/') - 12);
    if (l.compare(0, 9 + keyword.size() + 1, "*OpenUI *" + keyword + "/") == 0) return group;
  }
  return "(none)";
}

// 'Dimension()' - Width and height of a PaperDimension entry.
bool Dimension(const std::vector<std::string>& lines, const std::string& size, double* w, double* h) {
  std::string prefix = "*PaperDimension " + size + "/";
  for (const std::string& l : lines) {
    if (l.compare(0, prefix.size(), prefix) != 0) continue;
    size_t q = l.find('"');
    return sscanf(l.c_str() + q + 1, "%lf %lf", w, h) == 2;
  }
  return false;
}

// 'Choices()' - The choice names the PPD offers for keyword (the text
// between "*keyword " and "/" on each choice line).
std::vector<std::string> Choices(const std::vector<std::string>& lines, const std::string& keyword) {
  std::vector<std::string> choices;
  std::string prefix = "*" + keyword + " ";
  for (const std::string& l : lines)
    if (l.compare(0, prefix.size(), prefix) == 0)
      choices.push_back(l.substr(prefix.size(), l.find('/') - prefix.size()));
  return choices;
}

std::vector<std::string> CustomTextKeywords() {
  std::vector<std::string> k = {"printerPlugin", "magEncodeData1", "magEncodeData2", "magEncodeData3"};
  for (const char* side : {"front", "back"})
    for (const char* group : {"ResinInclude", "ResinExclude", "PeelOff", "NonPeelOff"})
      for (int i = 1; i <= 5; ++i) k.push_back(std::string(side) + group + std::to_string(i));
  return k;
}

}  // namespace

TEST(PPDFiles, CupstestppdPassesOnEveryModel) {
  std::string tool = FindProgram("cupstestppd");
  ASSERT_FALSE(tool.empty()) << "cupstestppd not found";
  for (int model : kModels) {
    // The filter is not installed in a build tree: its absence is ignored.
    TProcessResult r = Test_RunProcess({tool, "-I", "filters", PPDPath(model)});
    EXPECT_EQ(0, r.status) << PPDPath(model) << "\n" << r.out << r.err;
    EXPECT_EQ(std::string::npos, r.out.find("FAIL")) << r.out;
  }
}

TEST(PPDFiles, ModelFilterAndRaster) {
  for (int model : kModels) {
    std::vector<std::string> lines = Lines(model);
    ASSERT_FALSE(lines.empty()) << PPDPath(model);
    std::string dpi = model == 1060 ? "600" : "300";
    EXPECT_TRUE(HasPrefix(lines, "*cupsModelNumber: " + std::to_string(model)));
    EXPECT_TRUE(HasPrefix(lines, "*cupsFilter: \"application/vnd.cups-raster 100 rastertobrellian\""));
    // Documents reach the printer as PDF through pdftobrellian, text through
    // texttobrellian; raster goes to rastertobrellian alone.
    const char* finalType = " application/vnd.brellian-job-stream ";
    EXPECT_TRUE(HasPrefix(lines, std::string("*cupsFilter2: \"application/vnd.cups-raster") + finalType +
                                     "100 rastertobrellian\""));
    EXPECT_TRUE(HasPrefix(lines, std::string("*cupsFilter2: \"application/vnd.cups-pdf") + finalType +
                                     "30 pdftobrellian\""));
    EXPECT_TRUE(HasPrefix(lines, std::string("*cupsFilter2: \"text/plain") + finalType + "10 texttobrellian\""));
    // Pictures and PostScript go to pdftobrellian as they are, which places
    // them on the card itself.
    for (const char* type : {"application/postscript", "image/png", "image/jpeg", "image/gif", "image/tiff"})
      EXPECT_TRUE(HasPrefix(lines, std::string("*cupsFilter2: \"") + type + finalType + "10 pdftobrellian\""))
          << type;
    EXPECT_TRUE(HasPrefix(lines, "*DefaultResolution: " + dpi + "dpi"));
    EXPECT_TRUE(HasPrefix(lines, "*Resolution " + dpi + "dpi/" + dpi + " DPI: \"<</HWResolution[" +
                                     dpi + " " + dpi + "]/cupsBitsPerColor 8/"));
    EXPECT_TRUE(HasPrefix(lines, "*ColorModel RGB/Color: \"<</cupsColorSpace 1/cupsColorOrder 0/"));
    EXPECT_TRUE(HasPrefix(lines, "*DefaultPageSize: CR80"));
    EXPECT_EQ(model != 1030, HasPrefix(lines, "*OpenUI *Duplex/"));
    EXPECT_TRUE(HasPrefix(lines, std::string("*DefaultflipTurn: ") +
                                     (model == 1030 ? "NotInstalled" : "Installed")));
  }
}

TEST(PPDFiles, CardAndPanelSizesInBothOrientations) {
  const struct { const char* name; double w, h; } sizes[] = {
      // Every size is the whole panel; CR80 is kept as a name of it.
      {"CR80", 248.64, 159.36}, {"CR80Portrait", 159.36, 248.64},
      {"Panel", 248.64, 159.36}, {"PanelPortrait", 159.36, 248.64},
  };
  for (int model : kModels) {
    std::vector<std::string> lines = Lines(model);
    for (const auto& s : sizes) {
      double w = 0, h = 0;
      ASSERT_TRUE(Dimension(lines, s.name, &w, &h)) << s.name;
      EXPECT_NEAR(s.w, w, 0.01) << s.name;
      EXPECT_NEAR(s.h, h, 0.01) << s.name;
    }
  }
  // 1036 x 664 dots at 300 dpi is the whole panel.
  EXPECT_NEAR(248.64, 1036 * 72.0 / 300, 1e-9);
  EXPECT_NEAR(159.36, 664 * 72.0 / 300, 1e-9);
}

TEST(PPDFiles, EveryKeywordAndCodeOfTheOptionReader) {
  // Every keyword the option reader reads as a code is offered, and every
  // code it can give (each of its choice texts and its fallback) comes from
  // at least one of the PPD's choices, read as the reader reads them.
  ASSERT_GT(g_choiceKeywordCount, 20u);
  for (int model : kModels) {
    std::vector<std::string> lines = Lines(model);
    for (size_t i = 0; i < g_choiceKeywordCount; ++i) {
      const TChoiceKeyword& k = g_choiceKeywords[i];
      EXPECT_TRUE(HasPrefix(lines, std::string("*OpenUI *") + k.keyword + "/")) << model << " " << k.keyword;
      std::set<int32_t> offered;
      for (const std::string& c : Choices(lines, k.keyword))
        offered.insert(Opt_Lookup(k.choices, k.count, c, k.fallback));
      std::set<int32_t> known = {k.fallback};
      for (size_t c = 0; c < k.count; ++c) known.insert(k.choices[c].code);
      for (int32_t code : known) {
        // The one-sided 1030 offers no flip/turn unit; the filter forces 0 on it.
        if (model == 1030 && std::string(k.keyword) == "flipTurn" && code == 1) {
          EXPECT_FALSE(offered.count(code)) << "the 1030 offers a flip/turn unit";
          continue;
        }
        EXPECT_TRUE(offered.count(code)) << model << " " << k.keyword << " gives " << code
                                         << " from no choice of the PPD";
      }
    }
  }
}

TEST(PPDFiles, CustomTextOptions) {
  for (int model : kModels) {
    std::vector<std::string> lines = Lines(model);
    for (const std::string& k : CustomTextKeywords()) {
      EXPECT_TRUE(HasPrefix(lines, "*OpenUI *" + k + "/")) << k;
      EXPECT_TRUE(HasPrefix(lines, "*Custom" + k + " True: ")) << k;
      EXPECT_TRUE(HasPrefix(lines, "*ParamCustom" + k + " Text/")) << k;
      EXPECT_TRUE(HasPrefix(lines, "*Default" + k + ": " +
                                       (k == "printerPlugin" ? "Default" : "None"))) << k;
    }
  }
}

TEST(PPDFiles, InstalledAccessoriesAndRibbonAreInstallableOptions) {
  std::vector<std::string> lines = Lines(1060);
  for (const char* k : {"ribbonType", "flipTurn", "laminator", "magEncoder", "icEncoder",
                        "icEncoderContactless"})
    EXPECT_EQ("InstallableOptions", Group(lines, k)) << k;
  EXPECT_EQ("FrontSide", Group(lines, "frontRibbon"));
  EXPECT_EQ("BackAreas", Group(lines, "backNonPeelOff5"));
  EXPECT_EQ("Magnetic", Group(lines, "magEncodeData3"));
}
