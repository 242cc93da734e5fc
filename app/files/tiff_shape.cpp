#include "app/files/tiff_shape.h"

#include <algorithm>
#include <string>
#include <vector>

#include "app/files/errors.h"
#include "app/files/tiff_handle.h"

namespace vorlane::files {
namespace {

template <typename T>
T TagOf(TIFF* tiff, uint32_t tag, T otherwise) {
  T value = 0;
  return TIFFGetFieldDefaulted(tiff, tag, &value) == 1 ? value : otherwise;
}

// A file that does not say how its greys run: fax pages are white where they are 0.
uint16_t GuessedPhotometric(const TiffShape& shape) {
  if (shape.samples >= 3) return PHOTOMETRIC_RGB;
  return IsFax(shape.compression) ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
}

std::optional<ColourModel> ModelOf(const TiffShape& shape) {
  switch (shape.photometric) {
    case PHOTOMETRIC_MINISWHITE:
      return ColourModel::kInvertedGrey;
    case PHOTOMETRIC_MINISBLACK:
      return ColourModel::kGrey;
    case PHOTOMETRIC_PALETTE:
      return ColourModel::kPalette;
    case PHOTOMETRIC_SEPARATED:
      return shape.samples >= 4 ? std::optional(ColourModel::kCmyk) : std::nullopt;
    case PHOTOMETRIC_RGB:
      return shape.samples >= 3 ? std::optional(ColourModel::kRgb) : std::nullopt;
    case PHOTOMETRIC_YCBCR:
      // The JPEG decoder hands over red, green and blue.
      return shape.compression == COMPRESSION_JPEG && shape.samples == 3
                 ? std::optional(ColourModel::kRgb)
                 : std::nullopt;
    default:
      return std::nullopt;
  }
}

AlphaKind AlphaOf(TIFF* tiff) {
  uint16_t count = 0;
  uint16_t* kinds = nullptr;
  if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) != 1 || count == 0) {
    return AlphaKind::kNone;
  }
  if (kinds[0] == EXTRASAMPLE_ASSOCALPHA) return AlphaKind::kPremultiplied;
  return kinds[0] == EXTRASAMPLE_UNASSALPHA ? AlphaKind::kStraight : AlphaKind::kNone;
}

// 16-bit colours, of which some writers fill the low half only.
std::vector<PaletteEntry> PaletteOf(TIFF* tiff, const TiffShape& shape) {
  const size_t count = size_t{1} << shape.bits;
  uint16_t* red = nullptr;
  uint16_t* green = nullptr;
  uint16_t* blue = nullptr;
  if (TIFFGetField(tiff, TIFFTAG_COLORMAP, &red, &green, &blue) != 1) {
    throw DecodeError("its palette is missing");
  }
  const auto isLow = [count](const uint16_t* levels) {
    return std::all_of(levels, levels + count, [](uint16_t v) { return v < 256; });
  };
  const int shift = isLow(red) && isLow(green) && isLow(blue) ? 0 : 8;
  std::vector<PaletteEntry> palette(count);
  for (size_t i = 0; i < count; ++i) {
    palette[i] = {static_cast<uint8_t>(red[i] >> shift), static_cast<uint8_t>(green[i] >> shift),
                  static_cast<uint8_t>(blue[i] >> shift)};
  }
  return palette;
}

}  // namespace

TiffShape ShapeOf(TIFF* tiff) {
  TiffShape shape;
  shape.width = TagOf<uint32_t>(tiff, TIFFTAG_IMAGEWIDTH, 0);
  shape.height = TagOf<uint32_t>(tiff, TIFFTAG_IMAGELENGTH, 0);
  shape.bits = TagOf<uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1);
  shape.samples = TagOf<uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  shape.sampleFormat = TagOf<uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  shape.compression = TagOf<uint16_t>(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  shape.planes = TagOf<uint16_t>(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  shape.orientation = TagOf<uint16_t>(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  shape.fillOrder = TagOf<uint16_t>(tiff, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
  if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &shape.photometric) != 1) {
    shape.photometric = GuessedPhotometric(shape);
  }
  if (HasPredictor(shape.compression)) {
    shape.predictor = TagOf<uint16_t>(tiff, TIFFTAG_PREDICTOR, PREDICTOR_NONE);
  }
  if (shape.compression == COMPRESSION_CCITTFAX3) {
    shape.faxOptions = TagOf<uint32_t>(tiff, TIFFTAG_GROUP3OPTIONS, 0);
  }
  shape.isSwapped = TIFFIsByteSwapped(tiff) != 0;
  shape.isTiled = TIFFIsTiled(tiff) != 0;
  if (shape.isTiled) {
    shape.blockWidth = TagOf<uint32_t>(tiff, TIFFTAG_TILEWIDTH, 0);
    shape.blockHeight = TagOf<uint32_t>(tiff, TIFFTAG_TILELENGTH, 0);
  } else {
    shape.blockWidth = shape.width;
    shape.blockHeight =
        std::min(shape.height, TagOf<uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP, UINT32_MAX));
  }
  return shape;
}

void RefuseKinds(const TiffShape& shape) {
  if (shape.sampleFormat != SAMPLEFORMAT_UINT && shape.sampleFormat != SAMPLEFORMAT_VOID) {
    throw DecodeError("its samples are signed or floating-point numbers, which are not served");
  }
  const bool isKnown =
      shape.bits == 1 || shape.bits == 2 || shape.bits == 4 || shape.bits == 8 || shape.bits == 16;
  if (!isKnown) {
    throw DecodeError("samples of " + std::to_string(shape.bits) + " bits are not served");
  }
  if (shape.samples == 0 || shape.samples > 64 || shape.blockWidth == 0 || shape.blockHeight == 0) {
    throw DecodeError("its header makes no sense");
  }
}

std::optional<SampleLayout> LayoutOf(TIFF* tiff, const TiffShape& shape) {
  const std::optional<ColourModel> model = ModelOf(shape);
  if (!model) return std::nullopt;
  const bool isSplit = shape.planes == PLANARCONFIG_SEPARATE && shape.samples > 1;
  if (isSplit && shape.bits < 8) return std::nullopt;
  SampleLayout layout;
  layout.model = *model;
  layout.alpha = AlphaOf(tiff);
  layout.bits = shape.bits;
  layout.channels = shape.samples;
  if (*model == ColourModel::kPalette) {
    if (shape.bits > 8) throw DecodeError("palettes of more than 256 colours are not served");
    layout.palette = PaletteOf(tiff, shape);
  }
  return layout;
}

}  // namespace vorlane::files
