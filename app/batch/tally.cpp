#include "app/batch/tally.h"

namespace vorlane::batch {
namespace {

const char* WhyNamed(const PageRecord& record) {
  if (record.isError) return "error";
  return record.fate == PageFate::kRefused ? "refused" : "left as it is";
}

int64_t* PlaceFor(const PageRecord& record, Tally* tally) {
  if (record.isError) return &tally->errors;
  if (record.fate == PageFate::kRefused) return &tally->refused;
  if (record.fate == PageFate::kDoubtful || record.fate == PageFate::kLeft) return &tally->left;
  if (record.trust == Trust::kSure) return &tally->sure;
  return record.trust == Trust::kLikely ? &tally->likely : &tally->other;
}

void Append(int64_t count, const char* one, const char* many, std::string* line) {
  if (count == 0) return;
  *line += line->back() == ':' ? " " : ", ";
  *line += std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

void Count(const PageRecord& record, Tally* tally) {
  ++tally->pages;
  ++*PlaceFor(record, tally);
  if (record.lacksOverlay) ++tally->noOverlay;
}

std::string NameToTell(const PageRecord& record) {
  const bool isDone = !record.isError && (record.fate == PageFate::kMeasured ||
                                          record.fate == PageFate::kStraightened);
  if (isDone) return "";
  return NameOf(record.file, record.number, record.count) + " (" + WhyNamed(record) + ")";
}

std::string TallyLine(const Tally& tally) {
  std::string line = std::to_string(tally.pages) + (tally.pages == 1 ? " page:" : " pages:");
  Append(tally.sure, "sure", "sure", &line);
  Append(tally.likely, "likely", "likely", &line);
  Append(tally.other, "done", "done", &line);
  Append(tally.left, "left as it is", "left as they are", &line);
  Append(tally.refused, "refused", "refused", &line);
  Append(tally.errors, "error", "errors", &line);
  Append(tally.noOverlay, "without its overlay", "without their overlays", &line);
  Append(tally.doneBefore, "done before", "done before", &line);
  if (line.back() == ':') line.pop_back();
  return line;
}

std::string Summary(const Tally& tally) {
  std::string text = TallyLine(tally) + "\n";
  for (const std::string& name : tally.names) text += "  " + name + "\n";
  if (tally.unnamed() > 0) text += "  and " + std::to_string(tally.unnamed()) + " more\n";
  return text;
}

}  // namespace vorlane::batch
