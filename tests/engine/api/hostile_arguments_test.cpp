// What the page engine's functions make of arguments that no caller should pass.
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "engine/api/picture.h"

namespace vorlane::testing {
namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The arguments of detect and apply, good as they are; cases spoil one each. Null where a case
// takes a pointer away.
struct Arguments {
  vorlane_image image{};
  vorlane_detect_options detecting{};
  vorlane_apply_options applying = ApplyOptions();
  vorlane_finding finding = EmptyFinding();
  vorlane_result result{};
  const vorlane_image* page = &image;
  vorlane_finding* answer = &finding;
  vorlane_result* made = &result;
  bool hasContext = true;
};

struct Case {
  const char* name;
  std::function<void(Arguments&)> spoil;
  vorlane_status ofDetect;
  vorlane_status ofApply;
};

constexpr vorlane_status kArgument = VORLANE_BAD_ARGUMENT;
constexpr vorlane_status kImage = VORLANE_BAD_IMAGE;
constexpr vorlane_status kOption = VORLANE_BAD_OPTION;
constexpr vorlane_status kFinding = VORLANE_BAD_FINDING;
constexpr vorlane_status kLarge = VORLANE_TOO_LARGE;

const Case kCases[] = {
    {"none", [](Arguments&) {}, 0, 0},
    {"no context", [](Arguments& a) { a.hasContext = false; }, kArgument, kArgument},
    {"no page", [](Arguments& a) { a.page = nullptr; }, kArgument, kArgument},
    {"no pixels", [](Arguments& a) { a.image.pixels = nullptr; }, kArgument, kArgument},
    {"no width", [](Arguments& a) { a.image.width = 0; }, kImage, kImage},
    {"least width", [](Arguments& a) { a.image.width = INT32_MIN; }, kImage, kImage},
    {"no height", [](Arguments& a) { a.image.height = -1; }, kImage, kImage},
    {"format 0", [](Arguments& a) { a.image.format = 0; }, kImage, kImage},
    {"format 8", [](Arguments& a) { a.image.format = 8; }, kImage, kImage},
    {"format -1", [](Arguments& a) { a.image.format = -1; }, kImage, kImage},
    {"short rows", [](Arguments& a) { a.image.stride = 29; }, kImage, kImage},
    {"short rows, bottom first", [](Arguments& a) { a.image.stride = -29; }, kImage, kImage},
    {"rows on each other", [](Arguments& a) { a.image.stride = 0; }, kImage, kImage},
    {"least stride", [](Arguments& a) { a.image.stride = PTRDIFF_MIN; }, kLarge, kLarge},
    {"most stride", [](Arguments& a) { a.image.stride = PTRDIFF_MAX; }, kLarge, kLarge},
    {"2^31 bytes",
     [](Arguments& a) {
       a.image.stride = 1 << 27;
       a.image.height = 16;
     },
     kLarge, kLarge},
    {"long rows", [](Arguments& a) { a.image.stride = a.image.width = VORLANE_MAX_EDGE + 1; },
     kLarge, kLarge},
    {"many rows", [](Arguments& a) { a.image.height = VORLANE_MAX_EDGE + 1; }, kLarge, kLarge},
    {"no finding", [](Arguments& a) { a.answer = nullptr; }, kArgument, kArgument},
    {"finding of no size", [](Arguments& a) { a.finding.struct_size = 0; }, kArgument, kArgument},
    {"finding too long", [](Arguments& a) { a.finding.struct_size += 8; }, kArgument, kArgument},
    {"options of no size",
     [](Arguments& a) { a.detecting.struct_size = a.applying.struct_size = 1; }, kArgument,
     kArgument},
    {"by -1", [](Arguments& a) { a.detecting.by = -1; }, kOption, 0},
    {"crop 3", [](Arguments& a) { a.detecting.crop = 3; }, kOption, 0},
    {"form 2", [](Arguments& a) { a.detecting.is_form = 2; }, kOption, 0},
    {"mount -1", [](Arguments& a) { a.detecting.has_no_mount = -1; }, kOption, 0},
    {"turns past 45", [](Arguments& a) { a.detecting.max_turn = 45.1; }, kOption, 0},
    {"no least turn", [](Arguments& a) { a.detecting.min_turn = kNoNumber; }, kOption, 0},
    {"confidence 4",
     [](Arguments& a) { a.detecting.min_confidence = a.applying.min_confidence = 4; }, kOption,
     kOption},
    {"margin without end", [](Arguments& a) { a.detecting.margin = a.applying.margin = kInfinity; },
     kOption, kOption},
    {"margin -46341", [](Arguments& a) { a.detecting.margin = a.applying.margin = -46341; },
     kOption, kOption},
    {"interpolation 3", [](Arguments& a) { a.applying.interpolation = 3; }, 0, kOption},
    {"four quarters", [](Arguments& a) { a.applying.quarter_turns = 4; }, 0, kOption},
    {"no threads", [](Arguments& a) { a.applying.threads = 0; }, 0, kOption},
    {"65 threads", [](Arguments& a) { a.applying.threads = 65; }, 0, kOption},
    {"no growth", [](Arguments& a) { a.applying.max_growth = kNoNumber; }, 0, kOption},
    {"growth 0", [](Arguments& a) { a.applying.max_growth = 0; }, 0, kOption},
    {"turns past 180", [](Arguments& a) { a.applying.max_turn = 181; }, 0, kOption},
    {"a small result", [](Arguments& a) { a.applying.max_growth = 0.5; }, 0,
     VORLANE_RESULT_TOO_LARGE},
    {"no great turns", [](Arguments& a) { a.applying.max_turn = 9; }, 0, VORLANE_TURN_TOO_LARGE},
    {"asked to be sure", [](Arguments& a) { a.finding.turn_confidence = VORLANE_DOUBTFUL; }, 0,
     VORLANE_NOT_CONFIDENT},
    {"another page's finding", [](Arguments& a) { a.finding.page_width = 31; }, 0, kFinding},
    {"turn without number", [](Arguments& a) { a.finding.turn = kNoNumber; }, 0, kFinding},
    {"turn 181", [](Arguments& a) { a.finding.turn = 181; }, 0, kFinding},
    {"corner without number", [](Arguments& a) { a.finding.corners[2].x = kNoNumber; }, 0,
     kFinding},
    {"corner far out", [](Arguments& a) { a.finding.corners[0].y = 1e300; }, 0, kFinding},
    {"cut beside the page",
     [](Arguments& a) {
       for (vorlane_point& corner : a.finding.corners) corner = {99, 99};
     },
     0, kFinding},
    {"nothing inside the margin", [](Arguments& a) { a.applying.margin = -20; }, 0, kFinding},
    {"no result", [](Arguments& a) { a.made = nullptr; }, 0, kArgument},
    {"no result's pixels", [](Arguments& a) { a.result.pixels = nullptr; }, 0, kArgument},
    {"result's short rows", [](Arguments& a) { a.result.stride = -30; }, 0, kImage},
    {"result of no width", [](Arguments& a) { a.result.width = 0; }, 0, VORLANE_RESULT_TOO_SMALL},
    {"result of least height", [](Arguments& a) { a.result.height = INT32_MIN; }, 0,
     VORLANE_RESULT_TOO_SMALL},
};

TEST(HostileArguments, GiveTheirStatusAndChangeNothing) {
  const Context context;
  const std::vector<uint8_t> pixels(30 * 20, 77);
  for (const Case& each : kCases) {
    Arguments a;
    std::vector<uint8_t> memory(64 * 64, 0xEE);
    a.image = {pixels.data(), 30, 30, 20, VORLANE_GREY8};
    vorlane_detect_options_init(&a.detecting, sizeof a.detecting);
    vorlane_finding_decide(&a.finding, 30, 20, 10, nullptr);
    a.finding.cut_confidence = VORLANE_SURE;
    a.result = {memory.data(), 64, 64, 64};
    each.spoil(a);
    vorlane_context* given = a.hasContext ? context.get() : nullptr;
    const vorlane_status applied = vorlane_apply(given, a.page, a.answer, &a.applying, a.made);
    EXPECT_EQ(applied, each.ofApply) << each.name;
    const bool isUntouched = memory == std::vector<uint8_t>(64 * 64, 0xEE);
    EXPECT_EQ(isUntouched, applied != VORLANE_OK) << each.name;
    const double turn = a.finding.turn;
    const vorlane_status detected = vorlane_detect(given, a.page, &a.detecting, a.answer);
    EXPECT_EQ(detected, each.ofDetect) << each.name;
    EXPECT_EQ(std::memcmp(&turn, &a.finding.turn, sizeof turn) == 0, detected != VORLANE_OK)
        << each.name;
  }
}

TEST(HostileArguments, OfSmallFunctionsAreRefused) {
  vorlane_finding finding = EmptyFinding();
  const vorlane_point corners[4] = {{0, 0}, {kInfinity, 0}, {1, 1}, {0, 1}};
  EXPECT_EQ(vorlane_context_new(nullptr), kArgument);
  vorlane_context_free(nullptr);
  EXPECT_EQ(vorlane_context_trim(nullptr), kArgument);
  EXPECT_EQ(vorlane_finding_init(nullptr, sizeof finding), kArgument);
  EXPECT_EQ(vorlane_finding_init(&finding, sizeof finding - 8), kArgument);
  EXPECT_EQ(vorlane_finding_decide(nullptr, 5, 5, 0, nullptr), kArgument);
  EXPECT_EQ(vorlane_finding_decide(&finding, 0, 5, 0, nullptr), kFinding);
  EXPECT_EQ(vorlane_finding_decide(&finding, 5, VORLANE_MAX_EDGE + 1, 0, nullptr), kFinding);
  EXPECT_EQ(vorlane_finding_decide(&finding, 5, 5, kNoNumber, nullptr), kFinding);
  EXPECT_EQ(vorlane_finding_decide(&finding, 5, 5, 0, corners), kFinding);
  const vorlane_image page{nullptr, 5, 5, 5, VORLANE_GREY8};
  int32_t width = 0;
  EXPECT_EQ(vorlane_max_result_size(&page, nullptr, &width, nullptr), kArgument);
  EXPECT_EQ(vorlane_result_size(&page, nullptr, nullptr, &width, &width), kArgument);
  EXPECT_EQ(vorlane_row_bytes(VORLANE_BGR24, INT32_MIN), 0U);
  EXPECT_EQ(vorlane_row_bytes(9, 5), 0U);
  EXPECT_EQ(vorlane_row_bytes(VORLANE_RGBX32, INT32_MAX), size_t{4} * INT32_MAX);
}

TEST(Words, StandForEveryCodeAndForNoOther) {
  for (const int32_t none : {-1, 1000, INT32_MIN, INT32_MAX}) {
    EXPECT_STREQ(vorlane_status_text(none), "unknown");
    EXPECT_STREQ(vorlane_confidence_name(none), "unknown");
    EXPECT_STREQ(vorlane_evidence_name(none), "unknown");
    EXPECT_STREQ(vorlane_reason_name(none), "unknown");
    EXPECT_STREQ(vorlane_reason_text(none), "unknown");
    EXPECT_STREQ(vorlane_reason_unit(none), "unknown");
  }
  EXPECT_STREQ(vorlane_status_text(VORLANE_INTERNAL), "the library has failed");
  EXPECT_STREQ(vorlane_confidence_name(VORLANE_SURE), "sure");
  EXPECT_STREQ(vorlane_evidence_name(VORLANE_VOTE), "vote");
  EXPECT_STREQ(vorlane_reason_name(VORLANE_REASON_PRINT_OFF_PAPER), "print-off-paper");
  EXPECT_STREQ(vorlane_reason_unit(VORLANE_REASON_PRINT_OFF_PAPER), "degrees");
  EXPECT_EQ(vorlane_version(), VORLANE_VERSION_NUMBER);
}

}  // namespace
}  // namespace vorlane::testing
