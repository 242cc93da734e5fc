// The sample that ships with the project shows every key, at its default.
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/profile_reader.h"

namespace vorlanepic::testing {
namespace {

TEST(SampleProfile, HoldsEveryKeyAtItsDefault) {
  struct Key {
    const char* section;
    const char* key;
    const char* text;
  };
  const std::vector<Key> keys = {
      {"ImageDeskew", "DeskewMethod", "2"},          {"ImageDeskew1", "SearchBorderPixelNum", "2"},
      {"ImageDeskew1", "ToLineMixDis", "5"},         {"ImageDeskew1", "ToLineDistance", "8"},
      {"ImageDeskew1", "parallel", "3.5"},           {"ImageDeskew1", "perpendicular", "2"},
      {"ImageDeskew2", "SearchBorderPixelNum", "2"}, {"ImageDeskew2", "SegmentLen", "10"},
      {"ImageDeskew2", "SearchLimitNum", "3"},       {"ImageDeskew2", "PixelNum", "5"},
      {"ImageDeskew2", "ToLineDistance", "8"},       {"ImageDeskew2", "CropPixelNum", "8"},
      {"ImageDeskew2", "CropPixelFlag", "0"},        {"ImageDeskew2", "AngleMode", "0"},
      {"ImageDeskew2", "GroupAngle", "2"},           {"ImageDeskewLine", "SearchLimitNum", "3"},
      {"ImageDeskewLine", "PixelNum", "5"},          {"ImageDeskewLine", "CropPixelNum", "200"},
      {"ImageDeskewLine", "LineMixLength", "500"},   {"ImageDeskewLine", "LineMinThickness", "4"},
      {"ImageDeskewLine", "LineMaxThickness", "20"},
  };
  for (const Key& key : keys) {
    char text[8];
    ReadProfileText(key.section, key.key, "missing", text, 7, VORLANEPIC_SAMPLE_PROFILE);
    EXPECT_STREQ(text, key.text) << key.section << ", " << key.key;
  }
  size_t keyLines = 0;
  std::ifstream file(VORLANEPIC_SAMPLE_PROFILE);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#' && line[0] != '[') ++keyLines;
  }
  EXPECT_EQ(keyLines, keys.size());
}

}  // namespace
}  // namespace vorlanepic::testing
