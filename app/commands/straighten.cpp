// vorlane straighten: finds every page, turns it upright and cuts it out.
#include <memory>

#include "app/commands/commands.h"
#include "app/commands/engine_service.h"

namespace vorlane::commands {
namespace {

struct StraightenOptions {
  batch::BatchRequest batch;
  EngineOptions engine;
};

}  // namespace

CommandRun AddStraighten(CLI::App* app) {
  auto options = std::make_shared<StraightenOptions>();
  CLI::App* command = app->add_subcommand(
      "straighten", "Find the page in every picture, turn it upright and cut it out");
  AddBatchOptions(command, &options->batch);
  AddLookOptions(command, &options->engine);
  AddMakeOptions(command, &options->engine);
  command->footer(
      "Examples:\n"
      "  vorlane straighten scan.tif -o straight.tif --overlay found.png\n"
      "  vorlane straighten box/*.jpg -o out/ --by print --margin 2mm\n"
      "  vorlane straighten book.tif -o 'pages/{name}-{page}.png' --json\n"
      "The angle is the turn that was made, in degrees, clockwise positive. Under 0.05 degrees a\n"
      "page is cut only, and no pixel resampled.");
  return [options, command] {
    FinishRequest(*command, &options->batch);
    return batch::RunBatch(options->batch, MakeService(options->engine));
  };
}

}  // namespace vorlane::commands
