#include "app/batch/input_list.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <unordered_map>
#include <unordered_set>

#include "app/batch/sha256.h"
#include "app/files/file_formats.h"
#include "app/files/page.h"

namespace vorlane::batch {
namespace {

namespace fs = std::filesystem;

std::string FolderOf(const std::string& place) {
  const size_t slash = place.rfind('/');
  return slash == std::string::npos ? "" : place.substr(0, slash);
}

// A path as it was written, made to stand below a folder: no root, no steps up.
std::string AsWritten(const std::string& path) {
  std::string written;
  for (const fs::path& step : fs::path(path)) {
    const std::string& name = step.native();
    if (name.empty() || name == "/" || name == "." || name == "..") continue;
    if (!written.empty()) written += '/';
    written += name;
  }
  return written;
}

class Lister {
 public:
  explicit Lister(const InputRequest& request) {
    for (const std::string& folder : request.passedOver) {
      std::error_code code;
      const fs::path real = fs::canonical(folder, code);
      if (!code) passedOver_.insert(real.native());
    }
  }

  void Add(const std::string& path) {
    std::error_code code;
    if (path != "-" && fs::is_directory(path, code)) {
      AddFolder(path);
    } else {
      AddFile({path, fs::path(path).filename().native(), FolderOf(AsWritten(path))});
    }
  }

  InputList Take() {
    MirrorEqualPlaces();
    return std::move(list_);
  }

 private:
  void AddFile(InputFile file) {
    if (named_.insert(fs::path(file.path).lexically_normal().native()).second) {
      list_.files.push_back(std::move(file));
    }
  }

  void AddFolder(const std::string& root) {
    std::vector<std::string> found;
    Search(root, &found);
    const size_t cut = root.size() + (root.back() == '/' ? 0 : 1);
    for (const std::string& path : found) {
      const std::string place = path.substr(cut);
      AddFile({path, place, FolderOf(place)});
    }
  }

  // Adds the pictures below `folder` in the order of their names.
  void Search(const std::string& folder, std::vector<std::string>* found) {
    std::error_code code;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator at(folder, code), end; !code && at != end; at.increment(code)) {
      if (at->path().filename().native().front() != '.') entries.push_back(*at);
    }
    if (code) {
      throw files::UsageError(folder + ": cannot be searched: " + code.message());
    }
    std::sort(entries.begin(), entries.end());
    for (const fs::directory_entry& entry : entries) Visit(entry, found);
  }

  void Visit(const fs::directory_entry& entry, std::vector<std::string>* found) {
    std::error_code code;
    const std::string& path = entry.path().native();
    if (entry.is_directory(code)) {
      if (!entry.is_symlink(code) && !IsPassedOver(path)) Search(path, found);
    } else if (files::FormatOfName(path) && entry.is_regular_file(code)) {
      found->push_back(path);
    } else {
      ++list_.otherFiles;
    }
  }

  bool IsPassedOver(const std::string& folder) const {
    std::error_code code;
    return !passedOver_.empty() && passedOver_.count(fs::canonical(folder, code).native()) > 0;
  }

  void MirrorEqualPlaces() {
    std::unordered_map<std::string, int32_t> times;
    for (const InputFile& file : list_.files) ++times[file.place];
    for (InputFile& file : list_.files) {
      if (times[file.place] < 2) continue;
      file.place = AsWritten(file.path);
      file.dir = FolderOf(file.place);
    }
  }

  InputList list_;
  std::unordered_set<std::string> named_;
  std::unordered_set<std::string> passedOver_;
};

std::vector<std::string> ReadNames(const InputRequest& request) {
  std::ifstream file;
  if (request.filesFrom != "-") file.open(request.filesFrom, std::ios::binary);
  std::istream& stream = request.filesFrom == "-" ? std::cin : file;
  std::vector<std::string> names;
  std::string name;
  while (std::getline(stream, name, request.isNulSeparated ? '\0' : '\n')) {
    if (!request.isNulSeparated && !name.empty() && name.back() == '\r') name.pop_back();
    if (!name.empty()) names.push_back(name);
  }
  if (stream.bad() || !stream.eof()) {
    throw files::UsageError(request.filesFrom + ": this list cannot be read");
  }
  return names;
}

}  // namespace

std::optional<Shard> ParseShard(const std::string& text) {
  Shard shard;
  const char* end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, shard.index);
  if (first.ec != std::errc{} || first.ptr == end || *first.ptr != '/') return std::nullopt;
  const auto second = std::from_chars(first.ptr + 1, end, shard.count);
  if (second.ec != std::errc{} || second.ptr != end) return std::nullopt;
  if (shard.index < 1 || shard.index > shard.count) return std::nullopt;
  return shard;
}

bool Takes(const Shard& shard, const std::string& place) {
  if (shard.count == 1) return true;
  const std::string digits = Sha256Of(place);
  uint64_t hash = 0;
  std::from_chars(digits.data(), digits.data() + 16, hash, 16);
  return hash % static_cast<uint64_t>(shard.count) + 1 == static_cast<uint64_t>(shard.index);
}

InputList ListInputs(const InputRequest& request) {
  InputList list;
  if (request.listed.empty()) {
    Lister lister(request);
    for (const std::string& word : request.words) lister.Add(word);
    if (!request.filesFrom.empty()) {
      for (const std::string& name : ReadNames(request)) lister.Add(name);
    }
    list = lister.Take();
  } else {
    list.files = request.listed;
  }
  list.inAll = static_cast<int64_t>(list.files.size());
  if (list.files.empty()) throw files::UsageError("there is no picture in what was named");
  std::erase_if(list.files,
                [&](const InputFile& file) { return !Takes(request.shard, file.place); });
  return list;
}

}  // namespace vorlane::batch
