// Joins the journals of a run's shards.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/batch/tally.h"

namespace vorlane::batch {

struct MergedJournals {
  std::string text;                    // all lines, by file and page
  Tally tally;                         // what they say
  int64_t damaged = 0;                 // lines that could not be read, torn last ones among them
  std::vector<std::string> differing;  // pages about which two journals say different things
  bool areAlike = true;  // all pages were made with the same options by the same version
};

// Throws FileError when a journal cannot be read.
MergedJournals MergeJournals(const std::vector<std::string>& paths);

}  // namespace vorlane::batch
