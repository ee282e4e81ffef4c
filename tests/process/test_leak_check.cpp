// The leak check of a sanitizer build runs in the filter process itself,
// whose exit handler ends it with _exit.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <string>

#include "lib/raster_writer.h"
#include "support/process.h"

#if defined(BRELLIAN_LEAK_CHECK) && defined(BRELLIAN_LEAK_PRELOAD)
namespace {

// 'Leak_Run()' - The filter on one small page, with the leak check on and
// the given library preloaded (none when empty).
TProcessResult Leak_Run(const std::string& preload) {
  std::string stream;
  EXPECT_TRUE(Raster_WriteStream({Raster_MakeRGBPage(8, 2, 300, 0, 0, 0)}, false, &stream));
  TProcessOptions options;
  options.input = stream;
  // A preloaded library comes before the sanitizer's runtime in the list of
  // libraries, which the runtime would otherwise refuse.
  options.env["ASAN_OPTIONS"] = "detect_leaks=1:verify_asan_link_order=0";
  if (!preload.empty()) options.env["LD_PRELOAD"] = preload;
  return Test_RunFilter({"1", "user", "title", "1", ""}, options);
}

}  // namespace
#endif

// Blocks leaked by a preloaded library are reported when the filter ends
// through its exit handler; the same job without it reports nothing.
TEST(LeakCheck, LeakInTheFilterProcessIsReported) {
#if !defined(BRELLIAN_LEAK_CHECK) || !defined(BRELLIAN_LEAK_PRELOAD)
  GTEST_SKIP() << "the leak check exists in sanitizer builds only";
#else
  Test_ResetLog();
  TProcessResult clean = Leak_Run("");
  EXPECT_EQ(0, clean.status);
  EXPECT_EQ(std::string::npos, clean.err.find("LeakSanitizer")) << clean.err;
  EXPECT_NE(std::string::npos, clean.err.find("INFO: Ready to print.")) << clean.err;

  TProcessResult leaky = Leak_Run(BRELLIAN_LEAK_PRELOAD);
  EXPECT_NE(std::string::npos, leaky.err.find("ERROR: LeakSanitizer: detected memory leaks"))
      << leaky.err;
  EXPECT_NE(std::string::npos, leaky.err.find("Leak_AtLoad")) << leaky.err;
  EXPECT_NE(0, leaky.status);
  Test_ResetLog();
#endif
}
