// The formats that a file name can ask for.
#pragma once

#include <optional>
#include <string>

namespace vorlane::files {

enum class FileFormat { kTiff, kPng, kJpeg, kBmp, kPnm, kPbm, kPgm, kPpm, kPdf };

// The format that the extension of `path` asks for, in either letter case.
std::optional<FileFormat> FormatOfName(const std::string& path);

// Whether one file of this format holds several pages.
bool HoldsManyPages(FileFormat format);

// The extensions that can be written, for messages.
inline constexpr const char* kWritableExtensions =
    ".tif .tiff .png .jpg .jpeg .bmp .pnm .pbm .pgm .ppm .pdf";

}  // namespace vorlane::files
