#include <algorithm>
#include <cmath>

#include "engine/api/records.h"
#include "vorlane/vorlane.h"

namespace {

namespace api = vorlane::api;

// The whole page's corners, or those given; false when one is no number.
bool TakeCorners(const vorlane_point* given, int32_t width, int32_t height,
                 vorlane_point* corners) {
  if (given == nullptr) {
    const double right = width - 0.5;
    const double bottom = height - 0.5;
    const vorlane_point whole[] = {{-0.5, -0.5}, {right, -0.5}, {right, bottom}, {-0.5, bottom}};
    std::ranges::copy(whole, corners);
    return true;
  }
  std::copy_n(given, 4, corners);
  return std::all_of(given, given + 4, [](const vorlane_point& corner) {
    return std::isfinite(corner.x) && std::isfinite(corner.y);
  });
}

bool IsEdge(int32_t pixels) { return pixels >= 1 && pixels <= VORLANE_MAX_EDGE; }

}  // namespace

vorlane_status vorlane_detect_options_init(vorlane_detect_options* options, size_t size) noexcept {
  return api::InitRecord(api::DefaultDetectOptions(), options, size);
}

vorlane_status vorlane_apply_options_init(vorlane_apply_options* options, size_t size) noexcept {
  return api::InitRecord(api::DefaultApplyOptions(), options, size);
}

vorlane_status vorlane_finding_init(vorlane_finding* finding, size_t size) noexcept {
  return api::InitRecord(api::DefaultFinding(), finding, size);
}

vorlane_status vorlane_finding_decide(vorlane_finding* finding, int32_t width, int32_t height,
                                      double turn, const vorlane_point* corners) noexcept {
  if (finding == nullptr || !api::IsKnownSize<vorlane_finding>(finding->struct_size)) {
    return VORLANE_BAD_ARGUMENT;
  }
  vorlane_finding decided = api::DefaultFinding();
  if (!IsEdge(width) || !IsEdge(height) || !(std::abs(turn) <= 180.0)) return VORLANE_BAD_FINDING;
  if (!TakeCorners(corners, width, height, decided.corners)) return VORLANE_BAD_FINDING;
  decided.page_width = width;
  decided.page_height = height;
  decided.turn_confidence = VORLANE_SURE;
  decided.cut_confidence = corners != nullptr ? VORLANE_SURE : VORLANE_REFUSED;
  decided.turn = turn;
  api::WriteFinding(decided, finding);
  return VORLANE_OK;
}
