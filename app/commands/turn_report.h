// What a turning service found, as the batch reports it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/batch/page_outcome.h"
#include "app/finding/page_engine.h"
#include "app/services/turn_outcome.h"

namespace vorlane::commands {

// Runs a service on one page and judges it by what the page engine found there.
using TurnService =
    std::function<services::TurnOutcome(const files::Page& page, const vorlane_finding& found)>;

struct TurnReport {
  bool acceptsDoubtful = false;
  bool makesPages = true;  // false: the angle alone is wanted
  bool isForm = false;     // the pages carry a reference bar
};

// The page engine's finding that a service's result on this page is held against; one without an
// answer where the engine does not take the page.
vorlane_finding FindingFor(finding::PageEngine* engine, const TurnReport& report,
                           const ImageRec& image);

// The service for the batch.
batch::PageService ServiceOf(const TurnReport& report, const TurnService& service);

// Takes the outcome's picture along; `page` is what it was made of.
batch::PageOutcome OutcomeOf(const TurnReport& report, const files::Page& page,
                             const std::shared_ptr<services::TurnOutcome>& outcome);

}  // namespace vorlane::commands
