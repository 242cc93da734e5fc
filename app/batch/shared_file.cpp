#include "app/batch/shared_file.h"

#include <exception>
#include <utility>

#include "app/batch/page_output.h"

namespace vorlane::batch {

bool SharedFile::Take(int32_t number, DonePage page) {
  const std::lock_guard lock(mutex_);
  waiting_.emplace(number, std::move(page));
  for (auto at = waiting_.find(next_); at != waiting_.end(); at = waiting_.find(next_)) {
    Append(&at->second);
    waiting_.erase(at);
    ++next_;
  }
  return next_ > request_.pages;
}

void SharedFile::Append(DonePage* page) {
  const PageRecord& record = page->record;
  const bool isStraightened = !record.isError && record.fate == PageFate::kStraightened;
  hasStraightened_ = hasStraightened_ || isStraightened;
  hasLeft_ = hasLeft_ || (!record.isError && !isStraightened);
  if (page->page && failure_.empty()) {
    try {
      if (!writer_) {
        MakeFolderFor(request_.path);
        writer_.emplace(request_.path, FormatFor(request_.path), request_.replacing,
                        files::Durability::kSynced, request_.source);
      }
      writer_->Add(std::move(*page->page));
    } catch (const std::exception& error) {
      failure_ = error.what();
      writer_.reset();
    }
  }
  records_.push_back(std::move(page->record));
}

std::string SharedFile::failure() const {
  const std::lock_guard lock(mutex_);
  return failure_;
}

void SharedFile::Commit() { writer_->Commit(); }

}  // namespace vorlane::batch
