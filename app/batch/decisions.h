// What a report, edited or not, decides about pages.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/batch/input_list.h"

namespace vorlane::batch {

struct ReportPoint {
  double x = 0;
  double y = 0;
};

struct Decision {
  bool isApplied = false;                             // else the page is left as it is
  double angle = 0;                                   // degrees, clockwise as seen
  std::optional<std::array<ReportPoint, 4>> corners;  // none: the whole page
  std::string confidence;                             // as the report has it
};

struct Decisions {
  std::vector<InputFile> files;  // in the report's order, with the pages that it names
  std::map<std::string, std::map<int32_t, Decision>> pages;  // by file and number
  std::string digest;                                        // SHA-256 of all lines
  std::vector<std::string> torn;  // what was read whose last line is cut short and left out
};

// The input that a line of a report or journal tells of, as it was then, without its pages.
InputFile InputOf(const nlohmann::ordered_json& line);

// Reads the JSON lines of a report or journal: file, page, rotate, angle, corners, "decision":
// "apply" or "leave", and the state of the input where it is told. Without a decision, a sure or
// likely finding is applied and everything else left. Of several lines about a page the last
// counts.
//
// `edits`, where it is named, holds such lines about some of the report's pages: what they say
// replaces what the report says, and a line with an angle or corners and without a decision is
// applied.
// A last line that is cut short, as a run leaves it that was killed, is left out and told.
// Throws UsageError, with the line's number, for what else cannot be read or applied and for a page
// that the report does not tell of.
Decisions ReadDecisions(const std::string& report, const std::string& edits = "");

}  // namespace vorlane::batch
