// The corner solver on edges that no scan would find: far outside the picture, of a few points, on
// top of each other; and the rotation with what it makes of them.
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "analysis/corner_solver.h"
#include "frame/scratch.h"
#include "fuzz_pages.h"
#include "rotate/rotate_image.h"

using namespace vorlanepic;
using namespace vorlanepic::fuzz;

namespace {

constexpr int32_t kMostSegments = 8;
constexpr int32_t kMostPoints = 4;  // of a segment

// A picture of which the solver reads the size only.
struct HollowPicture {
  explicit HollowPicture(FuzzInput& input) {
    const int32_t width = input.Flag() ? input.In(1, 64) : input.In(1, 65536);
    const int32_t height = input.Flag() ? input.In(1, 64) : input.In(1, 65536);
    rows.resize(1);
    rec = {width,       height, 1, (width + 31) / 32 * 4 * height, (width + 31) / 32 * 4,
           rows.data(), &pixel};
  }

  uint8_t pixel = 0;
  std::vector<uint8_t*> rows;
  ImageRec rec{};
};

// Near the picture, far from it, or as far as a number goes.
int32_t Coordinate(FuzzInput& input) {
  const uint8_t kind = input.Byte();
  if (kind < 160) return input.In(-1, 400);
  return kind < 240 ? 60 * input.In(-32768, 32767) : input.Int32();
}

// The points of an edge, with its list of segments that point at them.
struct Edge {
  explicit Edge(FuzzInput& input) {
    const int32_t segments = input.In(0, kMostSegments);
    const frame::PixelPoint start{Coordinate(input), Coordinate(input)};
    const frame::PixelPoint step{input.In(-40, 40), input.In(-40, 40)};
    Require(line.list.segments.Allocate(kMostSegments), "there is memory for segments");
    for (int32_t i = 0; i < segments; ++i) Append(start, step, input);
  }

  void Append(const frame::PixelPoint& start, const frame::PixelPoint& step, FuzzInput& input) {
    const int32_t i = line.list.segmentCount++;
    const int32_t count = 1 + input.Byte() % kMostPoints;
    const bool strays = input.Byte() < 24;
    frame::PixelPoint* first = points.data() + static_cast<ptrdiff_t>(i) * kMostPoints;
    int64_t sumX = 0;
    int64_t sumY = 0;
    for (int32_t k = 0; k < count; ++k) {
      const int64_t at = int64_t{i} * kMostPoints + k;
      first[k] = strays
                     ? frame::PixelPoint{Coordinate(input), Coordinate(input)}
                     : frame::PixelPoint{Moved(start.x, at * step.x), Moved(start.y, at * step.y)};
      sumX += first[k].x;
      sumY += first[k].y;
    }
    line.list.segments[static_cast<size_t>(i)] = {
        count, first, true, static_cast<int32_t>(sumX / count), static_cast<int32_t>(sumY / count)};
  }

  static int32_t Moved(int32_t from, int64_t by) {
    return static_cast<int32_t>(std::clamp<int64_t>(from + by, INT32_MIN, INT32_MAX));
  }

  std::array<frame::PixelPoint, static_cast<size_t>(kMostSegments* kMostPoints)> points{};
  analysis::EdgeLine line;
};

frame::Settings ReadSettings(FuzzInput& input) {
  frame::Settings settings{};
  settings.BorderMethod = input.Flag() ? 1 : 3;
  settings.ExtremeAnchorFlag = input.Flag() ? 1.0 : 0.0;
  settings.parallel = input.In(0, 50) / 10.0;
  settings.perpendicular = input.In(0, 50) / 10.0;
  return settings;
}

void RequireSoundGeometry(const analysis::DocumentGeometry& geometry, const ImageRec& picture) {
  Require(geometry.center.x >= 0 && geometry.center.x < picture.width && geometry.center.y >= 0 &&
              geometry.center.y < picture.height,
          "the centre lies in the picture");
  // Degrees of an edge that is steeper than any picture's pass 90 by the last digits of pi.
  Require(geometry.angle > -1e-7 && geometry.angle < 6.2831854,
          "the angle lies within a full turn");
  const rotate::RowSpans& spans = geometry.spans;
  Require(spans.top >= 0 && spans.top < spans.bottom && spans.bottom < picture.height,
          "the document's rows lie in the picture");
  for (int32_t y = spans.top; y <= spans.bottom; ++y) {
    const rotate::RowSpan& span = spans.spans[static_cast<size_t>(y)];
    Require(std::min(span.left, span.right) >= 0 && std::max(span.left, span.right) < picture.width,
            "the document's columns lie in the picture");
  }
}

// Turns a small picture, where the result is small or has a size that no image can have.
void TurnWith(const analysis::DocumentGeometry& geometry, const ImageRec& shape, FuzzInput& input) {
  const int64_t area = int64_t{geometry.outWidth} * geometry.outHeight;
  const bool isMade = geometry.outWidth > 0 && geometry.outHeight > 0 && area < (int64_t{1} << 35);
  if (shape.width > 64 || shape.height > 64 || (isMade && area > (1 << 14))) return;
  constexpr int32_t kDepths[] = {1, 8, 24};
  testing::TestImage picture(shape.width, shape.height, kDepths[input.In(0, 2)]);
  const uint8_t fill[3] = {255, 0, 0};
  frame::ScratchImage result;
  const int32_t status =
      rotate::RotateImage(picture.rec(), result.rec(), &geometry.spans,
                          {geometry.angle, geometry.center.x, geometry.center.y, geometry.outWidth,
                           geometry.outHeight, input.In(1, 3)},
                          fill);
  Require((status == STATUS_OK) == (result.rec()->pixels != nullptr), "success makes an image");
  if (status == STATUS_OK) RequireSoundImage(*result.rec());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzInput input(data, size);
  const HollowPicture picture(input);
  const frame::Settings settings = ReadSettings(input);
  Edge e1(input);
  Edge e2(input);
  Edge e3(input);
  Edge e4(input);
  analysis::DocumentEdges edges{std::move(e1.line), std::move(e2.line), std::move(e3.line),
                                std::move(e4.line)};
  analysis::ExtremePoints extremes;
  for (frame::PixelPoint* point :
       {&extremes.leftmost, &extremes.rightmost, &extremes.topmost, &extremes.bottommost}) {
    *point = {Coordinate(input), Coordinate(input)};
  }
  const analysis::EdgeOrigin origin{static_cast<analysis::EdgeSource>(input.In(0, 1)),
                                    static_cast<analysis::Arrangement>(input.In(0, 2))};
  const int32_t cornerOption = input.MostlyIn(-100, 100);

  analysis::DocumentGeometry geometry;
  const int32_t status = analysis::SolveCorners(settings, picture.rec, cornerOption, extremes,
                                                origin, &edges, &geometry);
  if (status == STATUS_OK) {
    RequireSoundGeometry(geometry, picture.rec);
    TurnWith(geometry, picture.rec, input);
  } else {
    Require(status == BORDER_NOT_FOUND || status == BAD_ARGUMENT || status == ANGLE_NOT_FOUND,
            "a document is refused with a status that says why");
  }
  return 0;
}
