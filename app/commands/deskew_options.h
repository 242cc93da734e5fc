// The options of deskew and crop: the parameter record, or a profile.
#pragma once

#include <cstdint>
#include <string>

#include <CLI/CLI.hpp>

#include "vorlanepic/vorlanepic.h"

namespace vorlane::commands {

// Defaults are those that a profile without the key gives.
struct DeskewOptions {
  int32_t method = 2;
  std::string profile;
  DeskewCropParam param = {nullptr, 0, 2, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 8, 2.0};
};

// --method, --profile and an option for each field of the record.
void AddDeskewOptions(CLI::App* app, DeskewOptions* options);

// --search-limit, --pixel-count, --crop-pixel-count and --profile only.
void AddContentOptions(CLI::App* app, DeskewOptions* options);

// The record that the options describe; it points into them.
DeskewCropParam ParamOf(const DeskewOptions& options);

// 1, 2 or 3: the method that a call with these options runs.
int32_t MethodOf(const DeskewOptions& options);

}  // namespace vorlane::commands
