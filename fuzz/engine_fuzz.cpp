// The page engine: detect and apply on any page in any format, with any options and with findings
// that were edited.
#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "fuzz_pages.h"
#include "vorlane/vorlane.h"

using namespace vorlanepic;
using namespace vorlanepic::fuzz;

namespace {

constexpr uint8_t kMark = 0xC9;

// Rows of a format in guarded storage that begins with the first and ends with the last one.
class Rows {
 public:
  Rows(int32_t format, int32_t width, int32_t height, bool isBottomFirst, int32_t gap)
      : format_(format),
        width_(width),
        height_(height),
        row_(static_cast<ptrdiff_t>(vorlane_row_bytes(format, width))),
        distance_(row_ + gap),
        isBottomFirst_(isBottomFirst),
        bytes_(static_cast<size_t>(distance_ * (height - 1) + row_)) {
    std::fill(bytes_.begin(), bytes_.end(), kMark);
  }

  vorlane_image image() const { return {top(), stride(), width_, height_, format_}; }
  vorlane_result result() {
    return {bytes_.data() + (top() - bytes_.data()), stride(), width_, height_};
  }
  uint8_t* row(int32_t y) { return bytes_.data() + (top() - bytes_.data()) + y * stride(); }

  bool IsCleanBetweenRows() const {
    for (ptrdiff_t i = 0; i < static_cast<ptrdiff_t>(bytes_.size()); ++i) {
      if (i % distance_ >= row_ && bytes_[static_cast<size_t>(i)] != kMark) return false;
    }
    return true;
  }

 private:
  ptrdiff_t stride() const { return isBottomFirst_ ? -distance_ : distance_; }
  const uint8_t* top() const {
    return bytes_.data() + (isBottomFirst_ ? distance_ * (height_ - 1) : 0);
  }

  int32_t format_;
  int32_t width_;
  int32_t height_;
  ptrdiff_t row_;
  ptrdiff_t distance_;
  bool isBottomFirst_;
  testing::GuardedBytes bytes_;
};

Rows ReadPage(FuzzInput& input) {
  const bool isOther = input.Flag();
  const bool isWide = input.Flag();
  const bool isBottomFirst = input.Flag();
  const int32_t gap = input.Flag() ? input.In(0, 9) : 0;
  const testing::TestImage drawn = DrawFuzzPage(input);
  const ImageRec& rec = *drawn.rec();
  constexpr int32_t kOfBits[] = {VORLANE_BIT_LIGHT, VORLANE_BIT_DARK};
  constexpr int32_t kOfColours[] = {VORLANE_BGR24, VORLANE_RGB24, VORLANE_BGRX32, VORLANE_RGBX32};
  const int32_t format = rec.bitsPerPixel == 1   ? kOfBits[isOther ? 1 : 0]
                         : rec.bitsPerPixel == 8 ? VORLANE_GREY8
                                                 : kOfColours[(isOther ? 1 : 0) + (isWide ? 2 : 0)];
  Rows page(format, rec.width, rec.height, isBottomFirst, gap);
  for (int32_t y = 0; y < rec.height; ++y) {
    if (format < VORLANE_BGRX32) {
      std::copy_n(drawn.row(y), vorlane_row_bytes(format, rec.width), page.row(y));
      continue;
    }
    for (int32_t x = 0; x < rec.width; ++x) {
      std::copy_n(drawn.row(y) + static_cast<ptrdiff_t>(3) * x, 3,
                  page.row(y) + static_cast<ptrdiff_t>(4) * x);
    }
  }
  return page;
}

vorlane_detect_options ReadDetectOptions(FuzzInput& input) {
  vorlane_detect_options options{};
  vorlane_detect_options_init(&options, sizeof options);
  if (input.Flag()) return options;
  options.by = input.MostlyIn(0, 3);
  options.crop = input.MostlyIn(0, 2);
  options.min_confidence = input.MostlyIn(0, 3);
  options.is_form = input.Flag() ? 1 : 0;
  options.has_no_mount = input.Flag() ? 1 : 0;
  options.max_turn = input.MostlyTenths(0, 45);
  options.min_turn = input.MostlyTenths(0, 45);
  options.margin = input.MostlyTenths(-20, 20);
  return options;
}

vorlane_apply_options ReadApplyOptions(FuzzInput& input) {
  vorlane_apply_options options{};
  vorlane_apply_options_init(&options, sizeof options);
  if (input.Flag()) return options;
  options.interpolation = input.MostlyIn(0, 2);
  options.quarter_turns = input.MostlyIn(0, 3);
  options.keep_whole = input.Flag() ? 1 : 0;
  options.min_confidence = input.MostlyIn(0, 3);
  options.threads = input.MostlyIn(1, 3);
  for (uint8_t& level : options.fill) level = input.Byte();
  options.margin = input.MostlyTenths(-20, 20);
  options.min_turn = input.MostlyTenths(0, 5);
  options.max_turn = input.MostlyTenths(0, 180);
  options.max_growth = input.MostlyTenths(1, 12);
  return options;
}

void RequireSoundFinding(const vorlane_finding& finding, const vorlane_image& page) {
  Require(finding.page_width == page.width && finding.page_height == page.height,
          "a finding tells the size of its page");
  Require(finding.turn_confidence >= VORLANE_REFUSED && finding.turn_confidence <= VORLANE_SURE &&
              finding.cut_confidence >= VORLANE_REFUSED && finding.cut_confidence <= VORLANE_SURE,
          "confidences are of those that there are");
  Require(std::abs(finding.turn) <= 180 && finding.expected >= 0 && finding.expected <= 1,
          "turn and share are numbers in their ranges");
  for (const vorlane_point& corner : finding.corners) {
    Require(std::isfinite(corner.x) && std::isfinite(corner.y), "corners are numbers");
  }
  Require(finding.reason_count >= 1 && finding.reason_count <= VORLANE_REASON_ROOM,
          "an answer has reasons, and there is room for them");
}

// What a person or a damaged report may put in the place of what was found.
void Edit(FuzzInput& input, vorlane_finding* finding) {
  finding->turn_confidence = input.MostlyIn(0, 3);
  finding->cut_confidence = input.MostlyIn(0, 3);
  if (input.Flag()) finding->turn = input.MostlyTenths(-180, 180);
  if (input.Flag()) {
    for (vorlane_point& corner : finding->corners) {
      corner = {input.MostlyTenths(-20, 160), input.MostlyTenths(-20, 160)};
    }
  }
  if (input.Byte() < 8) finding->page_width = input.Int32();
}

void Apply(vorlane_context* context, const vorlane_image& page, const vorlane_finding& finding,
           FuzzInput& input) {
  const vorlane_apply_options options = ReadApplyOptions(input);
  const bool isBottomFirst = input.Flag();
  const int32_t gap = input.Flag() ? input.In(0, 9) : 0;
  int32_t width = -1;
  int32_t height = -1;
  const vorlane_status sized = vorlane_result_size(&page, &finding, &options, &width, &height);
  if (sized != VORLANE_OK) {
    Require(width == -1 && height == -1, "a refused call leaves the size alone");
    vorlane_result none{};
    Require(vorlane_apply(context, &page, &finding, &options, &none) != VORLANE_OK,
            "what has no size is not made");
    return;
  }
  int32_t mostWide = 0;
  int32_t mostHigh = 0;
  Require(vorlane_max_result_size(&page, &options, &mostWide, &mostHigh) == VORLANE_OK &&
              width >= 1 && height >= 1 && width <= mostWide && height <= mostHigh,
          "a result keeps within the bounds that were told");
  constexpr int64_t kMostPixels = 1 << 17;  // larger ones show nothing new and take long
  if (int64_t{width} * height > kMostPixels) return;

  Rows made(page.format, width, height, isBottomFirst, gap);
  vorlane_result small = made.result();
  small.height = height - 1;
  Require(vorlane_apply(context, &page, &finding, &options, &small) == VORLANE_RESULT_TOO_SMALL &&
              small.width == width && small.height == height,
          "too little room is told, with what is needed");
  vorlane_result result = made.result();
  Require(vorlane_apply(context, &page, &finding, &options, &result) == VORLANE_OK &&
              result.width == width && result.height == height && made.IsCleanBetweenRows(),
          "a result with room is made whole, and nothing beside it is touched");
}

struct ContextCloser {
  void operator()(vorlane_context* context) const { vorlane_context_free(context); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzInput input(data, size);
  const bool isDecided = input.Byte() < 96;
  const bool isEdited = input.Byte() < 96;
  const Rows rows = ReadPage(input);
  const vorlane_image page = rows.image();
  vorlane_context* made = nullptr;
  Require(vorlane_context_new(&made) == VORLANE_OK, "there is memory for a context");
  const std::unique_ptr<vorlane_context, ContextCloser> context(made);

  vorlane_finding finding{};
  vorlane_finding_init(&finding, sizeof finding);
  if (isDecided) {
    const double turn = input.MostlyTenths(-180, 180);
    if (vorlane_finding_decide(&finding, page.width, page.height, turn, nullptr) != VORLANE_OK) {
      return 0;
    }
  } else {
    const vorlane_detect_options options = ReadDetectOptions(input);
    const vorlane_status status = vorlane_detect(context.get(), &page, &options, &finding);
    Require(status == VORLANE_OK || status == VORLANE_BAD_OPTION, "every page has an answer");
    if (status == VORLANE_OK) RequireSoundFinding(finding, page);
  }
  if (isEdited) Edit(input, &finding);
  Apply(context.get(), page, finding, input);
  return 0;
}
