// The batch journal and the CSV reader of brellian-batch, in process.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/process.h"
#include "tools/batch/batch_csv.h"
#include "tools/batch/batch_journal.h"
#include "tools/batch/batch_run.h"

namespace {

std::string Journal_Dir() {
  std::string dir = std::string(BRELLIAN_BINARY_DIR) + "/batch-journal-tests";
  Test_RemoveTree(dir);
  Test_MakeDirs(dir);
  return dir;
}

void Journal_AppendRaw(const std::string& path, const std::string& bytes) {
  int fd = open(path.c_str(), O_WRONLY | O_APPEND);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(static_cast<ssize_t>(bytes.size()), write(fd, bytes.data(), bytes.size()));
  close(fd);
}

}  // namespace

TEST(BatchJournal, EventsReadBackInANewRun) {
  std::string path = Journal_Dir() + "/b.journal", error;
  std::string id;
  {
    TBatchJournal j;
    ASSERT_TRUE(j.Create(path, 4, "ipp://localhost:8631/ipp/print/cards", &error)) << error;
    id = j.BatchId();
    EXPECT_EQ(16u, id.size());
    ASSERT_TRUE(j.Intent(0, &error));
    ASSERT_TRUE(j.Sent(0, 41, &error));
    ASSERT_TRUE(j.Ended(0, CARD_PRINTED, false, &error));
    ASSERT_TRUE(j.Intent(1, &error));
    ASSERT_TRUE(j.Sent(1, 42, &error));
    ASSERT_TRUE(j.Ended(1, CARD_FAILED, true, &error));
    ASSERT_TRUE(j.Intent(2, &error));
  }
  TBatchJournal j;
  ASSERT_TRUE(j.Load(path, &error)) << error;
  EXPECT_EQ(id, j.BatchId());
  EXPECT_EQ("ipp://localhost:8631/ipp/print/cards", j.Destination());
  ASSERT_EQ(4, j.Cards());
  EXPECT_EQ(CARD_PRINTED, j.Entry(0).state);
  EXPECT_EQ(41, j.Entry(0).jobId);
  EXPECT_EQ(CARD_FAILED, j.Entry(1).state);
  EXPECT_TRUE(j.Entry(1).cancelled);
  EXPECT_EQ(42, j.Entry(1).jobId);
  EXPECT_EQ(CARD_INTENT, j.Entry(2).state);
  EXPECT_EQ(CARD_PENDING, j.Entry(3).state);
}

TEST(BatchJournal, ALineCutShortOrDamagedAtTheEndIsDroppedAndOverwritten) {
  std::string path = Journal_Dir() + "/torn.journal", error;
  {
    TBatchJournal j;
    ASSERT_TRUE(j.Create(path, 3, "cards", &error)) << error;
    ASSERT_TRUE(j.Intent(0, &error));
  }
  std::string whole = Test_ReadFile(path);
  // A crash in the middle of writing "sent 0 7": no newline, no checksum.
  Journal_AppendRaw(path, "sent 0 7 *1234");
  {
    TBatchJournal j;
    ASSERT_TRUE(j.Load(path, &error)) << error;
    EXPECT_EQ(CARD_INTENT, j.Entry(0).state);
    EXPECT_EQ(whole, Test_ReadFile(path)) << "the torn line is cut off";
    ASSERT_TRUE(j.Sent(0, 7, &error));
  }
  // A whole line whose checksum does not hold (a block not written to disk).
  Journal_AppendRaw(path, "ended 0 printed *00000000\n");
  TBatchJournal j;
  ASSERT_TRUE(j.Load(path, &error)) << error;
  EXPECT_EQ(CARD_SENT, j.Entry(0).state);
  EXPECT_EQ(7, j.Entry(0).jobId);
}

TEST(BatchJournal, CreateRefusesAnExistingFileAndLoadAnythingElse) {
  std::string dir = Journal_Dir(), error;
  Test_WriteFile(dir + "/there", "x");
  TBatchJournal a;
  EXPECT_FALSE(a.Create(dir + "/there", 2, "cards", &error));
  EXPECT_NE(std::string::npos, error.find("already there")) << error;
  Test_WriteFile(dir + "/other", "not a journal\n");
  TBatchJournal b;
  EXPECT_FALSE(b.Load(dir + "/other", &error));
  TBatchJournal c;
  EXPECT_FALSE(c.Load(dir + "/missing", &error));
}

TEST(BatchJournal, JobNamesAreUniqueToTheCardAndTheBatch) {
  EXPECT_EQ("merge.pdf card 4 of 20 [00ff]", Batch_JobName("merge.pdf", 3, 20, "00ff"));
  EXPECT_NE(Batch_JobName("t", 3, 20, "00ff"), Batch_JobName("t", 3, 20, "00fe"));
  EXPECT_NE(Batch_JobName("t", 3, 20, "00ff"), Batch_JobName("t", 13, 20, "00ff"));
}

TEST(BatchCsv, QuotedFieldsCommasQuotesLineBreaksAndCrLf) {
  std::string path = Journal_Dir() + "/rows.csv", error;
  Test_WriteFile(path, "\xEF\xBB\xBFtrack1,name\r\n\"A,B\",\"say \"\"hi\"\"\"\r\n\r\n\"two\nlines\",\nlast,x");
  TCsvReader csv;
  ASSERT_TRUE(csv.Open(path, &error)) << error;
  std::vector<std::string> row;
  ASSERT_EQ(1, csv.Next(&row, &error));
  EXPECT_EQ((std::vector<std::string>{"track1", "name"}), row);
  ASSERT_EQ(1, csv.Next(&row, &error));
  EXPECT_EQ((std::vector<std::string>{"A,B", "say \"hi\""}), row);
  ASSERT_EQ(1, csv.Next(&row, &error));
  EXPECT_EQ((std::vector<std::string>{"two\nlines", ""}), row);
  ASSERT_EQ(1, csv.Next(&row, &error));
  EXPECT_EQ((std::vector<std::string>{"last", "x"}), row);
  EXPECT_EQ(0, csv.Next(&row, &error));
}

TEST(BatchCsv, AnUnclosedQuoteIsAnError) {
  std::string path = Journal_Dir() + "/bad.csv", error;
  Test_WriteFile(path, "a,b\n\"open,x\n");
  TCsvReader csv;
  ASSERT_TRUE(csv.Open(path, &error));
  std::vector<std::string> row;
  ASSERT_EQ(1, csv.Next(&row, &error));
  EXPECT_EQ(-1, csv.Next(&row, &error));
  EXPECT_NE(std::string::npos, error.find("line 2")) << error;
}
