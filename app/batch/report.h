// One line a page, for people or as JSON.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "app/files/page.h"
#include "app/judge/turn_outcome.h"

namespace vorlane::batch {

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
  std::string output;              // where the page went; empty: nowhere
  std::string overlay;             // likewise
  std::vector<std::string> notes;  // what writing it could not keep
  bool keptAsItWas = false;  // the page went there unchanged, so that the file keeps all pages
};

// The page's name in messages: the file, with [number] when it holds several pages.
std::string NameOf(const files::Page& page);

// The page's line without line end.
std::string TextLine(const files::Page& page, const judging::TurnOutcome& outcome,
                     const PageReport& report);

// What every command's JSON object about a page begins with.
nlohmann::ordered_json JsonHead(const std::string& command, const files::Page& page,
                                const std::string& result);

// The same as TextLine as a JSON object; the keys are listed in the manual page.
nlohmann::ordered_json JsonLine(const files::Page& page, const judging::TurnOutcome& outcome,
                                const PageReport& report);

// Writes one line of JSON; bytes of a file name that are not UTF-8 become U+FFFD.
void PrintJson(const nlohmann::ordered_json& object);

// Tells of a file that failed: on the error output, and with `json` as an object too.
void PrintFileError(const std::string& command, const std::string& file, const std::string& words,
                    bool json);

}  // namespace vorlane::batch
