// Has the stages of the calls in a scope leave their records.
#pragma once

#include <cstdint>

#include "deskew/page_records.h"
#include "omr/bar_records.h"

namespace vorlane::judging {

class RecordScope {
 public:
  // Either may be null: those records are not kept. Both outlive the scope.
  RecordScope(vorlanepic::deskew::PageRecords* page, vorlanepic::omr::BarRecords* bar);
  RecordScope(const RecordScope&) = delete;
  RecordScope& operator=(const RecordScope&) = delete;
  ~RecordScope();

  // Which side each edge code names in a pruned rotation that just ran: 1 or 2.
  static int32_t Arrangement(const vorlanepic::deskew::PageRecords& page);
};

}  // namespace vorlane::judging
