// The command vorlane: straightens, crops and measures scanned pages in files.
#include <csignal>
#include <cstdio>
#include <exception>
#include <new>

#include "app/batch/exit_codes.h"
#include "app/batch/printable_name.h"
#include "app/batch/standard_streams.h"
#include "app/commands/command_line.h"
#include "app/files/errors.h"
#include "app/files/pix_owner.h"

namespace {

namespace batch = vorlane::batch;
namespace commands = vorlane::commands;
namespace files = vorlane::files;

// A full disk or a closed pipe is told as an error and leaves no half-written file behind.
void TakeWriteErrorsAsResults() {
  (void)std::signal(SIGXFSZ, SIG_IGN);
  (void)std::signal(SIGPIPE, SIG_IGN);
}

int RunGuarded(int argc, char** argv) {
  try {
    return commands::RunCommandLine(argc, argv);
  } catch (const files::UsageError& error) {
    (void)std::fprintf(stderr, "vorlane: %s\n", batch::Printable(error.what()).c_str());
    return batch::kExitUsage;
  } catch (const std::bad_alloc&) {
    (void)std::fprintf(stderr, "vorlane: there is not enough memory\n");
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "vorlane: %s\n", batch::Printable(error.what()).c_str());
  }
  return batch::kExitFiles;
}

}  // namespace

int main(int argc, char** argv) {
  batch::SecureStandardStreams();
  TakeWriteErrorsAsResults();
  // Its messages name its own functions; ours name the file.
  (void)setMsgSeverity(L_SEVERITY_NONE);
  l_pngSetReadStrip16To8(0);
  int exit = RunGuarded(argc, argv);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    (void)std::fprintf(stderr, "vorlane: the report cannot be written to the output\n");
    exit = batch::kExitFiles;
  }
  return exit;
}
