// What the command's exit code says; the worst of a run counts.
#pragma once

namespace vorlane::batch {

enum ExitCode : int {
  kExitAllDone = 0,
  kExitPagesLeft = 1,  // some page was not found or doubtful and was left as it is
  kExitUsage = 2,      // the request cannot be carried out; nothing was written
  kExitFiles = 3,      // some file could not be read or written
};

}  // namespace vorlane::batch
