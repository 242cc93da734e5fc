#include "app/commands/profile_check.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <set>
#include <string_view>
#include <utility>

#include "app/files/page.h"
#include "frame/profile_line.h"
#include "frame/profile_reader.h"
#include "frame/regular_file.h"

namespace vorlane::commands {
namespace {

namespace frame = vorlanepic::frame;

struct ProfileKey {
  std::string_view section;
  std::string_view key;
  double least;
  double most;
  bool isReal = false;
};

constexpr std::array<ProfileKey, 21> kProfileKeys = {{
    {"ImageDeskew", "DeskewMethod", 1, 3},
    {"ImageDeskew1", "SearchBorderPixelNum", 1, 10},
    {"ImageDeskew1", "ToLineMixDis", 1, 20},
    {"ImageDeskew1", "ToLineDistance", 1, 20},
    {"ImageDeskew1", "parallel", 0, 5, true},
    {"ImageDeskew1", "perpendicular", 0, 5, true},
    {"ImageDeskew2", "SearchBorderPixelNum", 1, 10},
    {"ImageDeskew2", "SegmentLen", 5, 50},
    {"ImageDeskew2", "SearchLimitNum", 1, 10},
    {"ImageDeskew2", "PixelNum", 1, 20},
    {"ImageDeskew2", "ToLineDistance", 1, 20},
    {"ImageDeskew2", "CropPixelNum", 1, INT_MAX},
    {"ImageDeskew2", "CropPixelFlag", 0, INT_MAX},
    {"ImageDeskew2", "AngleMode", 0, INT_MAX},
    {"ImageDeskew2", "GroupAngle", 1, 5, true},
    {"ImageDeskewLine", "SearchLimitNum", 1, INT_MAX},
    {"ImageDeskewLine", "PixelNum", 1, INT_MAX},
    {"ImageDeskewLine", "CropPixelNum", 1, INT_MAX},
    {"ImageDeskewLine", "LineMixLength", 1, INT_MAX},
    {"ImageDeskewLine", "LineMinThickness", 1, INT_MAX},
    {"ImageDeskewLine", "LineMaxThickness", 1, INT_MAX},
}};

// Of a longer number with a point the services take the first two characters.
constexpr size_t kRealCharacters = 3;

std::string_view WithoutBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string NumberWords(double value) {
  std::string words = std::to_string(value);
  return words.substr(0, words.find('.'));
}

// The lines of one profile, from the first to the last.
class ProfileReading {
 public:
  ProfileReading(const std::string& path, std::span<const char> bytes)
      : path_(path), lines_(bytes) {}

  void CheckAll() {
    while (Next()) {
      const std::string_view line = WithoutBlanks(line_.view());
      if (line.empty() || line.front() == '#') continue;
      if (line.front() == ';') Refuse("comments begin with #, not with ;");
      if (line.front() == '[') {
        TakeHeader(line);
      } else {
        TakeKey(std::string(line));
      }
    }
  }

 private:
  bool Next() {
    if (!lines_.Next(&line_)) return false;
    ++number_;
    if (line_.length == frame::kProfileLineCapacity) {
      Refuse("the line is longer than 4095 characters");
    }
    return true;
  }

  [[noreturn]] void Refuse(const std::string& words) const {
    throw files::UsageError(path_ + ": line " + std::to_string(number_) + ": " + words);
  }

  void TakeHeader(std::string_view line) {
    section_ = line.size() > 2 && line.back() == ']' ? line.substr(1, line.size() - 2) : "";
    if (std::ranges::find(kProfileKeys, section_, &ProfileKey::section) == kProfileKeys.end()) {
      Refuse("there is no section " + std::string(line));
    }
    if (!seen_.insert({section_, ""}).second) {
      Refuse("section " + std::string(line) + " stands twice; the first one would count");
    }
  }

  // A line that ends with + goes on in the next one.
  void Join(std::string* line) {
    while (!line->empty() && line->back() == '+') {
      line->pop_back();
      if (!Next()) return;
      const std::string_view more = line_.view();
      line->append(more.substr(std::min(more.find_first_not_of(" \t"), more.size())));
    }
    if (line->size() > frame::kProfileLineCapacity) Refuse("the value is too long");
  }

  void TakeKey(std::string line) {
    Join(&line);
    const size_t equals = line.find('=');
    if (equals == std::string::npos || equals == 0) Refuse(Quoted(line) + " is no KEY = VALUE");
    const auto name = std::string(WithoutBlanks(std::string_view(line).substr(0, equals)));
    if (section_.empty()) Refuse("key " + Quoted(name) + " stands before the first section");
    const auto* key = std::ranges::find_if(kProfileKeys, [&](const ProfileKey& known) {
      return known.section == section_ && known.key == name;
    });
    if (key == kProfileKeys.end()) Refuse("section [" + section_ + "] has no key " + Quoted(name));
    if (!seen_.insert({section_, name}).second) {
      Refuse("key " + name + " of section [" + section_ +
             "] stands twice; the first one would count");
    }
    CheckValue(*key, WithoutBlanks(std::string_view(line).substr(equals + 1)));
  }

  void CheckValue(const ProfileKey& key, std::string_view value) const {
    const std::string where = std::string(key.key) + " of section [" + section_ + "]: ";
    if (key.isReal && value.size() > kRealCharacters) {
      Refuse(where + Quoted(value) +
             " has more than three characters, of which only two would count");
    }
    double number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number,
                                              std::chars_format::fixed);
    const bool isWhole = key.isReal || value.find('.') == std::string_view::npos;
    if (error != std::errc{} || end != value.data() + value.size() || !isWhole) {
      Refuse(where + Quoted(value) + " is no " + (key.isReal ? "" : "whole ") + "number");
    }
    if (!(number >= key.least && number <= key.most)) {
      const std::string range = key.most == INT_MAX
                                    ? NumberWords(key.least) + " and more"
                                    : NumberWords(key.least) + " to " + NumberWords(key.most);
      Refuse(where + std::string(value) + " is out of range, " + range);
    }
  }

  const std::string& path_;
  frame::ProfileLines lines_;
  frame::ProfileText line_{};
  int32_t number_ = 0;
  std::string section_;
  std::set<std::pair<std::string, std::string>> seen_;
};

const char* ReadFailureWords(frame::FileRead result) {
  switch (result) {
    case frame::FileRead::kNotOpened:
      return ": this profile cannot be opened, or is no regular file";
    case frame::FileRead::kTooLong:
      return ": this profile is longer than 1 MB";
    default:
      return ": this profile cannot be read";
  }
}

}  // namespace

void CheckProfile(const std::string& path) {
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  frame::ScratchArray<char> bytes;
  const frame::FileRead result = frame::ReadRegularFile(path.c_str(), frame::kProfileMost, &bytes);
  if (result != frame::FileRead::kDone) throw files::UsageError(path + ReadFailureWords(result));
  const std::string_view text(bytes.data(), bytes.size());
  if (text.starts_with(kUtf8Mark)) {
    throw files::UsageError(path +
                            ": begins with a UTF-8 mark, which hides the first line; save it "
                            "without one");
  }
  ProfileReading(path, bytes.span()).CheckAll();
}

}  // namespace vorlane::commands
