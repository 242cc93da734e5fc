#include "app/batch/batch.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>

#include "app/batch/exit_codes.h"
#include "app/batch/report.h"
#include "app/files/file_formats.h"
#include "app/files/image_convert.h"
#include "app/files/picture_file.h"
#include "app/files/picture_writer.h"
#include "app/overlay/page_overlay.h"

namespace vorlane::batch {
namespace {

namespace fs = std::filesystem;

void ForEachPage(const files::PlannedInput& input, const files::PictureFile& file,
                 const std::function<void(const files::Page&)>& run) {
  if (file.count() != input.pages) {
    throw files::FileError(input.path + ": was changed while other files were worked on");
  }
  for (int32_t number = 1; number <= file.count(); ++number) run(file.Read(number));
}

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
    file_ = std::make_unique<files::PictureFile>(input_.path);
    ForEachPage(input_, *file_, [this](const files::Page& page) { RunPage(page); });
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
    const ImageRec& image = *outcome.result.rec();
    if (!input_.output.isShared && !way->isTrusted) return;
    const files::FileFormat format = *files::FormatOfName(path);
    const files::WriteOptions options{request_.jpegQuality};
    files::EncodedPage encoded = Encode(path, [&] {
      return way->isTrusted ? files::EncodePage(format, image, page, options, &way->notes)
                            : files::KeepPage(format, *file_, page, options, &way->notes);
    });
    if (!shared_) {
      shared_ = std::make_unique<files::PictureWriter>(path, format, ReplacingOf(request_),
                                                       files::Durability::kSynced,
                                                       files::NeedsBigTiff(*file_));
    }
    shared_->Add(std::move(encoded));
    if (way->isTrusted) ++straightened_;
    way->keptAsItWas = !way->isTrusted;
    way->output = path;
    if (!input_.output.isShared) CommitShared();
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
  std::unique_ptr<files::PictureFile> file_;
  std::unique_ptr<files::PictureWriter> shared_;  // the file that is being written
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
    return files::PictureFile(path).count();
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

files::Replacing ReplacingOf(const BatchRequest& request) {
  const bool isAllowed = request.overwriting.outputs || request.overwriting.inputs;
  return isAllowed ? files::Replacing::kAllowed : files::Replacing::kNever;
}

files::EncodedPage Encode(const std::string& path,
                          const std::function<files::EncodedPage()>& encode) {
  try {
    return encode();
  } catch (const files::EncodeError& error) {
    throw files::FileError(path + ": " + error.what());
  }
}

bool IsTrusted(const BatchRequest& request, const judging::TurnOutcome& outcome) {
  return outcome.status == STATUS_OK &&
         (request.acceptDoubtful || outcome.verdict.confidence != judging::Confidence::kDoubtful);
}

std::string WriteOverlay(const BatchRequest& request, const files::PlannedInput& input,
                         const files::Page& page, const std::function<files::PixPtr()>& draw) {
  if (input.overlay.names.empty()) return "";
  const std::string& path = input.overlay.Of(page.number);
  vorlanepic::frame::ScratchImage image;
  if (files::PixToImage(draw(), &image) != STATUS_OK) {
    throw files::FileError(path + ": there is not enough memory for the overlay");
  }
  files::WritePicture(path, *image.rec(), files::Page{}, ReplacingOf(request));
  return path;
}

void ReportPage(const BatchRequest& request, const files::PlannedInput& input,
                const files::Page& page, const judging::TurnOutcome& outcome, const PageWay& way) {
  PageReport report;
  report.command = request.command;
  report.fate = FateOf(request, outcome, way);
  report.output = way.output;
  report.keptAsItWas = way.keptAsItWas;
  report.notes = way.notes;
  report.overlay =
      WriteOverlay(request, input, page, [&] { return overlay::DrawOverlay(page, outcome); });
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
  ForEachPage(input, files::PictureFile(input.path), run);
}

int RunBatch(const BatchRequest& request, const PageService& service) {
  return ForEachFile(request, [&](const files::PlannedInput& input) {
    return InputRun(request, service, input).Run();
  });
}

}  // namespace vorlane::batch
