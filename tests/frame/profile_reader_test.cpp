#include "frame/profile_reader.h"

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/profile_file.h"

namespace vorlanepic {
namespace {

using testing::ProfileOnDisk;
using namespace std::string_literals;

// Filled with rubbish first, so that a value without its terminating zero shows.
struct FoundValue {
  int32_t status;
  std::string value;
};

FoundValue Find(const std::string& bytes, const char* section = "S", const char* key = "K") {
  const ProfileOnDisk file(bytes);
  ProfileText value;
  std::memset(&value, 'x', sizeof value);
  const int32_t status = FindProfileValue(file.path(), section, key, &value);
  if (status != kProfileFound) return {status, ""};
  EXPECT_EQ(value.text[value.length], '\0');
  return {status, std::string(value.view())};
}

struct ProfileCase {
  const char* name;
  std::string bytes;
  int32_t status;
  std::string value = "";
};

class FindProfileValueTest : public ::testing::TestWithParam<ProfileCase> {};

TEST_P(FindProfileValueTest, GivesTheStatusAndTheValue) {
  const FoundValue found = Find(GetParam().bytes);
  EXPECT_EQ(found.status, GetParam().status);
  EXPECT_EQ(found.value, GetParam().value);
}

std::string Chars(size_t count, char c = 'a') { return std::string(count, c); }

INSTANTIATE_TEST_SUITE_P(
    Lines, FindProfileValueTest,
    ::testing::Values(
        ProfileCase{"LineFeed", "[S]\nK=v\n", 0, "v"},
        ProfileCase{"CarriageReturnAndLineFeedAreOneEnd", "[S]\r\nK=1+\r\n2\r\n", 0, "12"},
        ProfileCase{"CarriageReturnAlone", "[S]\rK=v\r", 0, "v"},
        ProfileCase{"TwoCarriageReturnsAreTwoEnds", "[S]\nK=1+\r\r\n2\n", 0, "1"},
        ProfileCase{"ZeroByte", "[S]\0K=v\0L=w"s, 0, "v"},
        ProfileCase{"LastLineWithoutEnd", "[S]\nK=v", 0, "v"},
        ProfileCase{"FormFeedEndsTheLineAndStays", "[S]\nJ=1\fK=v\f", 0, "v\f"},
        ProfileCase{"FormFeedBehindAHeaderSpoilsIt", "[S]\f\nK=v\n", -14},
        ProfileCase{"SubstituteEndsTheLineAndStays", "[S]\nJ=1\x1A"s + "K=v\x1A", 0, "v\x1A"},
        ProfileCase{"HighBytes", "[S]\nK=\xFF\xFE\n", 0, "\xFF\xFE"},
        ProfileCase{"FullLineIsOneLine", "[S]\nK=" + Chars(4094) + "\nL=1\n", 0, Chars(4094)},
        // 904 characters are left for a line of their own.
        ProfileCase{"LongLineGoesOnInTheNext", "[S]\n#" + Chars(4095) + "K=" + Chars(902) + "\n", 0,
                    Chars(902)},
        // The end of a full line is an empty line, which ends the chain of continuation.
        ProfileCase{"EndOfAFullLineIsAnEmptyLine", "[S]\nK=" + Chars(4093) + "+\nb\n", 0,
                    Chars(4093)},
        ProfileCase{"CarriageReturnAndLineFeedOfAFullLineAreOneEmptyLine",
                    "[S]\n#" + Chars(4095) + "\r\nK=v\r\n", 0, "v"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Sections, FindProfileValueTest,
    ::testing::Values(
        ProfileCase{"EmptyFile", "", -1}, ProfileCase{"NoHeader", "K=v\n", -1},
        ProfileCase{"OtherCase", "[s]\nK=v\n", -1},
        ProfileCase{"BlanksInsideTheBracketsCount", "[ S ]\nK=v\n", -1},
        ProfileCase{"BlanksAroundTheBracketsDoNot", " \t[S]\t \nK=v\n", 0, "v"},
        ProfileCase{"HeaderWithoutEndBeforeTheSection", "[TT\n[S]\nK=v\n", -14},
        ProfileCase{"HeaderWithTextBehindItsEnd", "[S] # mine\nK=v\n", -14},
        ProfileCase{"TwoCharactersAreNoHeader", "[]\n[x\n[\n[S]\nK=v\n", 0, "v"},
        ProfileCase{"CommentedHeader", "#[S]\nK=v\n", -1},
        ProfileCase{"MalformedKeyLinesElsewhere", "[T]\nno sign\n=x\n[S]\nK=v\n", 0, "v"},
        ProfileCase{"ContinuationIsNotJoinedOutsideTheSection", "[T]\nA=1+\n[S]\nK=v\n", 0, "v"},
        ProfileCase{"FirstOfTwoSectionsCounts", "[S]\nJ=1\n[S]\nK=v\n", -2},
        ProfileCase{"BracketsInTheName", "[[S]]\n[S]\nK=v\n", 0, "v"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Keys, FindProfileValueTest,
    ::testing::Values(ProfileCase{"BlanksAroundTheSign", "[S]\n \tK \t=\t v w\t \n", 0, "v w"},
                      ProfileCase{"EmptyValue", "[S]\nK= \n", 0, ""},
                      ProfileCase{"SplitAtTheFirstSign", "[S]\nK=a=b\n", 0, "a=b"},
                      ProfileCase{"OtherCase", "[S]\nk=v\n", -2},
                      ProfileCase{"BlankInsideAKey", "[S]\nK K=v\n", -2},
                      ProfileCase{"FirstOfTwoKeysCounts", "[S]\nK=1\nK=2\n", 0, "1"},
                      ProfileCase{"NoSuchKey", "[S]\nJ=1\n", -2},
                      ProfileCase{"NextSectionEndsTheSearch", "[S]\nJ=1\n[T]\nK=v\n", -2},
                      ProfileCase{"HeaderWithoutEndEndsTheSearch", "[S]\n[T\nK=v\n", -2},
                      ProfileCase{"CommentsAndEmptyLines", "[S]\n\n # K=1\n \t\nK=v\n", 0, "v"},
                      ProfileCase{"LineWithoutSignBeforeTheKey", "[S]\nJ\nK=v\n", -14},
                      ProfileCase{"LineWithoutSignAfterTheKey", "[S]\nK=v\nJ\n", 0, "v"},
                      ProfileCase{"LineThatBeginsWithTheSign", "[S]\n =1\nK=v\n", -14}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Continuation, FindProfileValueTest,
    ::testing::Values(
        ProfileCase{"JoinsTheNextLine", "[S]\nK=2+\n0\n", 0, "20"},
        ProfileCase{"JoinsSeveral", "[S]\nK=1+\n \t2+\n3\nJ=1\n", 0, "123"},
        ProfileCase{"BlanksBeforeTheRemovedPlusStay", "[S]\nK=1 +\n2\n", 0, "1 2"},
        ProfileCase{"TrailingBlanksOfTheLineItselfDoNotHideThePlus", "[S]\nK=1+ \n2\n", 0, "12"},
        ProfileCase{"TrailingBlanksOfAContinuationStayAndEndTheChain", "[S]\nK=1+\n2+ \n3\n", 0,
                    "12+ "},
        ProfileCase{"LooksAtNothingElse", "[S]\nK=1+\n#2+\n[T]\n", 0, "1#2[T]"},
        ProfileCase{"EmptyLineEndsIt", "[S]\nK=1+\n \nJ\n", 0, "1"},
        ProfileCase{"EndOfFileEndsIt", "[S]\nK=1+", 0, "1"},
        ProfileCase{"LonePlusGoesOn", "[S]\nK=1+\n+\n2\n", 0, "12"},
        ProfileCase{"JoinedBeforeItIsSplit", "[S]\n+\n K=+\nv\n", 0, "v"},
        ProfileCase{"OtherKeysAreJoinedToo", "[S]\nJ=1+\nK=2\nK=3\n", 0, "3"},
        ProfileCase{"JoinedLineWithoutSign", "[S]\na+\nb\nK=v\n", -14},
        ProfileCase{"FillsALineExactly", "[S]\nK=" + Chars(2000) + "+\n" + Chars(2094) + "+\n\n", 0,
                    Chars(4094)},
        ProfileCase{"TooLong", "[S]\nK=" + Chars(2000) + "+\n" + Chars(2095) + "\n", -22},
        ProfileCase{"OtherKeyTooLong", "[S]\nJ=" + Chars(2000) + "+\n" + Chars(2095) + "\nK=v\n",
                    -22}),
    [](const auto& row) { return row.param.name; });

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
  struct Case {
    const char* text;
    int32_t expected;
  };
  const Case cases[] = {
      {"20", 20},
      {" 20", 20},
      {"+7", 7},
      {"-5", 0},
      {"abc", 0},
      {"", 99},
      {"12 dpi", 12},
      {"3.9", 3},
      {"007", 7},
      {"- 5", 0},
      {"\v 5", 5},
      {"2147483647", INT32_MAX},
      {"99999999999999999999999999", INT32_MAX},
      {"-99999999999999999999999999", 0},
  };
  for (const Case& c : cases) {
    const ProfileOnDisk file("[S]\nK="s + c.text + "\n");
    EXPECT_EQ(ReadProfileInt("S", "K", 99, file.path()), c.expected) << c.text;
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
  const Case cases[] = {
      {"3.5", "9", 3, "3.5"}, {"2.25", "9", 3, "2."},       {"abc", nullptr, 1, ""},
      {"", "9", 3, ""},       {nullptr, "9", 3, "9"},       {nullptr, nullptr, 3, ""},
      {nullptr, "", 3, ""},   {nullptr, "longer", 3, "lo"}, {"a", "9", 4000000000U, "a"},
  };
  for (const Case& c : cases) {
    const ProfileOnDisk file(c.value == nullptr ? "[S]\n" : "[S]\nK="s + c.value + "\n");
    char out[8];
    std::memset(out, 'x', sizeof out);
    const uint32_t stored = ReadProfileText("S", "K", c.defaultText, out, c.size, file.path());
    EXPECT_STREQ(out, c.expected) << c.expected;
    EXPECT_EQ(stored, std::strlen(c.expected));
  }
}

TEST(ReadProfileText, LeavesTheBufferAloneWhenRefused) {
  const ProfileOnDisk file("[S]\nK=v\n");
  char out[4] = "old";
  EXPECT_EQ(ReadProfileText("S", "K", "d", nullptr, 3, file.path()), 0U);
  EXPECT_EQ(ReadProfileText("S", "K", "d", out, 0, file.path()), 0U);
  for (const char* missing : std::vector<const char*>{nullptr, ""}) {
    EXPECT_EQ(ReadProfileText(missing, "K", "d", out, 3, file.path()), 0U);
    EXPECT_EQ(ReadProfileText("S", missing, "d", out, 3, file.path()), 0U);
    EXPECT_EQ(ReadProfileText("S", "K", "d", out, 3, missing), 0U);
  }
  EXPECT_STREQ(out, "old");
}

TEST(ParseDecimal, TakesDigitsWithOnePoint) {
  EXPECT_EQ(ParseDecimal("2.7"), 2.7);
  EXPECT_EQ(ParseDecimal("+.5"), 0.5);
  EXPECT_EQ(ParseDecimal("5."), 5.0);
  EXPECT_EQ(ParseDecimal(" \t-1.25x"), -1.25);
  EXPECT_EQ(ParseDecimal("1.2.3"), 1.2);
  EXPECT_EQ(ParseDecimal("1e3"), 1.0);
  EXPECT_EQ(ParseDecimal("0x9"), 0.0);
  EXPECT_EQ(ParseDecimal("1,5"), 1.0);
  for (const char* none : {"", ".", "-", "inf", "nan", "+-1", "- 1"}) {
    EXPECT_EQ(ParseDecimal(none), 0.0) << none;
  }
}

}  // namespace
}  // namespace vorlanepic
