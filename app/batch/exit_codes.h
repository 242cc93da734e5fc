// What the command's exit code says; the highest that applies counts. The numbers never change.
#pragma once

namespace vorlane::batch {

enum ExitCode : int {
  kExitAllDone = 0,    // every page has its answer, or was left as it is where that is no failure
  kExitPagesLeft = 1,  // a page was left as it is, with --strict; a measurement found nothing
  kExitUsage = 2,      // the request cannot be carried out; nothing was written
  kExitFiles = 3,      // some file or page could not be read or written
  kExitSignal = 128,   // and the signal's number: the run was stopped, 130 or 143
};

}  // namespace vorlane::batch
