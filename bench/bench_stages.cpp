// Micro-benchmarks: every image stage beside its plain reference, 2072 x 1328.
// Copyright 2026 The rastertobrellian authors.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "driver/printing_task.h"
#include "imaging/bilevel_fs.h"
#include "imaging/luma.h"
#include "imaging/resample.h"
#include "util/cpu.h"
#include "imaging/stages.h"
#include "reference/reference_stages.h"
#include "status/tables.h"

namespace {

constexpr uint32_t W = 2072, H = 1328;
constexpr size_t kDots = static_cast<size_t>(W) * H;

// 'Bench_Bytes()' - n random bytes, the same for every run.
std::vector<uint8_t> Bench_Bytes(size_t n, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<uint8_t> v(n);
  for (auto& b : v) b = static_cast<uint8_t>(rng() >> 24);
  return v;
}

// 'Bench_Task()' - A task of the 600 dpi model.
TPrintingTask* Bench_Task() {
  static TPrintingTask* task = [] {
    Status_BuildTables();
    TPrintingTask* t = new TPrintingTask(0, nullptr);
    t->printerModel = 1060;
    return t;
  }();
  return task;
}

// A photograph-like image: smooth gradients with noise, so that the purity
// test fails at once and the diffusion sees every level.
const std::vector<uint8_t>& Bench_Photo() {
  static std::vector<uint8_t> rgb = [] {
    std::vector<uint8_t> v = Bench_Bytes(kDots * 3, 7);
    for (size_t i = 0; i < kDots; ++i) {
      uint32_t x = i % W, y = static_cast<uint32_t>(i / W);
      for (int c = 0; c < 3; ++c) v[3 * i + c] = static_cast<uint8_t>((x / 9 + y / 6 + v[3 * i + c] / 8) & 255);
    }
    return v;
  }();
  return rgb;
}

// A pure black-and-white image: text-like bars on white.
const std::vector<uint8_t>& Bench_Pure() {
  static std::vector<uint8_t> rgb = [] {
    std::vector<uint8_t> v(kDots * 3, 255);
    for (size_t i = 0; i < kDots; ++i)
      if (((i % W) / 5 + (i / W) / 11) % 4 == 0) memset(&v[3 * i], 0, 3);
    return v;
  }();
  return rgb;
}

void Bench_Rate(benchmark::State& state, size_t perIteration) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * perIteration));
}

// Resampling the 2022 x 1276 card page to 2072 x 1307 (the CR80 case).
void BM_Resize_Reference(benchmark::State& state) {
  std::vector<uint8_t> src = Bench_Bytes(static_cast<size_t>(2022) * 1276 * 3, 3);
  for (auto _ : state) {
    uint8_t* out = nullptr;
    Ref_BSplineResize(src.data(), 2022, 1276, 2072, 1307, &out);
    benchmark::DoNotOptimize(out);
    free(out);
  }
  Bench_Rate(state, static_cast<size_t>(2072) * 1307);
}
void BM_Resize_Production(benchmark::State& state) {
  std::vector<uint8_t> src = Bench_Bytes(static_cast<size_t>(2022) * 1276 * 3, 3);
  for (auto _ : state) {
    uint8_t* out = nullptr;
    Image_BSplineResize(nullptr, src.data(), 2022, 1276, 2072, 1307, &out);
    benchmark::DoNotOptimize(out);
    free(out);
  }
  Bench_Rate(state, static_cast<size_t>(2072) * 1307);
}

// The two ways of the production resampler into a buffer kept between
// runs: the portable one, which processors without AVX2 take, and the AVX2
// one.
template <bool kAvx2>
void BM_Resample(benchmark::State& state) {
  std::vector<uint8_t> src = Bench_Bytes(static_cast<size_t>(2022) * 1276 * 3, 3);
  std::vector<uint8_t> out(static_cast<size_t>(2072) * 1307 * 3);
  TImageSource source = {src.data(), 3, 2022 * 3, 2022, 1276};
  for (auto _ : state) {
    if (kAvx2) Image_BSplineResampleAvx2(source, 2072, 1307, 2072, 1307, out.data(), 2072 * 3);
    else Image_BSplineResamplePortable(source, 2072, 1307, 2072, 1307, out.data(), 2072 * 3);
    benchmark::DoNotOptimize(out.data());
  }
  Bench_Rate(state, static_cast<size_t>(2072) * 1307);
}

// The whole conversion of a portrait 1276 x 2022 page (turn and resample).
template <bool kReference>
void BM_Convert(benchmark::State& state) {
  TPrintingTask* task = Bench_Task();
  cups_page_header2_t header;
  memset(&header, 0, sizeof header);
  header.cupsWidth = 1276;
  header.cupsHeight = 2022;
  header.cupsBytesPerLine = 1276 * 3;
  header.cupsBitsPerColor = 8;
  header.cupsColorSpace = CUPS_CSPACE_RGB;
  std::vector<uint8_t> page = Bench_Bytes(static_cast<size_t>(1276) * 3 * 2022, 4);
  task->pageHeader = &header;
  task->pageBuffer = page.data();
  for (auto _ : state) {
    uint8_t* out = nullptr;
    if (kReference) Ref_CUPSToPrinterRGB(task, &out);
    else Image_CUPSToPrinterRGB(task, &out);
    benchmark::DoNotOptimize(out);
    free(out);
  }
  task->pageBuffer = nullptr;
  task->pageHeader = nullptr;
  Bench_Rate(state, kDots);
}

template <bool kReference>
void BM_Bilevel(benchmark::State& state) {
  const std::vector<uint8_t>& rgb = Bench_Photo();
  for (auto _ : state) {
    uint8_t* out = nullptr;
    if (kReference) Ref_Bilevel(Bench_Task(), rgb.data(), &out, g_floydSteinbergKernel, 127);
    else Image_Bilevel(Bench_Task(), rgb.data(), &out, g_floydSteinbergKernel, 127);
    benchmark::DoNotOptimize(out);
    free(out);
  }
  Bench_Rate(state, kDots);
}

template <bool kReference>
void BM_HalftonePure(benchmark::State& state) {
  const std::vector<uint8_t>& rgb = Bench_Pure();
  for (auto _ : state) {
    uint8_t* out = nullptr;
    if (kReference) Ref_Halftone(Bench_Task(), rgb.data(), &out);
    else Image_Halftone(Bench_Task(), rgb.data(), &out);
    benchmark::DoNotOptimize(out);
    free(out);
  }
  Bench_Rate(state, kDots);
}

// The "SolidBlack" black rendering of the photo page, beside the designed
// diffusion of the same page (BM_BilevelFS_Production), and its plain
// reference.
template <bool kReference>
void BM_HalftoneSolidBlack(benchmark::State& state) {
  const std::vector<uint8_t>& rgb = Bench_Photo();
  for (auto _ : state) {
    uint8_t* out = nullptr;
    if (kReference) Ref_HalftoneSolidBlack(Bench_Task(), rgb.data(), &out);
    else Image_HalftoneSolidBlack(Bench_Task(), rgb.data(), &out);
    benchmark::DoNotOptimize(out);
    free(out);
  }
  Bench_Rate(state, kDots);
}

// The Floyd-Steinberg diffusion of the photo page one row at a time, the
// way of processors without AVX2 (BM_BilevelFS_Production takes the eight
// rows at once where the processor has AVX2).
void BM_BilevelFS_RowLoop(benchmark::State& state) {
  const std::vector<uint8_t>& rgb = Bench_Photo();
  uint8_t lighten[256];
  for (int32_t v = 0; v < 256; ++v) lighten[v] = static_cast<uint8_t>(v + ((255 - v) * 40) / 100);
  std::vector<uint8_t> mono(kDots), row(2072);
  for (auto _ : state) {
    Bilevel_FloydSteinberg(rgb.data(), mono.data(), row.data(), 2072, 1328, 127, lighten, nullptr);
    benchmark::DoNotOptimize(mono.data());
  }
  Bench_Rate(state, kDots);
}

template <bool kReference>
void BM_Resin(benchmark::State& state) {
  TPrintingTask* task = Bench_Task();
  memset(task->resinAreas, 0, sizeof task->resinAreas);
  task->resinAreas[0][0][0] = TArea{100, 100, 1800, 1000};
  task->resinAreas[0][1][0] = TArea{400, 400, 200, 200};
  task->resinFlag[0] = 90;
  const std::vector<uint8_t>& rgb = Bench_Photo();
  for (auto _ : state) {
    uint8_t* out = nullptr;
    if (kReference) Ref_StripToResin(task, rgb.data(), &out);
    else Image_StripToResin(task, rgb.data(), &out);
    benchmark::DoNotOptimize(out);
    free(out);
  }
  Bench_Rate(state, kDots);
}

// The inverted luminance plane of a UV or overlay page, three ways: the
// formula written plainly (one multiplication per channel), the exact
// integer sum one dot at a time, and the AVX2 way the filter takes where it
// can; the last also on a white plane (every dot grey, every group of
// eight the same as the one before).
void Luma_PlainFormula(const uint8_t* rgb, uint8_t* out, size_t count, uint8_t flip) {
  for (size_t i = 0; i < count; ++i, rgb += 3) {
    double y = 0.299 * rgb[0] + 0.587 * rgb[1] + 0.114 * rgb[2];
    out[i] = static_cast<uint8_t>((y > 255.0 ? 0xFF : static_cast<int>(y)) ^ flip);
  }
}

template <int kWay>
void BM_Luma(benchmark::State& state) {
  static const std::vector<uint8_t> white(kDots * 3, 0xFF);
  const std::vector<uint8_t>& rgb = kWay == 3 ? white : Bench_Photo();
  std::vector<uint8_t> out(kDots);
  if (kWay >= 2 && !Cpu_HaveAvx2()) {
    state.SkipWithError("no AVX2 on this processor");
    return;
  }
  for (auto _ : state) {
    if (kWay == 0) Luma_PlainFormula(rgb.data(), out.data(), kDots, 0xFF);
    else if (kWay == 1) Luma_PlaneScalar(rgb.data(), out.data(), kDots, 0xFF);
    else Luma_PlaneAvx2(rgb.data(), out.data(), kDots, 0xFF);
    benchmark::DoNotOptimize(out.data());
  }
  Bench_Rate(state, kDots);
}

}  // namespace

BENCHMARK(BM_Resize_Reference)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Resize_Production)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Resample, false)->Name("BM_Resample_Portable")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Resample, true)->Name("BM_Resample_Avx2")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Convert, true)->Name("BM_ConvertPortrait_Reference")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Convert, false)->Name("BM_ConvertPortrait_Production")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Bilevel, true)->Name("BM_BilevelFS_Reference")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Bilevel, false)->Name("BM_BilevelFS_Production")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_HalftonePure, true)->Name("BM_HalftonePure_Reference")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_HalftonePure, false)->Name("BM_HalftonePure_Production")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BilevelFS_RowLoop)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_HalftoneSolidBlack, true)->Name("BM_HalftoneSolidBlack_Reference")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_HalftoneSolidBlack, false)->Name("BM_HalftoneSolidBlack")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Resin, true)->Name("BM_Resin_Reference")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Resin, false)->Name("BM_Resin_Production")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Luma, 0)->Name("BM_InvertedLuma_Reference")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Luma, 1)->Name("BM_InvertedLuma_Integer")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Luma, 2)->Name("BM_InvertedLuma_Production")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Luma, 3)->Name("BM_InvertedLuma_ProductionWhite")->Unit(benchmark::kMillisecond);
