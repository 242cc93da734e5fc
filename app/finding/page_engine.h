// The page engine as the command uses it: page images in, findings and page images out.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "frame/scratch.h"
#include "vorlane/vorlane.h"

namespace vorlane::finding {

// The defaults of the engine's records.
vorlane_detect_options DefaultDetectOptions();
vorlane_apply_options DefaultApplyOptions();
vorlane_finding EmptyFinding();

// Calls from several threads go on side by side, each with a context that a later call takes over.
class PageEngine {
 public:
  // Looks at a page of 1, 8 or 24 bits where it lies. As vorlane_detect.
  vorlane_status Detect(const ImageRec& page, const vorlane_detect_options& options,
                        vorlane_finding* finding);

  // Makes the page that a finding describes, straight into the new image. As vorlane_apply; *result
  // stays empty on failure.
  vorlane_status Apply(const ImageRec& page, const vorlane_finding& finding,
                       const vorlane_apply_options& options,
                       vorlanepic::frame::ScratchImage* result);

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
