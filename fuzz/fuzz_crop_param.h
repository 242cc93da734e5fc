// Parameter records and profiles for the services from fuzz input.
#pragma once

#include <string_view>

#include "fuzz_input.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::fuzz {

// Fields mostly in their ranges. The path is null, that of no file, or `profile`.
DeskewCropParam ReadCropParam(FuzzInput& input, const char* profile);

// The path of a file of exactly these bytes, in memory, until the next call.
const char* PutProfile(std::string_view bytes);

// The corner option: small, or so large that no image can have its size.
int32_t ReadCornerOption(FuzzInput& input);

}  // namespace vorlanepic::fuzz
