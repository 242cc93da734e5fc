// vorlane apply: makes the pages that a report decides on, without looking at them again.
#include <cstdio>
#include <memory>
#include <string>

#include "app/batch/decisions.h"
#include "app/batch/printable_name.h"
#include "app/batch/sha256.h"
#include "app/commands/commands.h"
#include "app/commands/engine_service.h"
#include "app/commands/page_facts.h"
#include "app/commands/run_options.h"

namespace vorlane::commands {
namespace {

struct ApplyOptions {
  batch::BatchRequest batch;
  EngineOptions engine;
  std::string report;
  std::string decisions;  // empty: none besides the report's
};

PageDecision DecisionOf(const batch::Decision& read) {
  PageDecision decision;
  decision.turn = read.angle;
  if (!read.corners) return decision;
  decision.corners.emplace();
  for (size_t i = 0; i < read.corners->size(); ++i) {
    (*decision.corners)[i] = {(*read.corners)[i].x, (*read.corners)[i].y};
  }
  return decision;
}

batch::PageOutcome Leave(const files::Page& page, const batch::Decision& decision) {
  batch::PageOutcome outcome;
  outcome.fate = batch::PageFate::kLeft;
  outcome.words = "left as the report says";
  outcome.facts = PictureFacts(page);
  outcome.facts["confidence"] = decision.confidence;
  return outcome;
}

int RunApply(ApplyOptions* options, const CLI::App& command) {
  const auto decisions = std::make_shared<const batch::Decisions>(
      batch::ReadDecisions(options->report, options->decisions));
  for (const std::string& name : decisions->torn) {
    (void)std::fprintf(stderr, "vorlane: %s: its last line is torn and is left out\n",
                       batch::Printable(name).c_str());
  }
  options->batch.inputs.listed = decisions->files;
  FinishRequest(command, &options->batch);
  // An edited report decides other pages.
  options->batch.options = batch::Sha256Of(options->batch.options + decisions->digest);
  const auto engine = std::make_shared<finding::PageEngine>();
  return batch::RunBatch(options->batch, [=](const files::Page& page) {
    const batch::Decision& decision = decisions->pages.at(page.file).at(page.number);
    if (!decision.isApplied) return Leave(page, decision);
    batch::PageOutcome outcome;
    const double milliseconds = Timed(
        [&] { outcome = MakeDecided(engine.get(), page, DecisionOf(decision), options->engine); });
    outcome.milliseconds = milliseconds;
    return outcome;
  });
}

}  // namespace

CommandRun AddApply(CLI::App* app) {
  auto options = std::make_shared<ApplyOptions>();
  CLI::App* command = app->add_subcommand(
      "apply", "Make the pages that a report decides on, without looking at them again");
  command
      ->add_option(
          "REPORT", options->report,
          "JSON lines of detect or straighten, or a journal, edited or not: angle, corners "
          "and \"decision\": \"apply\" or \"leave\" count; - for the standard input")
      ->required();
  command
      ->add_option("--decisions", options->decisions,
                   "JSON lines about some of the report's pages, as the review page saves them: "
                   "what they say counts instead; - for the standard input")
      ->type_name("FILE");
  AddOutputOptions(command, &options->batch);
  AddRunOptions(command, &options->batch);
  AddUnsureOverlayOption(command, &options->batch);
  AddJournalOptions(command, &options->batch);
  AddResultOptions(command, &options->engine);
  command->footer(
      "Without a decision a sure or likely finding is applied and every other page left. An input\n"
      "that changed since the report is named and not touched.\n"
      "Example:\n"
      "  vorlane detect box/ --json > found.jsonl   # look, edit\n"
      "  vorlane apply found.jsonl -o out/\n"
      "  vorlane apply found.jsonl --decisions found.decisions.jsonl -o out/");
  return [options, command] { return RunApply(options.get(), *command); };
}

}  // namespace vorlane::commands
