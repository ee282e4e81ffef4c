// The built filter under an address-space limit, from just enough to start
// up to enough for the whole card: every limit that ends the job with
// status 0 and less than the whole card names what was dropped in a
// WARNING line (the card, a page, a panel); the others end with the
// designed "ERROR: Unable to allocate memory!".
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "brellian_paths.h"
#include "jobstream/records.h"
#include "jobstream/stream_reader.h"
#include "lib/raster_content.h"
#include "lib/raster_writer.h"
#include "support/process.h"

namespace {

constexpr size_t kKiB = 1024;
// Where the scan starts and ends, and its step: the filter and its
// libraries need about 19 MB of address space before the first page.
constexpr size_t kFirstLimit = 16 * kKiB * kKiB;
constexpr size_t kLastLimit = 64 * kKiB * kKiB;
constexpr size_t kStep = 512 * kKiB;

// 'Mem_Count()' - How many lines of err begin with prefix.
int Mem_Count(const std::string& err, const std::string& prefix) {
  int n = 0;
  for (size_t at = err.find(prefix); at != std::string::npos; at = err.find(prefix, at + 1))
    n += at == 0 || err[at - 1] == '\n';
  return n;
}

// 'Mem_Panels()' - The images the stream holds.
size_t Mem_Panels(const std::string& out) {
  TStreamCheck check;
  Stream_Read(out, &check);
  EXPECT_TRUE(check.ok) << check.error;
  return check.panels.size();
}

// 'Mem_HasCard()' - True when the stream starts a card.
bool Mem_HasCard(const std::string& out) {
  TStreamCheck check;
  Stream_Read(out, &check);
  for (const TStreamRecord& r : check.records)
    if (r.type == ICMD_STARTCARD) return true;
  return false;
}

}  // namespace

#if !defined(__SANITIZE_ADDRESS__)
// A "ColorK" card of two 300 dpi pages on the 600 dpi model: each page is
// resampled to a 2072 x 1328 panel, so between the page buffer (2 MB) and
// the whole card there are limits where no page converts (no card at
// all), where the black panel is left out, and where everything fits.
TEST(HostileMemory, EveryLimitThatDropsSomethingSaysWhat) {
  if (access("/usr/bin/prlimit", X_OK) != 0) GTEST_SKIP() << "no /usr/bin/prlimit (util-linux)";
  std::string dir = std::string(BRELLIAN_BINARY_DIR) + "/hostile/memory";
  Test_MakeDirs(dir);
  std::string raster = dir + "/job.ras";
  TRasterPage page = Raster_MakeTestPattern(1036, 664, 300);
  ASSERT_TRUE(Raster_WriteFile({page, page}, false, raster));
  Test_ResetLog();
  Test_SetLogLevelWord("none");
  TProcessOptions env;
  env.env["PPD"] = Test_GeneratedPPD(1060);
  const std::string options = "frontRibbon=ColorK frontResin=Page";
  int noCard = 0, partCard = 0, whole = 0, refused = 0;
  for (size_t limit = kFirstLimit; limit <= kLastLimit && whole == 0; limit += kStep) {
    TProcessResult r = Test_RunProcess({"/usr/bin/prlimit", "--as=" + std::to_string(limit), BRELLIAN_FILTER_PATH,
                                        "1", "user", "title", "1", options, raster},
                                       env);
    SCOPED_TRACE("limit " + std::to_string(limit / kKiB) + " KiB, status " + std::to_string(r.status) + ":\n" +
                 r.err);
    if (r.status != 0) {
      // Too little to start, or to hold the page: the designed fatal end.
      if (r.status == 1) {
        EXPECT_EQ(1, Mem_Count(r.err, "ERROR: Unable to allocate memory!"));
        ++refused;
      }
      continue;
    }
    EXPECT_EQ(1, Mem_Count(r.err, "INFO: Ready to print."));
    const size_t panels = Mem_Panels(r.out);
    if (!Mem_HasCard(r.out)) {
      // Both pages left out for lack of memory, and the job has no card.
      EXPECT_EQ(1, Mem_Count(r.err, "WARNING: Page 1 is left out: not enough memory"));
      EXPECT_EQ(1, Mem_Count(r.err, "WARNING: Page 2 is left out: not enough memory"));
      EXPECT_EQ(1, Mem_Count(r.err, "WARNING: No card printed: none of the job's 2 pages could be printed"));
      ++noCard;
    } else if (panels < 2) {
      EXPECT_GE(Mem_Count(r.err, "WARNING: Front side printed without its black panel"), 1);
      EXPECT_EQ(0, Mem_Count(r.err, "WARNING: No card printed"));
      ++partCard;
    } else if (Mem_Count(r.err, "WARNING:") > 0) {
      // Both panels, a page placed unscaled for lack of memory to fit it.
      EXPECT_EQ(Mem_Count(r.err, "WARNING:"), Mem_Count(r.err, "WARNING: Page 1 is printed unscaled") +
                                                  Mem_Count(r.err, "WARNING: Page 2 is printed unscaled"));
    } else {
      ++whole;
    }
  }
  Test_ResetLog();
  // The scan went from a limit the job could not use to one where it printed
  // everything, through at least one limit that left the job without a card.
  EXPECT_GT(refused, 0);
  EXPECT_GT(noCard, 0);
  EXPECT_GT(whole, 0);
  std::printf("address-space limits from %zu KiB in steps of %zu KiB: %d ended with the designed memory "
              "error, %d printed no card, %d a card without its black panel, the next one everything\n",
              kFirstLimit / kKiB, kStep / kKiB, refused, noCard, partCard);
}
#endif
