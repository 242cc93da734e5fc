#include <cstring>
#include <memory>
#include <utility>

#include "drawn_calls/catalogue.h"
#include "support/profile_file.h"

namespace vorlanepic::testing {
namespace {

constexpr uint8_t kFill[3] = {10, 20, 30};

DeskewCropParam MethodParam(int32_t method) {
  return {nullptr, 0, method, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 8, 2.0};
}

// Images that a call is to make, and what comes of them.
template <typename Record>
class Images {
 public:
  explicit Images(size_t count) : records_(count) {}
  ~Images() {
    for (Record& record : records_) Release(&record);
  }
  Images(const Images&) = delete;
  Images& operator=(const Images&) = delete;

  Record* data() { return records_.data(); }
  CallResult Result(int32_t status, double angle) const {
    CallResult result{status, status == STATUS_OK, {}};
    if (result.isDone) result.made.push_back(AngleText(angle));
    for (const Record& record : records_) {
      if (!IsEmpty(record)) result.made.push_back(Text(record));
    }
    return result;
  }

 private:
  static bool IsEmpty(const ImageRec& image) { return image.pixels == nullptr; }
  static bool IsEmpty(const DibRec& image) { return image.bits == nullptr; }
  static std::string Text(const ImageRec& image) { return ImageText(image); }
  static std::string Text(const DibRec& image) { return DibText(image); }
  static void Release(ImageRec* image) {
    if (!IsEmpty(*image)) Imgbuf_Destory(image);
  }
  static void Release(DibRec* image) {
    if (!IsEmpty(*image)) ImgbufDestory(image);
  }
  std::vector<Record> records_;
};

CallResult NumberResult(int32_t status, bool isDone, const std::string& made) {
  return {status, isDone, isDone ? std::vector{made} : std::vector<std::string>{}};
}

void AddPicture(const SharedPage& page, Catalogue* calls) {
  calls->Add(page, "picture", {0}, [page](const Around&) {
    return CallResult{0, true, {page->text}};
  });
}

// The result lies in the caller's buffer, which a failed call leaves as it was.
void AddInPlace(const SharedPage& page, bool takesThreshold, Catalogue* calls) {
  calls->Add(page, takesThreshold ? "VorlanePic" : "VorlanePicEx", {0}, [=](const Around& around) {
    const ImageRec& scan = *page->image.rec();
    const auto bytes = static_cast<size_t>(scan.imageBytes);
    std::vector<uint8_t> buffer(bytes * 2);
    std::memcpy(buffer.data(), scan.pixels, bytes);
    int32_t width = scan.width;
    int32_t height = scan.height;
    const int32_t depth = scan.bitsPerPixel;
    int32_t status = 0;
    around([&] {
      status = takesThreshold
                   ? VorlanePic(buffer.data(), &width, &height, depth, INTERP_BICUBIC, 80)
                   : VorlanePicEx(buffer.data(), &width, &height, depth, INTERP_BILINEAR);
    });
    const int32_t lineBytes = (width * depth + 31) / 32 * 4;
    CallResult result{status, status == 1, {}};
    const bool isAsItWas = std::memcmp(buffer.data(), scan.pixels, bytes) == 0 &&
                           width == scan.width && height == scan.height;
    if (result.isDone || !isAsItWas) {
      result.made.push_back(RowsText(buffer.data(), lineBytes, width, height, depth));
    }
    return result;
  });
}

void AddPrunedRotation(const SharedPage& page, int32_t mode, int32_t background, Catalogue* calls) {
  const int32_t threshold = background == 0 ? 0 : 230;
  const std::string words =
      " mode " + std::to_string(mode) + " background " + std::to_string(background);
  calls->Add(page, "ImageVorlaneEx" + words, {OUT_OF_MEMORY}, [=](const Around& around) {
    Images<ImageRec> out(1);
    double angle = 0;
    int32_t status = 0;
    around([&] {
      status = ImageVorlaneEx(page->image.rec(), mode, threshold, background, &angle, out.data());
    });
    return out.Result(status, angle);
  });
  calls->Add(page, "ImageVorlane" + words, {OUT_OF_MEMORY}, [=](const Around& around) {
    Images<ImageRec> out(1);
    int32_t status = 0;
    around(
        [&] { status = ImageVorlane(page->image.rec(), mode, threshold, background, out.data()); });
    return out.Result(status, 0);
  });
}

void AddDeskewAndCrop(const SharedPage& page, int32_t mode, int32_t count,
                      const DeskewCropParam& param, const std::string& words, Catalogue* calls) {
  calls->Add(page, "ImageDeskewCropEx" + words, {OUT_OF_MEMORY}, [=](const Around& around) {
    const std::vector<ImageRec> set(static_cast<size_t>(count), *page->image.rec());
    Images<ImageRec> out(set.size());
    double angle = 0;
    int32_t status = 0;
    around([&] {
      status =
          ImageDeskewCropEx(set.data(), mode, 0, 0, 2, kFill, &angle, out.data(), param, count);
    });
    return out.Result(status, angle);
  });
  calls->Add(page, "ImageDeskewCrop" + words, {OUT_OF_MEMORY}, [=](const Around& around) {
    const std::vector<DibRec> set(static_cast<size_t>(count), *page->dib.rec());
    Images<DibRec> out(set.size());
    double angle = 0;
    int32_t status = 0;
    around([&] {
      status = ImageDeskewCrop(set.data(), mode, 60, 0, 0, kFill, &angle, out.data(), param, count);
    });
    return out.Result(status, angle);
  });
}

// `profile` is that of `param`, or null.
void AddAngle(const SharedPage& page, const DeskewCropParam& param,
              const std::shared_ptr<ProfileOnDisk>& profile, const std::string& words,
              Catalogue* calls) {
  calls->Add(page, "ImageDeskewAngle" + words, {OUT_OF_MEMORY}, [=](const Around& around) {
    DeskewCropParam used = param;
    if (profile) used.profilePath = profile->path();
    double angle = 0;
    int32_t status = 0;
    around([&] { status = ImageDeskewAngle(page->dib.rec(), 60, &angle, used); });
    return NumberResult(status, status == STATUS_OK, AngleText(angle));
  });
}

// Settings from a file.
void AddProfiles(const SharedPage& page, Catalogue* calls) {
  DeskewCropParam param = MethodParam(2);
  param.useProfile = 1;
  param.profilePath = "there is no such profile";
  AddAngle(page, param, nullptr, " without its profile", calls);
  const std::string withDefaults = calls->last();
  const auto profile =
      std::make_shared<ProfileOnDisk>("[ImageDeskew2]\nSearchBorderPixelNum=4\nSegmentLen=20\n");
  AddAngle(page, param, profile, " with a profile", calls);
  calls->OrAs(withDefaults);
}

void AddForm(const SharedPage& page, int32_t minLength, Catalogue* calls) {
  calls->Add(page, "ImageDeskewCropWithLine", {OUT_OF_MEMORY, -1}, [=](const Around& around) {
    Images<DibRec> out(1);
    double angle = 0;
    int32_t status = 0;
    around([&] {
      status = ImageDeskewCropWithLine(page->dib.rec(), INTERP_BILINEAR, 100, 0, 0, kFill, &angle,
                                       out.data(), MethodParam(2), 0, 0, 0, 0, 1);
    });
    return out.Result(status, angle);
  });
  calls->Add(page, "GetAngleOMR", {-1}, [=](const Around& around) {
    double angle = 0;
    int32_t status = 0;
    around([&] { status = GetAngleOMR(page->dib.rec(), 100, minLength, 4, 20, &angle); });
    return NumberResult(status, status == 0, AngleText(angle));
  });
  if (page->image.rec()->bitsPerPixel != 8) return;
  calls->Add(page, "get_angle_omr", {-1}, [=](const Around& around) {
    const ImageRec& image = *page->image.rec();
    double angle = 0;
    int32_t status = 0;
    around([&] {
      status =
          get_angle_omr(image.pixels, image.height, image.lineBytes, 100, minLength, 4, 20, &angle);
    });
    return NumberResult(status, status == 0, AngleText(angle));
  });
}

void AddImageLibrary(const SharedPage& page, Catalogue* calls) {
  const int32_t depth = page->image.rec()->bitsPerPixel;
  calls->Add(page, "Imgbuf_New", {OUT_OF_MEMORY}, [=](const Around& around) {
    Images<ImageRec> out(1);
    int32_t status = 0;
    around([&] { status = Imgbuf_New(out.data(), 123, 45, depth, 0); });
    return out.Result(status, 0);
  });
  calls->Add(page, "ImgbufNew", {OUT_OF_MEMORY}, [=](const Around& around) {
    Images<DibRec> out(1);
    int32_t status = 0;
    around([&] { status = ImgbufNew(out.data(), 123, 45, depth); });
    return out.Result(status, 0);
  });
}

// The sheet's sides are `share` times as long as for the broad calls.
SharedPage DrawSheet(int32_t bitsPerPixel, double degrees, int32_t width, int32_t height,
                     double share = 1.0) {
  return std::make_shared<Page>(
      std::to_string(bitsPerPixel) + " bits, " + std::to_string(degrees) + " degrees",
      DrawnSheet(bitsPerPixel, degrees, width, height, 0.47 * share, 0.57 * share));
}

SharedPage DrawForm(int32_t bitsPerPixel, bool isTall, double scale) {
  DrawnBarSheet sheet;
  sheet.page.imageWidth = static_cast<int32_t>(1001 * scale);
  sheet.page.imageHeight = static_cast<int32_t>(1100 * scale);
  sheet.page.pageWidth = 860 * scale;
  sheet.page.pageHeight = 960 * scale;
  sheet.page.centerX = 500 * scale;
  sheet.page.centerY = 550 * scale;
  sheet.page.bitsPerPixel = bitsPerPixel;
  sheet.page.degrees = 1.5;
  sheet.barLength = 700 * scale;
  sheet.barThickness = 10;
  sheet.barX = isTall ? -300 * scale : 0;
  sheet.barY = isTall ? 0 : -300 * scale;
  sheet.tall = isTall;
  return std::make_shared<Page>(
      std::to_string(bitsPerPixel) + " bits, form with a " + (isTall ? "tall" : "wide") + " bar",
      DrawBarSheet(sheet));
}

void AddNarrow(int32_t depth, Catalogue* calls) {
  const SharedPage page = DrawSheet(depth, 3.0, 261, 300, 1.4);
  AddInPlace(page, true, calls);
  AddInPlace(page, false, calls);
  AddPrunedRotation(page, INTERP_BICUBIC, 0, calls);
  for (const int32_t method : {1, 2, 3}) {
    const std::string words = " method " + std::to_string(method);
    AddDeskewAndCrop(page, INTERP_BICUBIC, 2, MethodParam(method), words, calls);
    AddAngle(page, MethodParam(method), nullptr, words, calls);
  }
  AddProfiles(page, calls);
  AddImageLibrary(page, calls);
  if (depth == 8) AddBlocks(page, calls);
  AddForm(DrawForm(depth, false, 0.9), 400, calls);
}

void AddBroad(int32_t depth, Catalogue* calls) {
  for (const double degrees : {0.0, 1.3, -2.7, 11.0, -33.0}) {
    const SharedPage page = DrawSheet(depth, degrees, 601, 640);
    AddPicture(page, calls);
    AddInPlace(page, true, calls);
    AddInPlace(page, false, calls);
    for (int32_t mode = INTERP_BICUBIC; mode <= INTERP_NEAREST; ++mode) {
      for (const int32_t background : {0, 255}) AddPrunedRotation(page, mode, background, calls);
      for (const int32_t method : {1, 2, 3}) {
        const std::string words =
            " method " + std::to_string(method) + " mode " + std::to_string(mode);
        AddDeskewAndCrop(page, mode, 1, MethodParam(method), words, calls);
        if (mode == INTERP_BICUBIC) AddAngle(page, MethodParam(method), nullptr, words, calls);
      }
    }
    AddProfiles(page, calls);
    if (depth == 8) AddBlocks(page, calls);
  }
  for (const bool isTall : {false, true}) {
    const SharedPage form = DrawForm(depth, isTall, 1.0);
    AddPicture(form, calls);
    AddForm(form, 500, calls);
  }
}

}  // namespace

std::vector<DrawnCall> ServiceCalls(Extent extent) {
  Catalogue calls;
  for (const int32_t depth : {1, 8, 24}) {
    extent == Extent::kBroad ? AddBroad(depth, &calls) : AddNarrow(depth, &calls);
  }
  AddNoiseAtTop(&calls);
  return calls.Take();
}

}  // namespace vorlanepic::testing
