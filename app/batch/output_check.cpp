#include "app/batch/output_check.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <unistd.h>

#include <sys/stat.h>

#include "app/files/file_formats.h"
#include "app/files/page.h"

namespace vorlane::batch {
namespace {

namespace fs = std::filesystem;

// The folder a file would be in, or the nearest above it that exists.
fs::path ExistingFolder(const std::string& path) {
  fs::path folder = fs::path(path).parent_path();
  std::error_code code;
  while (!folder.empty() && !fs::exists(folder, code)) folder = folder.parent_path();
  return folder.empty() ? "." : folder;
}

}  // namespace

void OutputCheck::Add(const std::string& input, const std::string& path) {
  const std::string& shown = path;
  if (!files::FormatOfName(path)) {
    throw files::UsageError(shown + ": its extension names no format that can be written (" +
                            files::kWritableExtensions + ")");
  }
  const auto [taken, isNew] = takenBy_.emplace(fs::path(path).lexically_normal().native(), input);
  if (!isNew) {
    const std::string& other = taken->second;
    const std::string both =
        other == input ? "more than one picture of " + other : "both " + other + " and " + input;
    throw files::UsageError(shown + ": would hold " + both +
                            "; name a folder, or put {name}, {dir} or {page} into the output");
  }
  RefuseFolder(path);
  RefuseExisting(path);
}

void OutputCheck::RefuseFolder(const std::string& path) {
  const std::string folder = fs::path(path).parent_path().native();
  if (!folders_.insert(folder).second) return;
  const fs::path there = ExistingFolder(path);
  std::error_code code;
  if (!fs::is_directory(there, code)) {
    throw files::UsageError(path + ": " + there.native() + " is no folder");
  }
  if (::access(there.c_str(), W_OK | X_OK) != 0) {
    throw files::UsageError(path + ": nothing can be written to " + there.native() + ": " +
                            std::strerror(errno));
  }
}

bool OutputCheck::IsInput(const std::string& path) {
  struct stat info {};
  if (!areIdsKnown_) {
    areIdsKnown_ = true;
    for (const InputFile& input : inputs_) {
      if (::stat(input.path.c_str(), &info) == 0) ids_.emplace(info.st_dev, info.st_ino);
    }
  }
  return ::stat(path.c_str(), &info) == 0 && ids_.count({info.st_dev, info.st_ino}) > 0;
}

void OutputCheck::RefuseExisting(const std::string& path) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) return;
  const bool isThere = ::stat(path.c_str(), &info) == 0;  // through links
  const std::string& shown = path;
  if (!isThere || !S_ISREG(info.st_mode)) {
    throw files::UsageError(shown + ": is not an ordinary file; name another output");
  }
  if (!overwriting_.inputs && IsInput(path)) {
    throw files::UsageError(shown +
                            ": is an input file; name another output, or allow it with "
                            "--overwrite-inputs");
  }
  if (!overwriting_.outputs && !overwriting_.inputs && !mayStand_) {
    throw files::UsageError(shown +
                            ": exists already; name another output, or allow it with --overwrite");
  }
}

}  // namespace vorlane::batch
