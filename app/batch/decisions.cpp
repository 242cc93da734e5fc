#include "app/batch/decisions.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <unordered_map>

#include <nlohmann/json.hpp>

#include "app/batch/page_record.h"
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

bool IsApplied(const Json& object, const std::string& confidence) {
  const auto word = object.find("decision");
  if (word == object.end()) return confidence == "sure" || confidence == "likely";
  if (*word != "apply" && *word != "leave") {
    throw LineError{"the decision is neither \"apply\" nor \"leave\""};
  }
  return *word == "apply";
}

Decision DecisionIn(const Json& object) {
  Decision decision;
  decision.confidence = object.value("confidence", std::string());
  decision.isApplied = IsApplied(object, decision.confidence);
  if (!decision.isApplied) return decision;
  const auto angle = object.find("angle");
  if (angle == object.end()) throw LineError{"there is no angle to apply"};
  decision.angle = NumberIn(*angle, -180, 180, "the angle");
  const auto corners = object.find("corners");
  if (corners != object.end() && !corners->is_null()) decision.corners = CornersIn(*corners);
  return decision;
}

InputFile FileIn(const Json& object) {
  InputFile file;
  file.path = TakeName("file", object);
  if (file.path.empty() || file.path == "-") throw LineError{"there is no file named"};
  file.dir = TakeName("dir", object);
  file.place = (fs::path(file.dir) / fs::path(file.path).filename()).native();
  file.expected = {object.value("inputSize", int64_t{-1}),
                   object.value("inputModified", std::string())};
  return file;
}

class Reader {
 public:
  void Add(const std::string& line) {
    const Json object = Json::parse(line);
    if (!object.is_object()) throw LineError{"is no JSON object"};
    InputFile file = FileIn(object);
    const int32_t number = object.value("page", 0);
    if (number < 1) return;  // the file itself failed: there is nothing to make
    const auto [at, isNew] = places_.emplace(file.path, decisions_.files.size());
    if (isNew) decisions_.files.push_back(file);
    std::vector<int32_t>& pages = decisions_.files[at->second].pages;
    if (std::find(pages.begin(), pages.end(), number) == pages.end()) pages.push_back(number);
    decisions_.pages[file.path][number] = DecisionIn(object);
  }

  Decisions Take() {
    for (InputFile& file : decisions_.files) std::sort(file.pages.begin(), file.pages.end());
    return std::move(decisions_);
  }

 private:
  Decisions decisions_;
  std::unordered_map<std::string, size_t> places_;  // of files
};

}  // namespace

Decisions ReadDecisions(const std::string& path) {
  std::ifstream file;
  if (path != "-") file.open(path, std::ios::binary);
  std::istream& stream = path == "-" ? std::cin : file;
  if (!stream) throw files::UsageError(path + ": this report cannot be opened");
  Reader reader;
  std::string line;
  for (int64_t number = 1; std::getline(stream, line); ++number) {
    if (line.empty()) continue;
    const std::string where = path + ": line " + std::to_string(number) + ": ";
    try {
      reader.Add(line);
    } catch (const Json::exception& error) {
      throw files::UsageError(where + error.what());
    } catch (const LineError& error) {
      throw files::UsageError(where + error.words);
    }
  }
  if (stream.bad()) throw files::UsageError(path + ": this report cannot be read");
  return reader.Take();
}

}  // namespace vorlane::batch
