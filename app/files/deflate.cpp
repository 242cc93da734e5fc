#include "app/files/deflate.h"

#include <algorithm>
#include <libdeflate.h>
#include <memory>
#include <new>

#include "app/files/errors.h"

namespace vorlane::files {
namespace {

struct Release {
  void operator()(libdeflate_decompressor* unpacker) const {
    libdeflate_free_decompressor(unpacker);
  }
  void operator()(libdeflate_compressor* packer) const { libdeflate_free_compressor(packer); }
};

libdeflate_result Unpack(std::span<const uint8_t> packed, std::span<uint8_t> out, size_t* count) {
  const std::unique_ptr<libdeflate_decompressor, Release> unpacker(libdeflate_alloc_decompressor());
  if (!unpacker) throw std::bad_alloc();
  return libdeflate_zlib_decompress(unpacker.get(), packed.data(), packed.size(), out.data(),
                                    out.size(), count);
}

void ThrowUnlessWhole(libdeflate_result result) {
  switch (result) {
    case LIBDEFLATE_SUCCESS:
      return;
    case LIBDEFLATE_SHORT_OUTPUT:
      throw DecodeError("its compressed data holds too few pixels");
    case LIBDEFLATE_INSUFFICIENT_SPACE:
      throw DecodeError("its compressed data holds too many pixels");
    default:
      throw DecodeError("its compressed data is damaged");
  }
}

}  // namespace

void Inflate(std::span<const uint8_t> packed, std::span<uint8_t> out) {
  ThrowUnlessWhole(Unpack(packed, out, nullptr));
}

void InflateStrip(std::span<const uint8_t> packed, std::span<uint8_t> out, size_t whole) {
  const libdeflate_result result = Unpack(packed, out, nullptr);
  if (result != LIBDEFLATE_INSUFFICIENT_SPACE || whole <= out.size()) {
    ThrowUnlessWhole(result);
    return;
  }
  std::vector<uint8_t> filled(whole);
  Inflate(packed, filled);
  std::copy_n(filled.begin(), out.size(), out.begin());
}

std::vector<uint8_t> InflateText(std::span<const uint8_t> packed, size_t most) {
  for (size_t room = std::min(most, 4 * packed.size() + 256);; room = std::min(most, 4 * room)) {
    std::vector<uint8_t> out(room);
    size_t count = 0;
    const libdeflate_result result = Unpack(packed, out, &count);
    if (result == LIBDEFLATE_SUCCESS) {
      out.resize(count);
      return out;
    }
    if (result != LIBDEFLATE_INSUFFICIENT_SPACE || room == most) return {};
  }
}

std::vector<uint8_t> Deflate(std::span<const uint8_t> bytes, int level) {
  const std::unique_ptr<libdeflate_compressor, Release> packer(libdeflate_alloc_compressor(level));
  if (!packer) throw std::bad_alloc();
  std::vector<uint8_t> packed(libdeflate_zlib_compress_bound(packer.get(), bytes.size()));
  packed.resize(libdeflate_zlib_compress(packer.get(), bytes.data(), bytes.size(), packed.data(),
                                         packed.size()));
  return packed;
}

}  // namespace vorlane::files
