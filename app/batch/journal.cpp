#include "app/batch/journal.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <unistd.h>
#include <utility>

#include <sys/file.h>

namespace vorlane::batch {
namespace {

[[noreturn]] void Fail(const std::string& path, const char* what) {
  throw files::FileError(path + ": " + what + ": " + std::strerror(errno));
}

std::string ReadAll(int handle, const std::string& path) {
  std::string text;
  std::string buffer(size_t{1} << 16, '\0');
  ssize_t count = 0;
  while ((count = ::read(handle, buffer.data(), buffer.size())) > 0) {
    text.append(buffer, 0, static_cast<size_t>(count));
  }
  if (count < 0) Fail(path, "cannot be read");
  return text;
}

void WriteAll(int handle, std::string_view text, const std::string& path) {
  while (!text.empty()) {
    const ssize_t count = ::write(handle, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) Fail(path, "the journal cannot be written");
    text.remove_prefix(static_cast<size_t>(count));
  }
}

void ForEachLine(std::string_view text, const std::function<void(std::string_view)>& run) {
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    if (end > 0) run(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

std::string StringOf(const nlohmann::ordered_json& object, const char* key) {
  return object.value(key, std::string());
}

void TakeFields(const nlohmann::ordered_json& object, JournalEntry* entry) {
  entry->number = PageNumberIn(object);
  entry->count = static_cast<int32_t>(WholeNumber(object, "pages", 0, 0, INT32_MAX));
  entry->input = {WholeNumber(object, "inputSize", -1, -1, int64_t{1} << 62),
                  StringOf(object, "inputModified")};
  entry->result = StringOf(object, "result");
  entry->trust = StringOf(object, "confidence");
  entry->output = TakeName("output", object);
  entry->overlay = TakeName("overlay", object);
  entry->facts = {StringOf(object, "outputSha256"), StringOf(object, "options"),
                  StringOf(object, "version")};
}

// Lines about a file that has changed, or that failed as a whole, make earlier ones void.
bool IsOfSameFile(const JournalEntry& a, const JournalEntry& b) {
  return a.count == b.count && a.input == b.input;
}

}  // namespace

bool ReadJournalLine(std::string_view line, std::string* file, JournalEntry* entry) {
  try {
    const auto object = ParseLine(line);
    *file = TakeName("file", object);
    TakeFields(object, entry);
  } catch (const nlohmann::ordered_json::exception&) {
    return false;
  }
  return !file->empty() && !entry->result.empty();
}

std::string ReadText(const std::string& path) {
  const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (handle < 0) Fail(path, "cannot be opened");
  try {
    std::string text = ReadAll(handle, path);
    (void)::close(handle);
    return text;
  } catch (...) {
    (void)::close(handle);
    throw;
  }
}

std::vector<std::string> LastLines(std::string_view text, int64_t* damaged) {
  struct Known {
    JournalEntry last;
    std::map<int32_t, size_t> lines;  // by page
  };
  std::vector<std::string> lines;
  std::unordered_map<std::string, Known> files;
  ForEachLine(text, [&](std::string_view line) {
    std::string file;
    JournalEntry entry;
    if (!ReadJournalLine(line, &file, &entry)) {
      ++*damaged;
      return;
    }
    Known& known = files[file];
    if (!known.lines.empty() && !IsOfSameFile(known.last, entry)) {
      for (const auto& [page, at] : known.lines) lines[at].clear();
      known.lines.clear();
    }
    const auto [at, isNew] = known.lines.emplace(entry.number, lines.size());
    if (isNew) lines.emplace_back();
    lines[at->second] = line;
    known.last = std::move(entry);
  });
  std::erase(lines, "");
  return lines;
}

Journal::Journal(std::string path, bool resumes) : path_(std::move(path)) {
  handle_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0666);
  const std::string& shown = path_;
  if (handle_ < 0) {
    throw files::UsageError(shown + ": the journal cannot be opened: " + std::strerror(errno));
  }
  try {
    if (::flock(handle_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
      throw files::UsageError(shown + ": another run is writing this journal");
    }
    wasThere_ = ::lseek(handle_, 0, SEEK_END) > 0;
    if (wasThere_ && !resumes) {
      throw files::UsageError(shown +
                              ": this journal has lines already; go on with --resume, or "
                              "name another");
    }
    if (wasThere_) Load();
  } catch (...) {
    (void)::close(handle_);
    throw;
  }
}

Journal::~Journal() { (void)::close(handle_); }

void Journal::Load() {
  if (::lseek(handle_, 0, SEEK_SET) != 0) Fail(path_, "cannot be read");
  const std::string text = ReadAll(handle_, path_);
  const size_t whole = text.rfind('\n') + 1;  // 0 when no line is whole
  if (whole < text.size() && ::ftruncate(handle_, static_cast<off_t>(whole)) != 0) {
    Fail(path_, "its torn last line cannot be dropped");
  }
  ForEachLine(std::string_view(text).substr(0, whole), [&](std::string_view line) {
    std::string file;
    JournalEntry entry;
    if (!ReadJournalLine(line, &file, &entry)) {
      ++damaged_;
      return;
    }
    JournalPages& pages = pages_[file];
    if (!pages.empty() && !IsOfSameFile(pages.begin()->second, entry)) pages.clear();
    pages[entry.number] = std::move(entry);
  });
}

const JournalPages& Journal::PagesOf(const std::string& file) const {
  static const JournalPages kNone;
  const auto pages = pages_.find(file);
  return pages == pages_.end() ? kNone : pages->second;
}

void Journal::Append(std::string_view lines) {
  const std::lock_guard lock(mutex_);
  WriteAll(handle_, lines, path_);
}

void Journal::Finish() {
  const std::lock_guard lock(mutex_);
  if (wasThere_) DropReplaced();
  if (::fsync(handle_) != 0 && errno != EINVAL) {
    Fail(path_, "the journal cannot be brought to the disk");
  }
}

// Beside the journal and then in its place, so that it is whole at every moment. The old file stays
// open, and with it the lock.
void Journal::DropReplaced() {
  const std::string text = ReadText(path_);
  int64_t damaged = 0;
  std::string kept;
  for (const std::string& line : LastLines(text, &damaged)) kept.append(line).append("\n");
  if (kept == text) return;
  const std::string name = path_ + ".part";
  const int handle = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (handle < 0) Fail(name, "cannot be written");
  try {
    WriteAll(handle, kept, name);
    const bool isWhole = ::fsync(handle) == 0 || errno == EINVAL;
    if (!isWhole || std::rename(name.c_str(), path_.c_str()) != 0) Fail(name, "cannot be kept");
  } catch (...) {
    (void)::close(handle);
    (void)::unlink(name.c_str());
    throw;
  }
  (void)::close(handle);
}

}  // namespace vorlane::batch
