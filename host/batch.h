// Runs a service over the pages of many files.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/output_plan.h"
#include "host/page.h"
#include "host/turn_outcome.h"

namespace vorlanepic::host {

struct BatchRequest {
  std::string command;  // as the user typed it
  std::vector<std::string> inputs;
  std::string output;  // file, folder or pattern; empty: nothing is written
  std::string overlay;
  Overwriting overwriting;
  bool json = false;
  bool acceptDoubtful = false;
  int32_t jpegQuality = 92;
};

// Measures or straightens one page; the verdict is part of the outcome.
using PageService = std::function<TurnOutcome(const Page&)>;

// Takes every page of every input through `service`, writes what was straightened and the overlays,
// and prints a line a page. A page that fails or is doubtful is left as it is: it gets no file of
// its own, and stands unchanged in a file of several pages. Returns an ExitCode; throws UsageError
// before anything is written.
int RunBatch(const BatchRequest& request, const PageService& service);

// Plans the batch and takes every input through `run`, which returns an ExitCode; a file that
// cannot be read or written is told, and the others go on. Returns the worst.
int ForEachFile(const BatchRequest& request, const std::string& command,
                const std::function<int(const std::string& input)>& run);

// The inputs with their page counts; throws UsageError unless every output of `request` can be
// written as asked. Makes the folders that are named with a closing slash.
std::vector<PlannedInput> PlanBatch(const BatchRequest& request);

// Reports one page and writes its overlay. Returns an ExitCode.
class PageReporter {
 public:
  explicit PageReporter(const BatchRequest& request) : request_(request) {}
  void WriteOverlay(const Page& page, const TurnOutcome& outcome, std::string* path) const;
  void Print(const Page& page, const TurnOutcome& outcome, bool isWritten, bool keptAsItWas,
             const std::string& output) const;

 private:
  const BatchRequest& request_;
};

// Whether an outcome is good enough to be written.
bool IsTrusted(const BatchRequest& request, const TurnOutcome& outcome);

}  // namespace vorlanepic::host
