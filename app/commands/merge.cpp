// vorlane merge: one journal and one summary of the shards of a run.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "app/batch/exit_codes.h"
#include "app/batch/journal_merge.h"
#include "app/commands/commands.h"
#include "app/files/pending_file.h"

namespace vorlane::commands {
namespace {

struct MergeOptions {
  std::vector<std::string> journals;
  std::string output;
  bool mayReplace = false;
  bool json = false;
};

void Write(const MergeOptions& options, const std::string& text) {
  if (options.output.empty()) return;
  const auto replacing = options.mayReplace ? files::Replacing::kAllowed : files::Replacing::kNever;
  files::PendingFile file(options.output, replacing, files::Durability::kSynced);
  file.Append({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  file.Commit();
}

void PrintTotals(const MergeOptions& options, const batch::Tally& tally) {
  if (!options.json) {
    std::printf("%s", batch::Summary(tally).c_str());
    return;
  }
  const nlohmann::ordered_json totals = {{"command", "merge"},       {"pages", tally.pages},
                                         {"sure", tally.sure},       {"likely", tally.likely},
                                         {"done", tally.other},      {"left", tally.left},
                                         {"refused", tally.refused}, {"errors", tally.errors}};
  std::printf("%s\n", batch::Dump(totals).c_str());
}

// What the journals leave in doubt goes to the error output.
int TellDoubts(const batch::MergedJournals& merged) {
  if (merged.damaged > 0) {
    (void)std::fprintf(stderr, "vorlane: %lld lines are torn or damaged and are left out\n",
                       static_cast<long long>(merged.damaged));
  }
  if (!merged.areAlike) {
    (void)std::fprintf(stderr, "vorlane: not all pages were made with the same options\n");
  }
  for (const std::string& name : merged.differing) {
    (void)std::fprintf(stderr, "vorlane: %s: the journals say different things; the first counts\n",
                       name.c_str());
  }
  return merged.differing.empty() && merged.damaged == 0 && merged.tally.errors == 0
             ? batch::kExitAllDone
             : batch::kExitFiles;
}

}  // namespace

CommandRun AddMerge(CLI::App* app) {
  auto options = std::make_shared<MergeOptions>();
  CLI::App* command =
      app->add_subcommand("merge", "Join the journals of a run's shards and sum them up");
  command->add_option("JOURNAL", options->journals, "Journals that --journal wrote")->required();
  command
      ->add_option("-o,--output", options->output,
                   "Write all lines into this file, by file and page")
      ->type_name("FILE");
  command->add_flag("--overwrite", options->mayReplace, "Replace that file when it exists");
  command->add_flag("--json", options->json, "The totals as a JSON object");
  command->footer(
      "A page that is in two journals counts once.\n"
      "Example:\n"
      "  vorlane merge shard-*.jsonl -o all.jsonl");
  return [options] {
    const batch::MergedJournals merged = batch::MergeJournals(options->journals);
    Write(*options, merged.text);
    PrintTotals(*options, merged.tally);
    return TellDoubts(merged);
  };
}

}  // namespace vorlane::commands
