// Every exported service by depth, interpolation, size and angle.
#include <cstring>

#include <benchmark/benchmark.h>

#include "bench_grid.h"
#include "frame/scratch.h"
#include "stages_bench.h"

using namespace vorlanepic;
using namespace vorlanepic::bench;

namespace {

constexpr int32_t kThreshold = 100;  // between the drawn background and the drawn paper
constexpr uint8_t kBlack[3] = {0, 0, 0};

// Runs `call` until enough time is measured; any other status than 0 ends the benchmark as failed.
template <typename Call>
void Measure(benchmark::State& state, Call call) {
  while (state.KeepRunning()) {
    const int32_t status = call();
    if (status != STATUS_OK) {
      state.SkipWithError(("status " + std::to_string(status)).c_str());
      return;
    }
  }
}

template <typename Run>
void Register(const std::string& name, Run run) {
  benchmark::RegisterBenchmark(name.c_str(), run)->UseRealTime()->Unit(benchmark::kMillisecond);
}

void Vorlane(benchmark::State& state, const Frame& frame, int32_t interpolation) {
  const ImageRec* source = ScanOf(frame).rec();
  Measure(state, [&] {
    double angle = 0;
    frame::ScratchImage upright;
    return ImageVorlaneEx(source, interpolation, 0, 0, &angle, upright.rec());
  });
}

// In the caller's buffer, which is filled anew for every round, unmeasured.
void VorlaneInPlace(benchmark::State& state, const Frame& frame, int32_t interpolation) {
  const ImageRec* source = ScanOf(frame).rec();
  std::vector<uint8_t> buffer(static_cast<size_t>(source->imageBytes));
  while (state.KeepRunning()) {
    state.PauseTiming();
    std::memcpy(buffer.data(), source->pixels, buffer.size());
    int32_t width = source->width;
    int32_t height = source->height;
    state.ResumeTiming();
    const int32_t isDone =
        VorlanePicEx(buffer.data(), &width, &height, frame.bitsPerPixel, interpolation);
    if (isDone != 1 || width == source->width) {
      state.SkipWithError("no page");
      return;
    }
  }
}

DeskewCropParam CropParam(int32_t method) {
  DeskewCropParam param{};
  param.DeskewMethod = method;
  param.SearchBorderPixelNum = 2;
  param.ToLineDistance = 8;
  param.ToLineMixDis = 5;
  param.parallel = 3.5;
  param.perpendicular = 2.0;
  param.SegmentLen = 10;
  param.SearchLimitNum = 3;
  param.PixelNum = 5;
  param.CropPixelNum = 8;
  param.GroupAngle = 2.0;
  return param;
}

void DeskewCrop(benchmark::State& state, const Frame& frame, int32_t interpolation,
                int32_t method) {
  const ImageRec* source = ScanOf(frame).rec();
  Measure(state, [&] {
    double angle = 0;
    frame::ScratchImage cropped;
    return ImageDeskewCropEx(source, interpolation, kThreshold, 0, 0, kBlack, &angle, cropped.rec(),
                             CropParam(method), 1);
  });
}

void DeskewCropDib(benchmark::State& state, const Frame& frame, int32_t interpolation) {
  const DibView scan(*ScanOf(frame).rec(), 300);
  Measure(state, [&] {
    double angle = 0;
    DibRec cropped{};
    const int32_t status = ImageDeskewCrop(scan.rec(), interpolation, kThreshold, 0, 0, kBlack,
                                           &angle, &cropped, CropParam(2), 1);
    ImgbufDestory(&cropped);
    return status;
  });
}

void DeskewAngle(benchmark::State& state, const Frame& frame) {
  const DibView scan(*ScanOf(frame).rec(), 300);
  Measure(state, [&] {
    double angle = 0;
    return ImageDeskewAngle(scan.rec(), kThreshold, &angle, CropParam(2));
  });
}

void DeskewCropWithLine(benchmark::State& state, const Frame& frame, int32_t interpolation) {
  const DibView form(*FormOf(frame).rec(), FormDotsPerInch(frame));
  Measure(state, [&] {
    double angle = 0;
    DibRec cropped{};
    const int32_t status =
        ImageDeskewCropWithLine(form.rec(), interpolation, kThreshold, 0, 0, kBlack, &angle,
                                &cropped, CropParam(2), 0, 0, 0, 0, 1);
    ImgbufDestory(&cropped);
    return status;
  });
}

void BarAngle(benchmark::State& state, const Frame& frame) {
  const int32_t dotsPerInch = FormDotsPerInch(frame);
  const DibView form(*FormOf(frame).rec(), dotsPerInch);
  Measure(state, [&] {
    double angle = 0;
    return GetAngleOMR(form.rec(), kThreshold, 3 * dotsPerInch, dotsPerInch / 50, dotsPerInch / 10,
                       &angle);
  });
}

using Mark = decltype(&BWBlockMarkHorEx);

void Blocks(benchmark::State& state, Mark mark, ByteImage (*draw)(double), double megapixels) {
  ByteImage image = draw(megapixels);
  if (mark == &ImageBlockMarkHorEx) {
    for (uint8_t& pixel : image.pixels) pixel = static_cast<uint8_t>(255 - pixel);
  }
  const BlockMarkParam param{0, 0, 0, kThreshold};
  const BlockRect whole{0, 0, image.width, image.height};
  Measure(state, [&] {
    BlockSetRec set{};
    const int32_t status =
        mark(image.pixels.data(), image.height, image.width, &param, &whole, &set);
    DestoryBlockSetRec(&set);
    return status;
  });
}

void SortedBlocks(benchmark::State& state, double megapixels) {
  const ByteImage image = DenseText(megapixels);
  Measure(state, [&] {
    BlockSetRec set{};
    const int32_t isDone = bw_label_center(image.pixels.data(), image.height, image.width, &set);
    DestoryBlockSetRec(&set);
    return isDone == 1 ? STATUS_OK : BAD_ARGUMENT;
  });
}

void RegisterPageServices() {
  ForEachKind([](const Frame& frame, int32_t interpolation) {
    const std::string name = NameOf(frame, interpolation);
    Register("ImageVorlaneEx/" + name, [=](auto& state) { Vorlane(state, frame, interpolation); });
    Register("VorlanePicEx/" + name,
             [=](auto& state) { VorlaneInPlace(state, frame, interpolation); });
    Register("ImageDeskewCropEx/method1/" + name,
             [=](auto& state) { DeskewCrop(state, frame, interpolation, 1); });
    Register("ImageDeskewCropEx/method2/" + name,
             [=](auto& state) { DeskewCrop(state, frame, interpolation, 2); });
    Register("ImageDeskewCrop/" + name,
             [=](auto& state) { DeskewCropDib(state, frame, interpolation); });
    Register("ImageDeskewCropWithLine/" + name,
             [=](auto& state) { DeskewCropWithLine(state, frame, interpolation); });
  });
  ForEachFrame([](const Frame& frame) {
    Register("ImageDeskewAngle/" + NameOf(frame), [=](auto& state) { DeskewAngle(state, frame); });
    Register("GetAngleOMR/" + NameOf(frame), [=](auto& state) { BarAngle(state, frame); });
  });
}

void RegisterBlockServices() {
  for (const double megapixels : kMegapixels) {
    const std::string size = std::to_string(static_cast<int>(megapixels)) + "MP";
    Register("BWBlockMarkHorEx/text/" + size,
             [=](auto& state) { Blocks(state, BWBlockMarkHorEx, DenseText, megapixels); });
    Register("BWBlockMarkHorEx/noise/" + size,
             [=](auto& state) { Blocks(state, BWBlockMarkHorEx, Noise, megapixels); });
    Register("ImageBlockMarkHorEx/text/" + size,
             [=](auto& state) { Blocks(state, ImageBlockMarkHorEx, DenseText, megapixels); });
    Register("ImageBlockMarkHorEx/noise/" + size,
             [=](auto& state) { Blocks(state, ImageBlockMarkHorEx, Noise, megapixels); });
    Register("bw_label_center/text/" + size, [=](auto& state) { SortedBlocks(state, megapixels); });
  }
}

// How the time of one page grows with its size.
void RegisterGrowth() {
  for (const double megapixels : {2.0, 8.0, 24.0, 48.0, 96.0}) {
    for (const double degrees : {2.0, 40.0}) {
      for (const int32_t bitsPerPixel : {1, 8, 24}) {
        const Frame frame{megapixels, degrees, bitsPerPixel};
        const int32_t interpolation = bitsPerPixel == 1 ? INTERP_NEAREST : INTERP_BILINEAR;
        Register("Growth/" + NameOf(frame),
                 [=](auto& state) { Vorlane(state, frame, interpolation); });
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RegisterPageServices();
  RegisterBlockServices();
  RegisterStages();
  RegisterGrowth();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
