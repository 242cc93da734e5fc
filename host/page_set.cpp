#include "host/page_set.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "host/exit_codes.h"
#include "host/page_reader.h"
#include "host/page_writer.h"
#include "host/report.h"

namespace vorlanepic::host {
namespace {

std::vector<Page> ReadAll(const std::string& path) {
  PageReader reader(path);
  std::vector<Page> pages(static_cast<size_t>(reader.count()));
  for (Page& page : pages) (void)reader.Next(&page);
  const ImageRec& first = *pages[0].image.rec();
  for (const Page& page : pages) {
    const ImageRec& image = *page.image.rec();
    if (image.width != first.width || image.height != first.height ||
        image.bitsPerPixel != first.bitsPerPixel) {
      throw FileError(NameOf(page) +
                      ": differs from the first page in size or depth; run it without "
                      "--one-geometry");
    }
  }
  return pages;
}

// Writes the set: to one file when all pages have the same name, else to one a page.
void WriteSet(const BatchRequest& request, const std::vector<Page>& pages,
              const std::vector<ImageRec>& results, std::vector<std::string>* names) {
  std::unique_ptr<PageWriter> writer;
  for (size_t i = 0; i < pages.size(); ++i) {
    names->push_back(
        OutputFor({request.output, ""}, pages[i].file, pages[i].number, pages[i].count));
    if (writer && names->back() != (*names)[i - 1]) {
      writer->Commit();
      writer.reset();
    }
    if (!writer) writer = std::make_unique<PageWriter>(names->back(), request.jpegQuality);
    writer->Add(results[i], pages[i].xDpi, pages[i].yDpi);
  }
  writer->Commit();
}

int RunSet(const BatchRequest& request, const SetService& service, const std::string& input) {
  std::vector<Page> pages = ReadAll(input);
  std::vector<ImageRec> records;
  records.reserve(pages.size());
  for (const Page& page : pages) records.push_back(*page.image.rec());
  std::vector<ImageRec> results(pages.size());
  TurnOutcome outcome = service(records, &results);

  const bool trusted = IsTrusted(request, outcome);
  std::vector<std::string> names;
  try {
    if (trusted) WriteSet(request, pages, results, &names);
  } catch (...) {
    ReleaseAll(&results);
    throw;
  }
  names.resize(pages.size());
  const PageReporter reporter(request);
  for (size_t i = 0; i < pages.size(); ++i) {
    *outcome.result.rec() = std::exchange(results[i], ImageRec{});
    reporter.Print(pages[i], outcome, trusted, false, names[i]);
    (void)outcome.result.Release();
  }
  return trusted ? kExitAllDone : kExitPagesLeft;
}

}  // namespace

void ReleaseAll(std::vector<ImageRec>* images) {
  for (ImageRec& image : *images) {
    if (image.pixels != nullptr) Imgbuf_Destory(&image);
    image = ImageRec{};
  }
}

int RunPageSets(const BatchRequest& request, const SetService& service) {
  return ForEachFile(request, request.command,
                     [&](const std::string& input) { return RunSet(request, service, input); });
}

}  // namespace vorlanepic::host
