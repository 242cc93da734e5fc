#include "host/record_scope.h"

#include "frame/settings.h"

namespace vorlanepic::host {

RecordScope::RecordScope(PageRecords* page, BarRecords* bar) {
  settings.pageRecords = page;
  settings.barRecords = bar;
}

RecordScope::~RecordScope() {
  settings.pageRecords = nullptr;
  settings.barRecords = nullptr;
}

// A straight page of border method 1 takes whole traces in the first arrangement and leaves the
// setting alone.
int32_t RecordScope::Arrangement(const PageRecords& page) {
  const bool isFixed = page.straightness == 0 && settings.BorderMethod == 1;
  return isFixed ? 1 : settings.EdgeArrangement;
}

}  // namespace vorlanepic::host
