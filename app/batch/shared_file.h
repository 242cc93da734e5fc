// The file that the pages of one input share: they come in any order and stand in theirs.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "app/batch/memory_budget.h"
#include "app/batch/page_record.h"
#include "app/files/picture_writer.h"

namespace vorlane::batch {

// A page that is done.
struct DonePage {
  PageRecord record;
  std::optional<files::EncodedPage> page;  // none: there is nothing to put into a file
  MemoryBudget::Share share;               // kept while it waits for earlier ones
};

class SharedFile {
 public:
  struct Request {
    std::string path;
    int32_t pages = 0;  // that will come, bad ones too
    files::Replacing replacing = files::Replacing::kNever;
    const files::PictureFile* source = nullptr;  // which the pages come from
  };

  explicit SharedFile(Request request) : request_(std::move(request)) {}

  // Takes a page, from any thread. Returns whether it was the last one to come.
  bool Take(int32_t number, DonePage page);

  // Why the file cannot be written; empty: nothing speaks against it so far.
  std::string failure() const;

  // Once all pages have come.
  bool hasStraightened() const { return hasStraightened_; }
  bool hasLeft() const { return hasLeft_; }
  // Gives the file its name. Throws FileError.
  void Commit();
  // What is to be said of the pages, in their order.
  std::vector<PageRecord> TakeRecords() { return std::move(records_); }

 private:
  void Append(DonePage* page);

  Request request_;
  mutable std::mutex mutex_;
  std::map<int32_t, DonePage> waiting_;
  int32_t next_ = 1;  // the page to be put into the file next
  std::optional<files::PictureWriter> writer_;
  std::vector<PageRecord> records_;
  bool hasStraightened_ = false;
  bool hasLeft_ = false;
  std::string failure_;
};

}  // namespace vorlane::batch
