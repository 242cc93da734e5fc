#include "app/batch/input_work.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <new>
#include <numeric>

#include "app/batch/page_output.h"
#include "app/batch/sha256.h"
#include "app/files/page_image.h"
#include "app/files/pdf_encoder.h"

namespace vorlane::batch {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// What a page takes while it is worked on, before its depth is known: its pixels in colour, as read
// and as made, and three bytes a pixel of scratch; and whatever its size is.
constexpr int64_t kBytesAPixel = 9;
constexpr int64_t kBytesAPage = int64_t{1} << 16;

int64_t BytesFor(const ImageRec& image) {
  const int64_t pixels = int64_t{image.width} * image.height;
  return kBytesAPage + 3 * int64_t{image.imageBytes} + 3 * pixels;
}

}  // namespace

InputWork::InputWork(RunContext* run, size_t index, const InputFile& input)
    : run_(run), index_(index), input_(input) {}

PageRecord InputWork::Blank(int32_t number) const {
  PageRecord record;
  record.command = run_->request.command;
  record.file = input_.path;
  record.dir = fs::path(input_.place).parent_path().native();
  record.number = number;
  record.count = number == 0 ? 0 : count_;
  record.rotate = number == 0 ? 0 : QuartersOf(number);
  record.input = state_;
  return record;
}

PageRecord InputWork::ErrorRecord(int32_t number, const std::string& words) const {
  PageRecord record = Blank(number);
  record.isError = true;
  record.words = words;
  return record;
}

int32_t InputWork::Open() {
  const std::string& source = input_.path == "-" ? run_->plan.standardInput : input_.path;
  state_ = StateOf(source);
  if (run_->journal != nullptr) before_ = run_->journal->PagesOf(input_.path);
  try {
    if (IsWholeBornOut()) return 0;
    file_.emplace(input_.path, std::make_shared<files::FileSource>(source), run_->request.limits);
    NamePages(file_->count());
    CheckNames();
    RefuseOtherFile();
  } catch (const std::exception& error) {
    run_->reporter->Expect(index_, 1);
    Settle({ErrorRecord(0, error.what())});
    return 0;
  }
  run_->reporter->Expect(index_, static_cast<int32_t>(numbers_.size()));
  if (output_.isShared) {
    const std::string& path = output_.Of(1);
    const auto pages = static_cast<int32_t>(numbers_.size());
    shared_.emplace(SharedFile::Request{path, pages, Replacing(path), &*file_});
  }
  const bool goesTogether = output_.isShared || run_->set;
  for (const int32_t number : numbers_) {
    const auto entry = before_.find(number);
    if (!goesTogether && entry != before_.end() && IsBornOut(entry->second)) {
      run_->reporter->AddDoneBefore(index_, PlaceOf(number));
    } else {
      todo_.push_back(number);
    }
  }
  return run_->set ? 1 : static_cast<int32_t>(todo_.size());
}

// A report tells of a file as it was then.
void InputWork::RefuseOtherFile() const {
  if (input_.expected.size >= 0 && input_.expected != state_) {
    throw files::FileError(input_.path + ": was changed since the report was made");
  }
  if (numbers_.back() > count_) {
    throw files::FileError(input_.path + ": has no page " + std::to_string(numbers_.back()));
  }
}

// Where a page stands among those that are wanted, from 1.
int32_t InputWork::PlaceOf(int32_t number) const {
  const auto at = std::lower_bound(numbers_.begin(), numbers_.end(), number);
  return static_cast<int32_t>(at - numbers_.begin()) + 1;
}

int32_t InputWork::QuartersOf(int32_t number) const {
  const auto turn = input_.turns.find(number);
  return turn == input_.turns.end() ? run_->request.rotate : turn->second;
}

bool InputWork::areAnyTurned() const {
  return std::any_of(numbers_.begin(), numbers_.end(),
                     [this](int32_t number) { return QuartersOf(number) != 0; });
}

bool InputWork::WantsOverlay(bool isLeft) const {
  return !overlay_.names.empty() && (isLeft || !run_->request.drawsUnsureOnly);
}

void InputWork::NamePages(int32_t count) {
  count_ = count;
  output_ = run_->plan.output.FilesFor(input_, count);
  overlay_ = run_->plan.overlay.FilesFor(input_, count);
  numbers_ = input_.pages;
  if (!numbers_.empty()) return;
  numbers_.resize(static_cast<size_t>(count));
  std::iota(numbers_.begin(), numbers_.end(), 1);
}

// Whether all pages are done, so that the input need not even be opened.
bool InputWork::IsWholeBornOut() {
  if (before_.empty() || !run_->request.resumes) return false;
  const JournalEntry& first = before_.begin()->second;
  if (first.number == 0 || first.input != state_) return false;
  NamePages(first.count);
  RefuseOtherFile();
  for (const int32_t number : numbers_) {
    const auto entry = before_.find(number);
    if (entry == before_.end() || !IsBornOut(entry->second)) return false;
  }
  const auto pages = static_cast<int32_t>(numbers_.size());
  run_->reporter->Expect(index_, pages);
  for (int32_t place = 1; place <= pages; ++place) run_->reporter->AddDoneBefore(index_, place);
  return true;
}

// Whether the input, the options and the output are still what a line of the journal says.
bool InputWork::IsBornOut(const JournalEntry& entry) {
  if (entry.result == "error" || entry.count != count_ || entry.input != state_) return false;
  const BatchRequest& request = run_->request;
  const bool isSameRequest =
      entry.facts.options == request.options && entry.facts.version == request.version;
  if (!isSameRequest) return false;
  std::error_code code;
  const bool isLeft = entry.result != NameOf(PageFate::kStraightened) &&
                      entry.result != NameOf(PageFate::kMeasured);
  if (WantsOverlay(isLeft) && entry.overlay != overlay_.Of(entry.number)) return false;
  if (!entry.overlay.empty() && !fs::exists(entry.overlay, code)) return false;
  if (entry.output.empty()) return output_.names.empty() || request.unsure == "skip";
  const bool isAsNamed =
      entry.output == output_.Of(entry.number) ||
      (isLeft && entry.output == CopyName(entry.number, QuartersOf(entry.number) != 0));
  return isAsNamed && HasDigest(entry.output, entry.facts.sha256);
}

// Whether a page's file has the bytes that it was written with. Of a file that pages share, they
// are looked at once.
bool InputWork::HasDigest(const std::string& path, const std::string& sha256) {
  if (path != lastDigestOf_) {
    lastDigestOf_ = path;
    lastDigest_ = Sha256OfFile(path).sha256;
  }
  return !sha256.empty() && lastDigest_ == sha256;
}

// Names that depend on the number of pages were not looked at when the run was planned.
void InputWork::CheckNames() {
  const std::lock_guard lock(run_->checkMutex);
  for (const PageFiles* files : {&output_, &overlay_}) {
    const OutputNames& names = files == &output_ ? run_->plan.output : run_->plan.overlay;
    if (names.AreSettled(input_)) continue;
    for (const std::string& path : files->names) run_->check->Add(input_.path, path);
  }
}

files::Page InputWork::Read(int32_t number, Share* share) const {
  bool isAdmitted = share == nullptr;
  files::Page page = file_->Read(number, [&](uint64_t width, uint64_t height) {
    if (isAdmitted) return;
    isAdmitted = true;
    const auto pixels = static_cast<int64_t>(width * height);
    *share = run_->budget.Take(kBytesAPage + kBytesAPixel * pixels);
  });
  if (page.image.rec()->pixels != nullptr) files::TurnByQuarters(QuartersOf(number), &page);
  if (share != nullptr && isAdmitted) share->Shrink(BytesFor(*page.image.rec()));
  const std::string& source = input_.path == "-" ? run_->plan.standardInput : input_.path;
  if (StateOf(source) != state_) {
    throw files::FileError(input_.path + ": was changed while it was worked on");
  }
  return page;
}

void InputWork::Work(int32_t number) {
  if (run_->set) {
    WorkSet();
  } else {
    WorkPage(todo_[static_cast<size_t>(number) - 1]);
  }
}

// What fails while a page is delivered ends the run: it may be told by then.
void InputWork::WorkPage(int32_t number) {
  std::optional<DonePage> done;
  std::string words;
  try {
    done = MakePage(number);
  } catch (const std::exception& error) {
    words = error.what();
  }
  if (!done) done = DonePage{ErrorRecord(number, words), KeptDamaged(number), {}};
  Deliver(number, *std::move(done));
}

DonePage InputWork::MakePage(int32_t number) {
  const std::string failure = shared_ ? shared_->failure() : "";
  if (!failure.empty()) throw files::FileError(failure);
  Share share;
  const files::Page page = Read(number, &share);
  const Clock::time_point start = Clock::now();
  PageOutcome outcome = page.noPicture.empty() ? run_->page(page) : NoPictureOutcome(page);
  outcome.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  return Finish(page, std::move(outcome), std::move(share));
}

// A page that cannot be read stays where it can be handed on unread: from PDF to PDF.
std::optional<files::EncodedPage> InputWork::KeptDamaged(int32_t number) const {
  const bool isPdf = file_->pdf() != nullptr && output_.isShared &&
                     FormatFor(output_.Of(1)) == files::FileFormat::kPdf;
  if (!isPdf) return std::nullopt;
  return files::KeepPdfPage(number);
}

void InputWork::WorkSet() {
  std::vector<files::Page> pages;
  std::vector<PageOutcome> outcomes;
  Share share;
  std::string words;
  try {
    for (const int32_t number : todo_) {
      pages.push_back(Read(number, pages.empty() ? &share : nullptr));
      if (!pages.back().noPicture.empty()) throw files::FileError(NoPictureWords(pages.back()));
    }
    outcomes = run_->set(pages);
  } catch (const std::exception& error) {
    words = error.what();
  }
  for (size_t i = 0; i < todo_.size(); ++i) {
    if (words.empty()) {
      Deliver(todo_[i], FinishOrFail(pages[i], std::move(outcomes[i])));
    } else {
      Deliver(todo_[i], {ErrorRecord(todo_[i], words), std::nullopt, {}});
    }
  }
}

DonePage InputWork::FinishOrFail(const files::Page& page, PageOutcome outcome) {
  try {
    return Finish(page, std::move(outcome), {});
  } catch (const std::exception& error) {
    return {ErrorRecord(page.number, error.what()), std::nullopt, {}};
  }
}

// Writes what becomes of a page and its overlay.
DonePage InputWork::Finish(const files::Page& page, PageOutcome outcome, Share share) {
  DonePage done{RecordOf(page, &outcome), std::nullopt, std::move(share)};
  PageRecord* record = &done.record;
  const bool isDone =
      record->fate == PageFate::kStraightened || record->fate == PageFate::kMeasured;
  if (WantsOverlay(!isDone)) {
    const std::string& path = overlay_.Of(page.number);
    WriteOverlay(path, page, outcome, Replacing(path), record);
  }
  if (output_.isShared) {
    done.page = Encode(output_.Of(1), page, outcome, record);
  } else if (!output_.names.empty()) {
    WriteAlone(page, outcome, record);
  }
  if (done.page) done.share.Park(static_cast<int64_t>(done.page->bytes.size()));
  return done;
}

PageRecord InputWork::RecordOf(const files::Page& page, PageOutcome* outcome) const {
  PageRecord record = Blank(page.number);
  record.fate = outcome->fate;
  record.trust = outcome->trust;
  record.words = outcome->words;
  record.facts = std::move(outcome->facts);
  record.milliseconds = outcome->milliseconds;
  record.notes = page.notes;
  record.notes.insert(record.notes.end(), outcome->notes.begin(), outcome->notes.end());
  record.messages = page.messages;
  return record;
}

files::EncodedPage InputWork::Encode(const std::string& path, const files::Page& page,
                                     const PageOutcome& outcome, PageRecord* record) const {
  const files::WriteOptions options{.jpegQuality = run_->request.jpegQuality};
  const files::FileFormat format = FormatFor(path);
  const bool isMade = outcome.fate == PageFate::kStraightened;
  const bool isTurned = page.noPicture.empty() && QuartersOf(page.number) != 0;
  if (!isMade && isTurned) record->notes.push_back("turned by quarters only");
  try {
    if (!isMade && !isTurned) {
      return files::KeepPage(format, *file_, page, options, &record->notes);
    }
    const ImageRec& image = isMade ? *outcome.image.rec() : *page.image.rec();
    return files::EncodePage(format, image, page, options, &record->notes);
  } catch (const files::FileError& error) {
    throw files::FileError(path + ": " + error.what());
  }
}

void InputWork::WriteAlone(const files::Page& page, const PageOutcome& outcome,
                           PageRecord* record) {
  const bool isLeft = outcome.fate != PageFate::kStraightened;
  if (isLeft && run_->request.unsure == "skip") return;
  const bool isTurned = page.noPicture.empty() && QuartersOf(page.number) != 0;
  const bool isCopied = isLeft && !isTurned;
  const std::string path = isLeft ? CopyName(page.number, isTurned) : output_.Of(page.number);
  if (isCopied && count_ == 1) {
    Copy(path);
  } else {
    WritePage(path, Encode(path, page, outcome, record), Replacing(path), &*file_);
  }
  record->output = path;
  record->isUnchanged = isCopied;
}

// Where a page that is left as it is goes. The file of a single page, or of pages that share one,
// is copied as it is and keeps its extension where the output's asks for another format.
std::string InputWork::CopyName(int32_t number, bool isTurned) const {
  std::string name = output_.Of(number);
  const bool isWhole = output_.isShared || (count_ == 1 && !isTurned);
  const bool isPassedOn = name == run_->plan.standardOutput;
  if (isWhole && !isPassedOn) name = WithExtensionOf(name, input_.place);
  if (run_->plan.unsureFolder.empty()) return name;
  const fs::path below = fs::path(input_.place).parent_path() / fs::path(name).filename();
  return (fs::path(run_->plan.unsureFolder) / below).native();
}

// Copies the input as it is.
void InputWork::Copy(const std::string& path) {
  const std::string& source = input_.path == "-" ? run_->plan.standardInput : input_.path;
  std::error_code code;
  const bool isItself = fs::equivalent(source, path, code) && !code;
  if (!isItself && path != output_.Of(1)) {
    const std::lock_guard lock(run_->checkMutex);
    if (run_->check->IsInput(path)) {
      throw files::FileError(path + ": is an input file; the page left as it is has no place");
    }
  }
  CopyFile(source, path, Replacing(path));
}

files::Replacing InputWork::Replacing(const std::string& path) const {
  return ReplacingFor(*run_, before_, path);
}

// A page's fate is told when its file stands.
void InputWork::Deliver(int32_t number, DonePage page) {
  if (!shared_) {
    Settle({std::move(page.record)});
  } else if (shared_->Take(PlaceOf(number), std::move(page))) {
    CloseShared();
  }
}

void InputWork::CloseShared() {
  std::string failure = shared_->failure();
  std::string path;
  try {
    if (failure.empty()) path = WriteShared();
  } catch (const files::FileError& error) {
    failure = error.what();
  }
  std::vector<PageRecord> records = shared_->TakeRecords();
  for (PageRecord& record : records) {
    if (record.isError) continue;
    record.output = path;
    record.isUnchanged =
        !path.empty() && record.fate != PageFate::kStraightened && record.rotate == 0;
    if (!failure.empty()) record = ErrorRecord(record.number, failure);
  }
  Settle(std::move(records));
}

// Writes the pages' file, or copies the input where no page was straightened. Returns where the
// pages are; empty: nowhere.
std::string InputWork::WriteShared() {
  const bool isKept = shared_->hasLeft() && run_->request.unsure != "skip";
  const bool isPart = static_cast<int32_t>(numbers_.size()) < count_;
  // Of a part of the pages, or of turned ones, the file is no copy.
  const bool isMade = shared_->hasStraightened() || (isKept && (isPart || areAnyTurned()));
  const bool isCopied = isKept && (!isMade || !run_->plan.unsureFolder.empty());
  if (isCopied) Copy(CopyName(1, false));
  if (!isMade) return isCopied ? CopyName(1, false) : "";
  shared_->Commit();
  return output_.Of(1);
}

void InputWork::Settle(std::vector<PageRecord> records) {
  std::string lines;
  std::string digestOf;
  JournalFacts facts{"", run_->request.options, run_->request.version};
  for (PageRecord& record : records) {
    if (run_->journal != nullptr) {
      if (record.output != digestOf) {
        digestOf = record.output;
        facts.sha256 = record.output.empty() ? "" : Sha256OfFile(record.output).sha256;
      }
      lines += JournalLine(record, facts) + "\n";
    }
    if (!record.output.empty() && record.output == run_->plan.standardOutput) record.output = "-";
  }
  try {
    if (run_->journal != nullptr) run_->journal->Append(lines);
  } catch (const files::FileError& error) {
    run_->onFatal(error.what());
  }
  for (const PageRecord& record : records) {
    run_->reporter->Add(index_, record.number == 0 ? 1 : PlaceOf(record.number), record);
  }
}

}  // namespace vorlane::batch
