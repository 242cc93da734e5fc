// The journal of a run: one line of JSON for each page, written when the page is settled.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/batch/page_record.h"

namespace vorlane::batch {

// What a line of an earlier run says.
struct JournalEntry {
  int32_t number = 0;
  int32_t count = 0;
  FileState input;
  std::string result;
  std::string trust;
  std::string output;  // empty: none
  std::string overlay;
  JournalFacts facts;
};

// The pages of one input by their numbers.
using JournalPages = std::map<int32_t, JournalEntry>;

// Reads a line; false when it is not whole. `file` receives the input's name.
bool ReadJournalLine(std::string_view line, std::string* file, JournalEntry* entry);

class Journal {
 public:
  // Opens the journal for this run alone. A new run begins with an empty one; with `resumes` it
  // goes on behind what stands there, of which a torn last line is dropped. Throws UsageError when
  // it cannot be opened, another run has it, or a new run would find lines in it.
  Journal(std::string path, bool resumes);
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;
  ~Journal();

  // What the lines there say about an input; of several about one page the last counts.
  const JournalPages& PagesOf(const std::string& file) const;

  // Lines in the journal that could not be read.
  int64_t damaged() const { return damaged_; }

  // Adds lines, each with its end, in one piece. Throws FileError; the run has to end then.
  void Append(std::string_view lines);

  // Brings the journal to the disk, without lines that later ones have replaced. Throws FileError.
  void Finish();

 private:
  void Load();
  void DropReplaced();

  std::string path_;
  int handle_ = -1;
  std::mutex mutex_;
  std::unordered_map<std::string, JournalPages> pages_;
  int64_t damaged_ = 0;
  bool wasThere_ = false;  // lines of an earlier run stand in it
};

// The lines of a journal's text, the last for each page, in the order of their first; lines that
// cannot be read are left out and counted in *damaged.
std::vector<std::string> LastLines(std::string_view text, int64_t* damaged);

// A whole file's bytes. Throws FileError.
std::string ReadText(const std::string& path);

}  // namespace vorlane::batch
