#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "file_straighteners.h"
#include "straighteners.h"

namespace vorlanepic::bench {

using testing::TestImage;

namespace {

constexpr int kReduction = 8;

// How the search for the page sees the scan.
struct Search {
  int reduction;  // times smaller along either side; 1: the scan itself
  int reduceBy;   // cv::INTER_AREA or cv::INTER_NEAREST
};

// Where the page lies in the scan, in pixels, and how far it is turned clockwise.
struct PagePlace {
  cv::Point2d center;
  cv::Size size;
  double degrees;
};

// The scan in place of a copy: OpenCV takes rows of any length. Empty for 1 bit.
cv::Mat View(const TestImage& scan) {
  const ImageRec& image = *scan.rec();
  if (image.bitsPerPixel == 1) return {};
  const int type = image.bitsPerPixel == 24 ? CV_8UC3 : CV_8UC1;
  return {image.height, image.width, type, image.pixels, static_cast<size_t>(image.lineBytes)};
}

int InterpolationFlag(int32_t interpolation) {
  switch (interpolation) {
    case INTERP_BICUBIC:
      return cv::INTER_CUBIC;
    case INTERP_BILINEAR:
      return cv::INTER_LINEAR;
    default:
      return cv::INTER_NEAREST;
  }
}

// The largest outline of the thresholded, reduced scan, and the rectangle around it.
std::optional<PagePlace> FindPage(const cv::Mat& scan, const Search& search) {
  const int reduction = search.reduction;
  cv::Mat small = scan;
  if (reduction > 1) {
    cv::resize(scan, small, cv::Size(scan.cols / reduction, scan.rows / reduction), 0, 0,
               search.reduceBy);
  }
  if (small.channels() == 3) cv::cvtColor(small, small, cv::COLOR_BGR2GRAY);
  cv::Mat light;
  cv::threshold(small, light, 0, 255, cv::THRESH_BINARY | cv::THRESH_OTSU);

  std::vector<std::vector<cv::Point>> outlines;
  cv::findContours(light, outlines, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
  if (outlines.empty()) return std::nullopt;
  const auto page = std::max_element(
      outlines.begin(), outlines.end(),
      [](const auto& a, const auto& b) { return cv::contourArea(a) < cv::contourArea(b); });

  cv::RotatedRect box = cv::minAreaRect(*page);
  if (box.angle > 45) {
    box.angle -= 90;
    std::swap(box.size.width, box.size.height);
  }
  // Outlines run through the pixels' centres, half a pixel inside the page on every side.
  const auto length = [=](float reduced) { return cvRound(double{reduced + 1} * reduction); };
  return PagePlace{{(box.center.x + 0.5) * reduction - 0.5, (box.center.y + 0.5) * reduction - 0.5},
                   {length(box.size.width), length(box.size.height)},
                   box.angle};
}

// One pass over the full scan: turns the page upright and cuts it out.
void TurnPage(const cv::Mat& scan, const PagePlace& place, int32_t interpolation,
              cv::Mat& upright) {
  cv::Mat turn = cv::getRotationMatrix2D(place.center, place.degrees, 1);
  turn.at<double>(0, 2) += (place.size.width - 1) / 2.0 - place.center.x;
  turn.at<double>(1, 2) += (place.size.height - 1) / 2.0 - place.center.y;
  cv::warpAffine(scan, upright, turn, place.size, InterpolationFlag(interpolation),
                 cv::BORDER_CONSTANT);
}

std::shared_ptr<TestImage> CopyOf(const cv::Mat& image) {
  auto copy = std::make_shared<TestImage>(image.cols, image.rows, image.channels() * 8);
  for (int32_t y = 0; y < image.rows; ++y) {
    std::copy_n(image.ptr(y), image.cols * image.channels(), copy->row(y));
  }
  return copy;
}

// OpenCV has no 1-bit images: every byte of a row becomes eight pixels of 0 or 255, and back.
void UnpackBits(const ImageRec& scan, cv::Mat& bytes) {
  static const auto kEightPixels = [] {
    std::array<std::array<uint8_t, 8>, 256> table{};
    for (size_t value = 0; value < 256; ++value) {
      for (size_t bit = 0; bit < 8; ++bit) {
        table[value][bit] = (value & (size_t{0x80} >> bit)) != 0 ? 255 : 0;
      }
    }
    return table;
  }();
  bytes.create(scan.height, (scan.width + 7) / 8 * 8, CV_8UC1);
  for (int32_t y = 0; y < scan.height; ++y) {
    uint8_t* to = bytes.ptr(y);
    for (int32_t i = 0; i < bytes.cols / 8; ++i) {
      std::memcpy(to + 8 * i, kEightPixels[scan.rows[y][i]].data(), 8);
    }
  }
}

void PackBits(const cv::Mat& bytes, cv::Mat& bits) {
  bits.create(bytes.rows, (bytes.cols + 7) / 8, CV_8UC1);
  for (int32_t y = 0; y < bytes.rows; ++y) {
    const uint8_t* from = bytes.ptr(y);
    uint8_t* to = bits.ptr(y);
    const int32_t whole = bytes.cols / 8;
    for (int32_t i = 0; i < whole; ++i) {
      uint64_t eight = 0;
      std::memcpy(&eight, from + 8 * i, 8);
      // Gathers the eight low bits in the top byte, the first pixel's highest.
      to[i] = static_cast<uint8_t>((eight & 0x0101010101010101u) * 0x8040201008040201u >> 56);
    }
    if (bytes.cols % 8 == 0) continue;
    uint32_t last = 0;
    for (int32_t x = 8 * whole; x < bytes.cols; ++x) {
      last |= (from[x] & 0x80u) >> (x - 8 * whole);
    }
    to[whole] = static_cast<uint8_t>(last);
  }
}

bool StraightenBytes(const cv::Mat& scan, const Search& search, int32_t interpolation,
                     cv::Mat& upright, StraightPage* check) {
  const std::optional<PagePlace> place = FindPage(scan, search);
  if (!place) return false;
  TurnPage(scan, *place, interpolation, upright);
  if (check != nullptr) *check = {place->degrees, CopyOf(upright)};
  return true;
}

bool StraightenBits(const ImageRec& scan, const Search& search, cv::Mat& bytes,
                    cv::Mat& uprightBytes, cv::Mat& upright, StraightPage* check) {
  UnpackBits(scan, bytes);
  if (!StraightenBytes(bytes, search, INTERP_NEAREST, uprightBytes, check)) return false;
  PackBits(uprightBytes, upright);
  return true;
}

Straightener OneOf(const TestImage& scan, int32_t interpolation, const std::string& name,
                   const Search& search, bool keepsBuffers) {
  const ImageRec* image = scan.rec();
  const cv::Mat view = View(scan);
  auto kept = std::make_shared<std::array<cv::Mat, 3>>();
  return {name, [=](StraightPage* check) {
            std::array<cv::Mat, 3> fresh;
            std::array<cv::Mat, 3>& buffers = keepsBuffers ? *kept : fresh;
            if (image->bitsPerPixel == 1) {
              return StraightenBits(*image, search, buffers[0], buffers[1], buffers[2], check);
            }
            return StraightenBytes(view, search, interpolation, buffers[0], check);
          }};
}

}  // namespace

std::vector<Straightener> OpenCvStraighteners(const TestImage& scan, int32_t interpolation) {
  return {
      OneOf(scan, interpolation, "OpenCV, averaged search", {kReduction, cv::INTER_AREA}, false),
      OneOf(scan, interpolation, "OpenCV, sampled search, buffers kept",
            {kReduction, cv::INTER_NEAREST}, true)};
}

Straightener OpenCvOutline(const TestImage& scan, int32_t interpolation) {
  return OneOf(scan, interpolation, "OpenCV, outline at full size", {1, cv::INTER_AREA}, false);
}

Straightener OpenCvRotation(const TestImage& scan, int32_t interpolation) {
  const cv::Mat view = View(scan);
  const PagePlace place = *FindPage(view, {kReduction, cv::INTER_AREA});
  auto upright = std::make_shared<cv::Mat>();
  return {"OpenCV, buffer kept", [=](StraightPage* check) {
            TurnPage(view, place, interpolation, *upright);
            if (check != nullptr) *check = {place.degrees, CopyOf(*upright)};
            return true;
          }};
}

bool StraightenFileByOpenCv(const std::string& from, const std::string& to) {
  const cv::Mat scan = cv::imread(from, cv::IMREAD_UNCHANGED);
  cv::Mat upright;
  return !scan.empty() &&
         StraightenBytes(scan, {kReduction, cv::INTER_AREA}, INTERP_BICUBIC, upright, nullptr) &&
         cv::imwrite(to, upright, {cv::IMWRITE_JPEG_QUALITY, 90});
}

void SetOpenCvThreads(int32_t count) { cv::setNumThreads(count); }

}  // namespace vorlanepic::bench
