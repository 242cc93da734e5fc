// The commands of vorlane. Each adds itself to the command line and returns what it does when it
// is chosen.
#pragma once

#include "app/commands/run_options.h"

namespace vorlane::commands {

CommandRun AddApply(CLI::App* app);
CommandRun AddDetect(CLI::App* app);
CommandRun AddReview(CLI::App* app);
CommandRun AddStraighten(CLI::App* app);
CommandRun AddPruned(CLI::App* app);
CommandRun AddCrop(CLI::App* app);
CommandRun AddAngle(CLI::App* app);
CommandRun AddForm(CLI::App* app);
CommandRun AddBlocks(CLI::App* app);
CommandRun AddBarAngle(CLI::App* app);
CommandRun AddCompletion(CLI::App* app);
CommandRun AddMerge(CLI::App* app);

}  // namespace vorlane::commands
