// Prints what became of the pages, in the order of the inputs, whatever order they end in.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "app/batch/page_record.h"
#include "app/batch/tally.h"

namespace vorlane::batch {

struct ReportRequest {
  bool json = false;
  bool isQuiet = false;        // errors, and JSON when it is asked for
  bool isTerse = false;        // the progress and errors, no line a page and no summary
  bool isVerbose = false;      // also what decoders remark and what is passed over
  bool onErrorOutput = false;  // lines go there: the standard output carries a picture
};

class Reporter {
 public:
  // `total` is the number of inputs.
  Reporter(const ReportRequest& request, size_t total);

  // Called once when the standard output can no longer be written: the run is to end.
  std::function<void()> onBrokenOutput;

  // From any thread. The pages of an input are known before the first of them is reported; an input
  // that fails as a whole has one, and so has one of which nothing is to be said.
  void Expect(size_t input, int32_t pages);
  void Add(size_t input, int32_t page, const PageRecord& record);
  void AddDoneBefore(size_t input, int32_t page);

  // The first input whose pages are not all reported.
  size_t head() const;

  // Prints what waits behind pages that never came, ends the progress line, and prints the summary.
  void Finish();

  size_t finished() const { return finished_; }  // inputs of which all pages have come
  bool isBroken() const;
  const Tally& tally() const { return tally_; }  // when all is done

 private:
  struct Line {
    std::string out;    // standard output
    std::string error;  // error output, before it
    std::string name;   // for the summary; empty: it does not name the page
  };
  struct Input {
    int32_t pages = 0;  // 0: not known yet
    int32_t next = 1;   // the page to be printed next
    std::map<int32_t, Line> lines;
  };
  using Clock = std::chrono::steady_clock;

  Line LineOf(const PageRecord& record) const;
  void Put(size_t input, int32_t page, Line line);
  void PrintReady();
  void Print(const Line& line);
  void ClearProgress();
  void ShowProgress();
  std::string ProgressText() const;

  ReportRequest request_;
  size_t total_;
  bool hasProgress_;
  mutable std::mutex mutex_;
  std::map<size_t, Input> inputs_;  // from head_ on
  size_t head_ = 0;
  size_t finished_ = 0;  // inputs of which all pages have come
  Tally tally_;
  bool isBroken_ = false;
  bool isProgressShown_ = false;
  Clock::time_point start_ = Clock::now();
  Clock::time_point lastShown_{};
};

}  // namespace vorlane::batch
