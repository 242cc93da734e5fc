// The command vorlane: straightens, crops and measures scanned pages in files.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>
#include <unistd.h>

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

// Memory can run out where no exception may pass: JSON asks for some while it is released, and
// folders are listed by functions that throw nothing. No file has its name before it is whole, so
// that the run can end there.
thread_local bool hasRunOutOfMemory = false;

void NoteLackOfMemory() {
  hasRunOutOfMemory = true;
  throw std::bad_alloc();
}

[[noreturn]] void EndForWantOfMemory() {
  if (!hasRunOutOfMemory) std::abort();  // a fault of the program
  constexpr std::string_view kWords = "vorlane: there is not enough memory\n";
  (void)!::write(STDERR_FILENO, kWords.data(), kWords.size());
  ::_exit(batch::kExitFiles);
}

}  // namespace

int main(int argc, char** argv) {
  (void)std::set_new_handler(NoteLackOfMemory);
  (void)std::set_terminate(EndForWantOfMemory);
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
