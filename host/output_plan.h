// Which file each page goes to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vorlanepic::host {

// An output as the user named it: a file, a folder, or a pattern in which {name} stands for the
// input's name without extension, {ext} for its extension and {page} for the page's number.
struct OutputName {
  std::string text;
  std::string folderSuffix;  // what a folder's files get after {name}; empty: the input's extension
};

// The file for one page. A folder's file keeps the input's name; without {page} the pages of one
// input share a file when `manyPages`, and otherwise get -p1, -p2 ... before the extension.
std::string OutputFor(const OutputName& output, const std::string& input, int32_t page,
                      int32_t pageCount);

// Which existing files may be replaced.
struct Overwriting {
  bool outputs = false;
  bool inputs = false;
};

// One input with its number of pages, 0 when it cannot be read.
struct PlannedInput {
  std::string path;
  int32_t pages = 1;
};

// Throws UsageError unless every page can have its file: extensions are known, no two inputs share
// a file, no file stands there already unless it may be replaced, folders exist.
void CheckOutputs(const OutputName& output, const std::vector<PlannedInput>& inputs,
                  const Overwriting& overwriting);

}  // namespace vorlanepic::host
