#include "host/output_plan.h"

#include <filesystem>
#include <map>

#include "host/file_formats.h"
#include "host/page.h"

namespace vorlanepic::host {
namespace {

namespace fs = std::filesystem;

void ReplaceAll(std::string* text, const std::string& what, const std::string& with) {
  for (size_t at = text->find(what); at != std::string::npos; at = text->find(what, at)) {
    text->replace(at, what.size(), with);
    at += with.size();
  }
}

bool Contains(const std::string& text, const char* what) {
  return text.find(what) != std::string::npos;
}

bool IsFolder(const std::string& text) {
  std::error_code code;
  return !text.empty() && (text.back() == '/' || fs::is_directory(text, code));
}

// The pattern that a folder stands for. An input in a format that cannot be written becomes PNG.
std::string FolderPattern(const OutputName& output, const std::string& input) {
  std::string suffix = output.folderSuffix;
  if (suffix.empty()) suffix = FormatOfName(input) ? ".{ext}" : ".png";
  return (fs::path(output.text) / ("{name}" + suffix)).string();
}

bool SharesOneFile(const std::string& path) {
  const auto format = FormatOfName(path);
  return format && HoldsManyPages(*format);
}

bool Exists(const std::string& path) {
  std::error_code code;
  return fs::exists(fs::symlink_status(path, code));
}

bool SameFile(const std::string& a, const std::string& b) {
  std::error_code code;
  return fs::equivalent(a, b, code);
}

void RefuseExisting(const std::string& path, const std::vector<PlannedInput>& inputs,
                    const Overwriting& overwriting) {
  if (!Exists(path)) return;
  std::error_code code;
  if (!fs::is_regular_file(path, code)) {
    throw UsageError(path + ": is not an ordinary file; name another output");
  }
  for (const PlannedInput& input : inputs) {
    if (SameFile(path, input.path) && !overwriting.inputs) {
      throw UsageError(path +
                       ": is an input file; name another output, or allow it with "
                       "--overwrite-inputs");
    }
  }
  if (!overwriting.outputs && !overwriting.inputs) {
    throw UsageError(path + ": exists already; name another output, or allow it with --overwrite");
  }
}

}  // namespace

std::string OutputFor(const OutputName& output, const std::string& input, int32_t page,
                      int32_t pageCount) {
  std::string path = IsFolder(output.text) ? FolderPattern(output, input) : output.text;
  const bool numbered = Contains(path, "{page}");
  const fs::path source(input);
  std::string extension = source.extension().string();
  if (!extension.empty()) extension.erase(0, 1);
  ReplaceAll(&path, "{ext}", extension);
  ReplaceAll(&path, "{page}", std::to_string(page));
  ReplaceAll(&path, "{name}", source.stem().string());
  if (numbered || pageCount <= 1 || SharesOneFile(path)) return path;
  const fs::path whole(path);
  const std::string name =
      whole.stem().string() + "-p" + std::to_string(page) + whole.extension().string();
  return (whole.parent_path() / name).string();
}

void CheckOutputs(const OutputName& output, const std::vector<PlannedInput>& inputs,
                  const Overwriting& overwriting) {
  std::map<std::string, std::string> takenBy;
  for (const PlannedInput& input : inputs) {
    for (int32_t page = 1; page <= input.pages; ++page) {
      const std::string path = OutputFor(output, input.path, page, input.pages);
      if (!FormatOfName(path)) {
        throw UsageError(path + ": its extension names no format that can be written (" +
                         kWritableExtensions + ")");
      }
      const auto [taken, isNew] =
          takenBy.emplace(fs::path(path).lexically_normal().string(), input.path);
      if (!isNew && taken->second == input.path && SharesOneFile(path)) continue;
      if (!isNew) {
        throw UsageError(path + ": would hold both " + taken->second + " and " + input.path +
                         "; name a folder, or put {name} or {page} into the output");
      }
      const fs::path folder = fs::path(path).parent_path();
      std::error_code code;
      if (!folder.empty() && !fs::is_directory(folder, code)) {
        throw UsageError(path + ": there is no folder " + folder.string());
      }
      RefuseExisting(path, inputs, overwriting);
    }
  }
}

}  // namespace vorlanepic::host
