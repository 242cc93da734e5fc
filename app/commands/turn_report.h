// What a turning service found, as the batch reports it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/batch/page_outcome.h"
#include "app/judge/turn_outcome.h"

namespace vorlane::commands {

// Runs a service on one page and judges it.
using TurnService = std::function<judging::TurnOutcome(const files::Page& page)>;

struct TurnReport {
  bool acceptsDoubtful = false;
  bool makesPages = true;  // false: the angle alone is wanted
};

// The service for the batch. Its calls take turns, as they share the process-wide settings.
batch::PageService ServiceOf(const TurnReport& report, const TurnService& service);

// Takes the outcome's picture along; `page` is what it was made of.
batch::PageOutcome OutcomeOf(const TurnReport& report, const files::Page& page,
                             const std::shared_ptr<judging::TurnOutcome>& outcome);

}  // namespace vorlane::commands
