// What a command asks of the page engine.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/commands/fill_colour.h"
#include "app/files/page.h"
#include "vorlane/vorlane.h"

namespace vorlane::commands {

// What is kept around the cut; negative trims.
struct Margin {
  double value = 0.0;
  bool isMillimetres = false;
};

struct EngineOptions {
  EngineOptions();

  vorlane_detect_options detect;
  vorlane_apply_options make;
  Margin margin;
  int32_t dpi = 0;  // 0: what the file says
  FillColour fill{255, 255, 255};
};

// --by, --crop, --margin, --max-angle, --form, --no-mount and --dpi: how a page is looked at.
void AddLookOptions(CLI::App* app, EngineOptions* options);

// --min-confidence, and what AddResultOptions adds: which pages are made, and how.
void AddMakeOptions(CLI::App* app, EngineOptions* options);

// --interpolation and --fill.
void AddResultOptions(CLI::App* app, EngineOptions* options);

// The options for one page: a margin in millimetres depends on its resolution. Tells in `notes`
// what had to be assumed.
vorlane_detect_options LookOptionsFor(const EngineOptions& options, const files::Page& page,
                                      std::vector<std::string>* notes);

// The options with the fill in its place.
vorlane_apply_options MakeOptionsOf(const EngineOptions& options);

}  // namespace vorlane::commands
