// The commands of vorlane. Each adds itself to the command line and returns what it does when it
// is chosen.
#pragma once

#include "host/run_options.h"

namespace vorlanepic::host {

CommandRun AddStraighten(CLI::App* app);
CommandRun AddCrop(CLI::App* app);
CommandRun AddAngle(CLI::App* app);
CommandRun AddForm(CLI::App* app);
CommandRun AddBlocks(CLI::App* app);
CommandRun AddBarAngle(CLI::App* app);

}  // namespace vorlanepic::host
