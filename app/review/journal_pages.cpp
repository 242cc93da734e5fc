#include "app/review/journal_pages.h"

#include <algorithm>
#include <unordered_map>

#include <nlohmann/json.hpp>

#include "app/batch/decisions.h"
#include "app/batch/journal.h"
#include "app/batch/page_record.h"
#include "app/batch/printable_name.h"
#include "app/files/page.h"

namespace vorlane::review {
namespace {

using Json = nlohmann::ordered_json;

// What the review page shows, and what a decision hands on to apply.
constexpr const char* kShown[] = {
    "file",       "fileHex",       "dir",      "dirHex",    "page",         "pages",
    "confidence", "cutConfidence", "width",    "height",    "rotate",       "dpi",
    "angle",      "corners",       "evidence", "inputSize", "inputModified"};

Sureness SurenessOf(const Json& line) {
  const std::string word = line.value("confidence", std::string());
  if (line.value("result", std::string()) == "error") return Sureness::kUnread;
  if (word == "sure") return Sureness::kSure;
  if (word == "likely") return Sureness::kLikely;
  return word == "doubtful" ? Sureness::kDoubtful : Sureness::kRefused;
}

// A reason without its words, which all pages share, unless they are of this page alone, as those
// of an error are.
Json ReasonIn(Json reason, std::map<std::string, std::string>* words) {
  const std::string code = reason.value("code", std::string());
  const std::string told = reason.value("words", std::string());
  const auto known =
      words->emplace(code, code == "error" ? "it could not be read or written" : told);
  if (known.first->second == told) reason.erase("words");
  return reason;
}

class Collector {
 public:
  void Add(const Json& line, Sureness sureness) {
    ++pages_.counts[static_cast<size_t>(sureness)];
    const batch::InputFile input = batch::InputOf(line);
    const int32_t number = batch::PageNumberIn(line);
    if (number > 0) {
      pages_.places[input.path][number] = pages_.facts.size();
      batch::InputFile* known = InputFor(input);
      known->pages.push_back(number);
      known->turns[number] = static_cast<int32_t>(batch::WholeNumber(line, "rotate", 0, 0, 270));
    }
    pages_.facts.push_back(batch::Dump(FactsOf(line, input.path, sureness)));
  }

  JournalPages Take() { return std::move(pages_); }

 private:
  Json FactsOf(const Json& line, const std::string& path, Sureness sureness) {
    Json facts;
    for (const char* key : kShown) {
      if (line.contains(key)) facts[key] = line[key];
    }
    const std::string name = batch::Printable(path);
    if (name != path) facts["name"] = name;
    if (sureness == Sureness::kUnread) facts["confidence"] = "unread";
    facts["reasons"] = Json::array();
    for (const Json& reason : line.value("reasons", Json::array())) {
      facts["reasons"].push_back(ReasonIn(reason, &pages_.reasons));
    }
    return facts;
  }

  batch::InputFile* InputFor(const batch::InputFile& input) {
    const auto [at, isNew] = inputs_.emplace(input.path, pages_.inputs.size());
    if (isNew) pages_.inputs.push_back(input);
    return &pages_.inputs[at->second];
  }

  JournalPages pages_;
  std::unordered_map<std::string, size_t> inputs_;
};

}  // namespace

JournalPages ReadJournalPages(const std::string& path, Sureness most) {
  const std::string text = batch::ReadText(path);
  int64_t damaged = 0;
  const std::vector<std::string> lines = batch::LastLines(text, &damaged);
  if (lines.empty() && damaged > 0) {
    throw files::UsageError(path + ": this is no journal and no report of JSON lines");
  }
  Collector collector;
  for (const std::string& whole : lines) {
    const Json line = batch::ParseLine(whole);
    const Sureness sureness = SurenessOf(line);
    try {
      if (sureness <= most) collector.Add(line, sureness);
    } catch (const Json::exception& error) {
      throw files::UsageError(path + ": " + error.what());
    }
  }
  JournalPages pages = collector.Take();
  for (batch::InputFile& input : pages.inputs) std::sort(input.pages.begin(), input.pages.end());
  pages.damaged = damaged;
  return pages;
}

}  // namespace vorlane::review
