#include <cstdio>
#include <memory>
#include <utility>

#include "drawn_calls/catalogue.h"
#include "drawn_calls/checksum.h"
#include "drawn_calls/drawn_calls.h"
#include "support/page_drawing.h"
#include "vorlane/vorlane.h"

namespace vorlanepic::testing {
namespace {

struct Format {
  const char* name;
  int32_t code;
  int32_t drawnBits;  // of the drawing that it is made from
};
constexpr Format kFormats[] = {
    {"light bits", VORLANE_BIT_LIGHT, 1}, {"dark bits", VORLANE_BIT_DARK, 1},
    {"grey", VORLANE_GREY8, 8},           {"BGR", VORLANE_BGR24, 24},
    {"RGB", VORLANE_RGB24, 24},           {"BGRX", VORLANE_BGRX32, 24},
    {"RGBX", VORLANE_RGBX32, 24}};

// A drawn page in one of the engine's formats, its rows without padding.
class EnginePage {
 public:
  EnginePage(const TestImage& drawn, const Format& format) : format_(format.code) {
    const ImageRec& image = *drawn.rec();
    width_ = image.width;
    height_ = image.height;
    for (int32_t y = 0; y < height_; ++y) AddRow(image.rows[y], image.bitsPerPixel);
  }
  vorlane_image image() const {
    return {bytes_.data(), static_cast<ptrdiff_t>(vorlane_row_bytes(format_, width_)), width_,
            height_, format_};
  }

 private:
  void AddRow(const uint8_t* row, int32_t bitsPerPixel) {
    if (bitsPerPixel < 24) {
      const uint8_t turned = format_ == VORLANE_BIT_DARK ? 255 : 0;
      const size_t count = vorlane_row_bytes(format_, width_);
      for (size_t i = 0; i < count; ++i) bytes_.push_back(row[i] ^ turned);
      return;
    }
    const bool isBlueFirst = format_ == VORLANE_BGR24 || format_ == VORLANE_BGRX32;
    const bool hasFourth = format_ == VORLANE_BGRX32 || format_ == VORLANE_RGBX32;
    for (int32_t x = 0; x < width_; ++x, row += 3) {
      bytes_.insert(bytes_.end(), {row[isBlueFirst ? 0 : 2], row[1], row[isBlueFirst ? 2 : 0]});
      if (hasFourth) bytes_.push_back(7);
    }
  }

  int32_t format_;
  int32_t width_ = 0;
  int32_t height_ = 0;
  std::vector<uint8_t> bytes_;
};

std::string FindingText(const vorlane_finding& finding) {
  char text[256];
  (void)std::snprintf(text, sizeof text, "turn %.6f, confidence %d and %d, by %u, corners",
                      finding.turn, finding.turn_confidence, finding.cut_confidence, finding.by);
  std::string words = text;
  for (const vorlane_point& corner : finding.corners) {
    (void)std::snprintf(text, sizeof text, " %.3f,%.3f", corner.x, corner.y);
    words += text;
  }
  words += ", reasons";
  for (int32_t i = 0; i < finding.reason_count; ++i) {
    words.append(" ").append(std::to_string(finding.reasons[i].code));
  }
  return words;
}

// A page with the context that its calls share, as a host keeps one.
struct Work {
  EnginePage page;
  vorlane_context* context = nullptr;
  vorlane_finding finding{};

  Work(const TestImage& drawn, const Format& format) : page(drawn, format) {
    vorlane_context_new(&context);
    vorlane_finding_init(&finding, sizeof finding);
    const vorlane_image image = page.image();
    vorlane_detect(context, &image, nullptr, &finding);
  }
  ~Work() { vorlane_context_free(context); }
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;
};
using SharedWork = std::shared_ptr<Work>;

CallResult DetectResult(const Work& work, bool isForm, const Around& around) {
  vorlane_detect_options options;
  vorlane_detect_options_init(&options, sizeof options);
  options.is_form = isForm ? 1 : 0;
  vorlane_finding finding;
  vorlane_finding_init(&finding, sizeof finding);
  const vorlane_finding before = finding;
  const vorlane_image image = work.page.image();
  CallResult result;
  around([&] { result.status = vorlane_detect(work.context, &image, &options, &finding); });
  result.isDone = result.status == VORLANE_OK;
  const bool isAsItWas = std::memcmp(&finding, &before, sizeof finding) == 0;
  if (result.isDone || !isAsItWas) result.made.push_back(FindingText(finding));
  return result;
}

CallResult ApplyResult(const Work& work, int32_t threads, const Around& around) {
  vorlane_apply_options options;
  vorlane_apply_options_init(&options, sizeof options);
  options.threads = threads;
  const vorlane_image image = work.page.image();
  int32_t width = 0;
  int32_t height = 0;
  CallResult result;
  result.status = vorlane_result_size(&image, &work.finding, &options, &width, &height);
  if (result.status != VORLANE_OK) return result;
  const size_t rowBytes = vorlane_row_bytes(image.format, width);
  std::vector<uint8_t> pixels(rowBytes * static_cast<size_t>(height));
  vorlane_result made{pixels.data(), static_cast<ptrdiff_t>(rowBytes), width, height};
  around(
      [&] { result.status = vorlane_apply(work.context, &image, &work.finding, &options, &made); });
  result.isDone = result.status == VORLANE_OK;
  // Pixels of a result that was begun are nobody's.
  if (!result.isDone) return result;
  Checksum sum;
  sum.Add(pixels);
  result.made.push_back(std::to_string(made.width) + " x " + std::to_string(made.height) + " " +
                        sum.text());
  return result;
}

CallResult ContextResult(const Around& around) {
  vorlane_context* context = nullptr;
  CallResult result;
  around([&] { result.status = vorlane_context_new(&context); });
  result.isDone = result.status == VORLANE_OK;
  if (context != nullptr) result.made.emplace_back("a context");
  vorlane_context_free(context);
  return result;
}

void AddPage(const std::string& name, const TestImage& drawn, const Format& format,
             std::vector<DrawnCall>* calls) {
  const auto work = std::make_shared<Work>(drawn, format);
  const std::string of = std::string(format.name) + ", " + name;
  const auto add = [&](const std::string& call, std::function<CallResult(const Around&)> run) {
    calls->push_back({of + " " + call, {VORLANE_NO_MEMORY}, std::move(run), "", false});
  };
  add("vorlane_detect",
      [work](const Around& around) { return DetectResult(*work, false, around); });
  add("vorlane_detect of a form",
      [work](const Around& around) { return DetectResult(*work, true, around); });
  for (const int32_t threads : {1, 3}) {
    add("vorlane_apply on " + std::to_string(threads) + " threads",
        [=](const Around& around) { return ApplyResult(*work, threads, around); });
  }
  add("vorlane_detect after vorlane_context_trim", [work](const Around& around) {
    vorlane_context_trim(work->context);
    return DetectResult(*work, false, around);
  });
}

}  // namespace

std::vector<DrawnCall> EngineCalls(Extent extent) {
  std::vector<DrawnCall> calls;
  calls.push_back({"vorlane_context_new", {VORLANE_NO_MEMORY}, ContextResult, "", false});
  const bool isBroad = extent == Extent::kBroad;
  const std::vector<double> turns = isBroad ? std::vector{1.7, -4.2, 13.0} : std::vector{2.0};
  for (const double degrees : turns) {
    for (const Format& format : kFormats) {
      const TestImage drawn = DrawnSheet(format.drawnBits, degrees, isBroad ? 601 : 260,
                                         isBroad ? 760 : 320, 0.6, 0.65);
      AddPage(std::to_string(degrees) + " degrees", drawn, format, &calls);
    }
  }
  return calls;
}

}  // namespace vorlanepic::testing
