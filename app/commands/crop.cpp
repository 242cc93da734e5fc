// vorlane crop and vorlane angle: deskew and crop by parameters or profile.
#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "app/commands/commands.h"
#include "app/commands/deskew_options.h"
#include "app/commands/fill_colour.h"
#include "app/commands/profile_check.h"
#include "app/services/page_geometry.h"
#include "app/services/service_runs.h"
#include "app/services/threshold_choice.h"
#include "app/services/verdict.h"
#include "frame/trigonometry.h"

namespace vorlane::commands {
namespace {

struct CropOptions {
  batch::BatchRequest batch;
  TurnReport report;
  ThresholdOptions threshold;
  DeskewOptions deskew;
  int32_t interpolation = INTERP_BICUBIC;
  int32_t corner = 0;
  FillColour fill;
  bool oneGeometry = false;
};

void ReleaseAll(std::vector<ImageRec>* images) {
  for (ImageRec& image : *images) {
    if (image.pixels != nullptr) Imgbuf_Destory(&image);
    image = ImageRec{};
  }
}

services::TurnOutcome NewOutcome(const vorlane_finding& found) {
  services::TurnOutcome outcome;
  outcome.finding = found;
  outcome.page = std::make_unique<vorlanepic::deskew::PageRecords>();
  return outcome;
}

void FinishOutcome(int32_t method, double angle, const ImageRec& image,
                   services::TurnOutcome* outcome) {
  outcome->kind = method == 2 ? services::TurnKind::kBorderVote : services::TurnKind::kPruned;
  outcome->threshold = outcome->page->threshold;
  if (outcome->status != STATUS_OK) return;
  outcome->degrees =
      services::NormalDegrees(method == 2 ? angle : angle * vorlanepic::frame::kDegreesPerRadian);
  outcome->verdict = services::VerdictOn(*outcome, image);
}

// Runs the pages, exposures of one page, with the first one's geometry. `results` has as many empty
// records and receives the images, which the caller releases.
services::TurnOutcome CropSet(const CropOptions& options, const std::vector<ImageRec>& pages,
                              const vorlane_finding& found, int32_t threshold,
                              std::vector<ImageRec>* results) {
  services::TurnOutcome outcome = NewOutcome(found);
  const DeskewCropParam param = ParamOf(options.deskew);
  const std::array<uint8_t, 3> fill = FillBytes(options.fill, pages[0].bitsPerPixel);
  double angle = 0;
  outcome.status = services::RunCrop(
      pages, {options.interpolation, threshold, options.corner, fill.data(), param, false}, &angle,
      results->data(), outcome.page.get());
  if (outcome.status != STATUS_OK) ReleaseAll(results);
  FinishOutcome(MethodOf(options.deskew), angle, pages[0], &outcome);
  return outcome;
}

services::TurnOutcome CropPage(const CropOptions& options, const ImageRec& image,
                               const vorlane_finding& found, int32_t threshold) {
  std::vector<ImageRec> results(1);
  services::TurnOutcome outcome = CropSet(options, {image}, found, threshold, &results);
  *outcome.result.rec() = results[0];
  return outcome;
}

services::TurnOutcome MeasureAngle(const CropOptions& options, const ImageRec& image,
                                   const vorlane_finding& found, int32_t threshold) {
  services::TurnOutcome outcome = NewOutcome(found);
  const std::array<uint8_t, 3> fill{};
  ImageRec none{};
  double angle = 0;
  outcome.status =
      services::RunCrop(std::span(&image, 1),
                        {INTERP_BILINEAR, threshold, 0, fill.data(), ParamOf(options.deskew), true},
                        &angle, &none, outcome.page.get());
  FinishOutcome(MethodOf(options.deskew), angle, image, &outcome);
  return outcome;
}

int32_t Preferred(const CropOptions& options, const ImageRec& image) {
  return MethodOf(options.deskew) == 2 ? services::PageThreshold(image) : 0;
}

void AddCropSettings(CLI::App* command, const std::shared_ptr<CropOptions>& options) {
  AddThresholdOptions(command, &options->threshold);
  AddDeskewOptions(command, &options->deskew);
}

// Checked before any page is touched.
void CheckOptions(const CropOptions& options) {
  if (!options.deskew.profile.empty()) CheckProfile(options.deskew.profile);
  if (options.corner != 0 && MethodOf(options.deskew) != 1) {
    throw files::UsageError(
        "--corner moves the borders of method 1; those of method 3 lie through the page's "
        "outermost points and stay there, and method 2 cuts to the content");
  }
}

// The pages of a file with the first one's geometry: one outcome, told of each with its own
// picture.
std::vector<batch::PageOutcome> CropTogether(const CropOptions& options,
                                             finding::PageEngine* engine,
                                             const std::vector<files::Page>& pages) {
  const ImageRec& first = *pages[0].image.rec();
  std::vector<ImageRec> records;
  for (const files::Page& page : pages) {
    const ImageRec& image = *page.image.rec();
    if (image.width != first.width || image.height != first.height ||
        image.bitsPerPixel != first.bitsPerPixel) {
      throw files::FileError(page.file + ": page " + std::to_string(page.number) +
                             " differs from the first in size or depth; run it without "
                             "--one-geometry");
    }
    records.push_back(image);
  }
  const int32_t given = options.threshold.threshold;
  std::vector<ImageRec> results(pages.size());
  const auto outcome = std::make_shared<services::TurnOutcome>(
      CropSet(options, records, FindingFor(engine, options.report, first),
              given >= 0 ? given : Preferred(options, first), &results));
  std::vector<batch::PageOutcome> outcomes;
  for (size_t i = 0; i < pages.size(); ++i) {
    *outcome->result.rec() = std::exchange(results[i], ImageRec{});
    outcomes.push_back(OutcomeOf(options.report, pages[i], outcome));
    (void)outcome->result.Release();
  }
  return outcomes;
}

using CropCall = services::TurnOutcome (*)(const CropOptions&, const ImageRec&,
                                           const vorlane_finding&, int32_t threshold);

// The service for single pages, over `call`.
batch::PageService SingleService(const std::shared_ptr<CropOptions>& options, CropCall call) {
  return ServiceOf(
      options->report, [options, call](const files::Page& page, const vorlane_finding& found) {
        const ImageRec& image = *page.image.rec();
        return RunThresholds(options->threshold, Preferred(*options, image), image,
                             [&](int32_t level) { return call(*options, image, found, level); });
      });
}

int RunCrop(const std::shared_ptr<CropOptions>& options) {
  CheckOptions(*options);
  if (!options->oneGeometry) {
    return batch::RunBatch(options->batch, SingleService(options, CropPage));
  }
  finding::PageEngine engine;
  return batch::RunPageSets(options->batch, [&](const std::vector<files::Page>& pages) {
    return CropTogether(*options, &engine, pages);
  });
}

}  // namespace

CommandRun AddCrop(CLI::App* app) {
  auto options = std::make_shared<CropOptions>();
  CLI::App* command =
      app->add_subcommand("crop", "Deskew and crop by a chosen method, settings or a profile");
  AddBatchOptions(command, &options->batch);
  AddDoubtfulOption(command, &options->report);
  AddInterpolationOption(command, &options->interpolation);
  AddCropSettings(command, options);
  command
      ->add_option("--corner", options->corner,
                   "Method 1: move every border outwards by twice this many pixels")
      ->check(CLI::Range(-1000, 1000))
      ->capture_default_str();
  AddFillOption(command, &options->fill, kContentFill);
  command->add_flag("--one-geometry", options->oneGeometry,
                    "Pages of a TIFF are exposures of one page: measure the first, turn and cut "
                    "all alike");
  command->footer(
      "Examples:\n"
      "  vorlane crop scan.png -o cut.png --method 2 --overlay votes.png\n"
      "  vorlane crop box/*.tif -o out/ --profile sample-profile.ini\n"
      "  vorlane crop exposures.tif -o cut.tif --one-geometry\n"
      "The angle is the turn that was made, in degrees, clockwise positive.");
  return [options, command] {
    FinishRequest(*command, &options->batch);
    return RunCrop(options);
  };
}

CommandRun AddAngle(CLI::App* app) {
  auto options = std::make_shared<CropOptions>();
  CLI::App* command =
      app->add_subcommand("angle", "Measure the turn that crop would make; no page is written");
  AddMeasureOptions(command, &options->batch);
  AddUnsureOverlayOption(command, &options->batch);
  AddJournalOptions(command, &options->batch);
  AddCropSettings(command, options);
  command->footer(
      "Examples:\n"
      "  vorlane angle scan.tif --method 1\n"
      "  vorlane angle box/*.png --json");
  return [options, command] {
    FinishRequest(*command, &options->batch);
    options->report.makesPages = false;
    CheckOptions(*options);
    return batch::RunBatch(options->batch, SingleService(options, MeasureAngle));
  };
}

}  // namespace vorlane::commands
