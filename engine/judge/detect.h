// Finds how a page lies in a picture, what to cut out of it, and how sure that is.
#pragma once

#include <cstdint>

#include "engine/evidence/page_levels.h"
#include "engine/evidence/picture_view.h"
#include "engine/judge/finding.h"

namespace vorlane::judge {

using evidence::PictureView;

// The longest edge of a picture, in pixels: squares of longer ones leave the core's 32 bits.
inline constexpr int32_t kLargestSide = 46340;

// Which evidence is to stand straight.
enum class By : int32_t { kAuto, kPaper, kPrint, kBar };

// What the cut keeps.
enum class Crop : int32_t { kPaper, kContent, kNone };

struct DetectOptions {
  By by = By::kAuto;
  Crop crop = Crop::kPaper;
  double marginPixels = 0.0;      // kept around the cut; negative trims
  double maxAngleDegrees = 45.0;  // a page that lies steeper is left alone; 0..45
  Confidence minConfidence = Confidence::kDoubtful;  // answers below it are refused
  double minTurnDegrees = 0.05;  // a smaller turn is not made; the page is cut only
  bool isForm = false;           // the page has a reference bar: look for it
  bool hasNoMount = false;       // nothing lies under the sheet: four sides that agree at every
                                 // threshold are believed without a look at the print
};

enum class Status : int32_t {
  kOk,
  kBadArgument,  // a null pointer, a size or a depth that cannot be, an option out of range
  kTooLarge,     // an edge over kLargestSide pixels
  kOutOfMemory,
};

// Looks at `picture` and writes the answer to *finding. That nothing can be said of a page is an
// answer too: Confidence::kRefused, with the reasons. *finding is empty on failure. Re-entrant: no
// state but the arguments'. `levels` is room to work in: its memory serves from one page to the
// next.
Status Detect(const PictureView& picture, const DetectOptions& options,
              evidence::PageLevels& levels, Finding* finding);

}  // namespace vorlane::judge
