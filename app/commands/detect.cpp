// vorlane detect: how pages lie in their pictures; writes no page.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "app/batch/exit_codes.h"
#include "app/batch/report.h"
#include "app/commands/commands.h"
#include "app/finding/finding_facts.h"
#include "app/finding/page_engine.h"

namespace vorlane::commands {
namespace {

struct DetectCommand {
  batch::BatchRequest batch;
  finding::PageEngine engine;
};

const char* ResultName(const vorlane_finding& found) {
  if (found.turn_confidence >= VORLANE_LIKELY) return "measured";
  return found.turn_confidence == VORLANE_DOUBTFUL ? "doubtful" : "failed";
}

void Print(const batch::BatchRequest& request, const files::Page& page,
           const vorlane_finding& found, double milliseconds) {
  if (!request.json) {
    std::printf("%s: %s, %.1f ms\n", batch::NameOf(page).c_str(),
                finding::FindingWords(found).c_str(), milliseconds);
    return;
  }
  const ImageRec& image = *page.image.rec();
  nlohmann::ordered_json json = batch::JsonHead(request.command, page, ResultName(found));
  json["width"] = image.width;
  json["height"] = image.height;
  json["depth"] = image.bitsPerPixel;
  json["dpi"] = {page.xDpi, page.yDpi};
  json["milliseconds"] = milliseconds;
  json.update(finding::FactsOf(found));
  json["notes"] = page.notes;
  batch::PrintJson(json);
}

int RunPage(DetectCommand* command, const files::Page& page) {
  vorlane_finding found = finding::EmptyFinding();
  vorlane_status status = VORLANE_OK;
  const double milliseconds = Timed([&] {
    status = command->engine.Detect(*page.image.rec(), finding::DefaultDetectOptions(), &found);
  });
  if (status != VORLANE_OK) {
    batch::PrintFileError(command->batch.command, page.file,
                          batch::NameOf(page) + ": " + vorlane_status_text(status),
                          command->batch.json);
    return batch::kExitFiles;
  }
  Print(command->batch, page, found, milliseconds);
  return found.turn_confidence >= VORLANE_LIKELY ? batch::kExitAllDone : batch::kExitPagesLeft;
}

}  // namespace

CommandRun AddDetect(CLI::App* app) {
  auto command = std::make_shared<DetectCommand>();
  CLI::App* line = app->add_subcommand(
      "detect", "Tell how each page lies in its picture, how sure that is and why");
  AddMeasureOptions(line, &command->batch);
  return [command] {
    command->batch.command = "detect";
    return batch::ForEachFile(command->batch, [&](const files::PlannedInput& input) {
      int exit = batch::kExitAllDone;
      batch::ForEachPage(input, [&](const files::Page& page) {
        exit = std::max(exit, RunPage(command.get(), page));
      });
      return exit;
    });
  };
}

}  // namespace vorlane::commands
