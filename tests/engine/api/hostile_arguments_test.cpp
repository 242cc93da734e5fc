// What the page engine's functions make of arguments that no caller should pass.
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "engine/api/picture.h"

namespace vorlane::testing {
namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The arguments of detect and apply, good as they are; cases spoil one each.
struct Arguments {
  vorlane_image image{};
  vorlane_detect_options detecting{};
  vorlane_apply_options applying = ApplyOptions();
  vorlane_finding finding = EmptyFinding();
  vorlane_result result{};
  const vorlane_image* page = &image;
  vorlane_finding* answer = &finding;
  vorlane_result* made = &result;
  vorlane_context* context = nullptr;
};

using Spoil = std::function<void(Arguments&)>;
using Image = vorlane_image;
using Detecting = vorlane_detect_options;
using Applying = vorlane_apply_options;
using Finding = vorlane_finding;
using Result = vorlane_result;

// Sets a pointer, or a field of one of the records, to a value.
template <typename T>
Spoil Null(T* Arguments::*pointer) {
  return [=](Arguments& a) { a.*pointer = nullptr; };
}
template <auto kRecord, typename Record, typename T, typename Value>
Spoil SetIn(T Record::*field, Value value) {
  return [=](Arguments& a) { (a.*kRecord).*field = static_cast<T>(value); };
}
constexpr auto kImageOf = &Arguments::image;
constexpr auto kDetecting = &Arguments::detecting;
constexpr auto kApplying = &Arguments::applying;
constexpr auto kFindingOf = &Arguments::finding;
constexpr auto kResult = &Arguments::result;

Spoil Corner(double x, double y) {
  return [=](Arguments& a) { a.finding.corners[2] = {x, y}; };
}
Spoil CutBesideThePage() {
  return [](Arguments& a) { std::fill_n(a.finding.corners, 4, vorlane_point{99, 99}); };
}

struct Case {
  Spoil spoil;
  vorlane_status ofDetect;
  vorlane_status ofApply;
};

constexpr vorlane_status kArgument = VORLANE_BAD_ARGUMENT;
constexpr vorlane_status kImage = VORLANE_BAD_IMAGE;
constexpr vorlane_status kOption = VORLANE_BAD_OPTION;
constexpr vorlane_status kFinding = VORLANE_BAD_FINDING;
constexpr vorlane_status kLarge = VORLANE_TOO_LARGE;
constexpr vorlane_status kSmall = VORLANE_RESULT_TOO_SMALL;

const Case kCases[] = {
    {[](Arguments&) {}, VORLANE_OK, VORLANE_OK},
    {Null(&Arguments::context), kArgument, kArgument},
    {Null(&Arguments::page), kArgument, kArgument},
    {SetIn<kImageOf>(&Image::pixels, nullptr), kArgument, kArgument},
    {SetIn<kImageOf>(&Image::width, 0), kImage, kImage},
    {SetIn<kImageOf>(&Image::height, -1), kImage, kImage},
    {SetIn<kImageOf>(&Image::format, 0), kImage, kImage},
    {SetIn<kImageOf>(&Image::format, 8), kImage, kImage},
    {SetIn<kImageOf>(&Image::stride, 29), kImage, kImage},
    {SetIn<kImageOf>(&Image::stride, -29), kImage, kImage},
    {SetIn<kImageOf>(&Image::stride, PTRDIFF_MIN), kLarge, kLarge},
    {SetIn<kImageOf>(&Image::stride, INT32_MAX / 20 + 1), kLarge, kLarge},
    {SetIn<kImageOf>(&Image::width, VORLANE_MAX_EDGE + 1), kLarge, kLarge},
    {SetIn<kImageOf>(&Image::height, VORLANE_MAX_EDGE + 1), kLarge, kLarge},
    {Null(&Arguments::answer), kArgument, kArgument},
    {SetIn<kFindingOf>(&Finding::struct_size, sizeof(Finding) + 8), kArgument, kArgument},
    {SetIn<kDetecting>(&Detecting::struct_size, 1), kArgument, VORLANE_OK},
    {SetIn<kDetecting>(&Detecting::by, -1), kOption, VORLANE_OK},
    {SetIn<kDetecting>(&Detecting::min_confidence, 4), kOption, VORLANE_OK},
    {SetIn<kDetecting>(&Detecting::min_turn, kNoNumber), kOption, VORLANE_OK},
    {SetIn<kDetecting>(&Detecting::margin, kInfinity), kOption, VORLANE_OK},
    {SetIn<kApplying>(&Applying::struct_size, 1), VORLANE_OK, kArgument},
    {SetIn<kApplying>(&Applying::interpolation, 3), VORLANE_OK, kOption},
    {SetIn<kApplying>(&Applying::quarter_turns, 4), VORLANE_OK, kOption},
    {SetIn<kApplying>(&Applying::min_confidence, -1), VORLANE_OK, kOption},
    {SetIn<kApplying>(&Applying::threads, 65), VORLANE_OK, kOption},
    {SetIn<kApplying>(&Applying::margin, -46341), VORLANE_OK, kOption},
    {SetIn<kApplying>(&Applying::max_growth, kNoNumber), VORLANE_OK, kOption},
    {SetIn<kApplying>(&Applying::max_growth, 0.5), VORLANE_OK, VORLANE_RESULT_TOO_LARGE},
    {SetIn<kApplying>(&Applying::max_turn, 9), VORLANE_OK, VORLANE_TURN_TOO_LARGE},
    {SetIn<kFindingOf>(&Finding::turn_confidence, 1), VORLANE_OK, VORLANE_NOT_CONFIDENT},
    {SetIn<kFindingOf>(&Finding::page_width, 31), VORLANE_OK, kFinding},
    {SetIn<kFindingOf>(&Finding::turn, kNoNumber), VORLANE_OK, kFinding},
    {Corner(kNoNumber, 0), VORLANE_OK, kFinding},
    {Corner(0, 1e300), VORLANE_OK, kFinding},
    {CutBesideThePage(), VORLANE_OK, kFinding},
    {SetIn<kApplying>(&Applying::margin, -20), VORLANE_OK, kFinding},
    {Null(&Arguments::made), VORLANE_OK, kArgument},
    {SetIn<kResult>(&Result::pixels, nullptr), VORLANE_OK, kArgument},
    {SetIn<kResult>(&Result::stride, -30), VORLANE_OK, kImage},
    {SetIn<kResult>(&Result::width, 0), VORLANE_OK, kSmall},
    {SetIn<kResult>(&Result::height, INT32_MIN), VORLANE_OK, kSmall},
};

TEST(HostileArguments, GiveTheirStatusAndChangeNothing) {
  const Context context;
  const std::vector<uint8_t> pixels(30 * 20, 77);
  for (const Case& each : kCases) {
    const ::testing::ScopedTrace place(__FILE__, __LINE__, &each - kCases);
    Arguments a;
    std::vector<uint8_t> memory(64 * 64, 0xEE);
    a.image = {pixels.data(), 30, 30, 20, VORLANE_GREY8};
    vorlane_detect_options_init(&a.detecting, sizeof a.detecting);
    vorlane_finding_decide(&a.finding, 30, 20, 10, nullptr);
    a.finding.cut_confidence = VORLANE_SURE;
    a.result = {memory.data(), 64, 64, 64};
    a.context = context.get();
    each.spoil(a);
    EXPECT_EQ(vorlane_apply(a.context, a.page, a.answer, &a.applying, a.made), each.ofApply);
    EXPECT_EQ(memory == std::vector<uint8_t>(64 * 64, 0xEE), each.ofApply != VORLANE_OK);
    const double turn = a.finding.turn;
    EXPECT_EQ(vorlane_detect(a.context, a.page, &a.detecting, a.answer), each.ofDetect);
    EXPECT_EQ(a.finding.turn != turn, each.ofDetect == VORLANE_OK);
  }
}

TEST(HostileArguments, OfSmallFunctionsAreRefused) {
  vorlane_finding finding = EmptyFinding();
  const vorlane_point corners[4] = {{0, 0}, {kInfinity, 0}, {1, 1}, {0, 1}};
  EXPECT_EQ(vorlane_context_new(nullptr), kArgument);
  EXPECT_EQ(vorlane_finding_init(&finding, sizeof finding - 8), kArgument);
  EXPECT_EQ(vorlane_finding_decide(&finding, 0, 5, 0, nullptr), kFinding);
  EXPECT_EQ(vorlane_finding_decide(&finding, 5, 5, kNoNumber, nullptr), kFinding);
  EXPECT_EQ(vorlane_finding_decide(&finding, 5, 5, 0, corners), kFinding);
  EXPECT_EQ(vorlane_row_bytes(VORLANE_BGR24, INT32_MIN), 0U);
}

TEST(Words, StandForEveryCodeAndForNoOther) {
  for (const auto text : {vorlane_status_text, vorlane_confidence_name, vorlane_evidence_name,
                          vorlane_reason_name, vorlane_reason_text, vorlane_reason_unit}) {
    for (const int32_t none : {-1, 1000, INT32_MIN, INT32_MAX}) EXPECT_STREQ(text(none), "unknown");
  }
  EXPECT_STREQ(vorlane_status_text(VORLANE_INTERNAL), "the library has failed");
  EXPECT_STREQ(vorlane_reason_name(VORLANE_REASON_PRINT_OFF_PAPER), "print-off-paper");
}

}  // namespace
}  // namespace vorlane::testing
