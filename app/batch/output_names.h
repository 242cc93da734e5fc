// The names of the files that pages go to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/batch/input_list.h"

namespace vorlane::batch {

// The files that the pages of one input go to.
struct PageFiles {
  std::vector<std::string> names;  // empty: nothing is written; else one, or one for each page
  bool isShared = false;           // several pages go into the one file

  // `page` counts from 1. Files are wanted.
  const std::string& Of(int32_t page) const {
    return isShared ? names[0] : names[static_cast<size_t>(page) - 1];
  }
};

// An output as the user named it: a file, a folder, or a pattern of these parts:
//
//   {name}     the input's name without extension
//   {ext}      its extension
//   {dir}      its folder: below the one that was named, or as written where the file was
//   {page}     the page's number, with as many digits as the file's last page has
//   {page:04}  with at least that many digits
class OutputNames {
 public:
  // `folderSuffix` is what a folder's files get after the input's name; empty: its extension, or
  // .png where that cannot be written. Throws UsageError for an unknown part in braces.
  OutputNames(std::string text, std::string folderSuffix);

  bool isWanted() const { return !text_.empty(); }
  bool isFolder() const { return isFolder_; }
  // The folder that all files are below: the whole of a folder's name, what stands before the first
  // part of a pattern; empty for a single file and in the folder where the command runs.
  std::string Base() const;

  // Whether the names are known before the input's pages are counted.
  bool AreSettled(const InputFile& input) const;

  // Without {page} the pages of one input share a file when its format holds several, and otherwise
  // get -p1, -p2 ... before the extension, with as many digits as the last one has.
  PageFiles FilesFor(const InputFile& input, int32_t pageCount) const;

 private:
  struct Part {
    enum Kind { kText, kName, kExt, kDir, kPage } kind = kText;
    std::string text;   // kText
    size_t digits = 0;  // kPage: at least
  };

  void Parse();
  std::vector<Part> PartsFor(const InputFile& input) const;
  bool isNumbered() const;

  std::string text_;
  std::string folderSuffix_;
  bool isFolder_;
  std::vector<Part> parts_;  // of a file's name or a pattern
};

// A name with another extension, that of `source`.
std::string WithExtensionOf(const std::string& name, const std::string& source);

}  // namespace vorlane::batch
