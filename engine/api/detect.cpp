#include "engine/judge/detect.h"

#include <algorithm>
#include <iterator>

#include "engine/api/context.h"
#include "engine/api/records.h"
#include "engine/api/words.h"
#include "engine/apply/page_format.h"
#include "engine/apply/pixel_rows.h"
#include "vorlane/vorlane.h"

namespace vorlane::api {
namespace {

// The public codes are the engine's.
static_assert(VORLANE_REFUSED == static_cast<int32_t>(judge::Confidence::kRefused) &&
              VORLANE_SURE == static_cast<int32_t>(judge::Confidence::kSure) &&
              VORLANE_FRAME == static_cast<int32_t>(judge::Verdict::kFrame) &&
              VORLANE_BY_BAR == static_cast<int32_t>(judge::By::kBar) &&
              VORLANE_CROP_NONE == static_cast<int32_t>(judge::Crop::kNone) &&
              VORLANE_VOTE == static_cast<int32_t>(judge::EvidenceKind::kVote) &&
              VORLANE_MAX_EDGE == judge::kLargestSide);
static_assert(judge::kEvidenceKinds == VORLANE_EVIDENCE_KINDS &&
              judge::kEvidenceKinds <= VORLANE_EVIDENCE_ROOM &&
              judge::kMostReasons <= VORLANE_REASON_ROOM);

judge::DetectOptions EngineOptions(const vorlane_detect_options& options) {
  judge::DetectOptions engine;
  engine.by = static_cast<judge::By>(options.by);
  engine.crop = static_cast<judge::Crop>(options.crop);
  engine.marginPixels = options.margin;
  engine.maxAngleDegrees = options.max_turn;
  engine.minConfidence = static_cast<judge::Confidence>(options.min_confidence);
  engine.minTurnDegrees = options.min_turn;
  engine.isForm = options.is_form != 0;
  engine.hasNoMount = options.has_no_mount != 0;
  return engine;
}

vorlane_status StatusOf(judge::Status status) {
  switch (status) {
    case judge::Status::kOk:
      return VORLANE_OK;
    case judge::Status::kTooLarge:
      return VORLANE_TOO_LARGE;
    case judge::Status::kOutOfMemory:
      return VORLANE_NO_MEMORY;
    default:
      return VORLANE_INTERNAL;  // the arguments were looked at before
  }
}

void CopyAnswer(const judge::Finding& found, vorlane_finding* finding) {
  finding->turn_confidence = static_cast<int32_t>(found.angleConfidence);
  finding->cut_confidence = static_cast<int32_t>(found.cutConfidence);
  finding->by = found.by;
  finding->turn = found.turnDegrees;
  finding->expected = found.expected;
  std::ranges::transform(found.corners, finding->corners, [](const judge::Point& corner) {
    return vorlane_point{corner.x, corner.y};
  });
  std::ranges::transform(found.evidence, finding->evidence,
                         [](const judge::EvidenceReport& report) {
                           return vorlane_evidence{0.0 - report.degrees, report.strength,
                                                   static_cast<int32_t>(report.verdict), 0};
                         });
  finding->reason_count = static_cast<int32_t>(found.reasonCount);
  std::transform(found.reasons.begin(), found.reasons.begin() + finding->reason_count,
                 finding->reasons, [](const judge::ReasonReport& report) {
                   return vorlane_reason{CodeOf(report.reason), 0, report.value};
                 });
}

vorlane_status Detect(apply::Workspace& space, const vorlane_image& page,
                      const vorlane_detect_options& options, vorlane_finding* finding) {
  vorlane_image light = page;
  if (page.format == VORLANE_BIT_DARK && !apply::InvertBits(page, space, &light)) {
    return VORLANE_NO_MEMORY;
  }
  judge::PictureView picture;
  picture.pixels = light.pixels;
  picture.strideBytes = light.stride;
  picture.width = light.width;
  picture.height = light.height;
  picture.depth = apply::FormatOf(page.format).bitsPerPixel;
  judge::Finding found;
  const vorlane_status status =
      StatusOf(judge::Detect(picture, EngineOptions(options), space.levels, &found));
  if (status != VORLANE_OK) return status;

  vorlane_finding answer = DefaultFinding();
  answer.page_width = page.width;
  answer.page_height = page.height;
  CopyAnswer(found, &answer);
  WriteFinding(answer, finding);
  return VORLANE_OK;
}

}  // namespace
}  // namespace vorlane::api

vorlane_status vorlane_detect(vorlane_context* context, const vorlane_image* page,
                              const vorlane_detect_options* options,
                              vorlane_finding* finding) noexcept {
  using namespace vorlane;
  if (page == nullptr || page->pixels == nullptr || finding == nullptr ||
      !api::IsKnownSize<vorlane_finding>(finding->struct_size)) {
    return VORLANE_BAD_ARGUMENT;
  }
  vorlane_status status = apply::CheckImage(*page);
  if (status != VORLANE_OK) return status;
  vorlane_detect_options read = api::DefaultDetectOptions();
  status = api::ReadOptions(options, &read);
  if (status != VORLANE_OK) return status;
  return api::InContext(
      context, [&](apply::Workspace& space) { return api::Detect(space, *page, read, finding); });
}
