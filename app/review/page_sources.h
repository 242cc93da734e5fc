// The review page's sources, as they stand in the folder page/.
#pragma once

#include <string_view>

namespace vorlane::review {

extern const std::string_view kPageSource;    // HTML, with {{names}} where the rest goes
extern const std::string_view kStyleSource;   // CSS
extern const std::string_view kScriptSource;  // the modules, joined

}  // namespace vorlane::review
