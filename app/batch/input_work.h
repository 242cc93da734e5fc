// One input on its way: its pages are worked on by several threads and go to one file or to many.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/batch/page_record.h"
#include "app/batch/run_context.h"
#include "app/batch/shared_file.h"
#include "app/files/picture_file.h"

namespace vorlane::batch {

class InputWork {
 public:
  InputWork(RunContext* run, size_t index, const InputFile& input);

  // Opens the input, leaves out what the journal bears out, and reports an input that cannot be
  // opened. Returns how many pieces of work there are: pages, or 1 for a set.
  int32_t Open();

  // Does piece `number`, 1..Open(), and reports every page that is settled with it.
  void Work(int32_t number);

 private:
  using Share = MemoryBudget::Share;

  PageRecord Blank(int32_t number) const;
  PageRecord ErrorRecord(int32_t number, const std::string& words) const;
  PageRecord RecordOf(const files::Page& page, PageOutcome* outcome) const;

  void NamePages(int32_t count);
  void CheckNames();
  void RefuseOtherFile() const;
  int32_t PlaceOf(int32_t number) const;
  int32_t QuartersOf(int32_t number) const;
  bool areAnyTurned() const;
  bool WantsOverlay(bool isLeft) const;
  bool IsWholeBornOut();
  bool IsBornOut(const JournalEntry& entry);
  bool HasDigest(const std::string& path, const std::string& sha256);

  files::Page Read(int32_t number, Share* share) const;
  void WorkPage(int32_t number);
  std::optional<files::EncodedPage> KeptDamaged(int32_t number) const;
  void WorkSet();
  DonePage MakePage(int32_t number);
  DonePage Finish(const files::Page& page, PageOutcome outcome, Share share);
  DonePage FinishOrFail(const files::Page& page, PageOutcome outcome);

  files::EncodedPage Encode(const std::string& path, const files::Page& page,
                            const PageOutcome& outcome, PageRecord* record) const;
  void WriteAlone(const files::Page& page, const PageOutcome& outcome, PageRecord* record);
  std::string CopyName(int32_t number, bool isTurned) const;
  void Copy(const std::string& path);
  files::Replacing Replacing(const std::string& path) const;

  void Deliver(int32_t number, DonePage page);
  void CloseShared();
  std::string WriteShared();
  void Settle(std::vector<PageRecord> records);

  RunContext* run_;
  size_t index_;
  const InputFile& input_;
  FileState state_;
  JournalPages before_;  // what the journal says of the input's pages
  std::string lastDigestOf_;
  std::string lastDigest_;
  std::optional<files::PictureFile> file_;
  PageFiles output_;
  PageFiles overlay_;
  int32_t count_ = 0;
  std::vector<int32_t> numbers_;      // of the pages that are wanted
  std::vector<int32_t> todo_;         // those of them that are not done yet
  std::optional<SharedFile> shared_;  // when output_.isShared
};

}  // namespace vorlane::batch
