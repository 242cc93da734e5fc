#include "app/files/file_formats.h"

#include <cctype>
#include <filesystem>
#include <map>

namespace vorlane::files {

std::optional<FileFormat> FormatOfName(const std::string& path) {
  static const std::map<std::string, FileFormat> kFormats = {
      {".tif", FileFormat::kTiff}, {".tiff", FileFormat::kTiff}, {".png", FileFormat::kPng},
      {".jpg", FileFormat::kJpeg}, {".jpeg", FileFormat::kJpeg}, {".bmp", FileFormat::kBmp},
      {".pnm", FileFormat::kPnm},  {".pbm", FileFormat::kPbm},   {".pgm", FileFormat::kPgm},
      {".ppm", FileFormat::kPpm},  {".pdf", FileFormat::kPdf}};
  std::string extension = std::filesystem::path(path).extension().string();
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  const auto found = kFormats.find(extension);
  if (found == kFormats.end()) return std::nullopt;
  return found->second;
}

bool HoldsManyPages(FileFormat format) {
  return format == FileFormat::kTiff || format == FileFormat::kPdf;
}

}  // namespace vorlane::files
