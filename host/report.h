// One line a page, for people or as JSON.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "host/page.h"
#include "host/turn_outcome.h"

namespace vorlanepic::host {

// What became of a page.
enum class PageFate {
  kMeasured,      // the angle was wanted and found
  kStraightened,  // written
  kDoubtful,      // found, not trusted and left as it is
  kFailed,        // nothing found
};

struct PageReport {
  std::string command;
  PageFate fate = PageFate::kFailed;
  std::string output;        // where the page went; empty: nowhere
  std::string overlay;       // likewise
  bool keptAsItWas = false;  // the page went there unchanged, so that the file keeps all pages
};

// The page's name in messages: the file, with [number] when it holds several pages.
std::string NameOf(const Page& page);

// The page's line without line end.
std::string TextLine(const Page& page, const TurnOutcome& outcome, const PageReport& report);

// The same as a JSON object; the keys are listed in the manual page.
nlohmann::ordered_json JsonLine(const Page& page, const TurnOutcome& outcome,
                                const PageReport& report);

// Writes one line of JSON; bytes of a file name that are not UTF-8 become U+FFFD.
void PrintJson(const nlohmann::ordered_json& object);

// Tells of a file that failed: on the error output, and with `json` as an object too.
void PrintFileError(const std::string& command, const std::string& file, const std::string& words,
                    bool json);

}  // namespace vorlanepic::host
