// What a service made of one page.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/finding/page_engine.h"
#include "deskew/page_records.h"
#include "engine/judge/finding.h"
#include "frame/scratch.h"
#include "omr/bar_records.h"

namespace vorlane::services {

// Where the turn came from.
enum class TurnKind {
  kPruned,      // four border lines
  kBorderVote,  // the border with the most votes
  kBar,         // a form's reference bar
};

// Why a result is not trusted further.
struct Reason {
  const char* code;  // stable, for programs
  std::string words;
};

// How far a result can be trusted, kDoubtful at least; no reasons when sure.
struct Verdict {
  judge::Confidence confidence = judge::Confidence::kSure;
  std::vector<Reason> reasons;
};

struct TurnOutcome {
  TurnKind kind = TurnKind::kPruned;
  int32_t status = 0;     // of the exported function
  double degrees = 0;     // the turn, clockwise as seen, above -180 up to 180; 0 on failure
  int32_t threshold = 0;  // in effect, given or estimated
  vorlanepic::frame::ScratchImage result;  // empty on failure and for angle-only calls
  std::unique_ptr<vorlanepic::deskew::PageRecords> page;  // of the stages that ran
  std::unique_ptr<vorlanepic::omr::BarRecords> bar;       // kBar only
  bool isFlipped = false;  // the records' rows count from the page's bottom
  vorlane_finding finding = finding::EmptyFinding();  // of the page engine, on the same picture
  Verdict verdict;                                    // when status is 0
  std::vector<std::string> notes;
};

}  // namespace vorlane::services
