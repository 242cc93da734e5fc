#include "app/batch/page_outcome.h"

namespace vorlane::batch {

std::string NoPictureWords(const files::Page& page) {
  return "the page is not one picture: " + page.noPicture;
}

PageOutcome NoPictureOutcome(const files::Page& page) {
  PageOutcome outcome;
  outcome.fate = PageFate::kLeft;
  outcome.words = NoPictureWords(page);
  outcome.facts["reasons"] = {{{"code", "no-picture"}, {"words", outcome.words}}};
  return outcome;
}

}  // namespace vorlane::batch
