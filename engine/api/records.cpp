#include "engine/api/records.h"

#include <cmath>

#include "engine/apply/shares.h"

namespace vorlane::api {
namespace {

bool IsBetween(int32_t value, int32_t least, int32_t most) {
  return value >= least && value <= most;
}

// False for what is no number.
bool IsBetween(double value, double least, double most) { return value >= least && value <= most; }

bool IsMargin(double pixels) { return IsBetween(std::abs(pixels), 0.0, double{VORLANE_MAX_EDGE}); }

}  // namespace

vorlane_detect_options DefaultDetectOptions() {
  vorlane_detect_options options{};
  options.struct_size = sizeof options;
  options.by = VORLANE_BY_AUTO;
  options.crop = VORLANE_CROP_PAPER;
  options.min_confidence = VORLANE_DOUBTFUL;
  options.max_turn = 45.0;
  options.min_turn = 0.05;
  return options;
}

vorlane_apply_options DefaultApplyOptions() {
  vorlane_apply_options options{};
  options.struct_size = sizeof options;
  options.interpolation = VORLANE_BICUBIC;
  options.min_confidence = VORLANE_LIKELY;
  options.threads = 1;
  for (uint8_t& channel : options.fill) channel = 255;
  options.min_turn = 0.05;
  options.max_turn = 45.0;
  options.max_growth = 8.0;
  return options;
}

vorlane_finding DefaultFinding() {
  vorlane_finding finding{};
  finding.struct_size = sizeof finding;
  return finding;
}

bool AreInRange(const vorlane_detect_options& options) {
  return IsBetween(options.by, VORLANE_BY_AUTO, VORLANE_BY_BAR) &&
         IsBetween(options.crop, VORLANE_CROP_PAPER, VORLANE_CROP_NONE) &&
         IsBetween(options.min_confidence, VORLANE_REFUSED, VORLANE_SURE) &&
         IsBetween(options.is_form, 0, 1) && IsBetween(options.has_no_mount, 0, 1) &&
         IsBetween(options.max_turn, 0.0, 45.0) && IsBetween(options.min_turn, 0.0, 45.0) &&
         IsMargin(options.margin);
}

bool AreInRange(const vorlane_apply_options& options) {
  return IsBetween(options.interpolation, VORLANE_NEAREST, VORLANE_BICUBIC) &&
         IsBetween(options.quarter_turns, 0, 3) && IsBetween(options.keep_whole, 0, 1) &&
         IsBetween(options.min_confidence, VORLANE_REFUSED, VORLANE_SURE) &&
         IsBetween(options.threads, 1, apply::kMostShares) && IsMargin(options.margin) &&
         IsBetween(options.min_turn, 0.0, 180.0) && IsBetween(options.max_turn, 0.0, 180.0) &&
         options.max_growth > 0.0;
}

void WriteFinding(const vorlane_finding& finding, vorlane_finding* record) {
  const uint32_t size = record->struct_size;
  std::memcpy(record, &finding, size);
  record->struct_size = size;
}

}  // namespace vorlane::api
