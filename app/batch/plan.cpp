#include "app/batch/plan.h"

#include <filesystem>

#include "app/files/file_formats.h"

namespace vorlane::batch {
namespace {

namespace fs = std::filesystem;

constexpr const char* kOverlaySuffix = ".overlay.png";

// Where an unsure page goes when it is no word of the option.
std::string UnsureFolder(const BatchRequest& request) {
  const bool isWord = request.unsure == "copy" || request.unsure == "skip";
  return isWord || request.output.empty() ? "" : request.unsure;
}

void MakeFolder(const std::string& name) {
  std::error_code code;
  if (!name.empty()) fs::create_directories(name, code);
  if (code) throw files::UsageError(name + ": this folder cannot be made: " + code.message());
}

// A single file's folder has to be there: another name may be a slip of the pen.
void RefuseMissingFolder(const OutputNames& names, const std::string& text) {
  const fs::path folder = fs::path(text).parent_path();
  std::error_code code;
  if (!names.Base().empty() || folder.empty() || fs::is_directory(folder, code)) return;
  throw files::UsageError(text + ": there is no folder " + folder.native());
}

InputList ListFor(const BatchRequest& request) {
  InputRequest inputs = request.inputs;
  for (const std::string& text : {request.output, request.overlay, UnsureFolder(request)}) {
    const std::string base = OutputNames(text, "").Base();
    if (!base.empty()) inputs.passedOver.push_back(base);
  }
  return ListInputs(inputs);
}

void TakeStandardInput(Plan* plan) {
  for (InputFile& file : plan->inputs.files) {
    if (file.path != "-") continue;
    plan->standardInput = plan->passing.At("in");
    KeepStandardInput(plan->standardInput);
    file.place = "stdin" + ExtensionByContent(plan->standardInput);
  }
}

// The picture that goes to the standard output is made in a file first: it goes there whole.
std::string FileForStandardOutput(Plan* plan) {
  if (plan->inputs.inAll > 1) {
    throw files::UsageError("-o -: the standard output takes the pages of one file");
  }
  const InputFile& input = plan->inputs.files[0];
  const std::string content =
      ExtensionByContent(input.path == "-" ? plan->standardInput : input.path);
  // Several pages need a format that holds them, whatever the name says.
  const auto named = files::FormatOfName(input.place);
  const auto stored = files::FormatOfName("out" + content);
  const bool isAsNamed = named && (named == stored || !files::HoldsManyPages(*stored));
  return plan->passing.At("out") +
         (isAsNamed ? fs::path(input.place).extension().native() : content);
}

void RefuseSharedOverlay(const BatchRequest& request, const PageFiles& overlay) {
  if (overlay.names.empty()) return;
  const auto format = files::FormatOfName(overlay.names[0]);
  if (format && files::HoldsManyPages(*format)) {
    throw files::UsageError(request.overlay + ": an overlay is one picture a page; name it .png");
  }
}

}  // namespace

Plan::Plan(const BatchRequest& request)
    : inputs(ListFor(request)),
      output("", ""),
      overlay(request.overlay, kOverlaySuffix),
      unsureFolder(UnsureFolder(request)) {
  TakeStandardInput(this);
  if (request.output == "-" && !inputs.files.empty()) standardOutput = FileForStandardOutput(this);
  output = OutputNames(request.output == "-" ? standardOutput : request.output, "");
}

void CheckPlan(const BatchRequest& request, const Plan& plan, OutputCheck* check) {
  RefuseMissingFolder(plan.output, request.output);
  RefuseMissingFolder(plan.overlay, request.overlay);
  for (const OutputNames* names : {&plan.output, &plan.overlay}) MakeFolder(names->Base());
  MakeFolder(plan.unsureFolder);
  for (const InputFile& input : plan.inputs.files) {
    for (const OutputNames* names : {&plan.output, &plan.overlay}) {
      const PageFiles files = names->FilesFor(input, 1);
      if (names == &plan.overlay) RefuseSharedOverlay(request, files);
      if (!names->AreSettled(input)) continue;
      for (const std::string& path : files.names) check->Add(input.path, path);
    }
  }
}

}  // namespace vorlane::batch
