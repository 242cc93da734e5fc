// Which file each page goes to.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vorlane::files {

// An output as the user named it: a file, a folder, or a pattern in which {name} stands for the
// input's name without extension, {ext} for its extension and {page} for the page's number.
struct OutputName {
  std::string text;
  std::string folderSuffix;  // what a folder's files get after {name}; empty: the input's extension
};

// The files that the pages of one input go to.
struct PageFiles {
  std::vector<std::string> names;  // empty: nothing is written; else one, or one for each page
  bool isShared = false;           // several pages go into the one file

  // `page` counts from 1. Files are wanted.
  const std::string& Of(int32_t page) const {
    return isShared ? names[0] : names[static_cast<size_t>(page) - 1];
  }
};

// An output name of which it is settled whether it is a folder's.
class OutputPattern {
 public:
  explicit OutputPattern(OutputName name);

  // A folder's file keeps the input's name, with the extension .png where the input's cannot be
  // written. Without {page} the pages of one input share a file when its format holds several, and
  // otherwise get -p1, -p2 ... before the extension.
  PageFiles FilesFor(const std::string& input, int32_t pageCount) const;

 private:
  std::string TextFor(const std::string& input) const;

  OutputName name_;
  bool isFolder_;
};

// Which existing files may be replaced.
struct Overwriting {
  bool outputs = false;
  bool inputs = false;
};

// One input, its number of pages, 0 when it cannot be read, and where they go.
struct PlannedInput {
  std::string path;
  int32_t pages = 0;
  PageFiles output;
  PageFiles overlay;
};

// Finds out whether every page can have its file, before any is written.
class OutputCheck {
 public:
  OutputCheck(const std::vector<PlannedInput>& inputs, const Overwriting& overwriting);

  // Throws UsageError unless extensions are known, folders exist, no two inputs and no page and
  // overlay share a file, and no file stands there already unless it may be replaced.
  void Add(const std::string& input, const PageFiles& files);

 private:
  using FileId = std::pair<uint64_t, uint64_t>;  // of device and file

  void AddOne(const std::string& input, const std::string& path);
  void RefuseMissingFolder(const std::string& path);
  void RefuseExisting(const std::string& path) const;

  Overwriting overwriting_;
  std::set<FileId> inputs_;
  std::set<std::string> folders_;               // known to exist
  std::map<std::string, std::string> takenBy_;  // file to input
};

}  // namespace vorlane::files
