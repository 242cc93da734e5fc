#include "frame/profile_reader.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include <gtest/gtest.h>

#include "support/profile_file.h"

namespace vorlanepic::testing {

using namespace frame;
namespace {

using namespace std::string_literals;

// Filled with rubbish first, so that a value without its terminating zero shows.
struct FoundValue {
  ProfileStatus status;
  std::string value;
};

FoundValue Find(const std::string& bytes) {
  const ProfileOnDisk file(bytes);
  Profile profile;
  EXPECT_EQ(profile.Load(file.path()), FileRead::kDone);
  ProfileText value;
  std::memset(&value, 'x', sizeof value);
  const ProfileStatus status = profile.Find("S", "K", &value);
  if (status != ProfileStatus::kFound) return {status, ""};
  EXPECT_EQ(value.text[value.length], '\0');
  return {status, std::string(value.view())};
}

std::string Chars(size_t count, char c = 'a') { return std::string(count, c); }

TEST(Profile, FindsTheValue) {
  using enum ProfileStatus;
  struct Case {
    const char* name;
    std::string bytes;
    ProfileStatus status;
    std::string value = {};
  };
  const Case cases[] = {
      // Lines
      {"both end characters are one end", "[S]\r\nK=1+\r\n2\r\n", kFound, "12"},
      {"two carriage returns are two ends", "[S]\nK=1+\r\r\n2\n", kFound, "1"},
      {"zero byte", "[S]\0K=v\0L=w"s, kFound, "v"},
      {"form feed ends the line and stays", "[S]\nJ=1\fK=v\f", kFound, "v\f"},
      {"form feed behind a header spoils it", "[S]\f\nK=v\n", kMalformedLine},
      {"substitute ends the line and stays", "[S]\nJ=1\x1A"s + "K=v\x1A", kFound, "v\x1A"},
      {"long line goes on", "[S]\n#" + Chars(4095) + "K=" + Chars(9) + "\n", kFound, Chars(9)},
      // The end of a full line is an empty line, which ends the chain of continuation.
      {"end of a full line", "[S]\nK=" + Chars(4093) + "+\nb\n", kFound, Chars(4093)},
      {"both ends of a full line", "[S]\n#" + Chars(4095) + "\r\nK=v\r\n", kFound, "v"},
      // Sections
      {"no header", "K=v\n", kNoSection},
      {"blanks inside the brackets count", "[ S ]\nK=v\n", kNoSection},
      {"blanks around the brackets do not", " \t[S]\t \nK=v\n", kFound, "v"},
      {"header without end before the section", "[TT\n[S]\nK=v\n", kMalformedLine},
      {"header with text behind its end", "[S] # mine\nK=v\n", kMalformedLine},
      {"two characters are no header", "[]\n[x\n[\n[S]\nK=v\n", kFound, "v"},
      {"malformed lines elsewhere", "[T]\nno sign\n=x\n[S]\nK=v\n", kFound, "v"},
      {"nothing is joined elsewhere", "[T]\nA=1+\n[S]\nK=v\n", kFound, "v"},
      {"first of two sections counts", "[S]\nJ=1\n[S]\nK=v\n", kNoKey},
      // Keys
      {"blanks around the sign", "[S]\n \tK \t=\t v w\t \n", kFound, "v w"},
      {"split at the first sign", "[S]\nK=a=b\n", kFound, "a=b"},
      {"next section ends the search", "[S]\nJ=1\n[T]\nK=v\n", kNoKey},
      {"header without end ends the search", "[S]\n[T\nK=v\n", kNoKey},
      {"comments and empty lines", "[S]\n\n # K=1\n \t\nK=v\n", kFound, "v"},
      {"line without sign before the key", "[S]\nJ\nK=v\n", kMalformedLine},
      {"line that begins with the sign", "[S]\n =1\nK=v\n", kMalformedLine},
      // Continuation
      {"blanks before the removed plus stay", "[S]\nK=1 +\n2\n", kFound, "1 2"},
      {"blanks behind a later plus stay and end the chain", "[S]\nK=1+\n2+ \n3\n", kFound, "12+ "},
      {"looks at nothing else", "[S]\nK=1+\n#2+\n[T]\n", kFound, "1#2[T]"},
      {"empty line ends it", "[S]\nK=1+\n \nJ\n", kFound, "1"},
      {"end of file ends it", "[S]\nK=1+", kFound, "1"},
      {"lone plus goes on", "[S]\nK=1+\n+\n2\n", kFound, "12"},
      {"joined before it is split", "[S]\n+\n K=+\nv\n", kFound, "v"},
      {"other keys are joined too", "[S]\nJ=1+\nK=2\nK=3\n", kFound, "3"},
      {"fills a line", "[S]\nK=" + Chars(2000) + "+\n" + Chars(2094) + "+\n\n", kFound,
       Chars(4094)},
      {"too long", "[S]\nK=" + Chars(2000) + "+\n" + Chars(2095) + "\n", kValueTooLong},
      {"other key too long", "[S]\nJ=" + Chars(2000) + "+\n" + Chars(2095) + "\nK=v\n",
       kValueTooLong},
  };
  for (const Case& c : cases) {
    const FoundValue found = Find(c.bytes);
    EXPECT_EQ(found.status, c.status) << c.name;
    EXPECT_EQ(found.value, c.value) << c.name;
  }
}

TEST(Profile, TakesRegularFilesOfUpToAMegabyteOnly) {
  Profile profile;
  const ProfileOnDisk largest("[S]\nK=v\n" + Chars((1 << 20) - 8, '\n'));
  ProfileText value;
  EXPECT_EQ(profile.Load(largest.path()), FileRead::kDone);
  EXPECT_EQ(profile.Find("S", "K", &value), ProfileStatus::kFound);
  const ProfileOnDisk longer("[S]\nK=v\n" + Chars((1 << 20) - 7, '\n'));
  EXPECT_EQ(profile.Load(longer.path()), FileRead::kTooLong);
  EXPECT_EQ(profile.Find("S", "K", &value), ProfileStatus::kNoSection);
  EXPECT_EQ(profile.Load(std::filesystem::temp_directory_path().string().c_str()),
            FileRead::kNotOpened);
#if !defined(_WIN32)
  // Neither is waited for: nobody writes into the pipe, and the terminal's end never comes.
  const std::string pipe = std::string(largest.path()) + ".pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(profile.Load(pipe.c_str()), FileRead::kNotOpened);
  std::filesystem::remove(pipe);
  EXPECT_EQ(profile.Load("/dev/zero"), FileRead::kNotOpened);
#endif
}

Profile Loaded(const std::string& bytes) {
  const ProfileOnDisk file(bytes);
  Profile profile;
  profile.Load(file.path());
  return profile;
}

TEST(Profile, ConvertsNumbersOrGivesTheDefault) {
  const std::string huge(26, '9');
  using Case = std::pair<std::string, int32_t>;
  for (const auto& [text, expected] :
       {Case{" 20", 20}, Case{"+7", 7}, Case{"-5", 0}, Case{"abc", 0}, Case{"", 99},
        Case{"12 dpi", 12}, Case{"3.9", 3}, Case{"007", 7}, Case{"- 5", 0}, Case{"\v 5", 5},
        Case{"2147483647", INT32_MAX}, Case{huge, INT32_MAX}, Case{"-" + huge, 0}}) {
    EXPECT_EQ(Loaded("[S]\nK=" + text + "\n").Int("S", "K", 99), expected) << text;
  }
  EXPECT_EQ(Loaded("[S]\nK=20\n").Int("S", "J", -3), -3);
}

TEST(Profile, CopiesTextsOrTheDefault) {
  struct Case {
    const char* value;  // null: no such key
    const char* defaultText;
    size_t size;
    const char* expected;
  };
  const Case cases[] = {{"3.5", "9", 3, "3.5"},
                        {"2.25", "9", 3, "2."},
                        {"abc", "", 1, ""},
                        {nullptr, "longer", 3, "lo"},
                        {"a", "9", 4000000000U, "a"}};
  for (const Case& c : cases) {
    const Profile profile = Loaded(c.value == nullptr ? "[S]\n" : "[S]\nK="s + c.value + "\n");
    char out[8];
    std::memset(out, 'x', sizeof out);
    EXPECT_EQ(profile.Text("S", "K", c.defaultText, out, c.size), std::strlen(c.expected));
    EXPECT_STREQ(out, c.expected);
  }
}

TEST(Profile, HasDefaultsOnlyWhenItHasAName) {
  Profile profile;
  for (const char* path : {"no/such/file.ini", "", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(profile.Load(path), FileRead::kNotOpened);
    const bool hasName = path != nullptr && *path != '\0';
    char out[4] = "old";
    EXPECT_EQ(profile.Text("S", "K", "9", out, 3), hasName ? 1U : 0U);
    EXPECT_STREQ(out, hasName ? "9" : "");
    EXPECT_EQ(profile.Int("S", "K", 99), hasName ? 99 : 0);
  }
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
  Profile profile;
  ASSERT_EQ(profile.Load(VORLANEPIC_SAMPLE_PROFILE), FileRead::kDone);
  for (const Key& key : keys) {
    char text[8];
    profile.Text(key.section, key.key, "missing", text, 7);
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
