#include "app/batch/page_record.h"

#include <cmath>

#include "app/batch/printable_name.h"

namespace vorlane::batch {
namespace {

std::string Joined(const std::vector<std::string>& words) {
  std::string all;
  for (const std::string& word : words) all += (all.empty() ? "" : "; ") + word;
  return all;
}

nlohmann::ordered_json JsonOf(const PageRecord& record) {
  nlohmann::ordered_json json = JsonHead(record, ResultName(record));
  if (record.isError) {
    json["reasons"] = {{{"code", "error"}, {"words", record.words}}};
  }
  if (record.rotate != 0) json["rotate"] = record.rotate;
  json.update(record.facts);
  if (!record.output.empty()) PutName("output", record.output, &json);
  if (record.isUnchanged) json["unchanged"] = true;
  if (!record.overlay.empty()) PutName("overlay", record.overlay, &json);
  json["notes"] = record.notes;
  json["inputSize"] = record.input.size;
  json["inputModified"] = record.input.modified;
  return json;
}

}  // namespace

const char* NameOf(PageFate fate) {
  static constexpr const char* kNames[] = {"measured", "straightened", "doubtful", "left",
                                           "refused"};
  return kNames[static_cast<int>(fate)];
}

const char* ResultName(const PageRecord& record) {
  return record.isError ? "error" : NameOf(record.fate);
}

std::string NameOf(const std::string& file, int32_t number, int32_t count) {
  const std::string name = Printable(file);
  return count > 1 && number > 0 ? name + "[" + std::to_string(number) + "]" : name;
}

std::string TextLine(const PageRecord& record) {
  std::string line = NameOf(record.file, record.number, record.count) + ": ";
  if (record.fate == PageFate::kRefused) line += "REFUSED, ";
  if (record.fate == PageFate::kDoubtful || record.fate == PageFate::kLeft) {
    line += "LEFT AS IT IS, ";
  }
  line += Printable(record.words);
  if (record.isUnchanged) line += ", kept unchanged in " + Printable(record.output);
  if (!record.notes.empty()) line += " (" + Printable(Joined(record.notes)) + ")";
  return line;
}

nlohmann::ordered_json JsonHead(const PageRecord& record, const char* result) {
  nlohmann::ordered_json json = {{"command", record.command}};
  PutName("file", record.file, &json);
  if (!record.dir.empty()) PutName("dir", record.dir, &json);
  if (record.number > 0) {
    json["page"] = record.number;
    json["pages"] = record.count;
  }
  json["result"] = result;
  return json;
}

std::string JsonLine(const PageRecord& record) {
  nlohmann::ordered_json json = JsonOf(record);
  if (!record.isError) json["milliseconds"] = record.milliseconds;
  return Dump(json);
}

std::string JournalLine(const PageRecord& record, const JournalFacts& facts) {
  nlohmann::ordered_json json = JsonOf(record);
  if (!facts.sha256.empty()) json["outputSha256"] = facts.sha256;
  json["options"] = facts.options;
  json["version"] = facts.version;
  return Dump(json);
}

void PutName(const std::string& key, const std::string& name, nlohmann::ordered_json* object) {
  (*object)[key] = name;
  if (!IsUtf8(name)) (*object)[key + "Hex"] = ToHex(name);
}

std::string TakeName(const std::string& key, const nlohmann::ordered_json& object) {
  const auto hex = object.find(key + "Hex");
  if (hex != object.end() && hex->is_string()) return FromHex(hex->get<std::string>());
  const auto plain = object.find(key);
  return plain != object.end() && plain->is_string() ? plain->get<std::string>() : "";
}

std::string Dump(const nlohmann::ordered_json& object) {
  return object.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
}

nlohmann::ordered_json ParseLine(std::string_view line) {
  constexpr int kDeepest = 32;
  const auto isShallow = [](int depth, auto /*event*/, const auto& /*value*/) {
    return depth <= kDeepest;
  };
  return nlohmann::ordered_json::parse(line, isShallow);
}

int64_t WholeNumber(const nlohmann::ordered_json& object, const char* key, int64_t otherwise,
                    int64_t least, int64_t most) {
  struct NumberError : nlohmann::ordered_json::exception {
    explicit NumberError(const std::string& words) : exception(0, words.c_str()) {}
  };
  const auto at = object.find(key);
  if (at == object.end()) return otherwise;
  bool isInRange = false;
  if (at->is_number_unsigned() && at->get<uint64_t>() > INT64_MAX) {
    isInRange = false;
  } else if (at->is_number_integer()) {
    isInRange = at->get<int64_t>() >= least && at->get<int64_t>() <= most;
  } else if (at->is_number_float()) {
    const auto number = at->get<double>();
    isInRange = number >= static_cast<double>(least) && number <= static_cast<double>(most) &&
                number == std::trunc(number);
  }
  if (!isInRange) {
    throw NumberError(std::string(key) + " is no whole number from " + std::to_string(least) +
                      " to " + std::to_string(most));
  }
  return at->get<int64_t>();
}

int32_t PageNumberIn(const nlohmann::ordered_json& object) {
  return static_cast<int32_t>(WholeNumber(object, "page", 0, 0, INT32_MAX));
}

}  // namespace vorlane::batch
