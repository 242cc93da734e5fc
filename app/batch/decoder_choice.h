// Who decodes the files of a run.
#pragma once

#include <memory>

#include "app/batch/batch.h"
#include "app/files/decoders.h"

namespace vorlane::batch {

// Decoders behind walls, or null where this process is to decode: when that is asked for, or, with
// kAuto, where the kernel allows nothing else. Called while the process has one thread. Throws
// UsageError when it cannot be as asked.
std::unique_ptr<files::Decoders> DecodersFor(const BatchRequest& request);

}  // namespace vorlane::batch
