#include "app/commands/command_line.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "app/batch/exit_codes.h"
#include "app/commands/command_hint.h"
#include "app/commands/commands.h"
#include "app/commands/help_format.h"
#include "app/files/errors.h"

namespace vorlane::commands {
namespace {

// The option parser has no word for a command that is misspelt.
void RefuseUnknownCommand(const CLI::App& app, int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return;
  const std::string word = argv[1];
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  if (std::find(names.begin(), names.end(), word) != names.end()) return;
  const std::string nearest = NearestName(word, names);
  throw files::UsageError(word + ": there is no such command" +
                          (nearest.empty() ? "" : "; did you mean " + nearest + "?"));
}

}  // namespace

int RunCommandLine(int argc, char** argv) {
  CLI::App app{"Straightens, crops and measures scanned pages.", "vorlane"};
  app.set_version_flag("--version", "vorlane " VORLANE_VERSION);
  app.require_subcommand(1);
  app.formatter(std::make_shared<HelpFormat>());  // the commands take it over
  app.footer(
      "Examples:\n"
      "  vorlane straighten scan.tif -o straight.tif --overlay found.png\n"
      "  vorlane straighten scans.pdf -o straight.pdf\n"
      "  vorlane straighten box/ -o out/ --journal box.jsonl   # a folder; --resume goes on with "
      "it\n"
      "  vorlane detect scan.png                               # look, write nothing\n"
      "vorlane COMMAND --help and man vorlane-COMMAND tell the rest.\n"
      "Exit code: 0 all pages are done, or left as they are where they are unsure; 1 a page was "
      "left\n"
      "and --strict asks for none, or a measurement found nothing; 2 the request cannot be "
      "carried\n"
      "out, and nothing was written; 3 some file or page could not be read or written; 130 and "
      "143\n"
      "the run was stopped.");
  const std::vector<CommandRun> runs = {AddStraighten(&app), AddDetect(&app), AddApply(&app),
                                        AddReview(&app),     AddCrop(&app),   AddAngle(&app),
                                        AddPruned(&app),     AddForm(&app),   AddBlocks(&app),
                                        AddBarAngle(&app),   AddMerge(&app),  AddCompletion(&app)};
  RefuseUnknownCommand(app, argc, argv);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? batch::kExitAllDone : batch::kExitUsage;
  }
  const auto known = app.get_subcommands({});
  for (size_t i = 0; i < known.size(); ++i) {
    if (known[i]->parsed()) return runs[i]();
  }
  return batch::kExitUsage;
}

}  // namespace vorlane::commands
