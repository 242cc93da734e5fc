#include "app/services/status_words.h"

#include "app/services/bar_words.h"

namespace vorlane::services {
namespace {

std::string Level(const TurnOutcome& outcome) {
  return "threshold " + std::to_string(outcome.threshold);
}

// 496 at the stage after the last one that succeeded.
std::string NoBorderWords(const TurnOutcome& outcome) {
  switch (outcome.page ? outcome.page->stage : vorlanepic::deskew::PageStage::kNothing) {
    case vorlanepic::deskew::PageStage::kNothing:
    case vorlanepic::deskew::PageStage::kThreshold:
      return "no page found: nothing in the picture is light enough (" + Level(outcome) +
             "); a lower --threshold may help";
    case vorlanepic::deskew::PageStage::kBand:
    case vorlanepic::deskew::PageStage::kRowScan:
      return "no page found: the light area has no border to follow (" + Level(outcome) +
             "); another --threshold may help";
    case vorlanepic::deskew::PageStage::kEdges:
      return "no page found: the four border lines do not make a page: they are not square to "
             "each other, or cross outside the picture";
    default:
      return "no page found";
  }
}

std::string NoAngleWords(const TurnOutcome& outcome) {
  if (outcome.kind == TurnKind::kBorderVote) {
    return "no angle found: no border is long and straight enough to vote";
  }
  return "no angle found: a border is too short for a line (" + Level(outcome) + ")";
}

std::string BadArgumentWords(const TurnOutcome& outcome) {
  if (outcome.page && outcome.page->stage >= vorlanepic::deskew::PageStage::kColumnScan) {
    return "no page found: a border is missing or only a few pixels long (" + Level(outcome) + ")";
  }
  return "the picture or a setting is out of range";
}

}  // namespace

std::string FailureWords(const TurnOutcome& outcome) {
  switch (outcome.status) {
    case BORDER_NOT_FOUND:
      return NoBorderWords(outcome);
    case ANGLE_NOT_FOUND:
      return NoAngleWords(outcome);
    case EDGE_NOT_FOUND:
      return "no edge found: a border is torn, curved or hidden, so that no straight line runs "
             "along it (" +
             Level(outcome) + ")";
    case BAD_ARGUMENT:
      return BadArgumentWords(outcome);
    case OUT_OF_MEMORY:
      return "there is not enough memory for this page";
    case -1:
      return outcome.bar ? BarFailureWords(*outcome.bar) : "no reference bar found";
    default:
      return "the image library refused the page";
  }
}

}  // namespace vorlane::services
