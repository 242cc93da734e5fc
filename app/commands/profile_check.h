// Holds a profile against what the services read of it. They themselves pass over what they do not
// know and take the default, as is documented; a person who named the profile is told.
#pragma once

#include <string>

namespace vorlane::commands {

// Throws UsageError, which names the line and the key or section, unless the profile can be read
// and says nothing that would be passed over: a key or section that there is not, one that stands
// twice, a value that is no number or out of its range, a line of none of these.
void CheckProfile(const std::string& path);

}  // namespace vorlane::commands
