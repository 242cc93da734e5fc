// Runs a service over the pages of many files.
#pragma once

#include <cstdint>
#include <string>

#include "app/batch/input_list.h"
#include "app/batch/output_check.h"
#include "app/batch/page_outcome.h"
#include "app/batch/reporter.h"
#include "app/files/page.h"

namespace vorlane::batch {

// Where files are decoded.
enum class Sandbox {
  kAuto,  // as kOn where the kernel allows it, else as kOff
  kOn,    // in processes that may do nothing else
  kOff,   // in this one
};

struct BatchRequest {
  std::string command;  // as the user typed it
  InputRequest inputs;
  std::string output;            // file, folder or pattern, "-"; empty: nothing is written
  std::string overlay;           // likewise, without "-"
  int32_t rotate = 0;            // quarters that every page is turned by first, degrees clockwise
  bool drawsUnsureOnly = false;  // overlays of pages that are left as they are alone
  std::string unsure = "copy";   // what becomes of pages left as they are: copy, skip or a folder
  Overwriting overwriting;
  ReportRequest report;
  bool isStrict = false;    // a page that is left as it is counts against the exit code
  int32_t jpegQuality = 0;  // 1..100; 0: as the page had it
  int32_t jobs = 0;         // threads; 0: as many as there are processors
  int64_t memory = 0;       // bytes for pages in flight; 0: DefaultMemory
  files::ReadLimits limits;
  Sandbox sandbox = Sandbox::kAuto;
  std::string journal;  // empty: none
  bool resumes = false;
  std::string options;  // SHA-256 of all that decides what is written
  std::string version;
};

// Takes every page of every input through the service, writes what was straightened and the
// overlays, copies what is left as it is, and reports a line a page. What is written and what is
// reported does not depend on the number of threads. Called while the process has one thread.
// Returns an ExitCode; throws UsageError before anything is written.
int RunBatch(const BatchRequest& request, const PageService& service);

// The same with all pages of a file at once; its pages must be alike in size and depth.
int RunPageSets(const BatchRequest& request, const SetService& service);

}  // namespace vorlane::batch
