#include "app/batch/batch.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>

#include "app/batch/exit_codes.h"
#include "app/batch/report.h"
#include "app/files/file_formats.h"
#include "app/files/page_reader.h"
#include "app/files/page_writer.h"
#include "app/overlay/page_overlay.h"

namespace vorlane::batch {
namespace {

namespace fs = std::filesystem;

// Overlays are losslessly drawn; the writer asks for a quality all the same.
constexpr int32_t kOverlayQuality = 92;

void MakeFolder(const std::string& name) {
  if (name.empty() || name.back() != '/' || name.find('{') != std::string::npos) return;
  std::error_code code;
  fs::create_directories(name, code);
  if (code) throw files::UsageError(name + ": this folder cannot be made: " + code.message());
}

// The pages of one input, on their way to their files.
class InputRun {
 public:
  InputRun(const BatchRequest& request, const PageService& service,
           const files::PlannedInput& input)
      : request_(request), service_(service), input_(input) {}

  int Run() {
    ForEachPage(input_, [this](const files::Page& page) { RunPage(page); });
    if (shared_) CommitShared();
    return exit_;
  }

 private:
  void RunPage(const files::Page& page) {
    const judging::TurnOutcome outcome = service_(page);
    PageWay way;
    way.isTrusted = IsTrusted(request_, outcome);
    if (!way.isTrusted) exit_ = std::max<int>(exit_, kExitPagesLeft);
    if (!input_.output.names.empty()) WritePage(page, outcome, &way);
    ReportPage(request_, input_, page, outcome, way);
  }

  void WritePage(const files::Page& page, const judging::TurnOutcome& outcome, PageWay* way) {
    const std::string& path = input_.output.Of(page.number);
    const ImageRec& image = way->isTrusted ? *outcome.result.rec() : *page.image.rec();
    if (!input_.output.isShared) {
      if (!way->isTrusted) return;
      files::PageWriter writer(path, request_.jpegQuality);
      writer.Add(image, page.xDpi, page.yDpi);
      writer.Commit();
    } else {
      if (!shared_) shared_ = std::make_unique<files::PageWriter>(path, request_.jpegQuality);
      shared_->Add(image, page.xDpi, page.yDpi);
      if (way->isTrusted) ++straightened_;
      way->keptAsItWas = !way->isTrusted;
    }
    way->output = path;
  }

  // A file that would be a mere copy of its input is not written.
  void CommitShared() {
    if (straightened_ > 0) {
      shared_->Commit();
    } else {
      (void)std::fflush(stdout);
      (void)std::fprintf(stderr, "vorlane: %s: not written, no page of %s was straightened\n",
                         input_.output.names[0].c_str(), input_.path.c_str());
    }
    shared_.reset();
  }

  const BatchRequest& request_;
  const PageService& service_;
  const files::PlannedInput& input_;
  std::unique_ptr<files::PageWriter> shared_;  // the file of several pages
  int32_t straightened_ = 0;
  int exit_ = kExitAllDone;
};

PageFate FateOf(const BatchRequest& request, const judging::TurnOutcome& outcome,
                const PageWay& way) {
  if (outcome.status != STATUS_OK) return PageFate::kFailed;
  if (!way.isTrusted) return PageFate::kDoubtful;
  return request.output.empty() ? PageFate::kMeasured : PageFate::kStraightened;
}

// 0 for an input that cannot be read: it is told when its turn comes, and the others go on.
int32_t CountPages(const std::string& path) {
  try {
    return files::PageReader(path).count();
  } catch (const files::FileError&) {
    return 0;
  }
}

void RefuseSharedOverlay(const BatchRequest& request, const files::PlannedInput& input) {
  if (input.overlay.names.empty()) return;
  const auto format = files::FormatOfName(input.overlay.names[0]);
  if (format && files::HoldsManyPages(*format)) {
    throw files::UsageError(request.overlay + ": an overlay is one picture a page; name it .png");
  }
}

}  // namespace

bool IsTrusted(const BatchRequest& request, const judging::TurnOutcome& outcome) {
  return outcome.status == STATUS_OK &&
         (request.acceptDoubtful || outcome.verdict.confidence != judging::Confidence::kDoubtful);
}

std::string WriteOverlay(const files::PlannedInput& input, const files::Page& page,
                         const std::function<files::PixPtr()>& draw) {
  if (input.overlay.names.empty()) return "";
  const std::string& path = input.overlay.Of(page.number);
  files::PageWriter writer(path, kOverlayQuality);
  writer.Add(draw());
  writer.Commit();
  return path;
}

void ReportPage(const BatchRequest& request, const files::PlannedInput& input,
                const files::Page& page, const judging::TurnOutcome& outcome, const PageWay& way) {
  PageReport report;
  report.command = request.command;
  report.fate = FateOf(request, outcome, way);
  report.output = way.output;
  report.keptAsItWas = way.keptAsItWas;
  report.overlay = WriteOverlay(input, page, [&] { return overlay::DrawOverlay(page, outcome); });
  if (request.json) {
    PrintJson(JsonLine(page, outcome, report));
  } else {
    std::printf("%s\n", TextLine(page, outcome, report).c_str());
  }
  (void)std::fflush(stdout);
}

std::vector<files::PlannedInput> PlanBatch(const BatchRequest& request) {
  MakeFolder(request.output);
  MakeFolder(request.overlay);
  const files::OutputPattern output({request.output, ""});
  const files::OutputPattern overlay({request.overlay, ".overlay.png"});
  std::vector<files::PlannedInput> inputs;
  for (const std::string& path : request.inputs) {
    files::PlannedInput input;
    input.path = path;
    input.pages = CountPages(path);
    if (!request.output.empty()) input.output = output.FilesFor(path, input.pages);
    if (!request.overlay.empty()) input.overlay = overlay.FilesFor(path, input.pages);
    inputs.push_back(std::move(input));
  }
  files::OutputCheck check(inputs, request.overwriting);
  for (const files::PlannedInput& input : inputs) {
    check.Add(input.path, input.output);
    check.Add(input.path, input.overlay);
    RefuseSharedOverlay(request, input);
  }
  return inputs;
}

int ForEachFile(const BatchRequest& request,
                const std::function<int(const files::PlannedInput& input)>& run) {
  int exit = kExitAllDone;
  for (const files::PlannedInput& input : PlanBatch(request)) {
    try {
      exit = std::max(exit, run(input));
    } catch (const files::FileError& error) {
      PrintFileError(request.command, input.path, error.what(), request.json);
      exit = kExitFiles;
    }
  }
  return exit;
}

void ForEachPage(const files::PlannedInput& input,
                 const std::function<void(const files::Page&)>& run) {
  files::PageReader reader(input.path);
  if (reader.count() != input.pages) {
    throw files::FileError(input.path + ": was changed while other files were worked on");
  }
  files::Page page;
  while (reader.Next(&page)) run(page);
}

int RunBatch(const BatchRequest& request, const PageService& service) {
  return ForEachFile(request, [&](const files::PlannedInput& input) {
    return InputRun(request, service, input).Run();
  });
}

}  // namespace vorlane::batch
