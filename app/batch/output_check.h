// Finds out whether pages can have their files before any is written.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "app/batch/input_list.h"

namespace vorlane::batch {

// Which existing files may be replaced.
struct Overwriting {
  bool outputs = false;
  bool inputs = false;
};

class OutputCheck {
 public:
  // `mayStand`: a file that stands there already is left to the writer, which knows whether an
  // interrupted run made it.
  OutputCheck(const std::vector<InputFile>& inputs, const Overwriting& overwriting, bool mayStand)
      : inputs_(inputs), overwriting_(overwriting), mayStand_(mayStand) {}

  // Throws UsageError unless the extension is known, nothing else goes to the file, and it can
  // stand there: no file is there unless it may be replaced, and the nearest folder that exists can
  // be written to.
  void Add(const std::string& input, const std::string& path);

  // Whether the file is one of the inputs, whichever way it was named.
  bool IsInput(const std::string& path);

 private:
  using FileId = std::pair<uint64_t, uint64_t>;  // of device and file

  void RefuseFolder(const std::string& path);
  void RefuseExisting(const std::string& path);

  const std::vector<InputFile>& inputs_;
  Overwriting overwriting_;
  bool mayStand_;
  bool areIdsKnown_ = false;
  std::set<FileId> ids_;                                  // of the inputs, once one is asked for
  std::unordered_set<std::string> folders_;               // known to be good
  std::unordered_map<std::string, std::string> takenBy_;  // file to input
};

}  // namespace vorlane::batch
