#include "app/judge/record_scope.h"

#include "frame/settings.h"

namespace vorlane::judging {

RecordScope::RecordScope(vorlanepic::deskew::PageRecords* page, vorlanepic::omr::BarRecords* bar) {
  vorlanepic::frame::settings.pageRecords = page;
  vorlanepic::frame::settings.barRecords = bar;
}

RecordScope::~RecordScope() {
  vorlanepic::frame::settings.pageRecords = nullptr;
  vorlanepic::frame::settings.barRecords = nullptr;
}

// A straight page of border method 1 takes whole traces in the first arrangement and leaves the
// setting alone.
int32_t RecordScope::Arrangement(const vorlanepic::deskew::PageRecords& page) {
  const bool isFixed = page.straightness == 0 && vorlanepic::frame::settings.BorderMethod == 1;
  return isFixed ? 1 : vorlanepic::frame::settings.EdgeArrangement;
}

}  // namespace vorlane::judging
