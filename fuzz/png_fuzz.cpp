// PNG files whose checksums are right, so that what they guard is read: the input is a file whose
// checksums are put right, or a header and the bytes before they are packed.
#include <algorithm>
#include <array>
#include <libdeflate.h>
#include <vector>

#include "app/files/deflate.h"
#include "app/files/png_chunks.h"
#include "app/files/png_reader.h"
#include "fuzz_files.h"

using namespace vorlane;

namespace {

constexpr size_t kHeaderBytes = 13;

void PutNumber(uint32_t value, uint8_t* bytes) {
  for (int shift = 24; shift >= 0; shift -= 8) *bytes++ = static_cast<uint8_t>(value >> shift);
}

void MendChecksums(std::vector<uint8_t>* file) {
  for (size_t at = files::kPngSignature.size(); file->size() - at >= 12;) {
    const uint32_t length = files::PngNumber(*file, at);
    if (length > file->size() - at - 12) return;
    uint8_t* type = file->data() + at + 4;
    PutNumber(libdeflate_crc32(0, type, length + 4), type + 4 + length);
    at += length + 12;
  }
}

void AddChunk(const char* type, std::span<const uint8_t> data, std::vector<uint8_t>* file) {
  std::array<uint8_t, 4> length{};
  PutNumber(static_cast<uint32_t>(data.size()), length.data());
  file->insert(file->end(), length.begin(), length.end());
  file->insert(file->end(), type, type + 4);
  file->insert(file->end(), data.begin(), data.end());
  file->insert(file->end(), 4, 0);
}

// The input: the header's data, how many bytes of the palette, the palette, rows with their
// filters.
std::vector<uint8_t> Packed(std::span<const uint8_t> input) {
  std::vector<uint8_t> file(files::kPngSignature.begin(), files::kPngSignature.end());
  AddChunk("IHDR", input.first(kHeaderBytes), &file);
  input = input.subspan(kHeaderBytes);
  if (!input.empty()) {
    const size_t palette = std::min<size_t>(input[0], input.size() - 1);
    if (palette > 0) AddChunk("PLTE", input.subspan(1, palette), &file);
    input = input.subspan(1 + palette);
  }
  AddChunk("IDAT", files::Deflate(input, 1), &file);
  AddChunk("IEND", {}, &file);
  return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::span input(data, size);
  const bool isFile = size >= files::kPngSignature.size() &&
                      std::equal(files::kPngSignature.begin(), files::kPngSignature.end(), data);
  if (!isFile && size < kHeaderBytes) return 0;
  std::vector<uint8_t> file = isFile ? std::vector<uint8_t>(data, data + size) : Packed(input);
  MendChecksums(&file);
  fuzz::Attempt([&] {
    files::Page page;
    files::ReadPng(std::vector<uint8_t>(file), fuzz::SmallLimits(), &page);
    fuzz::TakePage(page);
  });
  return 0;
}
