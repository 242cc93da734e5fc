#include "app/services/bar_words.h"

namespace vorlane::services {

const char* BarVerdictName(vorlanepic::omr::BarVerdict verdict) {
  switch (verdict) {
    case vorlanepic::omr::BarVerdict::kChosen:
      return "chosen";
    case vorlanepic::omr::BarVerdict::kThickness:
      return "thickness";
    case vorlanepic::omr::BarVerdict::kMargin:
      return "at the edge";
    case vorlanepic::omr::BarVerdict::kUneven:
      return "uneven";
    case vorlanepic::omr::BarVerdict::kRatio:
      return "too thick for its length";
    default:
      return "not the thickest";
  }
}

std::string BarFailureWords(const vorlanepic::omr::BarRecords& bar) {
  switch (bar.stage) {
    case vorlanepic::omr::BarStage::kNothing:
      return "no sheet found: no rows and columns are light enough; another --threshold may help";
    case vorlanepic::omr::BarStage::kSheet:
      if (bar.barCount == 0) return "no reference bar found: nothing dark is long enough";
      return "no reference bar found: " + std::to_string(bar.barCount) +
             (bar.barCount == 1 ? " long dark mark, which is" : " long dark marks, all") +
             " rejected (--overlay shows why)";
    case vorlanepic::omr::BarStage::kBar:
    case vorlanepic::omr::BarStage::kTraced:
      return "the reference bar's edges have no straight part";
    default:
      return "the reference bar's two edges disagree by more than 0.57 deg";
  }
}

}  // namespace vorlane::services
