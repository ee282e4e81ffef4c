// A test fixture with a scratch directory of its own in the build tree.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/process.h"

// A test with the directory BRELLIAN_BINARY_DIR/<name> (dir), empty when
// the test starts and removed when it ends.  A fixture that needs more set
// up or tear down calls these first.
class TScratchDirTest : public ::testing::Test {
 protected:
  explicit TScratchDirTest(const char* name) : dir(std::string(BRELLIAN_BINARY_DIR) + "/" + name) {}
  void SetUp() override {
    Test_RemoveTree(dir);
    Test_MakeDirs(dir);
  }
  void TearDown() override { Test_RemoveTree(dir); }
  std::string dir;
};
