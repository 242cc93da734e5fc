// Pages through the page engine, as the batch takes them.
#pragma once

#include <array>
#include <memory>
#include <optional>

#include "app/batch/page_outcome.h"
#include "app/commands/engine_options.h"
#include "app/finding/page_engine.h"

namespace vorlane::commands {

// Looks at pages and makes none.
batch::PageService LookService(const EngineOptions& options);

// Looks at pages and makes those that are sure enough.
batch::PageService MakeService(const EngineOptions& options);

// What is to become of a page, by a person or a program that looked at a finding.
struct PageDecision {
  double turn = 0.0;                                    // degrees, clockwise; -180..180
  std::optional<std::array<vorlane_point, 4>> corners;  // none: the page is kept whole
};

// Makes the page that was decided on, without looking at it. Throws FileError where that cannot be:
// the words name the number that is out of range.
batch::PageOutcome MakeDecided(finding::PageEngine* engine, const files::Page& page,
                               const PageDecision& decision, const EngineOptions& options);

}  // namespace vorlane::commands
