#include "host/batch.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "host/exit_codes.h"
#include "host/file_formats.h"
#include "host/page_overlay.h"
#include "host/page_reader.h"
#include "host/page_writer.h"
#include "host/report.h"

namespace vorlanepic::host {
namespace {

namespace fs = std::filesystem;

OutputName ImageOutput(const BatchRequest& request) { return {request.output, ""}; }
OutputName OverlayOutput(const BatchRequest& request) { return {request.overlay, ".overlay.png"}; }

void MakeFolder(const std::string& name) {
  if (name.empty() || name.back() != '/' || name.find('{') != std::string::npos) return;
  std::error_code code;
  fs::create_directories(name, code);
  if (code) throw UsageError(name + ": this folder cannot be made: " + code.message());
}

// The pages of one input, on their way to their files.
class InputRun {
 public:
  InputRun(const BatchRequest& request, const PageService& service, const std::string& input)
      : request_(request), service_(service), input_(input), reporter_(request) {}

  int Run() {
    PageReader reader(input_);
    Page page;
    while (reader.Next(&page)) RunPage(page);
    if (shared_) CommitShared();
    return exit_;
  }

 private:
  void RunPage(const Page& page) {
    const TurnOutcome outcome = service_(page);
    const bool trusted = IsTrusted(request_, outcome);
    if (!trusted) exit_ = std::max<int>(exit_, kExitPagesLeft);
    std::string output;
    bool kept = false;
    if (!request_.output.empty()) output = WritePage(page, outcome, trusted, &kept);
    reporter_.Print(page, outcome, trusted, kept, output);
  }

  // Returns the file that the page went to, empty for none.
  std::string WritePage(const Page& page, const TurnOutcome& outcome, bool trusted, bool* kept) {
    std::string path = OutputFor(ImageOutput(request_), input_, page.number, page.count);
    const ImageRec& image = trusted ? *outcome.result.rec() : *page.image.rec();
    const bool isShared =
        page.count > 1 &&
        path == OutputFor(ImageOutput(request_), input_, page.number % page.count + 1, page.count);
    if (!isShared && !trusted) return "";
    if (!isShared) {
      PageWriter writer(path, request_.jpegQuality);
      writer.Add(image, page.xDpi, page.yDpi);
      writer.Commit();
      return path;
    }
    if (!shared_) shared_ = std::make_unique<PageWriter>(path, request_.jpegQuality);
    sharedPath_ = path;
    shared_->Add(image, page.xDpi, page.yDpi);
    if (trusted) ++straightened_;
    *kept = !trusted;
    return path;
  }

  // A file that would be a mere copy of its input is not written.
  void CommitShared() {
    if (straightened_ > 0) {
      shared_->Commit();
    } else {
      (void)std::fflush(stdout);
      (void)std::fprintf(stderr, "vorlane: %s: not written, no page of %s was straightened\n",
                         sharedPath_.c_str(), input_.c_str());
    }
    shared_.reset();
  }

  const BatchRequest& request_;
  const PageService& service_;
  const std::string& input_;
  PageReporter reporter_;
  std::unique_ptr<PageWriter> shared_;  // the file of several pages
  std::string sharedPath_;
  int32_t straightened_ = 0;
  int exit_ = kExitAllDone;
};

}  // namespace

bool IsTrusted(const BatchRequest& request, const TurnOutcome& outcome) {
  return outcome.status == STATUS_OK &&
         (request.acceptDoubtful || outcome.verdict.confidence != Confidence::kDoubtful);
}

void PageReporter::WriteOverlay(const Page& page, const TurnOutcome& outcome,
                                std::string* path) const {
  if (request_.overlay.empty()) return;
  *path = OutputFor(OverlayOutput(request_), page.file, page.number, page.count);
  PageWriter writer(*path, request_.jpegQuality);
  writer.Add(DrawOverlay(page, outcome));
  writer.Commit();
}

void PageReporter::Print(const Page& page, const TurnOutcome& outcome, bool isWritten,
                         bool keptAsItWas, const std::string& output) const {
  PageReport report;
  report.command = request_.command;
  report.output = output;
  report.keptAsItWas = keptAsItWas;
  if (outcome.status != STATUS_OK) {
    report.fate = PageFate::kFailed;
  } else if (!isWritten) {
    report.fate = PageFate::kDoubtful;
  } else {
    report.fate = request_.output.empty() ? PageFate::kMeasured : PageFate::kStraightened;
  }
  WriteOverlay(page, outcome, &report.overlay);
  if (request_.json) {
    PrintJson(JsonLine(page, outcome, report));
  } else {
    std::printf("%s\n", TextLine(page, outcome, report).c_str());
  }
  (void)std::fflush(stdout);
}

std::vector<PlannedInput> PlanBatch(const BatchRequest& request) {
  std::vector<PlannedInput> inputs;
  for (const std::string& path : request.inputs) {
    PlannedInput input{path, 0};
    try {
      input.pages = PageReader(path).count();
    } catch (const FileError&) {
      // Told when its turn comes; the other files are worked through.
    }
    inputs.push_back(input);
  }
  MakeFolder(request.output);
  MakeFolder(request.overlay);
  if (!request.output.empty()) CheckOutputs(ImageOutput(request), inputs, request.overwriting);
  if (!request.overlay.empty()) {
    CheckOutputs(OverlayOutput(request), inputs, request.overwriting);
    const auto format = FormatOfName(OutputFor(OverlayOutput(request), inputs[0].path, 1, 1));
    if (format && HoldsManyPages(*format)) {
      throw UsageError(request.overlay + ": an overlay is one picture a page; name it .png");
    }
  }
  return inputs;
}

int ForEachFile(const BatchRequest& request, const std::string& command,
                const std::function<int(const std::string& input)>& run) {
  (void)PlanBatch(request);
  int exit = kExitAllDone;
  for (const std::string& input : request.inputs) {
    try {
      exit = std::max(exit, run(input));
    } catch (const FileError& error) {
      PrintFileError(command, input, error.what(), request.json);
      exit = kExitFiles;
    }
  }
  return exit;
}

int RunBatch(const BatchRequest& request, const PageService& service) {
  return ForEachFile(request, request.command, [&](const std::string& input) {
    return InputRun(request, service, input).Run();
  });
}

}  // namespace vorlanepic::host
