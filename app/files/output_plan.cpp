#include "app/files/output_plan.h"

#include <filesystem>

#include <sys/stat.h>

#include "app/files/file_formats.h"
#include "app/files/page.h"

namespace vorlane::files {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPageMark = "{page}";

void ReplaceAll(std::string* text, const std::string& what, const std::string& with) {
  for (size_t at = text->find(what); at != std::string::npos; at = text->find(what, at)) {
    text->replace(at, what.size(), with);
    at += with.size();
  }
}

bool IsFolder(const std::string& text) {
  std::error_code code;
  return !text.empty() && (text.back() == '/' || fs::is_directory(text, code));
}

bool SharesOneFile(const std::string& path) {
  const auto format = FormatOfName(path);
  return format && HoldsManyPages(*format);
}

std::string WithPageNumber(const std::string& path, int32_t page) {
  const fs::path whole(path);
  const std::string name =
      whole.stem().string() + "-p" + std::to_string(page) + whole.extension().string();
  return (whole.parent_path() / name).string();
}

}  // namespace

OutputPattern::OutputPattern(OutputName name)
    : name_(std::move(name)), isFolder_(IsFolder(name_.text)) {}

// The pattern with everything but the page's number put in. The input's own name comes last: it
// may hold braces.
std::string OutputPattern::TextFor(const std::string& input) const {
  std::string text = name_.text;
  if (isFolder_) {
    std::string suffix = name_.folderSuffix;
    if (suffix.empty()) suffix = FormatOfName(input) ? ".{ext}" : ".png";
    text = (fs::path(name_.text) / ("{name}" + suffix)).string();
  }
  const fs::path source(input);
  std::string extension = source.extension().string();
  if (!extension.empty()) extension.erase(0, 1);
  ReplaceAll(&text, "{ext}", extension);
  return text;
}

PageFiles OutputPattern::FilesFor(const std::string& input, int32_t pageCount) const {
  const std::string text = TextFor(input);
  const std::string stem = fs::path(input).stem().string();
  const bool isNumbered = text.find(kPageMark) != std::string::npos;
  PageFiles files;
  files.isShared = !isNumbered && pageCount > 1 && SharesOneFile(text);
  const int32_t count = files.isShared ? 1 : pageCount;
  for (int32_t page = 1; page <= count; ++page) {
    std::string path = text;
    ReplaceAll(&path, kPageMark, std::to_string(page));
    ReplaceAll(&path, "{name}", stem);
    files.names.push_back(isNumbered || count == 1 ? path : WithPageNumber(path, page));
  }
  return files;
}

OutputCheck::OutputCheck(const std::vector<PlannedInput>& inputs, const Overwriting& overwriting)
    : overwriting_(overwriting) {
  for (const PlannedInput& input : inputs) {
    struct stat info {};
    if (::stat(input.path.c_str(), &info) == 0) inputs_.emplace(info.st_dev, info.st_ino);
  }
}

void OutputCheck::Add(const std::string& input, const PageFiles& files) {
  for (const std::string& path : files.names) AddOne(input, path);
}

void OutputCheck::AddOne(const std::string& input, const std::string& path) {
  if (!FormatOfName(path)) {
    throw UsageError(path + ": its extension names no format that can be written (" +
                     kWritableExtensions + ")");
  }
  const auto [taken, isNew] = takenBy_.emplace(fs::path(path).lexically_normal().string(), input);
  if (!isNew) {
    const std::string& other = taken->second;
    throw UsageError(
        path + ": would hold " +
        (other == input ? "more than one picture of " + input : "both " + other + " and " + input) +
        "; name a folder, or put {name} or {page} into the output");
  }
  RefuseMissingFolder(path);
  RefuseExisting(path);
}

void OutputCheck::RefuseMissingFolder(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  if (folder.empty() || folders_.count(folder.string()) > 0) return;
  std::error_code code;
  if (!fs::is_directory(folder, code)) {
    throw UsageError(path + ": there is no folder " + folder.string());
  }
  folders_.insert(folder.string());
}

void OutputCheck::RefuseExisting(const std::string& path) const {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) return;
  const bool isThere = ::stat(path.c_str(), &info) == 0;  // through links
  if (!isThere || !S_ISREG(info.st_mode)) {
    throw UsageError(path + ": is not an ordinary file; name another output");
  }
  if (!overwriting_.inputs && inputs_.count({info.st_dev, info.st_ino}) > 0) {
    throw UsageError(path +
                     ": is an input file; name another output, or allow it with "
                     "--overwrite-inputs");
  }
  if (!overwriting_.outputs && !overwriting_.inputs) {
    throw UsageError(path + ": exists already; name another output, or allow it with --overwrite");
  }
}

}  // namespace vorlane::files
