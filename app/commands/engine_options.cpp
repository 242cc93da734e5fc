#include "app/commands/engine_options.h"

#include <charconv>
#include <optional>
#include <string_view>

#include "app/commands/run_options.h"
#include "app/finding/page_engine.h"

namespace vorlane::commands {
namespace {

// Margins in millimetres take this where neither file nor option tells the resolution.
constexpr int32_t kAssumedDpi = 300;
constexpr double kMillimetresPerInch = 25.4;

std::optional<Margin> ParseMargin(std::string_view text) {
  Margin margin;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), margin.value);
  if (error != std::errc{}) return std::nullopt;
  const std::string_view unit(end, static_cast<size_t>(text.data() + text.size() - end));
  margin.isMillimetres = unit == "mm";
  // False for what is no number.
  constexpr double kMost = int32_t{VORLANE_MAX_EDGE};
  const bool isWithin = margin.value >= -kMost && margin.value <= kMost;
  if (!isWithin || (!unit.empty() && unit != "px" && unit != "mm")) return std::nullopt;
  return margin;
}

void AddMarginOption(CLI::App* app, Margin* margin) {
  app->add_option_function<std::string>(
         "--margin", [margin](const std::string& text) { *margin = ParseMargin(text).value(); },
         "Kept around the cut: pixels, or millimetres as in 2mm; negative trims [0]")
      ->check(CLI::Validator(
          [](const std::string& text) {
            return ParseMargin(text) ? std::string() : "not pixels or millimetres (2mm): " + text;
          },
          "N[mm]"));
}

}  // namespace

EngineOptions::EngineOptions()
    : detect(finding::DefaultDetectOptions()), make(finding::DefaultApplyOptions()) {}

void AddLookOptions(CLI::App* app, EngineOptions* options) {
  vorlane_detect_options* detect = &options->detect;
  AddChoice(app, "--by", &detect->by,
            {{"auto", VORLANE_BY_AUTO},
             {"paper", VORLANE_BY_PAPER},
             {"print", VORLANE_BY_PRINT},
             {"bar", VORLANE_BY_BAR}},
            "What is to stand straight where they differ: paper, print, or a form's bar; auto: the "
            "paper where its sides agree and the print lies within 2 degrees of them [auto]");
  AddChoice(app, "--crop", &detect->crop,
            {{"paper", VORLANE_CROP_PAPER},
             {"content", VORLANE_CROP_CONTENT},
             {"none", VORLANE_CROP_NONE}},
            "What is kept: the paper, what is on it, or the whole picture [paper]");
  AddMarginOption(app, &options->margin);
  app->add_option("--max-angle", detect->max_turn,
                  "Degrees; a page that lies steeper is left as it is")
      ->check(CLI::Range(0.0, 45.0))
      ->capture_default_str();
  app->add_flag("--form", detect->is_form,
                "The pages are forms with a long printed bar: it speaks for the turn too");
  app->add_flag("--no-mount", detect->has_no_mount,
                "Nothing lies under the sheets: sides that agree are believed without a look at "
                "the print, which is faster");
  app->add_option("--dpi", options->dpi,
                  "Dots per inch for a margin in millimetres, instead of what the file says; 300 "
                  "when it says nothing")
      ->check(CLI::Range(1, 4800));
}

void AddResultOptions(CLI::App* app, EngineOptions* options) {
  AddChoice(
      app, "--interpolation", &options->make.interpolation,
      {{"bicubic", VORLANE_BICUBIC}, {"bilinear", VORLANE_BILINEAR}, {"nearest", VORLANE_NEAREST}},
      kInterpolationMeaning);
  AddFillOption(app, &options->fill, "white]");
}

void AddMakeOptions(CLI::App* app, EngineOptions* options) {
  AddChoice(app, "--min-confidence", &options->make.min_confidence,
            {{"sure", VORLANE_SURE}, {"likely", VORLANE_LIKELY}, {"doubtful", VORLANE_DOUBTFUL}},
            "Pages less sure than this are left as they are, cuts less sure are not made [likely]");
  app->add_flag_callback(
      "--accept-doubtful", [options] { options->make.min_confidence = VORLANE_DOUBTFUL; },
      "The same as --min-confidence doubtful");
  AddResultOptions(app, options);
}

vorlane_detect_options LookOptionsFor(const EngineOptions& options, const files::Page& page,
                                      std::vector<std::string>* notes) {
  vorlane_detect_options detect = options.detect;
  detect.margin = options.margin.value;
  if (!options.margin.isMillimetres) return detect;
  double dpi = options.dpi > 0 ? options.dpi : page.metadata.resolution.x;
  if (!(dpi > 0)) {
    dpi = kAssumedDpi;
    notes->push_back("the file tells no resolution, the margin is of 300 dots per inch");
  }
  detect.margin *= dpi / kMillimetresPerInch;
  return detect;
}

vorlane_apply_options MakeOptionsOf(const EngineOptions& options) {
  vorlane_apply_options make = options.make;
  make.fill[0] = options.fill.red;
  make.fill[1] = options.fill.green;
  make.fill[2] = options.fill.blue;
  return make;
}

}  // namespace vorlane::commands
