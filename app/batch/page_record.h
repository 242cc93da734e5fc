// Everything that is said about a page once its fate is settled.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/batch/file_state.h"
#include "app/batch/page_outcome.h"

namespace vorlane::batch {

struct PageRecord {
  std::string command;
  std::string file;
  std::string dir;     // below the output folder; empty: none
  int32_t number = 0;  // 0: the file itself failed
  int32_t count = 0;
  int32_t rotate = 0;  // quarters that it was turned by first, degrees clockwise
  FileState input;
  bool isError = false;  // the page could not be read or written; `words` says why
  PageFate fate = PageFate::kRefused;
  Trust trust = Trust::kNone;
  std::string words;
  nlohmann::ordered_json facts = nlohmann::ordered_json::object();
  double milliseconds = 0;
  std::string output;        // where the page went; empty: nowhere
  bool isUnchanged = false;  // it went there as it was
  std::string overlay;
  bool lacksOverlay = false;  // one was wanted and could not be written
  std::vector<std::string> notes;
  std::vector<std::string> messages;  // of the decoder, without harm
};

// What a journal's line holds besides.
struct JournalFacts {
  std::string sha256;   // of the output; empty: none
  std::string options;  // SHA-256 of what the run was asked for
  std::string version;
};

// The page's name in messages: the file, with [number] when it holds several pages; printable.
std::string NameOf(const std::string& file, int32_t number, int32_t count);

// The page's line for people, without line end.
std::string TextLine(const PageRecord& record);

// What every JSON object about a page begins with.
nlohmann::ordered_json JsonHead(const PageRecord& record, const char* result);

// The page as one line of JSON, without line end; the keys are listed in the manual page. A name
// that is not UTF-8 stands beside its readable form as hexadecimal digits: file and fileHex. Every
// character that a terminal could act on is escaped.
std::string JsonLine(const PageRecord& record);
// As JsonLine, without the time taken and with what --resume needs.
std::string JournalLine(const PageRecord& record, const JournalFacts& facts);

// Adds a name under `key` and, when it is not UTF-8, under `key` + "Hex" too; and reads it back.
void PutName(const std::string& key, const std::string& name, nlohmann::ordered_json* object);
std::string TakeName(const std::string& key, const nlohmann::ordered_json& object);

// One line of JSON that nothing can act in.
std::string Dump(const nlohmann::ordered_json& object);

// Reads a line of a journal or report, whoever wrote it. Throws nlohmann::json::exception when it
// is no JSON. Values nested deeper than any of ours are left out: to write them again would take as
// many calls within each other.
nlohmann::ordered_json ParseLine(std::string_view line);

// The whole number at `key` of an object, or `otherwise` where there is none. Throws
// nlohmann::json::exception when it is no number, has a fraction, or is beyond `most`, 2^62 at
// most, or below `least`: converted unseen it could be any.
int64_t WholeNumber(const nlohmann::ordered_json& object, const char* key, int64_t otherwise,
                    int64_t least, int64_t most);
int32_t PageNumberIn(const nlohmann::ordered_json& object);  // 0 where none is named

const char* NameOf(PageFate fate);
const char* ResultName(const PageRecord& record);

}  // namespace vorlane::batch
