#include <cmath>
#include <memory>

#include <leptonica/allheaders.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "labellers.h"

namespace vorlanepic::bench {
namespace {

struct OpenCvBlocks {
  cv::Mat labels;
  cv::Mat stats;
  cv::Mat centers;
  int count = 0;  // with the background, label 0
};

void LabelWithOpenCv(const cv::Mat& image, int algorithm, OpenCvBlocks& blocks) {
  blocks.count = cv::connectedComponentsWithStats(image, blocks.labels, blocks.stats,
                                                  blocks.centers, 8, CV_32S, algorithm);
}

// Every block's pixels, one block behind the other, in one walk over the labels.
std::vector<cv::Point_<uint16_t>> ListPixels(const OpenCvBlocks& blocks) {
  std::vector<size_t> next(static_cast<size_t>(blocks.count));
  size_t total = 0;
  for (int label = 1; label < blocks.count; ++label) {
    next[static_cast<size_t>(label)] = total;
    total += static_cast<size_t>(blocks.stats.at<int>(label, cv::CC_STAT_AREA));
  }
  std::vector<cv::Point_<uint16_t>> pixels(total);
  for (int y = 0; y < blocks.labels.rows; ++y) {
    const int* row = blocks.labels.ptr<int>(y);
    for (int x = 0; x < blocks.labels.cols; ++x) {
      if (row[x] == 0) continue;
      pixels[next[static_cast<size_t>(row[x])]++] = {static_cast<uint16_t>(x),
                                                     static_cast<uint16_t>(y)};
    }
  }
  return pixels;
}

BlockTotals Count(const OpenCvBlocks& blocks, size_t listed) {
  BlockTotals totals{};
  totals.blocks = blocks.count - 1;
  totals.listed = static_cast<int64_t>(listed);
  for (int label = 1; label < blocks.count; ++label) {
    totals.pixels += blocks.stats.at<int>(label, cv::CC_STAT_AREA);
    totals.perimeters += blocks.stats.at<int>(label, cv::CC_STAT_WIDTH) +
                         blocks.stats.at<int>(label, cv::CC_STAT_HEIGHT);
    // Truncated, as ours are.
    totals.centerSum += std::floor(blocks.centers.at<double>(label, 0)) +
                        std::floor(blocks.centers.at<double>(label, 1));
  }
  return totals;
}

PIX* ToPix(const ByteImage& image) {
  PIX* pix = pixCreate(image.width, image.height, 1);
  for (int32_t y = 0; y < image.height; ++y) {
    l_uint32* line = pixGetData(pix) + static_cast<ptrdiff_t>(y) * pixGetWpl(pix);
    const uint8_t* row = image.pixels.data() + static_cast<ptrdiff_t>(y) * image.width;
    for (int32_t x = 0; x < image.width; ++x) {
      if (row[x] != 0) SET_DATA_BIT(line, x);
    }
  }
  return pix;
}

BlockTotals Count(BOXA* boxes, NUMA* areas, PTA* centers) {
  BlockTotals totals{};
  totals.blocks = boxaGetCount(boxes);
  for (int32_t i = 0; i < totals.blocks; ++i) {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
    boxaGetBoxGeometry(boxes, i, &x, &y, &width, &height);
    float area = 0;
    numaGetFValue(areas, i, &area);
    float centerX = 0;  // from the box's corner
    float centerY = 0;
    ptaGetPt(centers, i, &centerX, &centerY);
    totals.pixels += static_cast<int64_t>(area);
    totals.perimeters += width + height;
    totals.centerSum += std::floor(x + double{centerX}) + std::floor(y + double{centerY});
  }
  return totals;
}

}  // namespace

std::vector<Labeller> OpenCvLabellers(const ByteImage& image) {
  const cv::Mat view(image.height, image.width, CV_8UC1, const_cast<uint8_t*>(image.pixels.data()));
  // Of its algorithms this is the fastest on one thread; kept labels spare it the page faults.
  constexpr int kFastest = cv::CCL_GRANA;
  const auto kept = std::make_shared<OpenCvBlocks>();
  return {{"OpenCV, as it comes",
           [view](BlockTotals* totals) {
             OpenCvBlocks blocks;
             LabelWithOpenCv(view, cv::CCL_DEFAULT, blocks);
             if (totals != nullptr) *totals = Count(blocks, 0);
             return blocks.count > 0;
           }},
          {"OpenCV, fastest algorithm, labels kept",
           [view, kept](BlockTotals* totals) {
             LabelWithOpenCv(view, kFastest, *kept);
             if (totals != nullptr) *totals = Count(*kept, 0);
             return kept->count > 0;
           }},
          {"the same, with pixel lists", [view, kept](BlockTotals* totals) {
             LabelWithOpenCv(view, kFastest, *kept);
             const auto pixels = ListPixels(*kept);
             if (totals != nullptr) *totals = Count(*kept, pixels.size());
             return !pixels.empty();
           }}};
}

std::vector<Labeller> LeptonicaLabellers(const ByteImage& image) {
  const std::shared_ptr<PIX> pix(ToPix(image), [](PIX* old) { pixDestroy(&old); });
  return {{"Leptonica", [pix](BlockTotals* totals) {
             PIXA* parts = nullptr;
             BOXA* boxes = pixConnComp(pix.get(), &parts, 8);
             NUMA* areas = pixaCountPixels(parts);
             PTA* centers = pixaCentroids(parts);
             const bool isDone = boxes != nullptr && areas != nullptr && centers != nullptr;
             if (isDone && totals != nullptr) *totals = Count(boxes, areas, centers);
             ptaDestroy(&centers);
             numaDestroy(&areas);
             boxaDestroy(&boxes);
             pixaDestroy(&parts);
             return isDone;
           }}};
}

}  // namespace vorlanepic::bench
