// The page engine's way from a scan to the upright page: detect and apply, as a host calls them.
#include <cstdlib>
#include <memory>

#include "straighteners.h"
#include "vorlane/vorlane.h"

namespace vorlanepic::bench {
namespace {

struct FreePixels {
  void operator()(uint8_t* pixels) const { std::free(pixels); }
};
struct FreeContext {
  void operator()(vorlane_context* context) const { vorlane_context_free(context); }
};

int32_t EngineInterpolation(int32_t interpolation) {
  switch (interpolation) {
    case INTERP_BICUBIC:
      return VORLANE_BICUBIC;
    case INTERP_BILINEAR:
      return VORLANE_BILINEAR;
    default:
      return VORLANE_NEAREST;
  }
}

int32_t FormatOf(const ImageRec& image) {
  switch (image.bitsPerPixel) {
    case 1:
      return VORLANE_BIT_LIGHT;
    case 8:
      return VORLANE_GREY8;
    default:
      return VORLANE_BGR24;
  }
}

// Everything in fresh memory, the context's as well.
bool DetectAndApply(const vorlane_image& scan, int32_t interpolation, int32_t threads,
                    StraightPage* check) {
  vorlane_context* made = nullptr;
  if (vorlane_context_new(&made) != VORLANE_OK) return false;
  const std::unique_ptr<vorlane_context, FreeContext> context(made);
  vorlane_apply_options options;
  vorlane_apply_options_init(&options, sizeof options);
  options.interpolation = EngineInterpolation(interpolation);
  options.threads = threads;
  vorlane_finding finding;
  vorlane_finding_init(&finding, sizeof finding);
  vorlane_result result{};
  if (vorlane_detect(made, &scan, nullptr, &finding) != VORLANE_OK ||
      vorlane_result_size(&scan, &finding, &options, &result.width, &result.height) != VORLANE_OK) {
    return false;
  }
  const size_t rowBytes = (vorlane_row_bytes(scan.format, result.width) + 3) / 4 * 4;
  const std::unique_ptr<uint8_t, FreePixels> pixels(
      static_cast<uint8_t*>(std::malloc(rowBytes * static_cast<size_t>(result.height))));
  result.pixels = pixels.get();
  result.stride = static_cast<ptrdiff_t>(rowBytes);
  if (vorlane_apply(made, &scan, &finding, &options, &result) != VORLANE_OK) return false;
  if (check == nullptr) return true;

  const int32_t bits = scan.format == VORLANE_BIT_LIGHT ? 1 : scan.format == VORLANE_GREY8 ? 8 : 24;
  auto page = std::make_shared<testing::TestImage>(result.width, result.height, bits);
  for (int32_t y = 0; y < result.height; ++y) {
    std::copy_n(result.pixels + y * result.stride, vorlane_row_bytes(scan.format, result.width),
                page->row(y));
  }
  *check = {-finding.turn, page};
  return true;
}

}  // namespace

std::vector<Straightener> EngineStraighteners(const testing::TestImage& scan,
                                              int32_t interpolation) {
  const ImageRec& rec = *scan.rec();
  const vorlane_image image{rec.pixels, rec.lineBytes, rec.width, rec.height, FormatOf(rec)};
  const auto onThreads = [&](const char* name, int32_t threads) {
    return Straightener{name, [=](StraightPage* check) {
                          return DetectAndApply(image, interpolation, threads, check);
                        }};
  };
  return {onThreads("vorlane, two threads in apply", 2), onThreads("vorlane, one thread", 1)};
}

}  // namespace vorlanepic::bench
