// vorlane form: line-guided deskew of forms with a reference bar.
#include <memory>

#include "app/commands/commands.h"
#include "app/commands/deskew_options.h"
#include "app/commands/dib_image.h"
#include "app/commands/fill_colour.h"
#include "app/commands/profile_check.h"
#include "app/services/page_geometry.h"
#include "app/services/service_runs.h"
#include "app/services/threshold_choice.h"
#include "app/services/verdict.h"

namespace vorlane::commands {
namespace {

struct FormOptions {
  batch::BatchRequest batch;
  TurnReport report;
  DeskewOptions deskew;
  int32_t threshold = -1;
  int32_t dpi = 0;
  int32_t interpolation = INTERP_BICUBIC;
  FillColour fill;
};

services::TurnOutcome StraightenForm(const FormOptions& options, const files::Page& page,
                                     const vorlane_finding& found) {
  const ImageRec& image = *page.image.rec();
  services::TurnOutcome outcome;
  outcome.finding = found;
  outcome.kind = services::TurnKind::kBar;
  // The rows stand bottom first: what is measured on them is mirrored.
  outcome.isFlipped = true;
  outcome.page = std::make_unique<vorlanepic::deskew::PageRecords>();
  outcome.bar = std::make_unique<vorlanepic::omr::BarRecords>();
  outcome.threshold = options.threshold >= 0 ? options.threshold : services::SplitLevel(image);

  ScratchDib source;
  outcome.status =
      MakeDib(image, options.dpi > 0 ? options.dpi : page.Dpi(), RowOrder::kBottomFirst, &source);
  if (outcome.status != STATUS_OK) return outcome;
  ScratchDib result;
  const DeskewCropParam param = ParamOf(options.deskew);
  const std::array<uint8_t, 3> fill = FillBytes(options.fill, image.bitsPerPixel);
  double degrees = 0;
  outcome.status =
      services::RunForm(*source.rec(), {options.interpolation, outcome.threshold, fill.data()},
                        param, &degrees, result.rec(), outcome.page.get(), outcome.bar.get());
  if (outcome.status == STATUS_OK) {
    outcome.status = FromDib(result.rec(), RowOrder::kBottomFirst, &outcome.result);
  }
  if (outcome.status != STATUS_OK) return outcome;
  outcome.degrees = services::NormalDegrees(-degrees);
  outcome.verdict = services::VerdictOn(outcome, image);
  return outcome;
}

}  // namespace

CommandRun AddForm(CLI::App* app) {
  auto options = std::make_shared<FormOptions>();
  CLI::App* command = app->add_subcommand(
      "form", "Straighten and crop a form by its printed reference bar: one long, thin, solid bar");
  AddBatchOptions(command, &options->batch);
  AddDoubtfulOption(command, &options->report);
  AddInterpolationOption(command, &options->interpolation);
  AddBarPageOptions(command, &options->threshold, &options->dpi);
  AddContentOptions(command, &options->deskew);
  AddFillOption(command, &options->fill, kContentFill);
  command->footer(
      "The bar is at least 600 pixels long and 4 to 20 thick at 200 dpi, more at higher "
      "resolutions;\n"
      "a profile's section [ImageDeskewLine] can say otherwise.\n"
      "Examples:\n"
      "  vorlane form sheets.tif -o forms.tif --overlay found/\n"
      "  vorlane form photo.jpg -o form.png --dpi 150 --profile sample-profile.ini");
  return [options, command] {
    FinishRequest(*command, &options->batch);
    if (!options->deskew.profile.empty()) CheckProfile(options->deskew.profile);
    options->report.isForm = true;
    const auto service =
        ServiceOf(options->report, [&](const files::Page& page, const vorlane_finding& found) {
          return StraightenForm(*options, page, found);
        });
    return batch::RunBatch(options->batch, service);
  };
}

}  // namespace vorlane::commands
