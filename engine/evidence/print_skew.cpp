#include "engine/evidence/print_skew.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>
#include <span>

#include "engine/evidence/row_kernels.h"

namespace vorlane::evidence {
namespace {

using vorlanepic::frame::ScratchArray;

// The sweep over all angles looks at the ink four times smaller; steps in degrees.
constexpr int32_t kSweepFactor = 4;
constexpr double kSweepRange = 45.0;
constexpr double kSweepStep = 1.0;
constexpr double kHalfRange = 4.0;
constexpr double kHalfStep = 0.5;
constexpr double kFinestStep = 0.01;
// Sums of squares below these are noise.
constexpr double kLeastPeak = 10000.0;
constexpr double kLeastValley = 0.000002;  // times width * width * height

// Columns of a strip are summed at the angle of the sweep's best: for angles up to a half's range
// away the sums would lie less than a pixel elsewhere.
constexpr int32_t kStripColumns = 8;

constexpr double kHalfConfidence = 1.2;  // a half speaks
constexpr double kNearDegrees = 0.45;
constexpr double kOffConfidence = 1.6;  // a half speaks against
constexpr double kOffDegrees = 0.8;

// Rounding to rows would make the angle at which the strips were summed look sharper than others.
// A strip is summed off by a part of a row, which its own shift takes back: then all angles are
// rounded twice. Multiples of the golden section spread the parts evenly.
double DitherOf(int32_t strip) {
  const double place = strip * std::numbers::phi;
  return place - std::floor(place) - 0.5;
}

double TangentOf(double degrees) { return std::tan(degrees * std::numbers::pi / 180.0); }

// How sharply the lines stand out: the sum of squared differences of neighbouring sums.
double SharpnessOf(std::span<const uint16_t> sums) {
  return static_cast<double>(BestRowKernels().sumSquaredSteps(sums.data(), sums.size()));
}

// The ink four times smaller: a pixel is ink when two of its four quarters hold some.
class SmallInk {
 public:
  bool Make(const InkPicture& ink) {
    width_ = static_cast<int32_t>(ink.stride) / kSweepFactor;
    height_ = ink.height / kSweepFactor;
    if (!columns_.Allocate(static_cast<size_t>(width_) * RowCount())) return false;
    // A line through the whole width at 45 degrees leaves the picture by half the width.
    if (!sums_.Allocate(static_cast<size_t>(height_ + 2 * Margin()))) return false;
    for (int32_t y = 0; y < height_; ++y) AddRow(ink, y);
    return true;
  }

  double SharpnessAt(double degrees) {
    const double tangent = TangentOf(degrees);
    std::ranges::fill(sums_.span(), uint16_t{0});
    for (int32_t x = 0; x < width_; ++x) {
      const double shift = (x - width_ / 2) * tangent;
      const int32_t top = Margin() - static_cast<int32_t>(std::lround(shift));
      kernels_.addCounts(Column(x), RowCount(), sums_.data() + top);
    }
    return SharpnessOf(sums_.span());
  }

 private:
  int32_t Margin() const { return width_ / 2 + 2; }
  size_t RowCount() const { return static_cast<size_t>(height_); }
  uint8_t* Column(int32_t x) { return columns_.data() + static_cast<size_t>(x) * RowCount(); }

  // Eight pixels of two rows, as four bytes of 0 or 1 in 16-bit lanes: a pair and a pair of them.
  static uint64_t Pairs(const uint8_t* upper, const uint8_t* lower) {
    uint64_t a = 0;
    uint64_t b = 0;
    std::memcpy(&a, upper, sizeof a);
    std::memcpy(&b, lower, sizeof b);
    const uint64_t either = a | b;
    return (either | either >> 8) & 0x0001000100010001;
  }

  void AddRow(const InkPicture& ink, int32_t y) {
    const uint8_t* row = ink.Row(y * kSweepFactor);
    for (size_t i = 0; i < ink.stride; i += 8) {
      const uint64_t quarters = Pairs(row + i, row + i + ink.stride) +
                                Pairs(row + i + 2 * ink.stride, row + i + 3 * ink.stride);
      if (quarters == 0) continue;
      const uint64_t both = quarters + (quarters >> 16);
      const auto x = static_cast<int32_t>(i / kSweepFactor);
      Column(x)[y] = (both & 7) >= 2;
      Column(x + 1)[y] = (both >> 32 & 7) >= 2;
    }
  }

  const RowKernels& kernels_ = BestRowKernels();
  int32_t width_ = 0;
  int32_t height_ = 0;
  ScratchArray<uint8_t> columns_;  // one behind the other, a byte for each row
  ScratchArray<uint16_t> sums_;
};

// A part of the strips: strips from..to - 1, rows top..bottom - 1.
struct StripPart {
  int32_t from;
  int32_t to;
  int32_t top;
  int32_t bottom;
};

// The ink turned back by an angle, in strips of columns: a byte for each row of each strip.
class InkStrips {
 public:
  bool Make(const InkPicture& ink, double degrees) {
    tangent_ = TangentOf(degrees);
    strips_ = static_cast<int32_t>(ink.stride) / kStripColumns;
    width_ = static_cast<int32_t>(ink.stride);
    margin_ = static_cast<int32_t>(std::ceil(std::abs(tangent_) * width_ / 2)) + 2;
    rows_ = ink.height + 2 * margin_;
    const auto rows = static_cast<size_t>(rows_);
    if (!counts_.Allocate(rows * static_cast<size_t>(strips_))) return false;
    // At the steepest, a half's whole range away, tangents differ by a fifth.
    slack_ = width_ / 8 + 2;
    if (!sums_.Allocate(rows + 2 * static_cast<size_t>(slack_))) return false;
    if (!shifts_.Allocate(static_cast<size_t>(width_))) return false;
    for (int32_t x = 0; x < width_; ++x) {
      const double shift = (x - width_ / 2) * tangent_ + DitherOf(x / kStripColumns);
      shifts_[static_cast<size_t>(x)] = margin_ - static_cast<int32_t>(std::lround(shift));
    }
    for (int32_t y = 0; y < ink.height; ++y) AddRow(ink.Row(y), y);
    return true;
  }

  StripPart Whole() const { return {0, strips_, 0, rows_}; }
  std::array<StripPart, 4> Halves() const {
    return {StripPart{0, strips_ / 2, 0, rows_}, StripPart{strips_ / 2, strips_, 0, rows_},
            StripPart{0, strips_, 0, rows_ / 2}, StripPart{0, strips_, rows_ / 2, rows_}};
  }

  double SharpnessAt(double degrees, const StripPart& part) {
    const double tangent = TangentOf(degrees) - tangent_;
    const auto top = static_cast<size_t>(part.top);
    const auto bottom = static_cast<size_t>(part.bottom);
    const auto slack = static_cast<size_t>(slack_);
    uint16_t* sums = sums_.data();
    std::fill(sums + top, sums + bottom + 2 * slack, uint16_t{0});
    for (int32_t strip = part.from; strip < part.to; ++strip) {
      const double middle = (strip + 0.5) * kStripColumns - 0.5 - width_ / 2;
      const auto shift = static_cast<int32_t>(std::lround(DitherOf(strip) - middle * tangent));
      const uint8_t* counts = counts_.data() + static_cast<size_t>(strip) * RowCount();
      uint16_t* shifted = sums + slack_ + std::clamp(shift, -slack_, slack_);
      kernels_.addCounts(counts + top, bottom - top, shifted + top);
    }
    return SharpnessOf({sums + top, bottom - top + 2 * slack});
  }

  double LeastValley() const {
    return kLeastValley * width_ * width_ * static_cast<double>(rows_ - 2 * margin_);
  }

 private:
  size_t RowCount() const { return static_cast<size_t>(rows_); }

  void AddRow(const uint8_t* row, int32_t y) {
    for (int32_t strip = 0; strip < strips_; ++strip) {
      const auto x = static_cast<size_t>(strip) * kStripColumns;
      uint64_t word = 0;
      std::memcpy(&word, row + x, sizeof word);
      if (word == 0) continue;
      uint8_t* counts = counts_.data() + static_cast<size_t>(strip) * RowCount() + y;
      if (shifts_[x] == shifts_[x + kStripColumns - 1]) {
        uint8_t& count = counts[shifts_[x]];
        count = static_cast<uint8_t>(count + std::popcount(word));
        continue;
      }
      for (size_t i = 0; i < kStripColumns; ++i) {
        uint8_t& count = counts[shifts_[x + i]];
        count = static_cast<uint8_t>(count + row[x + i]);
      }
    }
  }

  const RowKernels& kernels_ = BestRowKernels();
  double tangent_ = 0.0;
  int32_t width_ = 0;
  int32_t strips_ = 0;
  int32_t rows_ = 0;    // of a strip
  int32_t margin_ = 0;  // rows before the picture's own
  int32_t slack_ = 0;
  ScratchArray<uint8_t> counts_;
  ScratchArray<int32_t> shifts_;  // of each column
  ScratchArray<uint16_t> sums_;
};

// Halves the step around the best of three until it is finest. The confidence is the largest
// sharpness over the smallest met on the way.
template <typename Sharpness>
ProfilePeak SearchAround(double degrees, double step, double leastValley, Sharpness sharpnessAt) {
  double centre = sharpnessAt(degrees);
  double lowest = std::min({centre, sharpnessAt(degrees - step), sharpnessAt(degrees + step)});
  for (double delta = step / 2; delta >= kFinestStep; delta /= 2) {
    const double before = sharpnessAt(degrees - delta);
    const double behind = sharpnessAt(degrees + delta);
    lowest = std::min({lowest, before, behind});
    if (before > centre && before >= behind) {
      degrees -= delta;
      centre = before;
    } else if (behind > centre) {
      degrees += delta;
      centre = behind;
    }
  }
  const bool isPeak = centre >= kLeastPeak && lowest > leastValley;
  return {degrees, isPeak ? centre / lowest : 0.0};
}

// The angle of the sharpest step of a sweep; the range's ends are no peaks.
template <typename Sharpness>
bool Sweep(double centre, double range, double step, Sharpness sharpnessAt, double* best) {
  const auto steps = static_cast<int32_t>(std::lround(2 * range / step));
  double highest = 0.0;
  int32_t place = 0;
  for (int32_t i = 0; i <= steps; ++i) {
    const double sharpness = sharpnessAt(centre - range + i * step);
    if (sharpness > highest) {
      highest = sharpness;
      place = i;
    }
  }
  *best = centre - range + place * step;
  return place > 0 && place < steps;
}

ProfilePeak FindHalf(InkStrips& strips, const StripPart& part, double centre) {
  const auto sharpnessAt = [&](double degrees) { return strips.SharpnessAt(degrees, part); };
  double best = 0.0;
  if (!Sweep(centre, kHalfRange, kHalfStep, sharpnessAt, &best)) return {best, 0.0};
  return SearchAround(best, kHalfStep, strips.LeastValley() / 4, sharpnessAt);
}

void Rate(PrintSkew* skew) {
  for (const ProfilePeak& half : skew->halves) {
    const double apart = std::abs(half.degrees - skew->whole.degrees);
    if (half.confidence >= kHalfConfidence && apart <= kNearDegrees) ++skew->halvesNear;
    if (half.confidence >= kOffConfidence && apart > kOffDegrees) ++skew->halvesOff;
  }
  const double confidence = skew->whole.confidence;
  if (confidence >= 4.0 && skew->halvesNear >= 3 && skew->halvesOff == 0) {
    skew->strength = PrintStrength::kStrong;
  } else if (confidence >= 3.0 && skew->halvesNear >= 2 && skew->halvesOff <= 1) {
    skew->strength = PrintStrength::kFair;
  } else if (confidence >= 2.0 && skew->halvesNear >= 2) {
    skew->strength = PrintStrength::kWeak;
  }
}

}  // namespace

bool FindPrintSkew(const InkPicture& ink, PrintSkew* skew) {
  *skew = {};
  if (ink.width < 2 * kStripColumns || ink.height < 2 * kSweepFactor) return true;
  SmallInk small;
  if (!small.Make(ink)) return false;
  double coarse = 0.0;
  const auto smallSharpness = [&](double degrees) { return small.SharpnessAt(degrees); };
  if (!Sweep(0.0, kSweepRange, kSweepStep, smallSharpness, &coarse)) return true;

  InkStrips strips;
  if (!strips.Make(ink, coarse)) return false;
  const StripPart all = strips.Whole();
  const auto sharpnessAt = [&](double degrees) { return strips.SharpnessAt(degrees, all); };
  skew->whole = SearchAround(coarse, kSweepStep, strips.LeastValley(), sharpnessAt);
  if (skew->whole.confidence <= 0.0) return true;
  const std::array<StripPart, 4> parts = strips.Halves();
  for (size_t i = 0; i < parts.size(); ++i) {
    skew->halves[i] = FindHalf(strips, parts[i], skew->whole.degrees);
  }
  Rate(skew);
  return true;
}

}  // namespace vorlane::evidence
