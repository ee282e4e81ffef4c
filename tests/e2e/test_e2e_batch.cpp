// brellian-batch through a private spooler: a 20-card merged PDF with a CSV of tracks, and a queue that stops at card 4.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <map>
#include <string>

#include "support/batch_support.h"

namespace {

// 'Batch_CheckCards()' - Cards 1..printed of a batch of cards printed
// exactly once and no other, each a valid job stream whose tracks and page
// are its own row's and page's.
void Batch_CheckCards(const std::vector<TBatchCapture>& got, int cards, int printed) {
  std::map<std::string, int> seen;
  for (const TBatchCapture& c : got) {
    ASSERT_TRUE(c.complete) << c.title;
    ++seen[c.track1];
    int card = -1;
    for (int i = 1; i <= cards; ++i)
      if (c.track1 == Batch_Track1(i)) card = i;
    ASSERT_GT(card, 0) << "a job with tracks of no row: \"" << c.track1 << "\"";
    EXPECT_EQ(Batch_Track2(card), c.track2);
    EXPECT_NE(std::string::npos, c.title.find(" card " + std::to_string(card) + " of " + std::to_string(cards)))
        << c.title;
    EXPECT_EQ(1, c.panels) << c.title;
    // The page of card i has a bar i * 3.5 mm of the 85.6 mm card.
    EXPECT_NEAR(card * 3.5 / 85.6, c.bar, 0.02) << c.title;
  }
  for (int i = 1; i <= cards; ++i) EXPECT_EQ(i <= printed ? 1 : 0, seen[Batch_Track1(i)]) << "card " << i;
}

class TBatchE2e : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!Cups_HaveTools()) GTEST_SKIP() << "CUPS, cups-filters or ghostscript not installed";
    if (geteuid() != 0) GTEST_SKIP() << "the test spooler must start as root";
  }
};

}  // namespace

TEST_F(TBatchE2e, TwentyCardsFromAMergedPdfAndACsvGiveOneJobPerRow) {
  std::string dir = Cups_WorkDir("batch-twenty");
  TBatchSpooler spooler(dir);
  std::string error;
  ASSERT_TRUE(spooler.Start(&error)) << error;
  ASSERT_TRUE(Batch_MakeMergedPdf(dir + "/merge.pdf", 20));
  Batch_WriteCsv(dir + "/people.csv", 20);

  TProcessResult dry = Batch_RunTool(spooler, {"-d", "cards", "--csv", dir + "/people.csv", "--dry-run",
                                               dir + "/merge.pdf"});
  ASSERT_EQ(0, dry.status) << dry.err;
  EXPECT_NE(std::string::npos, dry.out.find("card 20: page 20 of merge.pdf magEncodeFormat1=ISO6-79 "
                                            "magEncodeData1=Custom.CARD 20 HOLDER"))
      << dry.out;
  EXPECT_FALSE(Test_ReadFile(dir + "/people.csv.journal").size()) << "a dry run writes no journal";

  TProcessResult run = Batch_RunTool(spooler, {"-d", "cards", "--csv", dir + "/people.csv", "--poll-interval",
                                               "100", dir + "/merge.pdf"});
  ASSERT_EQ(0, run.status) << run.out << run.err << spooler.ErrorLog().substr(0, 4000);
  EXPECT_NE(std::string::npos, run.out.find("printed      20")) << run.out;
  EXPECT_NE(std::string::npos, run.err.find("20/20 printed")) << run.err;
  ASSERT_TRUE(spooler.WaitIdle(60));
  std::vector<TBatchCapture> got = Batch_ReadCaptures(spooler.CaptureDir());
  EXPECT_EQ(20u, got.size());
  Batch_CheckCards(got, 20, 20);

  // The journal is there: the same command again refuses to print twice.
  TProcessResult again = Batch_RunTool(spooler, {"-d", "cards", "--csv", dir + "/people.csv", dir + "/merge.pdf"});
  EXPECT_EQ(2, again.status);
  EXPECT_NE(std::string::npos, again.err.find("--resume")) << again.err;
  TProcessResult resumed = Batch_RunTool(spooler, {"-d", "cards", "--csv", dir + "/people.csv", "--resume",
                                                   dir + "/merge.pdf"});
  EXPECT_EQ(0, resumed.status) << resumed.err;
  ASSERT_TRUE(spooler.WaitIdle(60));
  EXPECT_EQ(20u, Batch_ReadCaptures(spooler.CaptureDir()).size());
}

TEST_F(TBatchE2e, AQueueStoppedAtCardFourStopsTheBatchAndResumePrintsTheRestOnce) {
  std::string dir = Cups_WorkDir("batch-fault");
  TBatchSpooler spooler(dir);
  std::string error;
  ASSERT_TRUE(spooler.Start(&error)) << error;
  ASSERT_TRUE(Batch_MakeMergedPdf(dir + "/merge.pdf", 10));
  Batch_WriteCsv(dir + "/people.csv", 10);
  Test_WriteFile(spooler.CaptureDir() + "/fail-card", "4");
  std::vector<std::string> args = {"-d", "cards", "--csv", dir + "/people.csv", "--poll-interval", "100",
                                   "--no-wait", dir + "/merge.pdf"};
  TProcessResult run = Batch_RunTool(spooler, args);
  EXPECT_EQ(3, run.status) << run.out << run.err;
  EXPECT_NE(std::string::npos, run.err.find("Printing paused: the printer is stopped")) << run.err;
  EXPECT_NE(std::string::npos, run.err.find("card 4 (job ")) << run.err;
  EXPECT_NE(std::string::npos, run.err.find("--resume")) << run.err;
  EXPECT_NE(std::string::npos, run.err.find("cupsenable cards")) << run.err;
  EXPECT_NE(std::string::npos, run.out.find("at printer   ")) << run.out;
  std::vector<TBatchCapture> before = Batch_ReadCaptures(spooler.CaptureDir());
  EXPECT_EQ(3u, before.size());
  Batch_CheckCards(before, 10, 3);

  unlink((spooler.CaptureDir() + "/fail-card").c_str());
  std::string out;
  ASSERT_EQ(0, spooler.Run("cupsenable cards", &out)) << out;
  args.push_back("--resume");
  TProcessResult resumed = Batch_RunTool(spooler, args);
  EXPECT_EQ(0, resumed.status) << resumed.out << resumed.err;
  ASSERT_TRUE(spooler.WaitIdle(60));
  std::vector<TBatchCapture> all = Batch_ReadCaptures(spooler.CaptureDir());
  EXPECT_EQ(10u, all.size());
  Batch_CheckCards(all, 10, 10);
}

TEST_F(TBatchE2e, CtrlCWithoutATerminalFinishesTheCardsSentAndResumeDoesTheRest) {
  std::string dir = Cups_WorkDir("batch-interrupt");
  TBatchSpooler spooler(dir);
  std::string error;
  ASSERT_TRUE(spooler.Start(&error)) << error;
  ASSERT_TRUE(Batch_MakeMergedPdf(dir + "/merge.pdf", 6));
  Batch_WriteCsv(dir + "/people.csv", 6);
  std::vector<std::string> args = {Batch_Tool(), "-d", "cards", "--csv", dir + "/people.csv", "--poll-interval",
                                   "100", dir + "/merge.pdf"};
  TProcessOptions options;
  options.env["CUPS_SERVER"] = spooler.Socket();
  options.sigtermOnErr = "sent as job 2";
  options.signal = SIGINT;
  TProcessResult run = Test_RunProcess(args, options);
  EXPECT_EQ(4, run.status) << run.out << run.err;
  // Card 2 at least is still with the printer when the signal comes.
  EXPECT_NE(std::string::npos, run.err.find("Finishing card ")) << run.err;
  EXPECT_NE(std::string::npos, run.out.find("skipped      4: 3 4 5 6")) << run.out;
  ASSERT_TRUE(spooler.WaitIdle(60));
  std::vector<TBatchCapture> before = Batch_ReadCaptures(spooler.CaptureDir());
  EXPECT_EQ(2u, before.size());

  args.push_back("--resume");
  args.erase(args.begin());
  TProcessResult resumed = Batch_RunTool(spooler, args);
  EXPECT_EQ(0, resumed.status) << resumed.out << resumed.err;
  ASSERT_TRUE(spooler.WaitIdle(60));
  Batch_CheckCards(Batch_ReadCaptures(spooler.CaptureDir()), 6, 6);
}

TEST_F(TBatchE2e, ACancelledCardIsReportedAndPrintedAgainOnlyWithRetryFailed) {
  std::string dir = Cups_WorkDir("batch-cancelled");
  TBatchSpooler spooler(dir);
  std::string error;
  ASSERT_TRUE(spooler.Start(&error)) << error;
  ASSERT_TRUE(Batch_MakeMergedPdf(dir + "/merge.pdf", 4));
  Batch_WriteCsv(dir + "/people.csv", 4);
  Test_WriteFile(spooler.CaptureDir() + "/cancel-card", "2");
  std::vector<std::string> args = {"-d", "cards", "--csv", dir + "/people.csv", "--poll-interval", "100",
                                   dir + "/merge.pdf"};
  TProcessResult run = Batch_RunTool(spooler, args, 40);
  EXPECT_EQ(1, run.status) << run.out << run.err;
  EXPECT_NE(std::string::npos, run.err.find("Card 2 (job ")) << run.err;
  EXPECT_NE(std::string::npos, run.err.find("--retry-failed")) << run.err;
  EXPECT_NE(std::string::npos, run.out.find("failed       1: 2 (job ")) << run.out;
  ASSERT_TRUE(spooler.WaitIdle(60));
  EXPECT_EQ(3u, Batch_ReadCaptures(spooler.CaptureDir()).size());

  unlink((spooler.CaptureDir() + "/cancel-card").c_str());
  args.push_back("--resume");
  TProcessResult again = Batch_RunTool(spooler, args);
  EXPECT_EQ(1, again.status) << again.out << again.err;
  ASSERT_TRUE(spooler.WaitIdle(60));
  EXPECT_EQ(3u, Batch_ReadCaptures(spooler.CaptureDir()).size()) << "a failed card waits for --retry-failed";
  args.push_back("--retry-failed");
  TProcessResult retried = Batch_RunTool(spooler, args);
  EXPECT_EQ(0, retried.status) << retried.out << retried.err;
  ASSERT_TRUE(spooler.WaitIdle(60));
  Batch_CheckCards(Batch_ReadCaptures(spooler.CaptureDir()), 4, 4);
}
