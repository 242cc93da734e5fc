// vorlane review: a page for a browser on which a person sees what was found and puts it right.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "app/batch/exit_codes.h"
#include "app/batch/folder_lock.h"
#include "app/batch/printable_name.h"
#include "app/commands/commands.h"
#include "app/files/pending_file.h"
#include "app/review/journal_pages.h"
#include "app/review/page_pictures.h"
#include "app/review/review_page.h"

namespace vorlane::commands {
namespace {

namespace fs = std::filesystem;
using review::Sureness;

struct ReviewOptions {
  batch::BatchRequest batch;
  std::string journal;
  std::string folder;
  int32_t pictureSize = 1600;  // pixels of the longer side
  int32_t most = static_cast<int32_t>(Sureness::kSure);
};

void MakeFolders(const ReviewOptions& options) {
  const std::string index = options.folder + "/index.html";
  std::error_code code;
  if (fs::exists(index, code) && !options.batch.overwriting.outputs) {
    throw files::UsageError(index + ": is there already; --overwrite replaces it");
  }
  for (const char* name : {review::kThumbnails, review::kPictures}) {
    fs::create_directories(fs::path(options.folder) / name, code);
    if (code) {
      throw files::UsageError(options.folder + ": cannot be made: " + code.message());
    }
  }
}

// Makes the pictures of all pages that can be read and are as the journal says; the others are
// named. `isPictured` receives which have theirs. Returns an ExitCode.
int MakePictures(const CLI::App& command, ReviewOptions* options, const review::JournalPages& pages,
                 std::vector<char>* isPictured) {
  if (pages.inputs.empty()) return batch::kExitAllDone;
  options->batch.inputs.listed = pages.inputs;
  options->batch.report.isTerse = true;
  FinishRequest(command, &options->batch);
  return batch::RunBatch(options->batch, [&](const files::Page& page) {
    const size_t place = pages.places.at(page.file).at(page.number);
    review::WritePictures(*page.image.rec(), options->folder, place, options->pictureSize);
    (*isPictured)[place] = 1;
    batch::PageOutcome outcome;
    outcome.fate = batch::PageFate::kMeasured;
    return outcome;
  });
}

void WriteIndex(const ReviewOptions& options, const review::JournalPages& pages,
                const std::vector<char>& isPictured) {
  const std::string text = review::ReviewPage(options.journal, pages, isPictured);
  files::PendingFile file(options.folder + "/index.html", files::Replacing::kAllowed,
                          files::Durability::kLeftToSystem);
  file.Append({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  file.Commit();
}

void TellResult(const ReviewOptions& options, const review::JournalPages& pages,
                const std::vector<char>& isPictured) {
  if (pages.damaged > 0) {
    (void)std::fprintf(stderr, "vorlane: %s: %lld lines are torn or damaged and are left out\n",
                       batch::Printable(options.journal).c_str(),
                       static_cast<long long>(pages.damaged));
  }
  const bool isNothingShown =
      std::find(isPictured.begin(), isPictured.end(), 1) == isPictured.end();
  if (isNothingShown && !pages.inputs.empty()) {
    (void)std::fprintf(
        stderr, "vorlane: no page has a picture to show: run this where the journal was made\n");
  }
  if (options.batch.report.isQuiet) return;
  static constexpr const char* kWords[] = {"unreadable", "not found", "doubtful", "likely", "sure"};
  std::string counts;
  for (size_t i = 0; i < review::kSurenesses; ++i) {
    if (pages.counts[i] == 0) continue;
    counts += (counts.empty() ? ": " : ", ") + std::to_string(pages.counts[i]) + " " + kWords[i];
  }
  std::printf("%s/index.html shows %zu %s%s\n", batch::Printable(options.folder).c_str(),
              pages.facts.size(), pages.facts.size() == 1 ? "page" : "pages", counts.c_str());
}

int RunReview(const CLI::App& command, ReviewOptions* options) {
  while (options->folder.size() > 1 && options->folder.back() == '/') options->folder.pop_back();
  const review::JournalPages pages =
      review::ReadJournalPages(options->journal, static_cast<Sureness>(options->most));
  MakeFolders(*options);
  const batch::FolderLock lock(options->folder, batch::Sharing::kAlone);
  std::vector<char> isPictured(pages.facts.size(), 0);
  const int exit = MakePictures(command, options, pages, &isPictured);
  if (exit >= batch::kExitSignal) return exit;
  WriteIndex(*options, pages, isPictured);
  TellResult(*options, pages, isPictured);
  // A page that is no scan has its place among the others.
  return exit == batch::kExitPagesLeft ? batch::kExitAllDone : exit;
}

}  // namespace

CommandRun AddReview(CLI::App* app) {
  auto options = std::make_shared<ReviewOptions>();
  CLI::App* command = app->add_subcommand(
      "review", "Make a page for a browser, to look at what was found and put it right");
  command
      ->add_option("JOURNAL", options->journal,
                   "JSON lines of detect, or the journal of a run; its pictures are read again")
      ->required();
  command
      ->add_option("-o,--output", options->folder,
                   "Folder for the page, index.html, and the small pictures that it shows")
      ->required()
      ->type_name("FOLDER");
  AddChoice(command, "--at-most", &options->most,
            {{"doubtful", static_cast<int32_t>(Sureness::kDoubtful)},
             {"likely", static_cast<int32_t>(Sureness::kLikely)},
             {"sure", static_cast<int32_t>(Sureness::kSure)}},
            "Leave out pages that are surer than this [sure]");
  command
      ->add_option("--picture-size", options->pictureSize,
                   "Pixels of the longer side of the pictures for one page")
      ->check(CLI::Range(400, 8000))
      ->capture_default_str();
  command->add_flag("--overwrite", options->batch.overwriting.outputs,
                    "Replace a review page that is there");
  AddWorkOptions(command, &options->batch);
  command->footer(
      "Run it where the journal was made: the pictures' names count from there. Open index.html "
      "in\n"
      "any browser; it needs no server and no network. What you decide is kept in the browser, "
      "and\n"
      "its Save makes a file for apply:\n"
      "  vorlane detect box/ --json > found.jsonl\n"
      "  vorlane review found.jsonl -o review/\n"
      "  vorlane apply found.jsonl --decisions found.decisions.jsonl -o out/");
  return [options, command] { return RunReview(*command, options.get()); };
}

}  // namespace vorlane::commands
