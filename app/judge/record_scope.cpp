#include "app/judge/record_scope.h"

#include "frame/settings.h"

namespace vorlane::judging {

RecordScope::RecordScope(vorlanepic::PageRecords* page, vorlanepic::BarRecords* bar) {
  vorlanepic::settings.pageRecords = page;
  vorlanepic::settings.barRecords = bar;
}

RecordScope::~RecordScope() {
  vorlanepic::settings.pageRecords = nullptr;
  vorlanepic::settings.barRecords = nullptr;
}

// A straight page of border method 1 takes whole traces in the first arrangement and leaves the
// setting alone.
int32_t RecordScope::Arrangement(const vorlanepic::PageRecords& page) {
  const bool isFixed = page.straightness == 0 && vorlanepic::settings.BorderMethod == 1;
  return isFixed ? 1 : vorlanepic::settings.EdgeArrangement;
}

}  // namespace vorlane::judging
