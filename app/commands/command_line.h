// The command line of vorlane: its commands, what it says of itself, and which one runs.
#pragma once

namespace vorlane::commands {

// Carries out what the arguments ask for and returns the exit code (app/batch/exit_codes.h). What
// can't be carried out is thrown: UsageError of app/files where the request is at fault.
int RunCommandLine(int argc, char** argv);

}  // namespace vorlane::commands
