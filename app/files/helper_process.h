// Other programs that do a part of the work.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vorlane::files {

// What a program may take; it is ended where it passes one of them.
struct HelperLimits {
  int64_t memory = 0;      // bytes of address space
  int64_t fileSize = 0;    // bytes of a file that it writes
  int32_t seconds = 1200;  // of the clock
};

// Whether a program goes behind walls: no sockets, no other process, no files but those of the
// system's folders, its own folder and its input.
enum class HelperWalls { kNone, kWherePossible, kAlways };

struct HelperResult {
  bool isDone = false;   // it ended by itself with the exit code 0
  std::string ending;    // how it ended otherwise, in words
  std::string messages;  // what it said on its error output, the first part of it
};

// Where a program is by the folders of PATH; empty: nowhere.
std::string FindProgram(const std::string& name);

// Runs the program at `path` with these arguments, without a shell, and waits for it. Its standard
// input is the open file `input`, what it prints on its standard output is dropped. It ends with
// the thread that called, and no signal from the keyboard reaches it. Behind `walls` it may write
// in `folder` alone. Throws DecodeError when it cannot be started so. Any number of threads may run
// helpers at once.
HelperResult RunHelper(const std::string& path, const std::vector<std::string>& arguments,
                       int input, const HelperLimits& limits, HelperWalls walls,
                       const std::string& folder);

}  // namespace vorlane::files
