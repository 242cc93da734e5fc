#include "omr/reference_bar.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "frame/arithmetic.h"
#include "omr/block_hand_back.h"
#include "omr/block_outline.h"

namespace vorlanepic::omr {
namespace {

constexpr int32_t kSampleStart = 5;       // pixels from the bar's end, which may be ragged
constexpr int32_t kNotAcross = 10000;     // thickness where a bar isn't measured
constexpr int32_t kLeastMargin = 5;       // pixels to the sheet's edge, to be exceeded
constexpr int32_t kThicknessSpread = 20;  // pixels, not to be reached
constexpr int32_t kSamples = 20;          // at which a bar of minimum length is measured
constexpr size_t kBarStep = 16;           // bars by which the records grow

// Mean distance between the first and last pixel of every step-th line across a block. The range in
// `bar` is widened by each.
int32_t MeanThickness(std::span<const LineExtent> lines, int32_t step, ExaminedBar* bar) {
  int32_t sum = 0;
  int32_t counted = 0;
  for (size_t i = kSampleStart; i < lines.size(); i += static_cast<size_t>(step)) {
    const LineExtent& line = lines[i];
    if (line.last <= line.first) continue;
    const int32_t thickness = line.last - line.first + 1;
    bar->thinnest = std::min(bar->thinnest, thickness);
    bar->thickest = std::max(bar->thickest, thickness);
    sum = frame::WrapAdd(sum, thickness);
    ++counted;
  }
  return counted > 0 ? sum / counted : 0;
}

void MeasureThickness(const BlockOutline& outline, int32_t step, ExaminedBar* bar) {
  const size_t width = outline.columns().size();
  const size_t height = outline.rows().size();
  bar->thinnest = 1000;
  bar->thickest = 0;
  const int32_t across = width < height ? kNotAcross : MeanThickness(outline.columns(), step, bar);
  const int32_t down = height < width ? kNotAcross : MeanThickness(outline.rows(), step, bar);
  bar->thickness = std::min(across, down);
}

int32_t MarginOf(const ExaminedBar& bar, const frame::PixelRect& sheet) {
  return std::min({bar.box.left - sheet.left, sheet.right - bar.box.right, bar.box.top - sheet.top,
                   sheet.bottom - bar.box.bottom});
}

// The tests that a bar passes by itself.
BarVerdict Judge(const ExaminedBar& bar, const BarLimits& limits, const frame::PixelRect& sheet) {
  if (bar.thickness < std::max(limits.minThickness, 1) || bar.thickness > limits.maxThickness) {
    return BarVerdict::kThickness;
  }
  if (MarginOf(bar, sheet) <= kLeastMargin) return BarVerdict::kMargin;
  if (bar.thickest - bar.thinnest >= kThicknessSpread) return BarVerdict::kUneven;
  return BarVerdict::kChosen;
}

bool AddBar(const ExaminedBar& bar, BarRecords* records) {
  if (records->barCount == records->bars.size() &&
      !records->bars.Grow(std::max(records->bars.size(), kBarStep))) {
    return false;
  }
  records->bars[records->barCount++] = bar;
  return true;
}

// Measures and judges one block into the records.
bool Examine(const BlockRec& block, const BarLimits& limits, ExaminedBar bar, BarRecords* records) {
  BlockOutline outline;
  if (!outline.Trace(block)) return false;
  MeasureThickness(outline, std::max(limits.minLength / kSamples, 1), &bar);
  bar.verdict = Judge(bar, limits, records->sheet);
  return AddBar(bar, records);
}

// Whether a bar is thin for its length, both taken as 16-bit numbers.
bool IsThin(const ExaminedBar& bar, float ratio) {
  const auto length = static_cast<int16_t>(bar.length);
  const auto thickness = static_cast<int16_t>(bar.thickness);
  if (thickness == 0) return false;
  const int32_t wholeRatio = length / thickness;
  return static_cast<float>(wholeRatio) > ratio;
}

// Leaves the choice to one of several bars that passed; null when all are too thick for their
// length.
ExaminedBar* ChooseThickest(std::span<ExaminedBar> bars, const BarLimits& limits) {
  const auto ratio =
      static_cast<float>(static_cast<double>(limits.minLength) / limits.maxThickness);
  ExaminedBar* choice = nullptr;
  int16_t thickest = 0;
  for (ExaminedBar& bar : bars) {
    if (bar.verdict != BarVerdict::kChosen) continue;
    bar.verdict = IsThin(bar, ratio) ? BarVerdict::kNotThickest : BarVerdict::kRatio;
    const auto thickness = static_cast<int16_t>(bar.thickness);
    if (bar.verdict == BarVerdict::kRatio || thickness <= thickest) continue;
    choice = &bar;
    thickest = thickness;
  }
  if (choice != nullptr) choice->verdict = BarVerdict::kChosen;
  return choice;
}

const ExaminedBar* Choose(std::span<ExaminedBar> bars, const BarLimits& limits) {
  const auto passed = [](const ExaminedBar& bar) { return bar.verdict == BarVerdict::kChosen; };
  if (std::count_if(bars.begin(), bars.end(), passed) > 1) return ChooseThickest(bars, limits);
  const auto only = std::find_if(bars.begin(), bars.end(), passed);
  return only != bars.end() ? &*only : nullptr;
}

// Where an edge of a line across the bar lies in the image; 0 where it was not found.
int32_t EdgeAt(int32_t origin, int32_t place, int32_t end) {
  return place >= 0 && place < end ? origin + place : 0;
}

}  // namespace

const BlockRec* SelectReferenceBar(const BlockSetRec& set, const BarLimits& limits,
                                   BarRecords* records) {
  for (int32_t i = 0; i < set.count; ++i) {
    const BlockRec& block = set.blocks[i];
    ExaminedBar bar{};
    bar.box = {block.left, block.right, block.top, block.bottom};
    bar.block = i;
    bar.length = BoxDiagonal(block.width, block.height);
    if (bar.length < limits.minLength) continue;
    if (!Examine(block, limits, bar, records)) return nullptr;
  }
  const ExaminedBar* chosen = Choose(records->bars.span().first(records->barCount), limits);
  return chosen != nullptr ? &set.blocks[chosen->block] : nullptr;
}

bool TraceBarEdges(const BlockRec& bar, BarRecords* records) {
  BlockOutline outline;
  if (!outline.Trace(bar)) return false;
  records->isTall = bar.height >= bar.width;
  // The bottom row is not sampled: a tall bar has no sample there, a wide one no first pixel.
  const int32_t rows = bar.bottom - bar.top;
  const int32_t columns = bar.right - bar.left + 1;
  const int32_t count = records->isTall ? rows : columns;
  const std::span<const LineExtent> lines = records->isTall ? outline.rows() : outline.columns();
  const int32_t origin = records->isTall ? bar.left : bar.top;
  const int32_t firstEnd = records->isTall ? columns : rows;
  const int32_t position = records->isTall ? bar.top : bar.left;
  if (!records->samples.Allocate(static_cast<size_t>(count))) return false;
  for (int32_t i = 0; i < count; ++i) {
    const LineExtent& line = lines[static_cast<size_t>(i)];
    records->samples[static_cast<size_t>(i)] = {EdgeAt(origin, line.first, firstEnd),
                                                EdgeAt(origin, line.last, INT32_MAX), position + i};
  }
  return true;
}

}  // namespace vorlanepic::omr
