// Helps with misspelt commands.
#pragma once

#include <string>
#include <vector>

namespace vorlane::commands {

// The name that `word` was most likely meant to be: at most two letters are wrong, missing, too
// many or have changed places; empty when there is none.
std::string NearestName(const std::string& word, const std::vector<std::string>& names);

}  // namespace vorlane::commands
