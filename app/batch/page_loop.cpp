#include "app/batch/page_loop.h"

#include <algorithm>
#include <cstdio>

#include "app/batch/decoder_choice.h"
#include "app/batch/exit_codes.h"
#include "app/batch/page_record.h"
#include "app/batch/plan.h"
#include "app/batch/printable_name.h"
#include "app/files/page_image.h"
#include "app/files/picture_file.h"

namespace vorlane::batch {
namespace {

class Loop {
 public:
  Loop(const BatchRequest& request, const PageRun& run)
      : request_(request),
        decoders_(DecodersFor(request)),
        run_(run),
        plan_(request),
        check_(plan_.inputs.files, request.overwriting, request.resumes) {
    CheckPlan(request, plan_, &check_);
    limits_ = request.limits;
    limits_.decoders = decoders_.get();
  }

  int Do() {
    for (const InputFile& input : plan_.inputs.files) {
      Guard(input, 0, 0, [&] { DoFile(input); });
    }
    return exit_;
  }

 private:
  void DoFile(const InputFile& input) {
    const std::string& path = input.path == "-" ? plan_.standardInput : input.path;
    const files::PictureFile file(input.path, std::make_shared<files::FileSource>(path), limits_);
    const PageFiles overlay = plan_.overlay.FilesFor(input, file.count());
    if (!plan_.overlay.AreSettled(input)) {
      for (const std::string& name : overlay.names) check_.Add(input.path, name);
    }
    for (int32_t number = 1; number <= file.count() && std::ferror(stdout) == 0; ++number) {
      Guard(input, number, file.count(), [&] {
        files::Page page = file.Read(number);
        if (!page.noPicture.empty()) throw files::FileError(NoPictureWords(page));
        files::TurnByQuarters(request_.rotate, &page);
        run_(page, overlay.names.empty() ? "" : overlay.Of(number));
        (void)std::fflush(stdout);
      });
    }
  }

  template <typename Action>
  void Guard(const InputFile& input, int32_t number, int32_t count, const Action& action) {
    if (std::ferror(stdout) != 0) return;
    try {
      action();
    } catch (const std::runtime_error& error) {
      exit_ = kExitFiles;
      PageRecord record;
      record.command = request_.command;
      record.file = input.path;
      record.number = number;
      record.count = count;
      record.isError = true;
      record.words = error.what();
      (void)std::fflush(stdout);
      (void)std::fprintf(stderr, "vorlane: %s\n", Printable(record.words).c_str());
      if (request_.report.json) std::printf("%s\n", JsonLine(record).c_str());
    }
  }

  const BatchRequest& request_;
  std::unique_ptr<files::Decoders> decoders_;
  files::ReadLimits limits_;
  const PageRun& run_;
  Plan plan_;
  OutputCheck check_;
  int exit_ = kExitAllDone;
};

}  // namespace

int ForEachPage(const BatchRequest& request, const PageRun& run) { return Loop(request, run).Do(); }

}  // namespace vorlane::batch
