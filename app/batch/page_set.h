// The pages of a file as one set that is turned and cut with the first one's geometry.
#pragma once

#include <functional>
#include <vector>

#include "app/batch/batch.h"

namespace vorlane::batch {

// Runs a service on all pages of a file at once. `results` holds as many empty records and receives
// the images; they are released by the caller, and empty when the service failed.
using SetService = std::function<judging::TurnOutcome(const std::vector<ImageRec>& pages,
                                                      std::vector<ImageRec>* results)>;

// Takes every input through `service` as one set; its pages must be alike in size and depth. A set
// whose first page fails or is doubtful is left as it is. Returns an ExitCode; throws UsageError
// before anything is written.
int RunPageSets(const BatchRequest& request, const SetService& service);

// Releases the images of a set and empties their records.
void ReleaseAll(std::vector<ImageRec>* images);

}  // namespace vorlane::batch
