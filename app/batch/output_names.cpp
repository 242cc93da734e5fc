#include "app/batch/output_names.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "app/files/file_formats.h"
#include "app/files/page.h"

namespace vorlane::batch {
namespace {

namespace fs = std::filesystem;

constexpr size_t kMostDigits = 9;

bool IsFolder(const std::string& text) {
  std::error_code code;
  return !text.empty() && (text.back() == '/' || fs::is_directory(text, code));
}

bool SharesOneFile(const std::string& path) {
  const auto format = files::FormatOfName(path);
  return format && files::HoldsManyPages(*format);
}

std::string Padded(int32_t number, size_t digits) {
  std::string text = std::to_string(number);
  if (text.size() < digits) text.insert(0, digits - text.size(), '0');
  return text;
}

std::string WithPageNumber(const std::string& path, const std::string& number) {
  const fs::path whole(path);
  const std::string name = whole.stem().native() + "-p" + number + whole.extension().native();
  return (whole.parent_path() / name).native();
}

// The digits of "page:04"; 0 when `part` is none of that kind.
size_t DigitsOf(const std::string& part) {
  const std::string digits = part.starts_with("page:0") ? part.substr(6) : "";
  if (digits.size() != 1 || std::isdigit(static_cast<unsigned char>(digits[0])) == 0) return 0;
  return std::min(static_cast<size_t>(digits[0] - '0'), kMostDigits);
}

std::string ExtensionOf(const std::string& path) {
  const std::string extension = fs::path(path).extension().native();
  return extension.empty() ? "" : extension.substr(1);
}

}  // namespace

OutputNames::OutputNames(std::string text, std::string folderSuffix)
    : text_(std::move(text)), folderSuffix_(std::move(folderSuffix)), isFolder_(IsFolder(text_)) {
  if (!isFolder_) {
    Parse();
  } else if (std::error_code code;
             text_.find('{') < text_.size() && !fs::is_directory(text_, code)) {
    throw files::UsageError(text_ +
                            ": a pattern ends in a file's name, as in out/{dir}/{name}.{ext}");
  }
}

void OutputNames::Parse() {
  size_t at = 0;
  while (at < text_.size()) {
    const size_t open = std::min(text_.find('{', at), text_.size());
    if (open > at) parts_.push_back({Part::kText, text_.substr(at, open - at)});
    if (open == text_.size()) return;
    const size_t close = text_.find('}', open);
    const std::string name =
        close == std::string::npos ? "" : text_.substr(open + 1, close - open - 1);
    if (name == "name" || name == "ext" || name == "dir") {
      parts_.push_back({name == "name"  ? Part::kName
                        : name == "ext" ? Part::kExt
                                        : Part::kDir,
                        ""});
    } else if (name == "page" || DigitsOf(name) > 0) {
      parts_.push_back({Part::kPage, "", DigitsOf(name)});
    } else {
      throw files::UsageError(text_ + ": " + text_.substr(open) +
                              " is no part of a pattern; there are {name}, {dir}, {ext}, {page} "
                              "and {page:04}");
    }
    at = close + 1;
  }
}

bool OutputNames::isNumbered() const {
  return std::any_of(parts_.begin(), parts_.end(),
                     [](const Part& part) { return part.kind == Part::kPage; });
}

std::string OutputNames::Base() const {
  if (isFolder_) return text_;
  const size_t brace = text_.find('{');
  if (brace == std::string::npos) return "";
  const size_t slash = text_.rfind('/', brace);
  return slash == std::string::npos ? "" : text_.substr(0, slash + 1);
}

// The name's parts with everything but the page's number put in.
std::vector<OutputNames::Part> OutputNames::PartsFor(const InputFile& input) const {
  const fs::path source(input.place);
  if (isFolder_) {
    std::string suffix = folderSuffix_;
    if (suffix.empty()) suffix = files::FormatOfName(input.place) ? source.extension() : ".png";
    const fs::path below = source.parent_path() / (source.stem().native() + suffix);
    return {{Part::kText, (fs::path(text_) / below).native()}};
  }
  std::vector<Part> parts;
  std::string text;
  bool skipsSlash = false;  // behind a {dir} of no folder at all
  for (const Part& part : parts_) {
    if (part.kind == Part::kPage) {
      parts.push_back({Part::kText, std::exchange(text, "")});
      parts.push_back(part);
    }
    if (part.kind == Part::kText) {
      text += part.text.substr(skipsSlash && part.text.front() == '/' ? 1 : 0);
    }
    if (part.kind == Part::kName) text += source.stem().native();
    if (part.kind == Part::kExt) text += ExtensionOf(input.place);
    if (part.kind == Part::kDir) text += input.dir;
    skipsSlash = part.kind == Part::kDir && input.dir.empty();
  }
  parts.push_back({Part::kText, text});
  return parts;
}

bool OutputNames::AreSettled(const InputFile& input) const {
  if (!isWanted()) return true;
  const auto format = files::FormatOfName(input.path);
  if (format && !files::HoldsManyPages(*format)) return true;
  return !isNumbered() && SharesOneFile(PartsFor(input).back().text);
}

PageFiles OutputNames::FilesFor(const InputFile& input, int32_t pageCount) const {
  PageFiles files;
  if (!isWanted()) return files;
  const std::vector<Part> parts = PartsFor(input);
  files.isShared = !isNumbered() && pageCount > 1 && SharesOneFile(parts.back().text);
  const int32_t count = files.isShared ? 1 : pageCount;
  const size_t digits = std::to_string(pageCount).size();
  for (int32_t page = 1; page <= count; ++page) {
    std::string name;
    for (const Part& part : parts) {
      name += part.kind == Part::kPage ? Padded(page, std::max(part.digits, digits)) : part.text;
    }
    files.names.push_back(isNumbered() || count == 1 ? name
                                                     : WithPageNumber(name, Padded(page, digits)));
  }
  return files;
}

std::string WithExtensionOf(const std::string& name, const std::string& source) {
  const auto format = files::FormatOfName(name);
  if (format && format == files::FormatOfName(source)) return name;
  return fs::path(name).replace_extension(fs::path(source).extension()).native();
}

}  // namespace vorlane::batch
