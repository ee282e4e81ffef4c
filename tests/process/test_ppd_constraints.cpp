// The option constraints of the PPD files, one test per constraint: the
// installed option and the job option conflict in libcups, the installed
// option's other choice lifts the conflict, and the resolver gives a job
// choice the hardware can print.  Also each model's IEEE 1284 device ID.
// Copyright 2026 The rastertobrellian authors.
// The PPD interface of libcups is deprecated but is what the spooler uses
// for these files.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/cups.h>
#include <cups/ppd.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "support/process.h"

namespace {

struct TConstraint {
  int model;
  std::string installed, installedChoice;  // the installed option and its choice
  std::string job, jobChoice;              // the job option; "" = any choice but None
  std::string resolved;                    // the resolver's choice of the job option
  std::string allowing;                    // installed choice that allows the job choice ("" none)
};

// Test names carry the constraint; printed parameters say it too.
void PrintTo(const TConstraint& c, std::ostream* os) {
  *os << c.model << ": " << c.installed << "=" << c.installedChoice << " vs " << c.job << "="
      << (c.jobChoice.empty() ? "(any)" : c.jobChoice);
}

std::string PpdPath(int model) {
  return std::string(BRELLIAN_BINARY_DIR) + "/ppd/br" + std::to_string(model) + ".ppd";
}

// 'Expected()' - Every constraint the PPD of model must carry.
std::vector<TConstraint> Expected(int model) {
  std::vector<TConstraint> c;
  std::vector<std::string> sides = {"front"};
  if (model != 1030) sides.push_back("back");
  for (const std::string& s : sides) {
    for (const char* ch : {"Color", "ColorK", "Grayscale"})
      c.push_back({model, "ribbonType", "Black", s + "Ribbon", ch, "Monochrome", "YMCK"});
    for (const char* rb : {"YMCK", "YMCKK", "YMCK-PO", "Black"})
      c.push_back({model, "ribbonType", rb, s + "UV", "", "None", "YMCK-UV"});
    for (const char* rb : {"YMCK", "YMCKK", "YMCK-UV", "Black"})
      c.push_back({model, "ribbonType", rb, s + "PO", "", "None", "YMCK-PO"});
  }
  c.push_back({model, "laminator", "NotInstalled", "cardLaminate", "Yes", "No", "Installed"});
  for (int t = 1; t <= 3; ++t) {
    c.push_back({model, "magEncoder", "NotInstalled", "magEncodeFormat" + std::to_string(t), "", "None",
                 "Installed"});
    c.push_back({model, "magEncoder", "NotInstalled", "magEncodeData" + std::to_string(t), "", "None",
                 "Installed"});
  }
  c.push_back({model, "magEncoder", "NotInstalled", "magEncodeCardFlip", "Yes", "No", "Installed"});
  if (model != 1030) {
    for (const char* d : {"DuplexNoTumble", "DuplexTumble"})
      c.push_back({model, "flipTurn", "NotInstalled", "Duplex", d, "None", "Installed"});
    return c;
  }
  // The one-sided 1030: every back-side choice but the default.
  auto back = [&](const std::string& job, const std::string& choice, const std::string& resolved) {
    c.push_back({model, "flipTurn", "NotInstalled", job, choice, resolved, ""});
  };
  for (const char* ch : {"ColorK", "Grayscale", "Monochrome"}) back("backRibbon", ch, "Color");
  for (int i = 1; i <= 10; ++i) back("backResin", "Preset" + std::to_string(i), "Page");
  back("backResin", "CustomAreas", "Page");
  back("backUV", "", "None");
  back("backUVMAC", "LowerLeft", "UpperRight");
  back("backPO", "", "None");
  for (const char* ch : {"LUT1", "LUT2", "LUT3"}) back("backLUTTable", ch, "Firmware");
  back("backSecureErase", "Yes", "No");
  back("backRotation", "Yes", "No");
  for (const char* group : {"ResinInclude", "ResinExclude", "PeelOff", "NonPeelOff"})
    for (int i = 1; i <= 5; ++i) back(std::string("back") + group + std::to_string(i), "", "None");
  return c;
}

std::vector<TConstraint> AllExpected() {
  std::vector<TConstraint> all;
  for (int model : {1030, 1035, 1060}) {
    std::vector<TConstraint> m = Expected(model);
    all.insert(all.end(), m.begin(), m.end());
  }
  return all;
}

// 'ConcreteChoice()' - A choice of the job option that the constraint
// forbids: the named one, or the first choice but None, or a custom value.
std::string ConcreteChoice(ppd_file_t* ppd, const TConstraint& c) {
  if (!c.jobChoice.empty()) return c.jobChoice;
  ppd_option_t* option = ppdFindOption(ppd, c.job.c_str());
  if (!option) return "";
  for (int i = 0; i < option->num_choices; ++i) {
    std::string name = option->choices[i].choice;
    if (name != "None" && name != "Custom") return name;
  }
  return c.job.compare(0, 12, "magEncodeDat") == 0 ? "Custom.1234" : "Custom.1mm 2mm 30mm 20mm";
}

// 'JobConflicted()' - True when the job option stands in an active
// constraint of the marked PPD.
bool JobConflicted(ppd_file_t* ppd, const std::string& job) {
  ppdConflicts(ppd);
  ppd_option_t* option = ppdFindOption(ppd, job.c_str());
  return option && option->conflicted;
}

// 'Mark()' - Mark the defaults, then name=value pairs.
void Mark(ppd_file_t* ppd, const std::vector<std::pair<std::string, std::string>>& pairs) {
  ppdMarkDefaults(ppd);
  cups_option_t* options = nullptr;
  int n = 0;
  for (const auto& p : pairs) n = cupsAddOption(p.first.c_str(), p.second.c_str(), n, &options);
  cupsMarkOptions(ppd, n, options);
  cupsFreeOptions(n, options);
}

class PPDConstraint : public testing::TestWithParam<TConstraint> {};

}  // namespace

TEST_P(PPDConstraint, ConflictsAndResolves) {
  const TConstraint& c = GetParam();
  ppd_file_t* ppd = ppdOpenFile(PpdPath(c.model).c_str());
  ASSERT_NE(nullptr, ppd) << PpdPath(c.model);
  std::string choice = ConcreteChoice(ppd, c);
  ASSERT_FALSE(choice.empty()) << c.job;

  // The defaults are free of conflicts; the pair is not.
  Mark(ppd, {});
  EXPECT_EQ(0, ppdConflicts(ppd));
  Mark(ppd, {{c.installed, c.installedChoice}, {c.job, choice}});
  EXPECT_TRUE(JobConflicted(ppd, c.job)) << c.job << "=" << choice;
  // The resolver's choice is allowed with the installed option.
  Mark(ppd, {{c.installed, c.installedChoice}, {c.job, c.resolved}});
  EXPECT_FALSE(JobConflicted(ppd, c.job)) << c.job << "=" << c.resolved;
  // The other choice of the installed option allows the job choice.
  if (!c.allowing.empty()) {
    Mark(ppd, {{c.installed, c.allowing}, {c.job, choice}});
    EXPECT_FALSE(JobConflicted(ppd, c.job)) << c.installed << "=" << c.allowing;
  }

  // Selecting the installed choice with the job choice pending resolves the job option.
  Mark(ppd, {});
  cups_option_t* options = nullptr;
  int n = cupsAddOption(c.job.c_str(), choice.c_str(), 0, &options);
  ASSERT_EQ(1, cupsResolveConflicts(ppd, c.installed.c_str(), c.installedChoice.c_str(), &n, &options));
  const char* resolved = cupsGetOption(c.job.c_str(), n, options);
  EXPECT_STREQ(c.resolved.c_str(), resolved ? resolved : "(unchanged)");
  const char* installed = cupsGetOption(c.installed.c_str(), n, options);
  EXPECT_STREQ(c.installedChoice.c_str(), installed ? installed : "(none)");
  // What the resolver returns is free of conflicts.
  ppdMarkDefaults(ppd);
  cupsMarkOptions(ppd, n, options);
  EXPECT_EQ(0, ppdConflicts(ppd));
  cupsFreeOptions(n, options);
  ppdClose(ppd);
}

INSTANTIATE_TEST_SUITE_P(EveryConstraint, PPDConstraint, testing::ValuesIn(AllExpected()),
                         [](const testing::TestParamInfo<TConstraint>& info) {
                           const TConstraint& c = info.param;
                           std::string name = "br" + std::to_string(c.model) + "_" + c.installed + "_" +
                                              c.installedChoice + "_" + c.job + "_" +
                                              (c.jobChoice.empty() ? "Any" : c.jobChoice);
                           for (char& ch : name)
                             if (!isalnum(static_cast<unsigned char>(ch))) ch = '_';
                           return name;
                         });

// Each PPD carries exactly the constraints above, each with its resolver.
TEST(PPDConstraints, EveryPpdCarriesExactlyTheseConstraints) {
  for (int model : {1030, 1035, 1060}) {
    std::set<std::string> expected, found, resolvers, names;
    for (const TConstraint& c : Expected(model))
      expected.insert("*" + c.installed + " " + c.installedChoice + " *" + c.job +
                      (c.jobChoice.empty() ? "" : " " + c.jobChoice));
    std::istringstream in(Test_ReadFile(PpdPath(model)));
    std::string line;
    while (std::getline(in, line)) {
      size_t colon = line.find(": \"");
      if (line.compare(0, 19, "*cupsUIConstraints ") == 0) {
        found.insert(line.substr(colon + 3, line.size() - colon - 4));
        names.insert(line.substr(19, colon - 19));
      }
      if (line.compare(0, 16, "*cupsUIResolver ") == 0) resolvers.insert(line.substr(16, colon - 16));
      EXPECT_EQ(std::string::npos, line.find("*UIConstraints")) << line;
    }
    EXPECT_EQ(expected, found) << model;
    EXPECT_EQ(names, resolvers) << model;
  }
}

// The device ID each PPD matches is the one the printer reports.
TEST(PPDConstraints, EachModelHasItsDeviceId) {
  for (int model : {1030, 1035, 1060}) {
    std::string text = Test_ReadFile(PpdPath(model));
    EXPECT_NE(std::string::npos,
              text.find("\n*1284DeviceID: \"MFG:Brellian;MDL:BR-" + std::to_string(model) + ";CLS:PRINTER;\"\n"))
        << model;
  }
}
