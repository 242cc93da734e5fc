#include "app/commands/run_options.h"

#include <chrono>
#include <utility>

#include "app/batch/input_list.h"
#include "app/batch/sha256.h"
#include "app/services/threshold_choice.h"

namespace vorlane::commands {
namespace {

// Options of these groups do not change a page: a run may be resumed with others.
constexpr const char* kInputGroup = "Inputs";
constexpr const char* kRunGroup = "Run";

constexpr int32_t kMostJobs = 1024;

// Bytes as "500M": K, M and G are 1024 and its powers.
const CLI::AsSizeValue& AsBytes() {
  static const CLI::AsSizeValue kAsBytes(false);
  return kAsBytes;
}

std::string FileDigest(const std::string& path) { return batch::Sha256OfFile(path).sha256; }

batch::Sandbox SandboxOf(const std::string& word) {
  return word == "on"    ? batch::Sandbox::kOn
         : word == "off" ? batch::Sandbox::kOff
                         : batch::Sandbox::kAuto;
}

// Whether an option is one of those that say what becomes of a page.
bool DecidesPages(const CLI::Option& option) {
  return option.count() > 0 && option.get_group() != kInputGroup && option.get_group() != kRunGroup;
}

}  // namespace

void AddBatchOptions(CLI::App* app, batch::BatchRequest* request) {
  AddInputOptions(app, request);
  AddOutputOptions(app, request);
  AddRunOptions(app, request);
  AddUnsureOverlayOption(app, request);
  AddJournalOptions(app, request);
}

void AddUnsureOverlayOption(CLI::App* app, batch::BatchRequest* request) {
  app->add_option_function<std::string>(
         "--overlay-only",
         [request](const std::string& word) { request->drawsUnsureOnly = word == "unsure"; },
         "unsure: overlays of the pages that are left as they are, and of no others")
      ->check(CLI::IsMember({"unsure"}))
      ->needs(app->get_option("--overlay"))
      ->group(kRunGroup);
}

void AddOutputOptions(CLI::App* app, batch::BatchRequest* request) {
  app->add_option(
         "-o,--output", request->output,
         "File, folder, - for the standard output, or pattern with {name}, {ext}, {dir}, "
         "{page} and {page:04}. The extension chooses the format; a TIFF or PDF of several "
         "pages stays one; folders are mirrored under a folder")
      ->required()
      ->type_name("FILE")
      ->group(kInputGroup);
  app->add_option("--unsure", request->unsure,
                  "What is left as it is: copy it unchanged beside the others, skip it, or copy it "
                  "into a folder that is named [copy]")
      ->type_name("copy|skip|FOLDER");
  app->add_flag("--strict", request->isStrict, "A page that is left as it is makes the exit code 1")
      ->group(kRunGroup);
  app->add_option("--quality", request->jpegQuality,
                  "Quality of JPEG outputs [that of the input; 92 for others]")
      ->check(CLI::Range(1, 100));
}

void AddJournalOptions(CLI::App* app, batch::BatchRequest* request) {
  CLI::Option* journal =
      app->add_option("--journal", request->journal,
                      "Write a line of JSON for each page into this file once the page is on the "
                      "disk")
          ->type_name("FILE")
          ->group(kRunGroup);
  app->add_flag("--resume", request->resumes,
                "Go on with the journal: what it, the inputs and the options still bear out is not "
                "done again")
      ->needs(journal)
      ->group(kRunGroup);
}

void AddDoubtfulOption(CLI::App* app, TurnReport* report) {
  app->add_flag("--accept-doubtful", report->acceptsDoubtful,
                "Write doubtful results too; otherwise such a page is left as it is");
}

void AddMeasureOptions(CLI::App* app, batch::BatchRequest* request) {
  AddInputOptions(app, request);
  AddRunOptions(app, request);
}

void AddInputOptions(CLI::App* app, batch::BatchRequest* request) {
  batch::InputRequest* inputs = &request->inputs;
  app->add_option("INPUT", inputs->words,
                  "Image files: TIFF and scanned PDF (any number of pages), PNG, JPEG, BMP, PNM; "
                  "folders, searched with all below them; - for a picture on the standard input")
      ->group(kInputGroup);
  CLI::Option* list = app->add_option("--files-from", inputs->filesFrom,
                                      "Take the inputs' names from this file, one a line; - for "
                                      "the standard input")
                          ->type_name("FILE")
                          ->group(kInputGroup);
  app->add_flag("-0,--null", inputs->isNulSeparated, "Names in the list end with a zero byte")
      ->needs(list)
      ->group(kInputGroup);
  app->add_option_function<std::string>(
         "--shard", [inputs](const std::string& text) { inputs->shard = *batch::ParseShard(text); },
         "i/n: take the i-th of n shares of the inputs, the same ones at any time and place")
      ->check(CLI::Validator(
          [](const std::string& text) {
            return batch::ParseShard(text) ? std::string() : "not i/n with 1 <= i <= n: " + text;
          },
          "I/N"))
      ->group(kInputGroup);
  app->add_option("--max-pixels", request->limits.mostPixels,
                  "Refuse pages of more pixels, before they are decoded")
      ->check(CLI::PositiveNumber)
      ->group(kInputGroup)
      ->capture_default_str();
  app->add_option("--max-pages", request->limits.mostPages, "Refuse files of more pages")
      ->check(CLI::PositiveNumber)
      ->group(kInputGroup)
      ->capture_default_str();
  app->add_option("--rotate", request->rotate,
                  "Turn every page by 90, 180 or 270 degrees clockwise before anything else")
      ->check(CLI::IsMember({90, 180, 270}));
}

void AddRunOptions(CLI::App* app, batch::BatchRequest* request) {
  app->add_option("--overlay", request->overlay,
                  "Draw what was found over the page: a .png file, folder or pattern")
      ->type_name("FILE")
      ->group(kRunGroup);
  app->add_flag("--overwrite", request->overwriting.outputs, "Replace output files that exist")
      ->group(kRunGroup);
  app->add_flag("--overwrite-inputs", request->overwriting.inputs,
                "Let an output replace the input file itself")
      ->group(kRunGroup);
  AddWorkOptions(app, request);
  app->add_flag("--json", request->report.json, "One JSON object a line instead of text")
      ->group(kRunGroup);
}

void AddWorkOptions(CLI::App* app, batch::BatchRequest* request) {
  app->add_option("-j,--jobs", request->jobs, "Pages worked on at a time [one a processor]")
      ->check(CLI::Range(1, kMostJobs))
      ->group(kRunGroup);
  app->add_option("--memory", request->memory,
                  "Bytes for the pages in work, as in 500M [half of what is free, at most 2G]")
      ->transform(AsBytes())
      ->group(kRunGroup);
  app->add_option_function<std::string>(
         "--sandbox", [request](const std::string& word) { request->sandbox = SandboxOf(word); },
         "Decode in processes that can open nothing and take only so much memory and time: on, "
         "off, or auto: where the system allows it [auto]")
      ->check(CLI::IsMember({"auto", "on", "off"}))
      ->group(kRunGroup);
  app->add_flag("-q,--quiet", request->report.isQuiet,
                "Say nothing but errors, and JSON where it is asked for")
      ->group(kRunGroup);
  app->add_flag("-v,--verbose", request->report.isVerbose,
                "Say more on the error output: what decoders remark, what is passed over")
      ->group(kRunGroup);
}

void FinishRequest(const CLI::App& command, batch::BatchRequest* request) {
  request->command = command.get_name();
  request->version = VORLANE_VERSION;
  const batch::InputRequest& inputs = request->inputs;
  if (inputs.words.empty() && inputs.filesFrom.empty() && inputs.listed.empty()) {
    throw files::UsageError("name an input, or a list of them with --files-from");
  }
  if (request->resumes && request->overwriting.inputs) {
    throw files::UsageError(
        "--resume compares the inputs with the journal; it goes with no --overwrite-inputs");
  }
  std::string all = request->command + "\n";
  for (const CLI::Option* option : command.get_options()) {
    if (!DecidesPages(*option)) continue;
    all += option->get_name();
    for (const std::string& value : option->results()) all.append("=").append(value);
    if (option->get_name() == "--profile") all += "=" + FileDigest(option->results().front());
    all += "\n";
  }
  request->options = batch::Sha256Of(all);
}

void AddBarPageOptions(CLI::App* app, int32_t* threshold, int32_t* dpi) {
  app->add_option("--threshold", *threshold,
                  "Grey level: the bar is at or below it, paper above [where the picture's levels "
                  "part best]")
      ->check(CLI::Range(0, 255));
  app->add_option("--dpi", *dpi,
                  "Dots per inch, instead of what the file says; 200 when it says nothing")
      ->check(CLI::Range(1, 4800));
}

void AddChoice(CLI::App* app, const char* name, int32_t* value, const Choices& choices,
               const char* meaning) {
  std::vector<std::string> words;
  for (const auto& [word, code] : choices) words.push_back(word);
  app->add_option_function<std::string>(
         name, [value, choices](const std::string& word) { *value = choices.at(word); }, meaning)
      ->check(CLI::IsMember(words));
}

void AddInterpolationOption(CLI::App* app, int32_t* interpolation) {
  AddChoice(
      app, "--interpolation", interpolation,
      {{"bicubic", INTERP_BICUBIC}, {"bilinear", INTERP_BILINEAR}, {"nearest", INTERP_NEAREST}},
      kInterpolationMeaning);
}

void AddThresholdOptions(CLI::App* app, ThresholdOptions* options) {
  app->add_option("--threshold", options->threshold,
                  "Grey level from which a pixel counts as page, 1..255; 0: the library's estimate "
                  "from the picture's left and right margin [0; for method 2, whose estimate takes "
                  "an even background for page, at least 80]")
      ->check(CLI::Range(0, 255));
  app->add_flag("--try-thresholds", options->tryOthers,
                "Where that finds nothing, or something doubtful, try levels that the picture "
                "suggests");
}

services::TurnOutcome RunThresholds(const ThresholdOptions& options, int32_t preferred,
                                    const ImageRec& image, const ThresholdCall& call) {
  services::TurnOutcome best = call(options.threshold >= 0 ? options.threshold : preferred);
  if (!options.tryOthers) return best;
  for (const int32_t threshold : services::ThresholdsToTry(image)) {
    if (best.status == STATUS_OK && best.verdict.confidence != judge::Confidence::kDoubtful) break;
    services::TurnOutcome other = call(threshold);
    if (!services::IsBetter(other, best)) continue;
    other.notes.push_back("threshold " + std::to_string(threshold) + " found by trying");
    best = std::move(other);
  }
  return best;
}

double Timed(const std::function<void()>& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
  return taken.count();
}

}  // namespace vorlane::commands
