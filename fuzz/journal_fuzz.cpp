// The readers of journals and reports: --resume, merge, apply with a person's decisions, review.
// The input's first byte chooses the reader; a byte of 255 stands between the texts of two files.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "app/batch/decisions.h"
#include "app/batch/journal.h"
#include "app/batch/journal_merge.h"
#include "app/review/journal_pages.h"
#include "fuzz_files.h"
#include "fuzz_input.h"

using namespace vorlane;
using vorlanepic::fuzz::Require;

namespace {

// A folder in memory where there is such a place, gone when the program ends.
class Folder {
 public:
  Folder()
      : path_(access("/dev/shm", W_OK) == 0 ? "/dev/shm/journal-XXXXXX" : "/tmp/journal-XXXXXX") {
    Require(mkdtemp(path_.data()) != nullptr, "there is a folder for files");
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    for (const char* name : {"first", "second", "first.part"}) (void)unlink(At(name).c_str());
    (void)rmdir(path_.c_str());
  }

  std::string At(const char* name) const { return path_ + "/" + name; }
  std::string Put(const char* name, std::string_view text) const {
    std::string path = At(name);
    std::FILE* file = std::fopen(path.c_str(), "wb");
    Require(file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size() &&
                std::fclose(file) == 0,
            "there is room for a file");
    return path;
  }

 private:
  std::string path_;
};

void Resume(const std::string& path) {
  constexpr std::string_view kLine = R"({"file":"f","page":1,"pages":1,"result":"done"})";
  {
    batch::Journal journal(path, true);
    journal.Append(std::string(kLine) + "\n");
    journal.Finish();
  }
  batch::Journal journal(path, true);
  Require(journal.damaged() == 0, "a finished journal holds whole lines only");
  const batch::JournalPages& pages = journal.PagesOf("f");
  Require(pages.count(1) == 1 && pages.at(1).result == "done", "the last line about a page counts");
}

void Merge(const std::string& first, const std::string& second) {
  const batch::MergedJournals merged = batch::MergeJournals({first, second});
  int64_t damaged = 0;
  const std::vector<std::string> lines = batch::LastLines(merged.text, &damaged);
  Require(damaged == 0, "merged journals hold whole lines only");
  Require(merged.text.empty() == lines.empty(), "what was merged can be read");
}

void Decide(const std::string& report, const std::string& edits) {
  const batch::Decisions decisions = batch::ReadDecisions(report, edits);
  Require(!decisions.files.empty(), "a report names pages");
  for (const batch::InputFile& file : decisions.files) {
    for (const int32_t page : file.pages) {
      const batch::Decision& decision = decisions.pages.at(file.path).at(page);
      Require(decision.angle >= -180 && decision.angle <= 180, "a turn is within half a circle");
    }
  }
}

void Review(const std::string& path) {
  const review::JournalPages pages = review::ReadJournalPages(path, review::Sureness::kSure);
  for (const auto& [file, places] : pages.places) {
    for (const auto& [number, place] : places) {
      Require(place < pages.facts.size(), "every page has its facts");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  static const Folder folder;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const size_t end = std::min(text.find('\xFF'), text.size());
  const std::string first = folder.Put("first", text.substr(0, end));
  const std::string second = folder.Put("second", text.substr(std::min(end + 1, text.size())));
  fuzz::Attempt([&] {
    switch (data[0] % 4) {
      case 0:
        return Resume(first);
      case 1:
        return Merge(first, second);
      case 2:
        return Decide(first, end < text.size() ? second : "");
      default:
        return Review(first);
    }
  });
  return 0;
}
