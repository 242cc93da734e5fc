#include "app/batch/journal_merge.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "app/batch/journal.h"

namespace vorlane::batch {
namespace {

using PageKey = std::pair<std::string, int32_t>;  // file and number

PageRecord RecordOf(const std::string& file, const JournalEntry& entry) {
  PageRecord record;
  record.file = file;
  record.number = entry.number;
  record.count = entry.count;
  record.isError = entry.result == "error";
  for (const PageFate fate : {PageFate::kMeasured, PageFate::kStraightened, PageFate::kDoubtful,
                              PageFate::kLeft, PageFate::kRefused}) {
    if (entry.result == NameOf(fate)) record.fate = fate;
  }
  record.trust = entry.trust == "sure"     ? Trust::kSure
                 : entry.trust == "likely" ? Trust::kLikely
                                           : Trust::kNone;
  return record;
}

}  // namespace

MergedJournals MergeJournals(const std::vector<std::string>& paths) {
  MergedJournals merged;
  std::map<PageKey, std::string> pages;
  std::set<std::pair<std::string, std::string>> makers;  // options and version
  for (const std::string& path : paths) {
    for (std::string& line : LastLines(ReadText(path), &merged.damaged)) {
      std::string file;
      JournalEntry entry;
      (void)ReadJournalLine(line, &file, &entry);
      makers.emplace(entry.facts.options, entry.facts.version);
      const auto [at, isNew] = pages.emplace(PageKey{file, entry.number}, line);
      if (!isNew && at->second != line) {
        merged.differing.push_back(NameOf(file, entry.number, entry.count));
      }
      if (!isNew) continue;
      const PageRecord record = RecordOf(file, entry);
      Count(record, &merged.tally);
      const std::string name = NameToTell(record);
      if (!name.empty()) merged.tally.names.push_back(name);
    }
  }
  for (const auto& [page, line] : pages) merged.text.append(line).append("\n");
  std::sort(merged.tally.names.begin(), merged.tally.names.end());
  merged.tally.names.resize(std::min(merged.tally.names.size(), kNamesInSummary));
  merged.areAlike = makers.size() < 2;
  return merged;
}

}  // namespace vorlane::batch
