#include "app/batch/page_set.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "app/batch/exit_codes.h"
#include "app/batch/report.h"
#include "app/files/file_formats.h"
#include "app/files/picture_file.h"
#include "app/files/picture_writer.h"

namespace vorlane::batch {
namespace {

std::vector<files::Page> ReadAll(const files::PlannedInput& input) {
  const files::PictureFile file(input.path);
  std::vector<files::Page> pages;
  for (int32_t number = 1; number <= file.count(); ++number) pages.push_back(file.Read(number));
  const ImageRec& first = *pages[0].image.rec();
  for (const files::Page& page : pages) {
    const ImageRec& image = *page.image.rec();
    if (image.width != first.width || image.height != first.height ||
        image.bitsPerPixel != first.bitsPerPixel) {
      throw files::FileError(NameOf(page) +
                             ": differs from the first page in size or depth; run it without "
                             "--one-geometry");
    }
  }
  return pages;
}

// Returns what writing each page could not keep.
std::vector<std::vector<std::string>> WriteSet(const BatchRequest& request,
                                               const files::PageFiles& output,
                                               const std::vector<files::Page>& pages,
                                               const std::vector<ImageRec>& results) {
  std::vector<std::vector<std::string>> notes(pages.size());
  std::unique_ptr<files::PictureWriter> writer;
  for (size_t i = 0; i < pages.size(); ++i) {
    const std::string& path = output.Of(pages[i].number);
    const files::FileFormat format = *files::FormatOfName(path);
    if (!writer || !output.isShared) {
      if (writer) writer->Commit();
      writer = std::make_unique<files::PictureWriter>(path, format, ReplacingOf(request),
                                                      files::Durability::kSynced,
                                                      pages[i].coding.tiff.isBig);
    }
    writer->Add(Encode(path, [&] {
      return files::EncodePage(format, results[i], pages[i], {request.jpegQuality}, &notes[i]);
    }));
  }
  writer->Commit();
  return notes;
}

int RunSet(const BatchRequest& request, const SetService& service,
           const files::PlannedInput& input) {
  const std::vector<files::Page> pages = ReadAll(input);
  std::vector<ImageRec> records;
  records.reserve(pages.size());
  for (const files::Page& page : pages) records.push_back(*page.image.rec());
  std::vector<ImageRec> results(pages.size());
  judging::TurnOutcome outcome = service(records, &results);

  PageWay way;
  way.isTrusted = IsTrusted(request, outcome);
  std::vector<std::vector<std::string>> notes(pages.size());
  try {
    if (way.isTrusted) notes = WriteSet(request, input.output, pages, results);
  } catch (...) {
    ReleaseAll(&results);
    throw;
  }
  for (size_t i = 0; i < pages.size(); ++i) {
    *outcome.result.rec() = std::exchange(results[i], ImageRec{});
    way.notes = notes[i];
    if (way.isTrusted) way.output = input.output.Of(pages[i].number);
    ReportPage(request, input, pages[i], outcome, way);
    (void)outcome.result.Release();
  }
  return way.isTrusted ? kExitAllDone : kExitPagesLeft;
}

}  // namespace

void ReleaseAll(std::vector<ImageRec>* images) {
  for (ImageRec& image : *images) {
    if (image.pixels != nullptr) Imgbuf_Destory(&image);
    image = ImageRec{};
  }
}

int RunPageSets(const BatchRequest& request, const SetService& service) {
  return ForEachFile(
      request, [&](const files::PlannedInput& input) { return RunSet(request, service, input); });
}

}  // namespace vorlane::batch
