#include "app/files/row_converter.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vorlane::files {
namespace {

constexpr PaletteEntry kBlack = {0, 0, 0};
constexpr PaletteEntry kWhite = {255, 255, 255};

bool IsGrey(const PaletteEntry& entry) { return entry[0] == entry[1] && entry[1] == entry[2]; }

int32_t ColourChannels(ColourModel model) {
  switch (model) {
    case ColourModel::kRgb:
    case ColourModel::kBgr:
      return 3;
    case ColourModel::kCmyk:
      return 4;
    default:
      return 1;
  }
}

uint8_t Scaled(uint32_t product) { return static_cast<uint8_t>((product + 127) / 255); }

// A colour over white paper.
uint8_t OnWhite(uint8_t level, uint8_t alpha, AlphaKind kind) {
  const uint32_t inked = kind == AlphaKind::kPremultiplied ? level * 255U : uint32_t{level} * alpha;
  return Scaled(std::min(inked + 255U * (255U - alpha), 255U * 255U));
}

void SwapRedAndBlue(const uint8_t* from, uint8_t* to, size_t pixels) {
  for (size_t i = 0; i < 3 * pixels; i += 3) {
    const uint8_t first = from[i];
    to[i] = from[i + 2];
    to[i + 1] = from[i + 1];
    to[i + 2] = first;
  }
}

}  // namespace

RowConverter::RowConverter(SampleLayout layout, int32_t width)
    : layout_(std::move(layout)), width_(static_cast<size_t>(width)) {
  const auto& palette = layout_.palette;
  if (layout_.model == ColourModel::kPalette && layout_.bits == 1 && palette.size() >= 2) {
    // A palette of black and white says which way round the bits are.
    if (palette[0] == kBlack && palette[1] == kWhite) layout_.model = ColourModel::kGrey;
    if (palette[0] == kWhite && palette[1] == kBlack) layout_.model = ColourModel::kInvertedGrey;
  }
  const bool isGrey =
      layout_.model == ColourModel::kGrey || layout_.model == ColourModel::kInvertedGrey;
  if (layout_.model == ColourModel::kPalette) {
    depth_ = std::all_of(palette.begin(), palette.end(), IsGrey) ? 8 : 24;
  } else {
    depth_ = isGrey ? 8 : 24;
  }
  const bool isPlain = layout_.channels == ColourChannels(layout_.model);
  if (isGrey && isPlain && layout_.bits == 1) {
    depth_ = 1;
    step_ = Step::kBits;
  } else if (isGrey && isPlain && layout_.bits == 8) {
    step_ = Step::kGrey;
  } else if (isPlain && layout_.bits == 8 && layout_.model == ColourModel::kRgb) {
    step_ = Step::kRgb;
  } else if (isPlain && layout_.bits == 8 && layout_.model == ColourModel::kBgr) {
    step_ = Step::kBgr;
  } else {
    samples_.resize(width_ * static_cast<size_t>(layout_.channels));
  }
}

void RowConverter::Convert(const uint8_t* from, uint8_t* to) {
  switch (step_) {
    case Step::kBits:
      ConvertBits(from, to);
      break;
    case Step::kGrey:
      if (layout_.model == ColourModel::kInvertedGrey) {
        std::transform(from, from + width_, to, [](uint8_t v) { return static_cast<uint8_t>(~v); });
      } else if (from != to) {
        std::memcpy(to, from, width_);
      }
      break;
    case Step::kRgb:
      SwapRedAndBlue(from, to, width_);
      break;
    case Step::kBgr:
      if (from != to) std::memcpy(to, from, 3 * width_);
      break;
    default:
      ExpandSamples(from);
      PutPixels(to);
  }
}

// Pixels past the last column stay dark, so that nothing of them counts as paper.
void RowConverter::ConvertBits(const uint8_t* from, uint8_t* to) const {
  const size_t bytes = (width_ + 7) / 8;
  const auto flip = static_cast<uint8_t>(layout_.model == ColourModel::kInvertedGrey ? 0xFF : 0);
  std::transform(from, from + bytes, to,
                 [flip](uint8_t v) { return static_cast<uint8_t>(v ^ flip); });
  if (width_ % 8 != 0) to[bytes - 1] &= static_cast<uint8_t>(0xFF00 >> (width_ % 8));
}

// Indexes of a palette keep their value, other samples are brought to 0..255.
void RowConverter::ExpandSamples(const uint8_t* from) {
  const size_t count = samples_.size();
  if (layout_.bits == 8) {
    std::memcpy(samples_.data(), from, count);
  } else if (layout_.bits == 16) {
    for (size_t i = 0; i < count; ++i) {
      uint16_t value = 0;
      std::memcpy(&value, from + 2 * i, sizeof(value));
      samples_[i] = static_cast<uint8_t>((value + 128U) / 257U);
    }
  } else {
    const auto bits = static_cast<size_t>(layout_.bits);
    const uint32_t most = (1U << bits) - 1;
    const uint32_t factor = layout_.model == ColourModel::kPalette ? 1 : 255 / most;
    for (size_t i = 0; i < count; ++i) {
      const size_t at = i * bits;
      const uint32_t value = static_cast<uint32_t>(from[at / 8]) >> (8 - bits - at % 8) & most;
      samples_[i] = static_cast<uint8_t>(value * factor);
    }
  }
}

// Red, green, blue; all three alike for greys.
PaletteEntry RowConverter::PixelAt(const uint8_t* samples) const {
  switch (layout_.model) {
    case ColourModel::kGrey:
      return {samples[0], samples[0], samples[0]};
    case ColourModel::kInvertedGrey: {
      const auto level = static_cast<uint8_t>(~samples[0]);
      return {level, level, level};
    }
    case ColourModel::kPalette:
      return samples[0] < layout_.palette.size() ? layout_.palette[samples[0]] : kBlack;
    case ColourModel::kCmyk: {
      const uint32_t light = 255U - samples[3];
      return {Scaled((255U - samples[0]) * light), Scaled((255U - samples[1]) * light),
              Scaled((255U - samples[2]) * light)};
    }
    case ColourModel::kBgr:
      return {samples[2], samples[1], samples[0]};
    default:
      return {samples[0], samples[1], samples[2]};
  }
}

void RowConverter::PutPixels(uint8_t* to) {
  const auto channels = static_cast<size_t>(layout_.channels);
  const auto alphaAt = static_cast<size_t>(ColourChannels(layout_.model));
  const uint8_t* samples = samples_.data();
  for (size_t x = 0; x < width_; ++x, samples += channels) {
    PaletteEntry pixel = PixelAt(samples);
    if (layout_.alpha != AlphaKind::kNone && samples[alphaAt] != 255) {
      const uint8_t alpha = samples[alphaAt];
      leastAlpha_ = std::min(leastAlpha_, alpha);
      for (uint8_t& level : pixel) level = OnWhite(level, alpha, layout_.alpha);
    }
    if (depth_ == 8) {
      to[x] = pixel[0];
    } else {
      to[3 * x] = pixel[2];
      to[3 * x + 1] = pixel[1];
      to[3 * x + 2] = pixel[0];
    }
  }
}

std::string RowConverter::KindOfSource() const {
  const std::string bits = std::to_string(layout_.bits) + "-bit ";
  switch (layout_.model) {
    case ColourModel::kPalette:
      return bits + (depth_ == 8 ? "palette of greys" : "palette");
    case ColourModel::kCmyk:
      return bits + "CMYK";
    case ColourModel::kRgb:
    case ColourModel::kBgr:
      return bits + "RGB";
    default:
      return bits + "grey";
  }
}

std::string RowConverter::Note() const {
  if (step_ != Step::kGeneral) return "";
  const bool isKept = layout_.bits == 8 && layout_.model != ColourModel::kPalette &&
                      layout_.model != ColourModel::kCmyk;
  const bool hasAlpha = layout_.alpha != AlphaKind::kNone;
  const int32_t colours = ColourChannels(layout_.model) + (hasAlpha ? 1 : 0);
  std::string note;
  if (!isKept) {
    note = KindOfSource() + " converted to " + (depth_ == 8 ? "8-bit grey" : "24-bit colour");
  }
  if (hasAlpha && !IsOpaque())
    note += std::string(note.empty() ? "" : ", ") + "transparency laid on white";
  if (layout_.channels > colours) {
    note += std::string(note.empty() ? "" : ", ") + "channels of unknown meaning dropped";
  }
  return note;
}

}  // namespace vorlane::files
