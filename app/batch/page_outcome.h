// What a service made of a page.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/files/page.h"
#include "app/files/pix_owner.h"

namespace vorlane::batch {

enum class PageFate {
  kMeasured,      // what was asked for is known; there is nothing to write
  kStraightened,  // a new page was made
  kDoubtful,      // something was found, is not trusted, and the page is left as it is
  kLeft,          // it was decided to leave the page as it is
  kRefused,       // nothing was found, and the page is left as it is
};

enum class Trust { kNone, kDoubtful, kLikely, kSure };

struct PageOutcome {
  PageFate fate = PageFate::kRefused;
  Trust trust = Trust::kNone;
  files::PagePixels image;  // kStraightened: the new page
  std::string words;        // of the page's line, behind its name
  nlohmann::ordered_json facts = nlohmann::ordered_json::object();  // of its JSON object
  std::vector<std::string> notes;
  std::function<files::PixPtr(const files::Page& page)> draw;  // the overlay; null: there is none
  double milliseconds = 0;                                     // that the service took
};

// What is said of a page of a PDF file that is not one picture.
std::string NoPictureWords(const files::Page& page);

// What becomes of it: it is left as it is.
PageOutcome NoPictureOutcome(const files::Page& page);

// Called from several threads at once, each time for another page: what it gives depends on the
// page alone.
using PageService = std::function<PageOutcome(const files::Page& page)>;

// The same for all pages of a file at once; gives one outcome for each.
using SetService = std::function<std::vector<PageOutcome>(const std::vector<files::Page>& pages)>;

}  // namespace vorlane::batch
