// What the search for a sheet's reference bar came to, in words for people.
#pragma once

#include <string>

#include "omr/bar_records.h"

namespace vorlane::services {

// Why the search ended without an angle, in words.
std::string BarFailureWords(const vorlanepic::omr::BarRecords& bar);

// The test that rejected a candidate, or "chosen".
const char* BarVerdictName(vorlanepic::omr::BarVerdict verdict);

}  // namespace vorlane::services
