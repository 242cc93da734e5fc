// The C headers' numbers under their names.
#include <cstdint>
#include <utility>

#include <pybind11/pybind11.h>

#include "core/rooms.h"
#include "vorlane/vorlane.h"

namespace vorlane::python {

void AddCodes(pybind11::module_& module) {
  const std::pair<const char*, int32_t> codes[] = {{"BAD_ARGUMENT", VORLANE_BAD_ARGUMENT},
                                                   {"BAD_IMAGE", VORLANE_BAD_IMAGE},
                                                   {"BAD_OPTION", VORLANE_BAD_OPTION},
                                                   {"BAD_FINDING", VORLANE_BAD_FINDING},
                                                   {"TOO_LARGE", VORLANE_TOO_LARGE},
                                                   {"TURN_TOO_LARGE", VORLANE_TURN_TOO_LARGE},
                                                   {"RESULT_TOO_LARGE", VORLANE_RESULT_TOO_LARGE},
                                                   {"NOT_CONFIDENT", VORLANE_NOT_CONFIDENT},
                                                   {"NO_MEMORY", VORLANE_NO_MEMORY},
                                                   {"INTERNAL", VORLANE_INTERNAL},
                                                   {"BIT_LIGHT", VORLANE_BIT_LIGHT},
                                                   {"BIT_DARK", VORLANE_BIT_DARK},
                                                   {"GREY8", VORLANE_GREY8},
                                                   {"BGR24", VORLANE_BGR24},
                                                   {"RGB24", VORLANE_RGB24},
                                                   {"BGRX32", VORLANE_BGRX32},
                                                   {"RGBX32", VORLANE_RGBX32},
                                                   {"REFUSED", VORLANE_REFUSED},
                                                   {"DOUBTFUL", VORLANE_DOUBTFUL},
                                                   {"LIKELY", VORLANE_LIKELY},
                                                   {"SURE", VORLANE_SURE},
                                                   {"NOT_LOOKED_AT", VORLANE_NOT_LOOKED_AT},
                                                   {"UNSEEN", VORLANE_UNSEEN},
                                                   {"BELIEVED", VORLANE_BELIEVED},
                                                   {"DISAGREES", VORLANE_DISAGREES},
                                                   {"TOO_WEAK", VORLANE_TOO_WEAK},
                                                   {"FRAME", VORLANE_FRAME},
                                                   {"BY_AUTO", VORLANE_BY_AUTO},
                                                   {"BY_PAPER", VORLANE_BY_PAPER},
                                                   {"BY_PRINT", VORLANE_BY_PRINT},
                                                   {"BY_BAR", VORLANE_BY_BAR},
                                                   {"CROP_PAPER", VORLANE_CROP_PAPER},
                                                   {"CROP_CONTENT", VORLANE_CROP_CONTENT},
                                                   {"CROP_NONE", VORLANE_CROP_NONE},
                                                   {"NEAREST", VORLANE_NEAREST},
                                                   {"BILINEAR", VORLANE_BILINEAR},
                                                   {"BICUBIC", VORLANE_BICUBIC}};
  for (const auto& [name, code] : codes) module.attr(name) = code;
}

}  // namespace vorlane::python
