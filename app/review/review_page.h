// The review page: one HTML file, which takes nothing from anywhere but the pictures beside it.
#pragma once

#include <string>
#include <vector>

#include "app/review/journal_pages.h"

namespace vorlane::review {

// The page about these pages, of which `isPictured` tells which have pictures. `journal` is the
// journal's name: decisions that a browser keeps belong to the file of that name.
std::string ReviewPage(const std::string& journal, const JournalPages& pages,
                       const std::vector<char>& isPictured);

}  // namespace vorlane::review
