// Lets every request that a call makes of the system fail, one by one and from there on, for each
// function that hosts can call, and holds what comes of it against the undisturbed call: no crash,
// no hang and no leak; what was made is whole or not there; a failure has its documented status;
// and the next call gives what it gave before.
//
//   call_sweep services|engine [FAULTS [SEED]]
//
// FAULTS is the most places that are tried for a call, a kind of request and a way of failing,
// drawn by SEED; all without it.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "drawn_calls/drawn_calls.h"
#include "fault_record.h"
#include "vorlanepic/imgbuf.h"

namespace vorlane::faults {
namespace {

using vorlanepic::testing::CallResult;
using vorlanepic::testing::DrawnCall;
using vorlanepic::testing::Extent;

constexpr unsigned kLongestCall = 60;  // seconds, sanitizers and busy machines included

struct Fault {
  Mode mode = Mode::kCount;
  Call call = Call::kMalloc;
  int64_t n = 0;
};

// What is being tried, for the last words of a run that ends in it.
char trying[512];

void SayWhatWasTried(int signal) {
  const char* words = signal == SIGALRM ? "hangs: " : "crashes: ";
  for (const char* text : {words, static_cast<const char*>(trying), "\n"}) {
    const std::string_view view(text);
    if (::write(STDERR_FILENO, view.data(), view.size()) < 0) break;
  }
  ::_exit(1);
}

// Files that are open; all are among the first numbers.
int OpenFiles() {
  int count = 0;
  for (int handle = 0; handle < 64; ++handle) count += ::fcntl(handle, F_GETFD) >= 0 ? 1 : 0;
  return count;
}

class Sweep {
 public:
  void Of(const std::vector<DrawnCall>& calls, const DrawnCall& call) {
    // Twice, so that what the libraries keep for good is there before blocks are counted.
    (void)RunWith(call, {});
    const CallResult whole = RunWith(call, {});
    const int64_t largest = record_.largest;
    std::vector<int64_t> seen(kCalls);
    for (size_t kind = 0; kind < seen.size(); ++kind) seen[kind] = record_.seen[kind];
    if (!whole.isDone) Fail(call, "fails though nothing disturbs it");
    const CallResult other = OtherResult(calls, call);
    TryLargest(call, largest, whole, other);
    if (call.sparesLargest) return;  // drawn for that alone, and asks tens of thousands of times
    for (int32_t kind = 0; kind < kCalls; ++kind) {
      for (const Mode mode : {Mode::kOnly, Mode::kFromThere}) {
        for (int64_t n = 0; n < seen[static_cast<size_t>(kind)]; ++n) {
          Try(call, {mode, static_cast<Call>(kind), n}, whole, other);
        }
      }
    }
  }

  int Finish(size_t calls) const {
    std::printf("%zu calls, faults:", calls);
    for (int32_t kind = 0; kind < kCalls; ++kind) {
      if (struck_[kind] > 0) {
        std::printf(" %lld %s", static_cast<long long>(struck_[kind]), kCallNames[kind]);
      }
    }
    std::printf("; %lld failures\n", static_cast<long long>(failures_));
    return failures_ == 0 ? 0 : 1;
  }

  // Whether requests of this kind were made to fail at all.
  bool HasTried(Call kind) const { return struck_[static_cast<int32_t>(kind)] > 0; }

 private:
  CallResult RunWith(const DrawnCall& call, const Fault& fault) {
    return call.run([&](const std::function<void()>& run) {
      record_.call = fault.call;
      record_.n = fault.n;
      record_.struck = 0;
      record_.largest = 0;
      for (auto& seen : record_.seen) seen = 0;
      record_.mode = fault.mode;
      run();
      record_.mode = Mode::kIdle;
    });
  }

  // The undisturbed result of the call that this one may turn into; its own where there is none.
  CallResult OtherResult(const std::vector<DrawnCall>& calls, const DrawnCall& call) {
    const auto other = std::find_if(calls.begin(), calls.end(), [&](const DrawnCall& candidate) {
      return candidate.name == call.orAs;
    });
    return RunWith(other == calls.end() ? call : *other, {});
  }

  // Requests larger than some size, from the largest one down.
  void TryLargest(const DrawnCall& call, int64_t largest, const CallResult& whole,
                  const CallResult& other) {
    for (int64_t most = largest; most > 64; most /= 2) {
      const bool isDone = Try(call, {Mode::kLarger, Call::kMalloc, most - 1}, whole, other);
      if (call.sparesLargest && most == largest && !isDone) {
        Fail(call, "takes a reserve that it can do without for one that it needs");
      }
    }
  }

  // Whether the call was done in spite of the fault.
  bool Try(const DrawnCall& call, const Fault& fault, const CallResult& whole,
           const CallResult& other) {
    (void)std::snprintf(trying, sizeof trying, "%s, %s %lld%s", call.name.c_str(),
                        fault.mode == Mode::kLarger ? "requests larger than"
                                                    : kCallNames[static_cast<int32_t>(fault.call)],
                        static_cast<long long>(fault.n),
                        fault.mode == Mode::kFromThere ? " and all later ones" : "");
    ::alarm(kLongestCall);
    const int64_t alive = record_.alive;
    const int files = OpenFiles();
    bool isDone = false;
    {
      const CallResult result = RunWith(call, fault);
      isDone = result.isDone;
      struck_[static_cast<int32_t>(fault.call)] += record_.struck;
      Check(call, result, whole, other);
      const CallResult next = RunWith(call, {});
      if (next.status != whole.status || next.made != whole.made) {
        Fail(call, "changes what the next call gives");
      }
    }
    // After the next call, which takes again what a context was made to let go.
    if (record_.alive != alive) {
      Fail(call, "leaks " + std::to_string(record_.alive - alive) + " blocks");
    }
    if (OpenFiles() != files) Fail(call, "leaks an open file");
    ::alarm(0);
    return isDone;
  }

  void Check(const DrawnCall& call, const CallResult& result, const CallResult& whole,
             const CallResult& other) {
    if (result.isDone) {
      const bool isWhole =
          result.made == whole.made || (record_.struck > 0 && result.made == other.made);
      if (!isWhole) Fail(call, "succeeds with another result");
      return;
    }
    if (record_.struck == 0) Fail(call, "fails without a fault");
    if (std::count(call.exhausted.begin(), call.exhausted.end(), result.status) == 0) {
      Fail(call, "returns " + std::to_string(result.status));
    }
    for (const std::string& made : result.made) {
      if (std::find(whole.made.begin(), whole.made.end(), made) == whole.made.end()) {
        Fail(call, "leaves what is not whole: " + made);
      }
    }
  }

  void Fail(const DrawnCall& call, const std::string& words) {
    constexpr int64_t kMostTold = 20;
    if (++failures_ <= kMostTold) {
      std::printf("%s: %s\n", trying[0] == '\0' ? call.name.c_str() : trying, words.c_str());
    }
  }

  FaultRecord& record_ = *vorlane_fault_record();
  int64_t struck_[kCalls] = {};
  int64_t failures_ = 0;
};

int Main(const std::vector<std::string>& words) {
  const bool isEngine = !words.empty() && words[0] == "engine";
  if (words.size() != 1 || (!isEngine && words[0] != "services")) {
    (void)std::fprintf(stderr, "usage: call_sweep services|engine\n");
    return 2;
  }
  for (const int signal : {SIGALRM, SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL}) {
    (void)std::signal(signal, SayWhatWasTried);
  }
  const auto calls = isEngine ? vorlanepic::testing::EngineCalls(Extent::kNarrow)
                              : vorlanepic::testing::ServiceCalls(Extent::kNarrow);
  Sweep sweep;
  for (const DrawnCall& call : calls) sweep.Of(calls, call);
  const int exit = sweep.Finish(calls.size());
  // A sweep that lets nothing fail would pass.
  std::vector<Call> kinds = {Call::kMalloc, Call::kCalloc, Call::kRealloc, Call::kThread};
  if (!isEngine) kinds.insert(kinds.end(), {Call::kMap, Call::kOpen});
  for (const Call kind : kinds) {
    if (sweep.HasTried(kind)) continue;
    std::printf("no %s was made to fail\n", kCallNames[static_cast<int32_t>(kind)]);
    return 1;
  }
  return exit;
}

}  // namespace
}  // namespace vorlane::faults

int main(int argc, char** argv) {
  Imgbuf_KeepLimit(0);  // so that images ask the system for memory, which can be refused
  return vorlane::faults::Main(std::vector<std::string>(argv + 1, argv + argc));
}
