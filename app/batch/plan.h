// Everything that is settled before the first page is read.
#pragma once

#include <string>

#include "app/batch/batch.h"
#include "app/batch/output_check.h"
#include "app/batch/output_names.h"
#include "app/batch/standard_streams.h"

namespace vorlane::batch {

struct Plan {
  explicit Plan(const BatchRequest& request);

  InputList inputs;
  PassingFolder passing;
  std::string standardInput;   // the file that holds it, for the input "-"
  std::string standardOutput;  // the file that goes there, for the output "-"
  OutputNames output;
  OutputNames overlay;
  std::string unsureFolder;  // for copies of pages left as they are; empty: beside the others
};

// Throws UsageError unless every name that is known before the inputs are opened can be written as
// asked. Makes the folders that are named.
void CheckPlan(const BatchRequest& request, const Plan& plan, OutputCheck* check);

}  // namespace vorlane::batch
