// What a decoder is asked and what it answers, as bytes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "app/files/decoders.h"

namespace vorlane::cage {

// What is asked. The file itself goes along as an open descriptor.
struct Question {
  uint64_t size = 0;  // of the file, in bytes
  int64_t mostPixels = 0;
  int32_t mostPages = 0;
  files::PicturePlace place;  // where a picture is asked for
};

// The shape of an answer's picture, whose pixels come by another way.
struct PictureShape {
  int32_t width = 0;
  int32_t height = 0;
  int32_t bitsPerPixel = 0;
};

std::vector<uint8_t> BytesOf(const Question& question);
std::vector<uint8_t> BytesOf(const files::FileContents& contents);
// Of a page what its decoder fills, without the pixels.
std::vector<uint8_t> BytesOf(const files::Page& page);

// The other way; WireError for bytes that are none, or say what cannot be.
Question QuestionOf(std::span<const uint8_t> bytes);
files::FileContents ContentsOf(std::span<const uint8_t> bytes);
PictureShape ReadPage(std::span<const uint8_t> bytes, files::Page* page);

}  // namespace vorlane::cage
