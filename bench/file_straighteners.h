// From a scan's file to the upright page's file: ours, and what a careful engineer would write with
// OpenCV or Leptonica.
#pragma once

#include <string>

namespace vorlanepic::bench {

// Each reads `from` and writes `to` in the format that its name asks for, with the compression that
// the scan has, at quality 90 where that is JPEG, and without waiting for the disk. False on
// failure.
bool StraightenFile(const std::string& from, const std::string& to);
bool StraightenFileByOpenCv(const std::string& from, const std::string& to);
bool StraightenFileByLeptonica(const std::string& from, const std::string& to);

// Reads and writes without straightening: what our codecs cost alone.
bool CopyByOurCodecs(const std::string& from, const std::string& to);

}  // namespace vorlanepic::bench
