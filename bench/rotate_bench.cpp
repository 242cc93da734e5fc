// Rotation alone: by kind of pixel and instruction set, by angle, and by size.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "frame/scratch.h"
#include "rotate/kernels.h"
#include "rotate/plain_rotation.h"
#include "rotate/rotate_image.h"
#include "rotate/rotate_job.h"

namespace vorlanepic {
namespace {

struct Kind {
  const char* name;
  int32_t bitsPerPixel;
  int32_t interpolation;
};

constexpr Kind kKinds[] = {
    {"grey_bilinear", 8, INTERP_BILINEAR},  {"grey_nearest", 8, INTERP_NEAREST},
    {"grey_bicubic", 8, INTERP_BICUBIC},    {"colour_bilinear", 24, INTERP_BILINEAR},
    {"colour_nearest", 24, INTERP_NEAREST}, {"colour_bicubic", 24, INTERP_BICUBIC},
    {"bit_nearest", 1, INTERP_NEAREST}};

constexpr const char* kSetNames[] = {"scalar", "sse2", "avx2", "avx512"};

// A page of 9/10 the width and 14/15 the height of its image, turned about the middle.
struct Scan {
  frame::ScratchImage image;
  rotate::RowSpans region;
  rotate::Turn turn{};
};

// The rows and columns of a turned rectangle, as a corner solver would give them.
void OutlinePage(double angle, double halfWidth, double halfHeight, Scan& scan) {
  const ImageRec& image = *scan.image.rec();
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  if (!scan.region.spans.Allocate(static_cast<size_t>(image.height))) return;
  scan.region.top = image.height;
  scan.region.bottom = -1;
  for (int32_t y = 0; y < image.height; ++y) {
    // Points x with |u| <= halfWidth and |v| <= halfHeight in the page's own axes.
    double left = 0;
    double right = image.width - 1;
    const double dy = y - scan.turn.centerY;
    const auto clip = [&](double slope, double rest, double limit) {
      if (std::abs(slope) < 1e-9) {
        if (std::abs(rest) > limit) right = left - 1;
        return;
      }
      const double a = (-limit - rest) / slope + scan.turn.centerX;
      const double b = (limit - rest) / slope + scan.turn.centerX;
      left = std::max(left, std::min(a, b));
      right = std::min(right, std::max(a, b));
    };
    clip(cosine, -sine * dy, halfWidth);
    clip(sine, cosine * dy, halfHeight);
    scan.region.spans[static_cast<size_t>(y)] = {static_cast<int32_t>(std::ceil(left)),
                                                 static_cast<int32_t>(std::floor(right))};
    if (right < left) continue;
    scan.region.top = std::min(scan.region.top, y);
    scan.region.bottom = y;
  }
}

std::unique_ptr<Scan> MakeScan(int32_t width, int32_t height, const Kind& kind, double degrees) {
  auto scan = std::make_unique<Scan>();
  if (Imgbuf_New(scan->image.rec(), width, height, kind.bitsPerPixel, 0) != 0) return nullptr;
  uint32_t noise = 1;
  const ImageRec& image = *scan->image.rec();
  for (int32_t i = 0; i < image.imageBytes; ++i) {
    noise = noise * 1664525U + 1013904223U;
    image.pixels[i] = static_cast<uint8_t>(noise >> 24);
  }
  const double angle = degrees * 3.14159265358979 / 180;
  scan->turn = {angle, width / 2, height / 2, width * 9 / 10, height * 14 / 15, kind.interpolation};
  OutlinePage(angle, 0.5 * scan->turn.outWidth, 0.5 * scan->turn.outHeight, *scan);
  return scan;
}

void CountPixels(benchmark::State& state, const Scan& scan) {
  const int64_t pixels = int64_t{scan.turn.outWidth} * scan.turn.outHeight;
  state.SetItemsProcessed(state.iterations() * pixels);
}

void RunRotateImage(benchmark::State& state, const Scan& scan) {
  const uint8_t fill[3] = {255, 0, 0};
  for ([[maybe_unused]] auto iteration : state) {
    frame::ScratchImage target;
    if (rotate::RotateImage(scan.image.rec(), target.rec(), &scan.region, scan.turn, fill) !=
        STATUS_OK) {
      state.SkipWithError("not rotated");
    }
  }
  CountPixels(state, scan);
}

// One thread, without the threads' and the fresh output's cost.
void RunPlain(benchmark::State& state, const Scan& scan) {
  const uint8_t fill[3] = {255, 0, 0};
  frame::ScratchImage target;
  rotate::RotateJob job{*scan.image.rec(), *target.rec(), scan.region, scan.turn, fill, {}};
  if (Imgbuf_New(target.rec(), scan.turn.outWidth, scan.turn.outHeight,
                 scan.image.rec()->bitsPerPixel, 0) != 0 ||
      !job.steps.Build(scan.turn.angle, static_cast<size_t>(scan.turn.outWidth) +
                                            static_cast<size_t>(scan.turn.outHeight))) {
    return state.SkipWithError("no memory");
  }
  for ([[maybe_unused]] auto iteration : state) {
    rotate::RotateRowsPlain(job, 0, scan.turn.outHeight - 1);
  }
  CountPixels(state, scan);
}

template <typename Run>
void Register(const std::string& name, int32_t width, int32_t height, const Kind& kind,
              double degrees, Run run) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [=](benchmark::State& state) {
                                 const auto scan = MakeScan(width, height, kind, degrees);
                                 if (scan == nullptr) return state.SkipWithError("no memory");
                                 run(state, *scan);
                               })
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
}

struct Size {
  const char* name;
  int32_t width;
  int32_t height;
};
constexpr Size kSizes[] = {
    {"2MP", 1200, 1800}, {"8MP", 2400, 3500}, {"33MP", 4800, 7000}, {"96MP", 8200, 11800}};

void RegisterPage(const Kind& kind) {
  const std::string name = std::string("page/") + kind.name + "/";
  Register(name + "plain_one_thread", 2000, 3000, kind, 2.0, RunPlain);
  for (const frame::InstructionSet set : frame::kInstructionSets) {
    if (!frame::HasInstructionSet(set)) continue;
    Register(name + kSetNames[static_cast<size_t>(set)], 2000, 3000, kind, 2.0,
             [set](benchmark::State& state, const Scan& scan) {
               rotate::SelectRotateKernels(set);
               RunRotateImage(state, scan);
               rotate::SelectRotateKernels(frame::BestInstructionSet());
             });
  }
}

void RegisterGrowth(const Kind& kind) {
  for (const Size& size : kSizes) {
    for (const char* degrees : {"0.5", "2", "10", "40"}) {
      Register(std::string("growth/") + kind.name + "/" + size.name + "/" + degrees + "deg",
               size.width, size.height, kind, std::stod(degrees), RunRotateImage);
    }
  }
}

}  // namespace
}  // namespace vorlanepic

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (const auto& kind : vorlanepic::kKinds) vorlanepic::RegisterPage(kind);
  for (const auto& kind : vorlanepic::kKinds) vorlanepic::RegisterGrowth(kind);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
