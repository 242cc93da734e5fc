#include "api/service_call.h"

namespace vorlanepic::api {
namespace {

frame::Lock oneAtATime;

}  // namespace

frame::Settings settings{};

ServiceCall::ServiceCall() : turn_(oneAtATime) {
  analysis::ExtremePoints& extremes = page_.extremes;
  extremes.leftSegments = {api::settings.LeftExtremeSegFirst, api::settings.LeftExtremeSegLast};
  extremes.rightSegments = {api::settings.RightExtremeSegFirst, api::settings.RightExtremeSegLast};
  extremes.topSegments = {api::settings.TopExtremeSegFirst, api::settings.TopExtremeSegLast};
  extremes.bottomSegments = {api::settings.BottomExtremeSegFirst,
                             api::settings.BottomExtremeSegLast};
}

ServiceCall::~ServiceCall() {
  const analysis::ExtremePoints& extremes = page_.extremes;
  frame::Settings& left = api::settings;
  left.LeftExtremeSegFirst = extremes.leftSegments.first;
  left.LeftExtremeSegLast = extremes.leftSegments.last;
  left.RightExtremeSegFirst = extremes.rightSegments.first;
  left.RightExtremeSegLast = extremes.rightSegments.last;
  left.TopExtremeSegFirst = extremes.topSegments.first;
  left.TopExtremeSegLast = extremes.topSegments.last;
  left.BottomExtremeSegFirst = extremes.bottomSegments.first;
  left.BottomExtremeSegLast = extremes.bottomSegments.last;
  if (page_.edgeOrigin.arrangement != analysis::Arrangement::kUndecided) {
    left.EdgeArrangement = static_cast<int32_t>(page_.edgeOrigin.arrangement);
  }
  if (page_.geometry.isPairUnfitted) left.ExtremeAnchorFlag = 1.0;
}

}  // namespace vorlanepic::api
