#include "analysis/segment_selection.h"

#include <algorithm>
#include <cstdlib>
#include <span>

#include "analysis/border_line.h"
#include "frame/arithmetic.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {
namespace {

// Edges of fewer segments are taken as they are.
constexpr int32_t kFewestSegments = 4;

// Distances in pixels: how far a segment may lie inside the chord through the means, how far the
// segments may lie from it on average, and how far a segment may lie from the line through the
// points.
constexpr int32_t kChordLimit = 5;
constexpr int32_t kScatterLimit = 6;
constexpr int32_t kPointLineLimit = 8;

bool IsWithin(int32_t gap, int32_t a, int32_t b) {
  return frame::WrapAbs(frame::WrapSub(a, b)) <= gap;
}

frame::PixelPoint MeanOf(const BorderSegment& segment) { return {segment.meanX, segment.meanY}; }

// Distance of a segment's mean from a fitted line.
int32_t DistanceOf(const BorderSegment& segment, const BorderLine& line) {
  int32_t distance = 0;
  DistanceToLine(segment.meanX, segment.meanY, line, &distance);
  return distance;
}

int32_t CountPoints(std::span<const BorderSegment> segments) {
  int32_t points = 0;
  for (const BorderSegment& segment : segments) points = frame::WrapAdd(points, segment.count);
  return points;
}

// Keeps the segments for which keep(segment) holds, in order. Returns whether any fell out.
template <typename Keep>
bool KeepSegments(SegmentList* list, Keep keep) {
  const std::span<BorderSegment> segments = list->view();
  const auto end = std::remove_if(segments.begin(), segments.end(),
                                  [&](const BorderSegment& segment) { return !keep(segment); });
  const auto kept = static_cast<int32_t>(end - segments.begin());
  const bool fellOut = kept < list->segmentCount;
  list->segmentCount = kept;
  return fellOut;
}

// Index of the first segment marked used in begin..end - 1, or `end`.
int32_t FirstUsed(std::span<const BorderSegment> segments, int32_t begin, int32_t end) {
  int32_t i = begin;
  while (i < end && !segments[static_cast<size_t>(i)].used) ++i;
  return i;
}

// Index of the last segment marked used at `begin` or below, or -1.
int32_t LastUsed(std::span<const BorderSegment> segments, int32_t begin) {
  int32_t i = begin;
  while (i >= 0 && !segments[static_cast<size_t>(i)].used) --i;
  return i;
}

// One edge while its segments are selected: copies of all, of which fewer and fewer stay.
class Selection {
 public:
  Selection(const frame::Settings& settings, EdgeSource source, EdgeCode code)
      : settings_(settings), source_(source), code_(code) {}

  int32_t Run(const SegmentList& list);
  const BorderLine& line() const { return line_; }

 private:
  int32_t Judge(int32_t previous, int32_t next, int32_t tested);
  int32_t JudgeInner();
  int32_t JudgeFirst();
  int32_t JudgeLast();
  int32_t KeepConsistent();
  int32_t KeepNearChord(bool* fellOut);
  int32_t KeepNearPointLine(bool* fellOut);

  const frame::Settings& settings_;
  EdgeSource source_;
  EdgeCode code_;
  SegmentList work_;
  BorderLine line_;
};

int32_t Selection::Run(const SegmentList& list) {
  if (!work_.segments.Allocate(static_cast<size_t>(list.segmentCount))) return OUT_OF_MEMORY;
  std::ranges::copy(list.view(), work_.segments.data());
  work_.segmentCount = list.segmentCount;
  for (BorderSegment& segment : work_.view()) segment.used = false;

  while (work_.segmentCount >= kFewestSegments) {
    int32_t status = KeepConsistent();
    if (status != STATUS_OK) return status;
    bool fellOut = false;
    status = KeepNearChord(&fellOut);
    if (status != STATUS_OK) return status;
    if (fellOut) continue;
    status = KeepNearPointLine(&fellOut);
    if (status != STATUS_OK) return status;
    if (!fellOut) break;
  }
  return STATUS_OK;
}

int32_t Selection::Judge(int32_t previous, int32_t next, int32_t tested) {
  const std::span<BorderSegment> segments = work_.view();
  BorderSegment& segment = segments[static_cast<size_t>(tested)];
  return JudgeSegment(settings_, MeanOf(segments[static_cast<size_t>(previous)]),
                      MeanOf(segments[static_cast<size_t>(next)]), MeanOf(segment), source_, code_,
                      &segment.used);
}

int32_t Selection::JudgeInner() {
  for (int32_t i = 1; i < work_.segmentCount - 1; ++i) {
    const int32_t status = Judge(i - 1, i + 1, i);
    if (status != STATUS_OK) return status;
  }
  return STATUS_OK;
}

// The first segment is held against the two nearest that stay; without them it stays.
int32_t Selection::JudgeFirst() {
  const std::span<BorderSegment> segments = work_.view();
  const int32_t last = work_.segmentCount - 1;
  const int32_t nearest = FirstUsed(segments, 1, last);
  const int32_t farther = FirstUsed(segments, nearest + 1, last);
  if (nearest < last && farther < last) return Judge(nearest, farther, 0);
  segments.front().used = true;
  return STATUS_OK;
}

// Likewise, except that the first segment does not serve as the farther one.
int32_t Selection::JudgeLast() {
  const std::span<BorderSegment> segments = work_.view();
  const int32_t last = work_.segmentCount - 1;
  const int32_t nearest = LastUsed(segments, last - 1);
  const int32_t farther = LastUsed(segments, nearest - 1);
  if (farther >= 1) return Judge(nearest, farther, last);
  segments.back().used = true;
  return STATUS_OK;
}

// Marks survive from the pass before where the test leaves them alone, except at the two ends.
int32_t Selection::KeepConsistent() {
  work_.view().front().used = false;
  work_.view().back().used = false;
  int32_t status = JudgeInner();
  if (status != STATUS_OK) return status;
  status = JudgeFirst();
  if (status != STATUS_OK) return status;
  status = JudgeLast();
  if (status != STATUS_OK) return status;
  KeepSegments(&work_, [](const BorderSegment& segment) { return segment.used; });
  work_.pointTotal = CountPoints(work_.view());
  return STATUS_OK;
}

int32_t Selection::KeepNearChord(bool* fellOut) {
  const int32_t status = FitChordLine(&line_, work_);
  if (status != STATUS_OK) return status;
  const int32_t count = work_.segmentCount;
  const bool innerIsPositive = code_ == EdgeCode::kE1 || code_ == EdgeCode::kE4;
  int32_t sum = 0;
  *fellOut = KeepSegments(&work_, [&](const BorderSegment& segment) {
    const int32_t distance = DistanceOf(segment, line_);
    sum = frame::WrapAdd(sum, frame::WrapAbs(distance));
    return innerIsPositive ? distance < kChordLimit : distance > -kChordLimit;
  });
  return !*fellOut && sum / count > kScatterLimit ? EDGE_NOT_FOUND : STATUS_OK;
}

int32_t Selection::KeepNearPointLine(bool* fellOut) {
  const int32_t status = FitPointLine(&line_, work_);
  if (status != STATUS_OK) return status;
  *fellOut = KeepSegments(&work_, [&](const BorderSegment& segment) {
    return frame::WrapAbs(DistanceOf(segment, line_)) < kPointLineLimit;
  });
  return STATUS_OK;
}

int32_t TakeAllSegments(SegmentList* list) {
  list->pointTotal = CountPoints(list->view());
  for (BorderSegment& segment : list->view()) segment.used = true;
  BorderLine line;
  return FitPointLine(&line, *list);
}

}  // namespace

int32_t JudgeSegment(const frame::Settings& settings, frame::PixelPoint previous,
                     frame::PixelPoint next, frame::PixelPoint tested, EdgeSource source,
                     EdgeCode code, bool* verdict) {
  const int32_t dx = frame::WrapSub(previous.x, next.x);
  const int32_t dy = frame::WrapSub(previous.y, next.y);
  if (dx == 0 && dy == 0) return BAD_ARGUMENT;

  if (source == EdgeSource::kWholeSides) {
    const bool runsAlongX = code == EdgeCode::kE1 || code == EdgeCode::kE3;
    const int32_t gap = settings.SegmentMaxGap;
    const auto across = runsAlongX ? &frame::PixelPoint::y : &frame::PixelPoint::x;
    const bool inLine = IsWithin(gap, previous.*across, tested.*across) &&
                        IsWithin(gap, next.*across, tested.*across);
    *verdict = inLine;
    return STATUS_OK;
  }
  if (dx == 0 || dy == 0) return STATUS_OK;

  const int32_t product = frame::WrapMul(frame::WrapSub(tested.x, previous.x), dy);
  const int32_t chordY = frame::TruncToInt32(static_cast<double>(product) / dx + previous.y);
  const bool sameSign = (dx > 0) == (dy > 0);
  const bool keepsBelow = sameSign == (code == EdgeCode::kE1 || code == EdgeCode::kE2);
  *verdict = keepsBelow ? chordY <= tested.y : chordY >= tested.y;
  return STATUS_OK;
}

int32_t SelectSegments(const frame::Settings& settings, EdgeSource source, EdgeCode code,
                       SegmentList* list) {
  if (list->segmentCount == 0) return BAD_ARGUMENT;
  if (list->segmentCount < kFewestSegments) return TakeAllSegments(list);

  // Segments that fell out on the way may come back: the last look is at all of them.
  Selection selection(settings, source, code);
  const int32_t status = selection.Run(*list);
  if (status != STATUS_OK) return status;
  KeepSegments(list, [&](const BorderSegment& segment) {
    return frame::WrapAbs(DistanceOf(segment, selection.line())) < kPointLineLimit;
  });
  for (BorderSegment& segment : list->view()) segment.used = true;
  return list->segmentCount == 0 ? EDGE_NOT_FOUND : STATUS_OK;
}

}  // namespace vorlanepic::analysis
