// Takes the pages of many files one after the other.
#pragma once

#include <functional>
#include <string>

#include "app/batch/batch.h"

namespace vorlane::batch {

// Works on a page and prints what it finds; `overlay` is where its overlay goes, empty: nowhere.
using PageRun = std::function<void(const files::Page& page, const std::string& overlay)>;

// For commands whose output is too large to be kept until its turn comes. A file or page that
// cannot be read, and one for which `run` throws FileError, is told, and the others go on; when the
// standard output cannot be written the run ends. Returns an ExitCode; throws UsageError before
// anything is read.
int ForEachPage(const BatchRequest& request, const PageRun& run);

}  // namespace vorlane::batch
