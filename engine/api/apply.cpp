#include "engine/api/context.h"
#include "engine/api/records.h"
#include "engine/apply/page_format.h"
#include "engine/apply/result_geometry.h"
#include "engine/apply/turn_page.h"
#include "vorlane/vorlane.h"

namespace {

using vorlanepic::rotate::Turn;
namespace api = vorlane::api;
namespace apply = vorlane::apply;

// What apply and result_size are asked for, checked.
struct Request {
  vorlane_apply_options options = api::DefaultApplyOptions();
  vorlane_finding finding = api::DefaultFinding();
  Turn turn{};
};

vorlane_status ReadPageAndOptions(const vorlane_image* page, const vorlane_apply_options* options,
                                  vorlane_apply_options* read) {
  if (page == nullptr) return VORLANE_BAD_ARGUMENT;
  const vorlane_status status = apply::CheckImage(*page);
  return status == VORLANE_OK ? api::ReadOptions(options, read) : status;
}

vorlane_status ReadRequest(const vorlane_image* page, const vorlane_finding* finding,
                           const vorlane_apply_options* options, Request* request) {
  vorlane_status status = ReadPageAndOptions(page, options, &request->options);
  if (status != VORLANE_OK) return status;
  if (finding == nullptr) return VORLANE_BAD_ARGUMENT;
  status = api::ReadRecord(finding, &request->finding);
  if (status != VORLANE_OK) return status;
  return apply::PlanResult(*page, request->finding, request->options, &request->turn);
}

vorlane_status CheckResult(const Turn& turn, int32_t bitsPerPixel, vorlane_result* result) {
  if (result->width < turn.outWidth || result->height < turn.outHeight) {
    result->width = turn.outWidth;
    result->height = turn.outHeight;
    return VORLANE_RESULT_TOO_SMALL;
  }
  const bool isUsable =
      apply::IsStrideUsable(result->stride, bitsPerPixel, turn.outWidth, turn.outHeight);
  return isUsable ? VORLANE_OK : VORLANE_BAD_IMAGE;
}

}  // namespace

vorlane_status vorlane_result_size(const vorlane_image* page, const vorlane_finding* finding,
                                   const vorlane_apply_options* options, int32_t* width,
                                   int32_t* height) noexcept {
  if (width == nullptr || height == nullptr) return VORLANE_BAD_ARGUMENT;
  Request request;
  const vorlane_status status = ReadRequest(page, finding, options, &request);
  if (status != VORLANE_OK) return status;
  *width = request.turn.outWidth;
  *height = request.turn.outHeight;
  return VORLANE_OK;
}

vorlane_status vorlane_max_result_size(const vorlane_image* page,
                                       const vorlane_apply_options* options, int32_t* width,
                                       int32_t* height) noexcept {
  if (width == nullptr || height == nullptr) return VORLANE_BAD_ARGUMENT;
  vorlane_apply_options read = api::DefaultApplyOptions();
  const vorlane_status status = ReadPageAndOptions(page, options, &read);
  if (status != VORLANE_OK) return status;
  const apply::ResultSize most = apply::MostResultSize(*page, read);
  *width = most.width;
  *height = most.height;
  return VORLANE_OK;
}

vorlane_status vorlane_apply(vorlane_context* context, const vorlane_image* page,
                             const vorlane_finding* finding, const vorlane_apply_options* options,
                             vorlane_result* result) noexcept {
  if (page == nullptr || page->pixels == nullptr || result == nullptr ||
      result->pixels == nullptr) {
    return VORLANE_BAD_ARGUMENT;
  }
  Request request;
  vorlane_status status = ReadRequest(page, finding, options, &request);
  if (status != VORLANE_OK) return status;
  const apply::PageFormat format = apply::FormatOf(page->format);
  status = CheckResult(request.turn, format.bitsPerPixel, result);
  if (status != VORLANE_OK) return status;
  status = api::InContext(context, [&](apply::Workspace& space) {
    return apply::TurnPage(*page, request.turn, apply::FillBytes(format, request.options.fill),
                           request.options.threads, space, *result);
  });
  if (status != VORLANE_OK) return status;
  result->width = request.turn.outWidth;
  result->height = request.turn.outHeight;
  return VORLANE_OK;
}

size_t vorlane_row_bytes(int32_t format, int32_t width) noexcept {
  const int32_t bits = apply::FormatOf(format).bitsPerPixel;
  return bits == 0 || width < 1 ? 0 : apply::RowBytes(bits, width);
}
