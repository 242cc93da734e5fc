#include "app/batch/decisions.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <optional>
#include <unordered_map>

#include <nlohmann/json.hpp>

#include "app/batch/page_record.h"
#include "app/batch/sha256.h"
#include "app/files/page.h"

namespace vorlane::batch {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// What is wrong with a line; the reader adds where it stands.
struct LineError {
  std::string words;
};

double NumberIn(const Json& value, double least, double most, const char* name) {
  if (!value.is_number()) throw LineError{std::string(name) + " is no number"};
  const double number = value.get<double>();
  if (!(number >= least && number <= most)) throw LineError{std::string(name) + " is out of range"};
  return number;
}

std::array<ReportPoint, 4> CornersIn(const Json& value) {
  constexpr double kFarthest = 1e6;  // pixels
  if (!value.is_array() || value.size() != 4) throw LineError{"corners are not four points"};
  std::array<ReportPoint, 4> corners;
  for (size_t i = 0; i < corners.size(); ++i) {
    const Json& point = value[i];
    if (!point.is_array() || point.size() != 2) throw LineError{"a corner is not [x, y]"};
    corners[i] = {NumberIn(point[0], -kFarthest, kFarthest, "a corner's x"),
                  NumberIn(point[1], -kFarthest, kFarthest, "a corner's y")};
  }
  return corners;
}

// What the lines about a page say, a later one laid over an earlier one.
struct PageWords {
  std::optional<bool> isApplied;
  std::optional<double> angle;
  std::optional<std::array<ReportPoint, 4>> corners;
  std::string confidence;
  const std::string* report = nullptr;  // the name of what holds the last line
  int64_t line = 0;
};

void TakeDecision(const Json& object, PageWords* words) {
  const auto word = object.find("decision");
  if (word == object.end()) return;
  if (*word != "apply" && *word != "leave") {
    throw LineError{"the decision is neither \"apply\" nor \"leave\""};
  }
  words->isApplied = *word == "apply";
}

void TakeTurn(const Json& object, PageWords* words) {
  const auto angle = object.find("angle");
  if (angle != object.end()) words->angle = NumberIn(*angle, -180, 180, "the angle");
  const auto corners = object.find("corners");
  if (corners == object.end()) return;
  words->corners.reset();
  if (!corners->is_null()) words->corners = CornersIn(*corners);
}

bool IsApplied(const PageWords& words) {
  return words.isApplied.value_or(words.confidence == "sure" || words.confidence == "likely");
}

Decision DecisionFor(const PageWords& words) {
  Decision decision;
  decision.confidence = words.confidence;
  decision.isApplied = IsApplied(words);
  if (!decision.isApplied) return decision;
  if (!words.angle) throw LineError{"there is no angle to apply"};
  decision.angle = *words.angle;
  decision.corners = words.corners;
  return decision;
}

// Quarters that the page is turned by before angle and corners count.
int32_t QuartersIn(const Json& object) {
  const int64_t degrees = WholeNumber(object, "rotate", 0, 0, 270);
  if (degrees % 90 != 0) throw LineError{"rotate is none of 0, 90, 180 and 270"};
  return static_cast<int32_t>(degrees);
}

InputFile FileIn(const Json& object) {
  InputFile file = InputOf(object);
  if (file.path.empty() || file.path == "-") throw LineError{"there is no file named"};
  return file;
}

std::string Where(const std::string& report, int64_t line) {
  return report + ": line " + std::to_string(line) + ": ";
}

class Reader {
 public:
  // A line of a report.
  void Add(const Json& object, const std::string& report, int64_t line) {
    InputFile file = FileIn(object);
    const int32_t number = PageNumberIn(object);
    if (number < 1) return;  // the file itself failed: there is nothing to make
    const auto [at, isNew] = places_.emplace(file.path, decisions_.files.size());
    if (isNew) decisions_.files.push_back(file);
    std::vector<int32_t>& pages = decisions_.files[at->second].pages;
    if (std::find(pages.begin(), pages.end(), number) == pages.end()) pages.push_back(number);
    decisions_.files[at->second].turns[number] = QuartersIn(object);
    PageWords words;
    words.confidence = object.value("confidence", std::string());
    words.report = &report;
    words.line = line;
    TakeDecision(object, &words);
    // What is left needs no turn, and a person may have written anything there.
    if (IsApplied(words)) TakeTurn(object, &words);
    pages_[file.path][number] = std::move(words);
  }

  // A line of decisions about a page that the report tells of.
  void Lay(const Json& object, const std::string& report, int64_t line) {
    const InputFile file = FileIn(object);
    const int32_t number = PageNumberIn(object);
    PageWords* known = Find(file.path, number);
    if (known == nullptr) {
      throw LineError{"the report does not tell of page " + std::to_string(number) + " of " +
                      file.path};
    }
    if (file.expected.size >= 0) decisions_.files[places_[file.path]].expected = file.expected;
    if (object.contains("rotate")) {
      decisions_.files[places_[file.path]].turns[number] = QuartersIn(object);
    }
    known->report = &report;
    known->line = line;
    const bool turns = object.contains("angle") || object.contains("corners");
    if (!turns && !object.contains("decision")) throw LineError{"decides nothing"};
    if (turns) known->isApplied = true;
    TakeDecision(object, known);
    TakeTurn(object, known);
  }

  Decisions Take() {
    for (InputFile& file : decisions_.files) std::sort(file.pages.begin(), file.pages.end());
    for (const auto& [file, pages] : pages_) {
      for (const auto& [number, words] : pages) {
        try {
          decisions_.pages[file][number] = DecisionFor(words);
        } catch (const LineError& error) {
          throw files::UsageError(Where(*words.report, words.line) + error.words);
        }
      }
    }
    return std::move(decisions_);
  }

 private:
  PageWords* Find(const std::string& file, int32_t number) {
    const auto pages = pages_.find(file);
    if (pages == pages_.end()) return nullptr;
    const auto page = pages->second.find(number);
    return page == pages->second.end() ? nullptr : &page->second;
  }

  Decisions decisions_;
  std::unordered_map<std::string, size_t> places_;  // of files
  std::map<std::string, std::map<int32_t, PageWords>> pages_;
};

using LineTaker = std::function<void(const Json& object, int64_t line)>;

// Returns whether the last line is torn, as a run leaves it that was killed: it is left out.
bool ReadLines(const std::string& path, const LineTaker& take) {
  std::ifstream file;
  if (path != "-") file.open(path, std::ios::binary);
  std::istream& stream = path == "-" ? std::cin : file;
  if (!stream) throw files::UsageError(path + ": this report cannot be opened");
  std::string line;
  for (int64_t number = 1; std::getline(stream, line); ++number) {
    if (line.empty()) continue;
    try {
      const Json object = ParseLine(line);
      if (!object.is_object()) throw LineError{"is no JSON object"};
      take(object, number);
    } catch (const Json::parse_error& error) {
      if (stream.eof() && number > 1) return true;
      throw files::UsageError(Where(path, number) + error.what());
    } catch (const Json::exception& error) {
      throw files::UsageError(Where(path, number) + error.what());
    } catch (const LineError& error) {
      throw files::UsageError(Where(path, number) + error.words);
    }
  }
  if (stream.bad()) throw files::UsageError(path + ": this report cannot be read");
  return false;
}

}  // namespace

InputFile InputOf(const nlohmann::ordered_json& line) {
  InputFile file;
  file.path = TakeName("file", line);
  file.dir = TakeName("dir", line);
  file.place = (fs::path(file.dir) / fs::path(file.path).filename()).native();
  file.expected = {WholeNumber(line, "inputSize", -1, -1, int64_t{1} << 62),
                   line.value("inputModified", std::string())};
  return file;
}

Decisions ReadDecisions(const std::string& report, const std::string& edits) {
  if (report == "-" && edits == "-") {
    throw files::UsageError("the standard input holds the report or the decisions, not both");
  }
  Reader reader;
  std::string text;
  std::vector<std::string> torn;
  const bool isReportTorn = ReadLines(report, [&](const Json& object, int64_t line) {
    reader.Add(object, report, line);
    text += Dump(object) + "\n";
  });
  if (isReportTorn) torn.push_back(report);
  const bool areEditsTorn =
      !edits.empty() && ReadLines(edits, [&](const Json& object, int64_t line) {
        reader.Lay(object, edits, line);
        text += Dump(object) + "\n";
      });
  if (areEditsTorn) torn.push_back(edits);
  Decisions decisions = reader.Take();
  decisions.torn = std::move(torn);
  if (decisions.files.empty()) throw files::UsageError(report + ": this report names no page");
  decisions.digest = Sha256Of(text);
  return decisions;
}

}  // namespace vorlane::batch
