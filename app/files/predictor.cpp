#include "app/files/predictor.h"

#include <cstddef>
#include <cstring>

namespace vorlane::files {
namespace {

template <typename Sample>
void UndoRow(uint8_t* row, size_t samples, size_t channels) {
  for (size_t i = channels; i < samples; ++i) {
    Sample left = 0;
    Sample own = 0;
    std::memcpy(&left, row + sizeof(Sample) * (i - channels), sizeof(Sample));
    std::memcpy(&own, row + sizeof(Sample) * i, sizeof(Sample));
    own = static_cast<Sample>(own + left);
    std::memcpy(row + sizeof(Sample) * i, &own, sizeof(Sample));
  }
}

// The usual channels by name, so that the sums stay in registers.
template <size_t kChannels>
void UndoBytes(uint8_t* row, size_t samples) {
  uint8_t sums[kChannels] = {};
  for (size_t i = 0; i + kChannels <= samples; i += kChannels) {
    for (size_t c = 0; c < kChannels; ++c) {
      sums[c] = static_cast<uint8_t>(sums[c] + row[i + c]);
      row[i + c] = sums[c];
    }
  }
}

}  // namespace

void UndoDifferences(std::span<uint8_t> rows, size_t rowBytes, size_t channels, int32_t bits) {
  for (size_t at = 0; at + rowBytes <= rows.size(); at += rowBytes) {
    uint8_t* row = rows.data() + at;
    if (bits == 16) {
      UndoRow<uint16_t>(row, rowBytes / 2, channels);
    } else if (channels == 1) {
      UndoBytes<1>(row, rowBytes);
    } else if (channels == 3) {
      UndoBytes<3>(row, rowBytes);
    } else {
      UndoRow<uint8_t>(row, rowBytes, channels);
    }
  }
}

}  // namespace vorlane::files
