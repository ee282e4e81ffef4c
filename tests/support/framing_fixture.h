// A printing task whose job command stream goes to memory, for the tests of
// the framing operations and of the stream reader on their output.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "driver/printing_task.h"
#include "jobstream/framing.h"

class TFramingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    task.output = open_memstream(&data, &size);
    task.printerModel = 1060;
    task.copies = 1;
  }
  void TearDown() override {
    fclose(task.output);
    free(data);
  }
  // 'Bytes()' - The stream written so far.
  std::string Bytes() {
    fflush(task.output);
    return std::string(data, size);
  }
  // 'OpenSide()' - Open the card and the side as page processing does.
  void OpenSide() { Job_OpenSide(&task); }

  TPrintingTask task{0, nullptr};
  char* data = nullptr;
  size_t size = 0;
};
