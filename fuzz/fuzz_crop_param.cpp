#include "fuzz_crop_param.h"

#include <string>
#include <unistd.h>

#include <sys/mman.h>

namespace vorlanepic::fuzz {

DeskewCropParam ReadCropParam(FuzzInput& input, const char* profile) {
  const char* const paths[] = {profile, profile, profile, "/nowhere/profile.ini", nullptr};
  DeskewCropParam param{};
  param.profilePath = paths[input.In(0, 4)];
  param.useProfile = input.MostlyIn(0, 1);
  param.DeskewMethod = input.MostlyIn(1, 3);
  param.SearchBorderPixelNum = input.MostlyIn(1, 10);
  param.ToLineDistance = input.MostlyIn(1, 20);
  param.ToLineMixDis = input.MostlyIn(1, 20);
  param.parallel = input.MostlyTenths(0, 5);
  param.perpendicular = input.MostlyTenths(0, 5);
  param.SegmentLen = input.MostlyIn(5, 50);
  param.SearchLimitNum = input.MostlyIn(1, 10);
  param.PixelNum = input.MostlyIn(1, 20);
  param.CropPixelNum = input.MostlyIn(1, 60);
  param.GroupAngle = input.MostlyTenths(1, 5);
  return param;
}

const char* PutProfile(std::string_view bytes) {
  static const int file = memfd_create("profile", 0);
  static const std::string path = "/proc/self/fd/" + std::to_string(file);
  const auto length = static_cast<ssize_t>(bytes.size());
  Require(ftruncate(file, 0) == 0 && pwrite(file, bytes.data(), bytes.size(), 0) == length,
          "there is memory for a profile");
  return path.c_str();
}

int32_t ReadCornerOption(FuzzInput& input) {
  constexpr int32_t kAbsurd[] = {INT32_MIN, INT32_MAX, -(1 << 30), 1 << 30, 1 << 20};
  return input.Byte() < 240 ? input.In(-100, 100) : kAbsurd[input.In(0, 4)];
}

}  // namespace vorlanepic::fuzz
