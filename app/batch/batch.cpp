#include "app/batch/batch.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "app/batch/decoder_choice.h"
#include "app/batch/exit_codes.h"
#include "app/batch/folder_lock.h"
#include "app/batch/input_work.h"
#include "app/batch/plan.h"
#include "app/batch/printable_name.h"
#include "app/batch/run_context.h"
#include "app/batch/stop_signals.h"
#include "app/batch/work_queue.h"

namespace vorlane::batch {
namespace {

// Inputs that are opened beyond the first that is not yet reported: enough that a file of many
// pages does not hold up the others, few enough that what waits to be printed stays small.
constexpr size_t kWindow = 4096;

void Say(const std::string& words) {
  (void)std::fprintf(stderr, "vorlane: %s\n", Printable(words).c_str());
}

size_t JobsFor(const BatchRequest& request) {
  if (request.jobs > 0) return static_cast<size_t>(request.jobs);
  return std::max(1U, std::thread::hardware_concurrency());
}

ReportRequest ReportFor(const BatchRequest& request) {
  ReportRequest report = request.report;
  report.onErrorOutput = request.output == "-";
  return report;
}

BatchRequest WithDecoders(BatchRequest request, const files::Decoders* decoders) {
  request.limits.decoders = decoders;
  return request;
}

class Run {
 public:
  Run(const BatchRequest& request, PageService page, SetService set)
      : decoders_(DecodersFor(request)),
        request_(WithDecoders(request, decoders_.get())),
        plan_(request_),
        check_(plan_.inputs.files, request.overwriting, request.resumes),
        reporter_(ReportFor(request), plan_.inputs.files.size()),
        queue_(plan_.inputs.files.size(), kWindow),
        run_(request_, &plan_, std::move(page), std::move(set), MemoryFor(request)) {
    CheckPlan(request, plan_, &check_);
    const bool isShared = plan_.inputs.inAll == 1 || request.inputs.shard.count > 1;
    const Sharing sharing = isShared ? Sharing::kWithOthers : Sharing::kAlone;
    lock_.emplace(plan_.output.Base(), sharing);
    if (!request.journal.empty()) journal_.emplace(request.journal, request.resumes);
    run_.check = &check_;
    run_.reporter = &reporter_;
    run_.journal = journal_ ? &*journal_ : nullptr;
    run_.onFatal = [this](const std::string& words) { End(words); };
    reporter_.onBrokenOutput = [this] { queue_.Stop(); };
  }

  int Do() {
    TellPlan();
    int signal = 0;
    {
      const StopSignals signals([this] { queue_.Stop(); });
      WorkAll();
      signal = signals.signal();
    }
    reporter_.Finish();
    const bool isWhole = CloseJournal();
    if (!PassOutput() || !isWhole) return ExitFor(signal, kExitFiles);
    return ExitFor(signal, kExitAllDone);
  }

 private:
  static int64_t MemoryFor(const BatchRequest& request) {
    return request.memory > 0 ? request.memory : DefaultMemory();
  }

  void TellPlan() const {
    if (!request_.report.isVerbose) return;
    const InputList& inputs = plan_.inputs;
    (void)std::fprintf(stderr, "vorlane: %zu files, %lld of other kinds passed over, %zu threads\n",
                       inputs.files.size(), static_cast<long long>(inputs.otherFiles),
                       JobsFor(request_));
  }

  // On as many threads as there are to be had; the caller's is one of them.
  void WorkAll() {
    const size_t jobs = std::max<size_t>(JobsFor(request_), 1);
    std::vector<std::thread> threads;
    try {
      threads.reserve(jobs - 1);
      while (threads.size() < jobs - 1) threads.emplace_back([this] { WorkOn(); });
    } catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): no thread to be had
    } catch (const std::bad_alloc&) {     // NOLINT(bugprone-empty-catch): no room for a thread
    }
    WorkOn();
    for (std::thread& thread : threads) thread.join();
  }

  void WorkOn() {
    while (const std::optional<Task> task = queue_.Take()) {
      try {
        DoTask(*task);
      } catch (const std::exception& error) {
        End(error.what());
      }
      queue_.Advance(reporter_.head());
    }
  }

  void DoTask(const Task& task) {
    if (task.input) {
      task.input->Work(task.page);
      return;
    }
    auto input = std::make_shared<InputWork>(&run_, task.index, plan_.inputs.files[task.index]);
    const int32_t pieces = input->Open();
    queue_.Opened(task.index, std::move(input), pieces);
  }

  // The run cannot go on: pages in work are finished.
  void End(const std::string& words) {
    const std::lock_guard lock(endMutex_);
    if (end_.empty()) end_ = words;
    queue_.Stop();
  }

  bool CloseJournal() {
    if (!journal_) return true;
    if (journal_->damaged() > 0) {
      Say(request_.journal + ": " + std::to_string(journal_->damaged()) +
          " lines could not be read; their pages were done again");
    }
    try {
      journal_->Finish();
    } catch (const files::FileError& error) {
      Say(error.what());
      return false;
    }
    return true;
  }

  bool PassOutput() {
    std::error_code code;
    const std::string& path = plan_.standardOutput;
    if (path.empty() || !std::filesystem::exists(path, code)) return true;
    try {
      PassToStandardOutput(path);
    } catch (const files::FileError& error) {
      Say(error.what());
      return false;
    }
    return true;
  }

  int ExitFor(int signal, int least) const {
    if (!end_.empty()) Say(end_);
    if (reporter_.isBroken()) Say("the report cannot be written to the output");
    const bool isComplete = reporter_.finished() == plan_.inputs.files.size();
    if (queue_.isStopped() || !isComplete) Say(StopWords());
    if (signal != 0) return kExitSignal + signal;
    const Tally& tally = reporter_.tally();
    const bool isTold = isComplete && end_.empty() && !reporter_.isBroken();
    if (!isTold || tally.errors > 0 || tally.noOverlay > 0) return kExitFiles;
    const bool isMeasured = request_.output.empty();
    const bool areLeft = tally.left + tally.refused > 0 && (request_.isStrict || isMeasured);
    return std::max<int>(least, areLeft ? kExitPagesLeft : kExitAllDone);
  }

  std::string StopWords() const {
    const std::string rest = std::to_string(plan_.inputs.files.size() - reporter_.finished());
    return "stopped: " + rest + " of " + std::to_string(plan_.inputs.files.size()) +
           " files are not done" + (journal_ ? "; --resume goes on with them" : "");
  }

  std::unique_ptr<files::Decoders> decoders_;  // first: made before a file is opened
  const BatchRequest request_;
  Plan plan_;
  OutputCheck check_;
  std::optional<FolderLock> lock_;
  std::optional<Journal> journal_;
  Reporter reporter_;
  WorkQueue queue_;
  RunContext run_;
  std::mutex endMutex_;
  std::string end_;  // why the run could not go on
};

}  // namespace

int RunBatch(const BatchRequest& request, const PageService& service) {
  return Run(request, service, nullptr).Do();
}

int RunPageSets(const BatchRequest& request, const SetService& service) {
  return Run(request, nullptr, service).Do();
}

}  // namespace vorlane::batch
