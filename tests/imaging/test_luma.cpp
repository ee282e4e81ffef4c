// The two ways of computing a row's luminance held to each other and to the
// double-precision formula, byte for byte.
// Copyright 2026 The rastertobrellian authors.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "imaging/luma.h"
#include "util/cpu.h"

namespace {

// The formula, written out as plainly as possible.
uint8_t Luma_Formula(int r, int g, int b) {
  double y = 0.299 * r + 0.587 * g + 0.114 * b;
  return y > 255.0 ? 0xFF : static_cast<uint8_t>(static_cast<int>(y));
}

// Every way the processor offers: the scalar one always, AVX2 where present.
std::vector<void (*)(const uint8_t*, uint8_t*, size_t, uint8_t)> Luma_Ways() {
  std::vector<void (*)(const uint8_t*, uint8_t*, size_t, uint8_t)> ways = {Luma_PlaneScalar, Luma_Plane};
  if (Cpu_HaveAvx2()) ways.push_back(Luma_PlaneAvx2);
  return ways;
}

}  // namespace

TEST(LumaPlane, AllColoursMatchTheFormulaInEveryWay) {
  const size_t n = 1u << 24;
  std::vector<uint8_t> rgb(n * 3);
  for (uint32_t c = 0; c < n; ++c) {
    rgb[3 * c] = static_cast<uint8_t>(c >> 16);
    rgb[3 * c + 1] = static_cast<uint8_t>(c >> 8);
    rgb[3 * c + 2] = static_cast<uint8_t>(c);
  }
  std::vector<uint8_t> expected(n);
  for (uint32_t c = 0; c < n; ++c) expected[c] = Luma_Formula(rgb[3 * c], rgb[3 * c + 1], rgb[3 * c + 2]);
  for (auto way : Luma_Ways()) {
    for (uint8_t flip : {uint8_t{0}, uint8_t{0xFF}}) {
      std::vector<uint8_t> out(n, 0x5A);
      way(rgb.data(), out.data(), n, flip);
      size_t bad = 0, first = n;
      for (size_t i = 0; i < n; ++i) {
        if (out[i] != static_cast<uint8_t>(expected[i] ^ flip)) {
          if (!bad) first = i;
          ++bad;
        }
      }
      EXPECT_EQ(0u, bad) << "flip " << int(flip) << ", first colour " << std::hex << first;
    }
  }
}

// Random rows of every length up to 70 dots, at every byte offset from an
// aligned start, written into a row with guard bytes on both sides: each way
// gives the formula's bytes and touches nothing outside its count.
TEST(LumaPlane, RandomRowsOfAnyLengthAndOffsetStayInside) {
  std::mt19937 rng(20261122);
  std::uniform_int_distribution<int> byte(0, 255);
  for (size_t count = 0; count <= 70; ++count) {
    for (size_t offset = 0; offset < 4; ++offset) {
      std::vector<uint8_t> rgb(offset + 3 * count);
      for (auto& v : rgb) v = static_cast<uint8_t>(byte(rng));
      const uint8_t* in = rgb.data() + offset;
      for (auto way : Luma_Ways()) {
        std::vector<uint8_t> out(count + 16, 0xA5);
        way(in, out.data() + 8, count, 0xFF);
        for (size_t i = 0; i < 8; ++i) ASSERT_EQ(0xA5, out[i]) << count;
        for (size_t i = 0; i < 8; ++i) ASSERT_EQ(0xA5, out[8 + count + i]) << count;
        for (size_t i = 0; i < count; ++i)
          ASSERT_EQ(255 - Luma_Formula(in[3 * i], in[3 * i + 1], in[3 * i + 2]), out[8 + i])
              << "count " << count << " offset " << offset << " dot " << i;
      }
    }
  }
}

TEST(LumaPlane, GreysAndTheWellKnownDots) {
  // Grey levels are where the rounding shows: 0.299 + 0.587 + 0.114 is a
  // hair below 1, so (1, 1, 1) gives 0.
  EXPECT_EQ(0, Luma_Dot(1, 1, 1));
  EXPECT_EQ(255, Luma_Dot(255, 255, 255));
  EXPECT_EQ(76, Luma_Dot(255, 0, 0));
  EXPECT_EQ(44, Luma_Dot(0, 72, 24));
  std::vector<uint8_t> grey(256 * 3);
  for (int v = 0; v < 256; ++v) grey[3 * v] = grey[3 * v + 1] = grey[3 * v + 2] = static_cast<uint8_t>(v);
  for (auto way : Luma_Ways()) {
    std::vector<uint8_t> out(256);
    way(grey.data(), out.data(), 256, 0);
    for (int v = 0; v < 256; ++v) ASSERT_EQ(Luma_Formula(v, v, v), out[v]) << v;
  }
}

// The dots whose integer sum 299 R + 587 G + 114 B is a multiple of 1000 are
// the only ones where the double sum may truncate one lower, so they are
// the ones the integer ways look up.  Every such colour, shuffled and mixed
// with other dots so that every lane of a step meets them alone and in
// company, gives the formula's byte in every way.
TEST(LumaPlane, EverySumOnAMultipleOfAThousandMatchesTheFormula) {
  std::vector<uint8_t> rgb;
  size_t lower = 0;
  for (int r = 0; r < 256; ++r)
    for (int g = 0; g < 256; ++g)
      for (int b = 0; b < 256; ++b)
        if ((299 * r + 587 * g + 114 * b) % 1000 == 0) {
          rgb.insert(rgb.end(), {uint8_t(r), uint8_t(g), uint8_t(b)});
          if (Luma_Formula(r, g, b) * 1000 != 299 * r + 587 * g + 114 * b) ++lower;
        }
  // The counts the integer ways rely on: 16,774 such colours, 3,464 of them
  // one lower in double precision.
  ASSERT_EQ(16774u, rgb.size() / 3);
  ASSERT_EQ(3464u, lower);
  std::mt19937 rng(20261124);
  std::uniform_int_distribution<int> byte(0, 255), coin(0, 3);
  for (int round = 0; round < 4; ++round) {
    std::vector<uint8_t> mixed;
    for (size_t i = 0; i < rgb.size(); i += 3) {
      if (round > 0 && coin(rng) == 0)
        for (int k = 0; k < 3; ++k) mixed.push_back(static_cast<uint8_t>(byte(rng)));
      mixed.insert(mixed.end(), rgb.begin() + i, rgb.begin() + i + 3);
    }
    const size_t count = mixed.size() / 3;
    for (auto way : Luma_Ways()) {
      std::vector<uint8_t> out(count);
      way(mixed.data(), out.data(), count, 0);
      for (size_t i = 0; i < count; ++i)
        ASSERT_EQ(Luma_Formula(mixed[3 * i], mixed[3 * i + 1], mixed[3 * i + 2]), out[i])
            << "round " << round << " dot " << i;
    }
    // Shuffle whole colours, so the next round meets them in another order.
    for (size_t i = rgb.size() / 3; i > 1; --i) {
      size_t j = std::uniform_int_distribution<size_t>(0, i - 1)(rng);
      for (int k = 0; k < 3; ++k) std::swap(rgb[3 * (i - 1) + k], rgb[3 * j + k]);
    }
  }
}

// A plain area repeats the same dots, and the AVX2 way then takes the bytes
// of the eight dots before again.  Rows where each group of eight dots is
// the group before, or that group with one byte changed (at every position
// in turn), at every start offset: every way gives the formula's bytes.
TEST(LumaPlane, RepeatedAndNearlyRepeatedGroupsMatchTheFormula) {
  std::mt19937 rng(20261125);
  std::uniform_int_distribution<int> byte(0, 255), coin(0, 2);
  for (size_t offset = 0; offset < 8; ++offset) {
    std::vector<uint8_t> rgb(3 * offset);
    for (auto& v : rgb) v = static_cast<uint8_t>(byte(rng));
    std::vector<uint8_t> group(24);
    for (auto& v : group) v = static_cast<uint8_t>(byte(rng));
    for (size_t g = 0; g < 600; ++g) {
      if (coin(rng) == 0) group[g % 24] = static_cast<uint8_t>(group[g % 24] + 1 + byte(rng) % 255);
      if (g % 100 == 50) group.assign(24, 0xFF);   // a white run
      rgb.insert(rgb.end(), group.begin(), group.end());
    }
    const size_t count = rgb.size() / 3;
    for (auto way : Luma_Ways()) {
      for (uint8_t flip : {uint8_t{0}, uint8_t{0xFF}}) {
        std::vector<uint8_t> out(count);
        way(rgb.data(), out.data(), count, flip);
        for (size_t i = 0; i < count; ++i)
          ASSERT_EQ(Luma_Formula(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]) ^ flip, out[i])
              << "offset " << offset << " dot " << i;
      }
    }
  }
}

// Long plain areas: the AVX2 way then takes whole spans of 32 dots from the
// 32 before them.  Runs of one colour, or of one group of eight dots, of
// every length up to 100 groups, each ended by a change of one byte (at
// every position in turn), at every start offset: every way gives the
// formula's bytes.
TEST(LumaPlane, LongPlainAreasMatchTheFormula) {
  std::mt19937 rng(20261126);
  std::uniform_int_distribution<int> byte(0, 255);
  for (size_t offset = 0; offset < 8; ++offset) {
    std::vector<uint8_t> rgb(3 * offset, 0xFF);
    std::vector<uint8_t> group(24, 0xFF);
    for (size_t run = 1; run <= 100; ++run) {
      for (size_t g = 0; g < run; ++g) rgb.insert(rgb.end(), group.begin(), group.end());
      if (run % 3 == 0) {
        group.assign(24, static_cast<uint8_t>(byte(rng)));   // a plain colour
      } else {
        group[run % 24] = static_cast<uint8_t>(group[run % 24] + 1 + byte(rng) % 255);
      }
    }
    const size_t count = rgb.size() / 3;
    for (auto way : Luma_Ways()) {
      for (uint8_t flip : {uint8_t{0}, uint8_t{0xFF}}) {
        std::vector<uint8_t> out(count + 40, 0x5A);
        std::vector<uint8_t> input(rgb);
        way(input.data(), out.data(), count, flip);
        for (size_t i = 0; i < count; ++i)
          ASSERT_EQ(Luma_Formula(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]) ^ flip, out[i])
              << "offset " << offset << " dot " << i;
        for (size_t i = count; i < count + 40; ++i) ASSERT_EQ(0x5A, out[i]) << "offset " << offset;
      }
    }
  }
}
