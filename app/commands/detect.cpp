// vorlane detect: how pages lie in their pictures; writes no page.
#include <memory>

#include "app/commands/commands.h"
#include "app/commands/engine_service.h"

namespace vorlane::commands {
namespace {

struct DetectOptions {
  batch::BatchRequest batch;
  EngineOptions engine;
};

}  // namespace

CommandRun AddDetect(CLI::App* app) {
  auto options = std::make_shared<DetectOptions>();
  CLI::App* command = app->add_subcommand(
      "detect", "Tell how each page lies in its picture, how sure that is and why");
  AddMeasureOptions(command, &options->batch);
  AddUnsureOverlayOption(command, &options->batch);
  AddJournalOptions(command, &options->batch);
  AddLookOptions(command, &options->engine);
  command->footer(
      "Examples:\n"
      "  vorlane detect scan.tif --overlay found.png\n"
      "  vorlane detect box/*.jpg --json > found.jsonl\n"
      "The angle is the turn that sets the page upright, in degrees, clockwise positive.");
  return [options, command] {
    FinishRequest(*command, &options->batch);
    return batch::RunBatch(options->batch, LookService(options->engine));
  };
}

}  // namespace vorlane::commands
