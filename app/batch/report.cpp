#include "app/batch/report.h"

#include <cstdio>

#include "app/judge/judgement.h"
#include "app/judge/status_words.h"

namespace vorlane::batch {
namespace {

const char* FateName(PageFate fate) {
  static constexpr const char* kNames[] = {"measured", "straightened", "doubtful", "failed"};
  return kNames[static_cast<int>(fate)];
}

std::string Size(const ImageRec& image) {
  return std::to_string(image.width) + " x " + std::to_string(image.height);
}

std::string Joined(const std::vector<std::string>& words) {
  std::string all;
  for (const std::string& word : words) all += (all.empty() ? "" : "; ") + word;
  return all;
}

template <typename... Values>
std::string Format(const char* format, Values... values) {
  char text[64];
  std::snprintf(text, sizeof(text), format, values...);
  return text;
}

std::vector<std::string> AllNotes(const files::Page& page, const judging::TurnOutcome& outcome,
                                  const PageReport& report) {
  std::vector<std::string> notes = page.notes;
  notes.insert(notes.end(), outcome.notes.begin(), outcome.notes.end());
  notes.insert(notes.end(), report.notes.begin(), report.notes.end());
  return notes;
}

// A whole number without a fraction where it is one.
nlohmann::ordered_json Number(double value) {
  const auto whole = static_cast<int64_t>(value);
  if (static_cast<double>(whole) == value) return whole;
  return value;
}

// Angle, sizes, time and confidence of a page on which the service succeeded.
std::string FoundLine(const files::Page& page, const judging::TurnOutcome& outcome) {
  std::string line = Format("%+.2f deg, ", outcome.degrees) + Size(*page.image.rec());
  if (outcome.result.rec()->pixels != nullptr) line += " -> " + Size(*outcome.result.rec());
  line += Format(", %.1f ms, ", outcome.milliseconds);
  line += judging::ConfidenceName(outcome.verdict.confidence);
  if (!outcome.verdict.reasons.empty()) line += ": " + Joined(outcome.verdict.reasons);
  return line;
}

}  // namespace

std::string NameOf(const files::Page& page) {
  return page.count > 1 ? page.file + "[" + std::to_string(page.number) + "]" : page.file;
}

std::string TextLine(const files::Page& page, const judging::TurnOutcome& outcome,
                     const PageReport& report) {
  std::string line = NameOf(page) + ": ";
  switch (report.fate) {
    case PageFate::kFailed:
      line +=
          "FAILED, " + judging::FailureWords(outcome) + " [" + std::to_string(outcome.status) + "]";
      break;
    case PageFate::kDoubtful:
      line += "LEFT AS IT IS, " + FoundLine(page, outcome);
      break;
    default:
      line += FoundLine(page, outcome);
  }
  if (report.keptAsItWas) line += ", kept unchanged in " + report.output;
  const std::vector<std::string> notes = AllNotes(page, outcome, report);
  return notes.empty() ? line : line + " (" + Joined(notes) + ")";
}

nlohmann::ordered_json JsonHead(const std::string& command, const files::Page& page,
                                const std::string& result) {
  return {{"command", command},
          {"file", page.file},
          {"page", page.number},
          {"pages", page.count},
          {"result", result}};
}

nlohmann::ordered_json JsonLine(const files::Page& page, const judging::TurnOutcome& outcome,
                                const PageReport& report) {
  const ImageRec& before = *page.image.rec();
  const ImageRec& after = *outcome.result.rec();
  nlohmann::ordered_json json = JsonHead(report.command, page, FateName(report.fate));
  json["status"] = outcome.status;
  json["width"] = before.width;
  json["height"] = before.height;
  json["depth"] = before.bitsPerPixel;
  json["dpi"] = {Number(page.metadata.resolution.x), Number(page.metadata.resolution.y)};
  json["threshold"] = outcome.threshold;
  json["milliseconds"] = outcome.milliseconds;
  if (outcome.status == STATUS_OK) {
    json["angle"] = outcome.degrees;
    json["confidence"] = judging::ConfidenceName(outcome.verdict.confidence);
    json["reasons"] = outcome.verdict.reasons;
  } else {
    json["reasons"] = {judging::FailureWords(outcome)};
  }
  if (after.pixels != nullptr) {
    json["newWidth"] = after.width;
    json["newHeight"] = after.height;
  }
  if (!report.output.empty()) json["output"] = report.output;
  if (report.keptAsItWas) json["unchanged"] = true;
  if (!report.overlay.empty()) json["overlay"] = report.overlay;
  json["notes"] = AllNotes(page, outcome, report);
  return json;
}

void PrintJson(const nlohmann::ordered_json& object) {
  const std::string line =
      object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
  std::printf("%s\n", line.c_str());
}

void PrintFileError(const std::string& command, const std::string& file, const std::string& words,
                    bool json) {
  (void)std::fflush(stdout);
  (void)std::fprintf(stderr, "vorlane: %s\n", words.c_str());
  if (!json) return;
  PrintJson({{"command", command}, {"file", file}, {"result", "error"}, {"reasons", {words}}});
}

}  // namespace vorlane::batch
