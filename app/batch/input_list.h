// The pictures that a run is asked for.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/batch/file_state.h"

namespace vorlane::batch {

// A share of the inputs: number `index` of `count`, from 1.
struct Shard {
  int32_t index = 1;
  int32_t count = 1;
};

// "i/n" with 1 <= i <= n; nothing for other text.
std::optional<Shard> ParseShard(const std::string& text);

// Whether a share takes an input. The share is the first 64 bits of the SHA-256 of its place,
// modulo the number of shares, plus 1: every machine and every day the same.
bool Takes(const Shard& shard, const std::string& place);

// A picture file and where it stands under an output folder.
struct InputFile {
  std::string path;
  std::string place;  // below the folder that was named, or the file's name alone; with all folders
                      // as they were written where that would be the same for two inputs
  std::string dir;    // the folders of `place`; of a file that was named itself as it was written
  std::vector<int32_t> pages = {};        // the ones that are wanted, in order; empty: all
  FileState expected = {};                // with a size: it must still be like this
  std::map<int32_t, int32_t> turns = {};  // of pages by their numbers: quarters, where they are
                                          // not the request's
};

struct InputRequest {
  std::vector<InputFile> listed;   // a report's files, instead of what follows
  std::vector<std::string> words;  // files, folders, "-" for the standard input
  std::string filesFrom;           // a list of more, "-" for the standard input; empty: none
  bool isNulSeparated = false;     // the list's names end with a zero byte, not with a line
  Shard shard;
  std::vector<std::string> passedOver;  // folders that are not looked into: those of the outputs
};

struct InputList {
  std::vector<InputFile> files;  // of this share; in the order asked for, folders by name
  int64_t inAll = 0;             // of all shares
  int64_t otherFiles = 0;        // in folders, with names that are no picture's
};

// Lists the inputs; a file that was named twice once. What is named is not opened; folders are
// searched for files with a picture's extension, without hidden ones and without following links to
// folders. Throws UsageError when a list or a folder cannot be read or nothing is there to do.
InputList ListInputs(const InputRequest& request);

}  // namespace vorlane::batch
