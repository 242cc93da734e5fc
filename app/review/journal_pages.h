// The pages of a journal, as the review page shows them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "app/batch/input_list.h"

namespace vorlane::review {

// How sure a finding is, from the least; kUnread: the file or page could not be read.
enum class Sureness { kUnread, kRefused, kDoubtful, kLikely, kSure };
inline constexpr size_t kSurenesses = 5;

struct JournalPages {
  std::vector<std::string> facts;        // of each page, in the journal's order: a JSON object
  std::vector<batch::InputFile> inputs;  // that hold them
  std::map<std::string, std::map<int32_t, size_t>> places;  // in `facts`, by file and page
  std::map<std::string, std::string> reasons;               // their words, by their codes
  std::array<int64_t, kSurenesses> counts{};                // of pages, by Sureness
  int64_t damaged = 0;                                      // lines that could not be read
};

// Reads a journal, or a report of JSON lines. Pages that are surer than `most` are left out. Throws
// FileError when it cannot be read, UsageError when it is no journal; an empty one has no pages.
JournalPages ReadJournalPages(const std::string& path, Sureness most);

}  // namespace vorlane::review
