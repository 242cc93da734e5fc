// Counts of a run, and the names that a person has to look at.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/batch/page_record.h"

namespace vorlane::batch {

struct Tally {
  int64_t pages = 0;  // all below, without those done before
  int64_t sure = 0;
  int64_t likely = 0;
  int64_t other = 0;    // done, by commands that tell no confidence
  int64_t left = 0;     // as they were: doubtful, or decided so
  int64_t refused = 0;  // nothing found, and left as they were
  int64_t errors = 0;   // could not be read or written
  int64_t noOverlay = 0;
  int64_t doneBefore = 0;  // by the run that this one resumes
  std::vector<std::string>
      names;  // of pages left, refused or in error: the first ones of the report

  int64_t unnamed() const { return left + refused + errors - static_cast<int64_t>(names.size()); }
};

// Names that a summary holds.
inline constexpr size_t kNamesInSummary = 20;

void Count(const PageRecord& record, Tally* tally);

// What a summary calls a page by that was left or refused; empty: it names only others.
std::string NameToTell(const PageRecord& record);

// The counts in one line: "12 pages: 9 sure, 2 left as they are, 1 error".
std::string TallyLine(const Tally& tally);

// The counts, and below them the names of what was left or refused, with "and N more".
std::string Summary(const Tally& tally);

}  // namespace vorlane::batch
