#include "app/batch/reporter.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "app/batch/printable_name.h"

namespace vorlane::batch {
namespace {

constexpr std::chrono::milliseconds kBetweenProgress{200};

bool IsTerminal(int handle) {
  const char* kind = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): nobody sets it
  return ::isatty(handle) == 1 && kind != nullptr && std::strcmp(kind, "dumb") != 0;
}

std::string HoursOf(double seconds) {
  const auto whole = static_cast<int64_t>(seconds);
  std::array<char, 32> text{};
  (void)std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld",
                      static_cast<long long>(whole / 3600), static_cast<long long>(whole / 60 % 60),
                      static_cast<long long>(whole % 60));
  return text.data();
}

}  // namespace

Reporter::Reporter(const ReportRequest& request, size_t total)
    : request_(request),
      total_(total),
      hasProgress_(!request.isQuiet && IsTerminal(STDERR_FILENO)) {}

void Reporter::Expect(size_t input, int32_t pages) {
  const std::lock_guard lock(mutex_);
  inputs_[input].pages = pages;
}

void Reporter::Add(size_t input, int32_t page, const PageRecord& record) {
  Line line = LineOf(record);
  const std::lock_guard lock(mutex_);
  Count(record, &tally_);
  Put(input, page, std::move(line));
}

void Reporter::AddDoneBefore(size_t input, int32_t page) {
  const std::lock_guard lock(mutex_);
  ++tally_.doneBefore;
  Put(input, page, {});
}

void Reporter::Put(size_t input, int32_t page, Line line) {
  Input& place = inputs_[input];
  place.lines[page] = std::move(line);
  if (place.next - 1 + static_cast<int32_t>(place.lines.size()) == place.pages) ++finished_;
  PrintReady();
  ShowProgress();
}

size_t Reporter::head() const {
  const std::lock_guard lock(mutex_);
  return head_;
}

bool Reporter::isBroken() const {
  const std::lock_guard lock(mutex_);
  return isBroken_;
}

Reporter::Line Reporter::LineOf(const PageRecord& record) const {
  Line line;
  line.name = NameToTell(record);
  if (record.isError) line.error = "vorlane: " + Printable(record.words) + "\n";
  if (request_.json) {
    line.out = JsonLine(record) + "\n";
  } else if (!record.isError && !request_.isQuiet && !request_.isTerse) {
    line.out = TextLine(record) + "\n";
  }
  if (request_.isVerbose) {
    for (const std::string& message : record.messages)
      line.error += "  " + Printable(message) + "\n";
  }
  return line;
}

void Reporter::PrintReady() {
  for (auto at = inputs_.find(head_); at != inputs_.end(); at = inputs_.find(head_)) {
    Input& input = at->second;
    for (auto line = input.lines.find(input.next); line != input.lines.end();
         line = input.lines.find(input.next)) {
      Print(line->second);
      input.lines.erase(line);
      ++input.next;
    }
    if (input.pages == 0 || input.next <= input.pages) return;
    inputs_.erase(at);
    ++head_;
  }
}

void Reporter::Print(const Line& line) {
  if (!line.name.empty() && tally_.names.size() < kNamesInSummary) {
    tally_.names.push_back(line.name);
  }
  if (line.out.empty() && line.error.empty()) return;
  ClearProgress();
  (void)std::fwrite(line.error.data(), 1, line.error.size(), stderr);
  std::FILE* out = request_.onErrorOutput ? stderr : stdout;
  if (line.out.empty() || isBroken_) return;
  errno = 0;
  const bool isWritten = std::fwrite(line.out.data(), 1, line.out.size(), out) == line.out.size();
  if (isWritten && std::fflush(out) == 0) return;
  isBroken_ = true;
  // A standard output that was closed from the start is told at the end; the pages are made.
  if (errno != EBADF && onBrokenOutput) onBrokenOutput();
}

void Reporter::ClearProgress() {
  if (!isProgressShown_) return;
  (void)std::fputs("\r\033[K", stderr);
  isProgressShown_ = false;
}

void Reporter::ShowProgress() {
  if (!hasProgress_ || Clock::now() - lastShown_ < kBetweenProgress) return;
  ClearProgress();
  lastShown_ = Clock::now();
  isProgressShown_ = true;
  const std::string text = ProgressText();
  (void)std::fwrite(text.data(), 1, text.size(), stderr);
}

std::string Reporter::ProgressText() const {
  const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
  const double share = static_cast<double>(finished_) / static_cast<double>(total_);
  std::array<char, 96> text{};
  (void)std::snprintf(text.data(), text.size(), "%zu of %zu files, %.1f pages a second, ",
                      finished_, total_,
                      static_cast<double>(tally_.pages) / std::max(seconds, 0.1));
  std::string line = text.data();
  if (finished_ > 0) line += HoursOf(seconds * (1 - share) / share) + " left, ";
  return line + TallyLine(tally_);
}

void Reporter::Finish() {
  const std::lock_guard lock(mutex_);
  for (auto& [number, input] : inputs_) {
    for (const auto& [page, line] : input.lines) Print(line);
  }
  inputs_.clear();
  ClearProgress();
  const bool isWorthSaying = tally_.pages + tally_.doneBefore > 1;
  if (!request_.isQuiet && !request_.isTerse && isWorthSaying)
    (void)std::fputs(Summary(tally_).c_str(), stderr);
}

}  // namespace vorlane::batch
