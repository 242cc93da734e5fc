// Runs a service over the pages of many files.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/files/output_plan.h"
#include "app/files/page.h"
#include "app/files/picture_writer.h"
#include "app/files/pix_owner.h"
#include "app/judge/turn_outcome.h"

namespace vorlane::batch {

struct BatchRequest {
  std::string command;  // as the user typed it
  std::vector<std::string> inputs;
  std::string output;  // file, folder or pattern; empty: nothing is written
  std::string overlay;
  files::Overwriting overwriting;
  bool json = false;
  bool acceptDoubtful = false;
  int32_t jpegQuality = 0;  // 0: as the input had it
};

// Measures or straightens one page; the verdict is part of the outcome.
using PageService = std::function<judging::TurnOutcome(const files::Page&)>;

// Takes every page of every input through `service`, writes what was straightened and the overlays,
// and prints a line a page. A page that fails or is doubtful is left as it is: it gets no file of
// its own, and stands unchanged in a file of several pages. Returns an ExitCode; throws UsageError
// before anything is written.
int RunBatch(const BatchRequest& request, const PageService& service);

// Plans the batch and takes every input through `run`, which returns an ExitCode; a file that
// cannot be read or written is told, and the others go on. Returns the worst.
int ForEachFile(const BatchRequest& request,
                const std::function<int(const files::PlannedInput& input)>& run);

// The inputs with their page counts and the files that their pages go to; throws UsageError unless
// every output of `request` can be written as asked. Makes the folders that are named with a
// closing slash.
std::vector<files::PlannedInput> PlanBatch(const BatchRequest& request);

// Reads the pages of a planned input one after the other into `run`. Throws FileError, also when
// the file has another number of pages than when it was planned.
void ForEachPage(const files::PlannedInput& input,
                 const std::function<void(const files::Page&)>& run);

// Writes the picture that `draw` makes to the page's overlay file. Returns the file's name, empty
// when no overlay is wanted; throws FileError.
std::string WriteOverlay(const BatchRequest& request, const files::PlannedInput& input,
                         const files::Page& page, const std::function<files::PixPtr()>& draw);

// Where a page of a run went.
struct PageWay {
  bool isTrusted = false;          // good enough to be written
  bool keptAsItWas = false;        // it went to its file unchanged
  std::string output;              // empty: nowhere
  std::vector<std::string> notes;  // what writing it could not keep
};

// Writes the page's overlay and prints its line.
void ReportPage(const BatchRequest& request, const files::PlannedInput& input,
                const files::Page& page, const judging::TurnOutcome& outcome, const PageWay& way);

// Whether the files of a run may replace others.
files::Replacing ReplacingOf(const BatchRequest& request);

// What `encode` makes; what it cannot encode is told with the name of the file that it is for.
files::EncodedPage Encode(const std::string& path,
                          const std::function<files::EncodedPage()>& encode);

// Whether an outcome is good enough to be written.
bool IsTrusted(const BatchRequest& request, const judging::TurnOutcome& outcome);

}  // namespace vorlane::batch
