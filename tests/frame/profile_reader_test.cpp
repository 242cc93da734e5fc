#include "frame/profile_reader.h"

#include <cstring>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/profile_file.h"

namespace vorlanepic::testing {

using namespace frame;
namespace {

using namespace std::string_literals;

// Filled with rubbish first, so that a value without its terminating zero shows.
struct FoundValue {
  int32_t status;
  std::string value;
};

FoundValue Find(const std::string& bytes) {
  const ProfileOnDisk file(bytes);
  ProfileText value;
  std::memset(&value, 'x', sizeof value);
  const int32_t status = FindProfileValue(file.path(), "S", "K", &value);
  if (status != kProfileFound) return {status, ""};
  EXPECT_EQ(value.text[value.length], '\0');
  return {status, std::string(value.view())};
}

std::string Chars(size_t count, char c = 'a') { return std::string(count, c); }

TEST(FindProfileValue, GivesTheStatusAndTheValue) {
  struct Case {
    const char* name;
    std::string bytes;
    int32_t status;
    std::string value = {};
  };
  const Case cases[] = {
      // Lines
      {"both end characters are one end", "[S]\r\nK=1+\r\n2\r\n", 0, "12"},
      {"two carriage returns are two ends", "[S]\nK=1+\r\r\n2\n", 0, "1"},
      {"zero byte", "[S]\0K=v\0L=w"s, 0, "v"},
      {"form feed ends the line and stays", "[S]\nJ=1\fK=v\f", 0, "v\f"},
      {"form feed behind a header spoils it", "[S]\f\nK=v\n", -14},
      {"substitute ends the line and stays", "[S]\nJ=1\x1A"s + "K=v\x1A", 0, "v\x1A"},
      {"long line goes on", "[S]\n#" + Chars(4095) + "K=" + Chars(9) + "\n", 0, Chars(9)},
      // The end of a full line is an empty line, which ends the chain of continuation.
      {"end of a full line", "[S]\nK=" + Chars(4093) + "+\nb\n", 0, Chars(4093)},
      {"both ends of a full line", "[S]\n#" + Chars(4095) + "\r\nK=v\r\n", 0, "v"},
      // Sections
      {"no header", "K=v\n", -1},
      {"blanks inside the brackets count", "[ S ]\nK=v\n", -1},
      {"blanks around the brackets do not", " \t[S]\t \nK=v\n", 0, "v"},
      {"header without end before the section", "[TT\n[S]\nK=v\n", -14},
      {"header with text behind its end", "[S] # mine\nK=v\n", -14},
      {"two characters are no header", "[]\n[x\n[\n[S]\nK=v\n", 0, "v"},
      {"malformed lines elsewhere", "[T]\nno sign\n=x\n[S]\nK=v\n", 0, "v"},
      {"nothing is joined elsewhere", "[T]\nA=1+\n[S]\nK=v\n", 0, "v"},
      {"first of two sections counts", "[S]\nJ=1\n[S]\nK=v\n", -2},
      // Keys
      {"blanks around the sign", "[S]\n \tK \t=\t v w\t \n", 0, "v w"},
      {"split at the first sign", "[S]\nK=a=b\n", 0, "a=b"},
      {"next section ends the search", "[S]\nJ=1\n[T]\nK=v\n", -2},
      {"header without end ends the search", "[S]\n[T\nK=v\n", -2},
      {"comments and empty lines", "[S]\n\n # K=1\n \t\nK=v\n", 0, "v"},
      {"line without sign before the key", "[S]\nJ\nK=v\n", -14},
      {"line that begins with the sign", "[S]\n =1\nK=v\n", -14},
      // Continuation
      {"blanks before the removed plus stay", "[S]\nK=1 +\n2\n", 0, "1 2"},
      {"blanks behind a later plus stay and end the chain", "[S]\nK=1+\n2+ \n3\n", 0, "12+ "},
      {"looks at nothing else", "[S]\nK=1+\n#2+\n[T]\n", 0, "1#2[T]"},
      {"empty line ends it", "[S]\nK=1+\n \nJ\n", 0, "1"},
      {"end of file ends it", "[S]\nK=1+", 0, "1"},
      {"lone plus goes on", "[S]\nK=1+\n+\n2\n", 0, "12"},
      {"joined before it is split", "[S]\n+\n K=+\nv\n", 0, "v"},
      {"other keys are joined too", "[S]\nJ=1+\nK=2\nK=3\n", 0, "3"},
      {"fills a line", "[S]\nK=" + Chars(2000) + "+\n" + Chars(2094) + "+\n\n", 0, Chars(4094)},
      {"too long", "[S]\nK=" + Chars(2000) + "+\n" + Chars(2095) + "\n", -22},
      {"other key too long", "[S]\nJ=" + Chars(2000) + "+\n" + Chars(2095) + "\nK=v\n", -22},
  };
  for (const Case& c : cases) {
    const FoundValue found = Find(c.bytes);
    EXPECT_EQ(found.status, c.status) << c.name;
    EXPECT_EQ(found.value, c.value) << c.name;
  }
}

TEST(FindProfileValue, RefusesNullArgumentsAndFilesThatCannotBeRead) {
  const ProfileOnDisk file("[S]\nK=v\n");
  ProfileText value;
  EXPECT_EQ(FindProfileValue(nullptr, "S", "K", &value), -23);
  EXPECT_EQ(FindProfileValue(file.path(), nullptr, "K", &value), -23);
  EXPECT_EQ(FindProfileValue(file.path(), "S", nullptr, &value), -23);
  EXPECT_EQ(FindProfileValue(file.path(), "S", "K", nullptr), -23);
  EXPECT_EQ(FindProfileValue("no/such/file.ini", "S", "K", &value), -10);
#if defined(__linux__)
  EXPECT_EQ(FindProfileValue("/", "S", "K", &value), -12);
#endif
}

TEST(ReadProfileInt, ConvertsTheValueOrGivesTheDefault) {
  const std::string huge(26, '9');
  using Case = std::pair<std::string, int32_t>;
  for (const auto& [text, expected] :
       {Case{" 20", 20}, Case{"+7", 7}, Case{"-5", 0}, Case{"abc", 0}, Case{"", 99},
        Case{"12 dpi", 12}, Case{"3.9", 3}, Case{"007", 7}, Case{"- 5", 0}, Case{"\v 5", 5},
        Case{"2147483647", INT32_MAX}, Case{huge, INT32_MAX}, Case{"-" + huge, 0}}) {
    const ProfileOnDisk file("[S]\nK=" + text + "\n");
    EXPECT_EQ(ReadProfileInt("S", "K", 99, file.path()), expected) << text;
  }
  const ProfileOnDisk file("[S]\nK=20\n");
  EXPECT_EQ(ReadProfileInt("S", "J", -3, file.path()), -3);
  EXPECT_EQ(ReadProfileInt("S", "K", 99, "no/such/file.ini"), 99);
  for (const char* missing : std::vector<const char*>{nullptr, ""}) {
    EXPECT_EQ(ReadProfileInt(missing, "K", 99, file.path()), 0);
    EXPECT_EQ(ReadProfileInt("S", missing, 99, file.path()), 0);
    EXPECT_EQ(ReadProfileInt("S", "K", 99, missing), 0);
  }
}

TEST(ReadProfileText, CopiesTheValueOrTheDefault) {
  struct Case {
    const char* value;  // null: no such key
    const char* defaultText;
    uint32_t size;
    const char* expected;
  };
  const Case cases[] = {{"3.5", "9", 3, "3.5"},       {"2.25", "9", 3, "2."},
                        {"abc", nullptr, 1, ""},      {nullptr, nullptr, 3, ""},
                        {nullptr, "longer", 3, "lo"}, {"a", "9", 4000000000U, "a"}};
  for (const Case& c : cases) {
    const ProfileOnDisk file(c.value == nullptr ? "[S]\n" : "[S]\nK="s + c.value + "\n");
    char out[8];
    std::memset(out, 'x', sizeof out);
    const uint32_t stored = ReadProfileText("S", "K", c.defaultText, out, c.size, file.path());
    EXPECT_STREQ(out, c.expected) << c.expected;
    EXPECT_EQ(stored, std::strlen(c.expected));
  }
  const ProfileOnDisk file("[S]\nK=v\n");
  char out[4] = "old";
  EXPECT_EQ(ReadProfileText("S", "K", "d", nullptr, 3, file.path()), 0U);
  EXPECT_EQ(ReadProfileText("S", "K", "d", out, 0, file.path()), 0U);
  EXPECT_EQ(ReadProfileText("", "K", "d", out, 3, file.path()), 0U);
  EXPECT_EQ(ReadProfileText("S", nullptr, "d", out, 3, file.path()), 0U);
  EXPECT_EQ(ReadProfileText("S", "K", "d", out, 3, ""), 0U);
  EXPECT_STREQ(out, "old");
}

TEST(ParseDecimal, TakesDigitsWithOnePoint) {
  const std::pair<const char*, double> cases[] = {
      {"2.7", 2.7},   {"+.5", 0.5}, {"5.", 5.0},  {" \t-1.25x", -1.25},
      {"1.2.3", 1.2}, {"1e3", 1.0}, {"0x9", 0.0}, {"1,5", 1.0}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(ParseDecimal(text), expected) << text;
  for (const char* none : {"", ".", "-", "inf", "nan", "+-1", "- 1"}) {
    EXPECT_EQ(ParseDecimal(none), 0.0) << none;
  }
}

// The sample that ships with the project shows every key, at its default.
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
