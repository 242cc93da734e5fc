#include "app/batch/page_output.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "app/batch/sha256.h"
#include "app/files/byte_source.h"
#include "app/files/image_convert.h"

namespace vorlane::batch {
namespace {

namespace fs = std::filesystem;

constexpr uint64_t kCopyStep = uint64_t{1} << 20;

}  // namespace

files::Replacing ReplacingFor(const RunContext& run, const JournalPages& before,
                              const std::string& path) {
  const Overwriting& overwriting = run.request.overwriting;
  if (overwriting.outputs || overwriting.inputs) return files::Replacing::kAllowed;
  if (!run.request.resumes) return files::Replacing::kNever;
  for (const auto& [number, entry] : before) {
    if (entry.overlay == path) return files::Replacing::kAllowed;
    if (entry.output != path || entry.facts.sha256.empty()) continue;
    const bool isOurs = Sha256OfFile(path).sha256 == entry.facts.sha256;
    return isOurs ? files::Replacing::kAllowed : files::Replacing::kIfSame;
  }
  return files::Replacing::kIfSame;
}

files::FileFormat FormatFor(const std::string& path) {
  return files::FormatOfName(path).value_or(files::FileFormat::kPng);
}

void MakeFolderFor(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  if (folder.empty()) return;
  std::error_code code;
  fs::create_directories(folder, code);
  if (code) throw files::FileError(folder.native() + ": cannot be made: " + code.message());
}

void WritePage(const std::string& path, files::EncodedPage page, files::Replacing replacing,
               const files::PictureFile* source) {
  MakeFolderFor(path);
  files::PictureWriter writer(path, FormatFor(path), replacing, files::Durability::kSynced, source);
  writer.Add(std::move(page));
  writer.Commit();
}

void CopyFile(const std::string& from, const std::string& to, files::Replacing replacing) {
  std::error_code code;
  if (fs::equivalent(from, to, code) && !code) return;
  const files::FileSource source(from);
  MakeFolderFor(to);
  files::PendingFile copy(to, replacing, files::Durability::kSynced);
  std::vector<uint8_t> bytes(std::min(source.size(), kCopyStep));
  for (uint64_t at = 0; at < source.size(); at += bytes.size()) {
    const size_t count = source.ReadAt(at, bytes);
    if (count < std::min<uint64_t>(bytes.size(), source.size() - at)) {
      throw files::FileError(from + ": was cut short while it was copied");
    }
    copy.Append({bytes.data(), count});
  }
  copy.Commit();
}

void WritePicture(const std::string& path, const files::PixPtr& pix, files::Replacing replacing) {
  files::Page picture;
  if (!pix || files::PixToImage(pix, &picture.image) != 0) {
    throw files::FileError(path + ": there is not enough memory for the overlay");
  }
  std::vector<std::string> notes;
  WritePage(path, files::EncodePage(FormatFor(path), *picture.image.rec(), picture, {}, &notes),
            replacing, nullptr);
}

void WriteOverlay(const std::string& path, const files::Page& page, const PageOutcome& outcome,
                  files::Replacing replacing, PageRecord* record) {
  if (!outcome.draw) return;
  try {
    WritePicture(path, outcome.draw(page), replacing);
    record->overlay = path;
  } catch (const files::FileError& error) {
    record->lacksOverlay = true;
    record->notes.push_back(std::string("no overlay: ") + error.what());
  }
}

}  // namespace vorlane::batch
