#include "app/finding/page_engine.h"

#include <utility>

namespace vorlane::finding {
namespace {

int32_t FormatOf(int32_t bitsPerPixel) {
  switch (bitsPerPixel) {
    case 1:
      return VORLANE_BIT_LIGHT;
    case 8:
      return VORLANE_GREY8;
    default:
      return VORLANE_BGR24;
  }
}

vorlane_image ViewOf(const ImageRec& page) {
  return {page.pixels, page.lineBytes, page.width, page.height, FormatOf(page.bitsPerPixel)};
}

}  // namespace

vorlane_detect_options DefaultDetectOptions() {
  vorlane_detect_options options;
  (void)vorlane_detect_options_init(&options, sizeof options);
  return options;
}

vorlane_apply_options DefaultApplyOptions() {
  vorlane_apply_options options;
  (void)vorlane_apply_options_init(&options, sizeof options);
  return options;
}

vorlane_finding EmptyFinding() {
  vorlane_finding finding;
  (void)vorlane_finding_init(&finding, sizeof finding);
  return finding;
}

vorlane_status ResultSize(const ImageRec& page, const vorlane_finding& finding,
                          const vorlane_apply_options& options, int32_t* width, int32_t* height) {
  const vorlane_image view = ViewOf(page);
  return vorlane_result_size(&view, &finding, &options, width, height);
}

PageEngine::ContextPtr PageEngine::Take() {
  {
    const std::lock_guard lock(mutex_);
    if (!idle_.empty()) {
      ContextPtr context = std::move(idle_.back());
      idle_.pop_back();
      return context;
    }
  }
  vorlane_context* made = nullptr;
  (void)vorlane_context_new(&made);
  return ContextPtr(made);
}

void PageEngine::Return(ContextPtr context) {
  const std::lock_guard lock(mutex_);
  idle_.push_back(std::move(context));
}

vorlane_status PageEngine::Detect(const ImageRec& page, const vorlane_detect_options& options,
                                  vorlane_finding* finding) {
  ContextPtr context = Take();
  if (!context) return VORLANE_NO_MEMORY;
  const vorlane_image view = ViewOf(page);
  const vorlane_status status = vorlane_detect(context.get(), &view, &options, finding);
  Return(std::move(context));
  return status;
}

vorlane_status PageEngine::Apply(const ImageRec& page, const vorlane_finding& finding,
                                 const vorlane_apply_options& options, const ImageRec& result) {
  ContextPtr context = Take();
  if (!context) return VORLANE_NO_MEMORY;
  const vorlane_image view = ViewOf(page);
  vorlane_result target{result.pixels, result.lineBytes, result.width, result.height};
  const vorlane_status status = vorlane_apply(context.get(), &view, &finding, &options, &target);
  Return(std::move(context));
  return status;
}

}  // namespace vorlane::finding
