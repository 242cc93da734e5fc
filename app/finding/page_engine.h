// The page engine as the command uses it: page images in, findings and page images out.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "vorlane/vorlane.h"
#include "vorlanepic/imgbuf.h"

namespace vorlane::finding {

// The defaults of the engine's records.
vorlane_detect_options DefaultDetectOptions();
vorlane_apply_options DefaultApplyOptions();
vorlane_finding EmptyFinding();

// As vorlane_result_size.
vorlane_status ResultSize(const ImageRec& page, const vorlane_finding& finding,
                          const vorlane_apply_options& options, int32_t* width, int32_t* height);

// Calls from several threads go on side by side, each with a context that a later call takes over.
class PageEngine {
 public:
  // Looks at a page of 1, 8 or 24 bits where it lies. As vorlane_detect.
  vorlane_status Detect(const ImageRec& page, const vorlane_detect_options& options,
                        vorlane_finding* finding);

  // Makes the page that a finding describes in `result`, an image of the page's depth and of the
  // size that ResultSize gives. As vorlane_apply.
  vorlane_status Apply(const ImageRec& page, const vorlane_finding& finding,
                       const vorlane_apply_options& options, const ImageRec& result);

 private:
  struct ContextFree {
    void operator()(vorlane_context* context) const { vorlane_context_free(context); }
  };
  using ContextPtr = std::unique_ptr<vorlane_context, ContextFree>;

  ContextPtr Take();  // null when there is no memory
  void Return(ContextPtr context);

  std::mutex mutex_;
  std::vector<ContextPtr> idle_;
};

}  // namespace vorlane::finding
