#include "app/review/review_page.h"

#include <filesystem>
#include <string_view>

#include <nlohmann/json.hpp>
#include <openssl/evp.h>

#include "app/batch/page_record.h"
#include "app/batch/printable_name.h"
#include "app/batch/sha256.h"
#include "app/finding/page_engine.h"
#include "app/review/page_pictures.h"
#include "app/review/page_sources.h"

namespace vorlane::review {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// What a content security policy calls an inline script or style by.
std::string PolicyHash(std::string_view source) {
  const std::string digest = batch::FromHex(batch::Sha256Of(source));
  std::string text((digest.size() + 2) / 3 * 4 + 1, '\0');
  const int length = EVP_EncodeBlock(reinterpret_cast<uint8_t*>(text.data()),
                                     reinterpret_cast<const uint8_t*>(digest.data()),
                                     static_cast<int>(digest.size()));
  text.resize(static_cast<size_t>(length));
  return "'sha256-" + text + "'";
}

// JSON in which nothing ends a script element: "<" stands in strings only.
std::string WithoutTags(const std::string& json) {
  std::string text;
  text.reserve(json.size());
  for (const char c : json) {
    if (c == '<') {
      text += "\\u003c";
    } else {
      text += c;
    }
  }
  return text;
}

std::string DataOf(const std::string& journal, const JournalPages& pages,
                   const std::vector<char>& isPictured) {
  const vorlane_apply_options made = finding::DefaultApplyOptions();
  std::error_code code;
  const fs::path whole = fs::weakly_canonical(fs::path(journal), code);
  Json head = {{"journal", batch::Printable(journal)},
               {"key", batch::Sha256Of(whole.native()).substr(0, 16)},
               {"minTurn", made.min_turn},
               {"maxGrowth", made.max_growth},
               {"thumbnails", kThumbnails},
               {"pictures", kPictures},
               {"reasons", pages.reasons},
               {"unpictured", Json::array()}};
  for (size_t i = 0; i < isPictured.size(); ++i) {
    if (isPictured[i] == 0) head["unpictured"].push_back(i);
  }
  std::string data = batch::Dump(head);
  data.pop_back();
  data += ",\"pages\":[";
  for (size_t i = 0; i < pages.facts.size(); ++i) data += (i == 0 ? "\n" : ",\n") + pages.facts[i];
  return WithoutTags(data + "\n]}");
}

}  // namespace

std::string ReviewPage(const std::string& journal, const JournalPages& pages,
                       const std::vector<char>& isPictured) {
  const auto partFor = [&](std::string_view name) {
    if (name == "styleHash") return PolicyHash(kStyleSource);
    if (name == "scriptHash") return PolicyHash(kScriptSource);
    if (name == "style") return std::string(kStyleSource);
    if (name == "script") return std::string(kScriptSource);
    return DataOf(journal, pages, isPictured);
  };
  std::string text;
  std::string_view rest = kPageSource;
  for (size_t at = rest.find("{{"); at != std::string_view::npos; at = rest.find("{{")) {
    const size_t end = rest.find("}}", at);
    text.append(rest.substr(0, at)).append(partFor(rest.substr(at + 2, end - at - 2)));
    rest.remove_prefix(end + 2);
  }
  return text.append(rest);
}

}  // namespace vorlane::review
