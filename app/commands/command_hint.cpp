#include "app/commands/command_hint.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace vorlane::commands {
namespace {

constexpr size_t kMostSlips = 2;

// Damerau and Levenshtein's distance, for neighbours that change places once.
size_t Slips(const std::string& a, const std::string& b) {
  std::vector<std::vector<size_t>> slips(a.size() + 1, std::vector<size_t>(b.size() + 1));
  for (size_t i = 0; i <= a.size(); ++i) {
    for (size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        slips[i][j] = i + j;
        continue;
      }
      const size_t other = a[i - 1] == b[j - 1] ? 0 : 1;
      size_t best =
          std::min({slips[i - 1][j] + 1, slips[i][j - 1] + 1, slips[i - 1][j - 1] + other});
      const bool isSwapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isSwapped) best = std::min(best, slips[i - 2][j - 2] + 1);
      slips[i][j] = best;
    }
  }
  return slips[a.size()][b.size()];
}

}  // namespace

std::string NearestName(const std::string& word, const std::vector<std::string>& names) {
  std::pair<size_t, std::string> best{kMostSlips + 1, ""};
  for (const std::string& name : names) best = std::min(best, {Slips(word, name), name});
  return best.first <= kMostSlips ? best.second : "";
}

}  // namespace vorlane::commands
