#include "deskew/border_directions.h"

#include <algorithm>
#include <cmath>

#include "frame/trigonometry.h"

namespace vorlanepic::deskew {
namespace {

// No direction of a group lies further than this from the group's first.
constexpr double kGroupSpreadDegrees = 10.0;
// The halves of a straight run are about as steep as each other.
constexpr double kHalvesDegrees = 6.0;
// A run of fewer neighbours is chance.
constexpr size_t kFewestLinks = 2;
constexpr size_t kFewestDirections = 2;

struct ChunkCenter {
  double x;
  double y;
};

// Sums wrap at 2^32, as the means that are taken elsewhere do.
ChunkCenter CenterOf(std::span<const analysis::BorderSegment> chunk) {
  uint32_t sumX = 0;
  uint32_t sumY = 0;
  for (const analysis::BorderSegment& segment : chunk) {
    sumX += static_cast<uint32_t>(segment.meanX);
    sumY += static_cast<uint32_t>(segment.meanY);
  }
  const auto count = static_cast<double>(chunk.size());
  return {sumX / count, sumY / count};
}

double DirectionBetween(const ChunkCenter& from, const ChunkCenter& to) {
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  return dx == 0.0 ? 90.0 : frame::ArcTangent(dy / dx) * frame::kDegreesPerRadian;
}

// A direction and its place along the border.
struct RankedDirection {
  double degrees;
  int32_t index;
};

double MeanOf(std::span<const RankedDirection> directions) {
  double sum = 0.0;
  for (const RankedDirection& direction : directions) sum += direction.degrees;
  return sum / static_cast<double>(directions.size());
}

// Whether directions of which each agrees with the next make a straight run.
bool IsStraight(std::span<const RankedDirection> links) {
  if (links.size() < kFewestLinks) return false;
  const size_t half = links.size() / 2;
  const double first = MeanOf(links.first(half));
  const double second = MeanOf(links.subspan(half));
  return std::abs(std::abs(first) - std::abs(second)) <= kHalvesDegrees;
}

// Ranks start..start + links, each of which agrees with the next; no links: no run.
struct Run {
  size_t start = 0;
  size_t links = 0;
};

// The longest straight run; of equal ones the first.
Run LongestRun(std::span<const RankedDirection> sorted, double groupAngle) {
  Run best;
  Run run;
  const auto close = [&] {
    if (run.links > best.links && IsStraight(sorted.subspan(run.start, run.links))) best = run;
    run.links = 0;
  };
  for (size_t i = 0; i + 1 < sorted.size(); ++i) {
    if (run.links == 0) run.start = i;
    const double step = std::abs(sorted[i].degrees - sorted[i + 1].degrees);
    const double spread = std::abs(sorted[i].degrees - sorted[run.start].degrees);
    if (step < groupAngle && spread < kGroupSpreadDegrees) {
      ++run.links;
    } else {
      close();
    }
  }
  close();
  return best;
}

// Puts the directions that equal the one at `rank` into the order that sorting by exchange leaves:
// on the way to the front every smaller direction sends the first of those it passes behind the
// others. `queue` has room for all directions.
void SettleTies(std::span<const double> degrees, size_t rank, std::span<int32_t> queue,
                std::span<RankedDirection> sorted) {
  const double tied = sorted[rank].degrees;
  size_t head = 0;
  size_t tail = 0;
  for (size_t i = 0; i < degrees.size(); ++i) {
    if (degrees[i] == tied) {
      queue[tail++] = static_cast<int32_t>(i);
    } else if (degrees[i] < tied && head < tail) {
      queue[tail++] = queue[head++];
    }
  }
  size_t at = rank;
  while (at > 0 && sorted[at - 1].degrees == tied) --at;
  while (head < tail) sorted[at++].index = queue[head++];
}

}  // namespace

bool MeasureDirections(std::span<const analysis::BorderSegment> segments, int32_t length,
                       frame::ScratchArray<double>* degrees) {
  const auto chunkLength = static_cast<size_t>(length);
  const size_t chunks = segments.size() / chunkLength;
  const size_t count = chunks >= kFewestDirections + 3 ? chunks - 3 : 0;
  if (!degrees->Allocate(count)) return false;
  if (count == 0) return true;

  ChunkCenter from = CenterOf(segments.subspan(chunkLength, chunkLength));
  for (size_t j = 0; j < count; ++j) {
    const ChunkCenter to = CenterOf(segments.subspan((j + 2) * chunkLength, chunkLength));
    (*degrees)[j] = DirectionBetween(from, to);
    from = to;
  }
  return true;
}

bool PickLargestGroup(std::span<const double> degrees, double groupAngle,
                      frame::ScratchArray<int32_t>* chunks) {
  frame::ScratchArray<RankedDirection> sorted;
  frame::ScratchArray<int32_t> queue;
  if (!sorted.Allocate(degrees.size()) || !queue.Allocate(degrees.size())) return false;
  for (size_t i = 0; i < degrees.size(); ++i) sorted[i] = {degrees[i], static_cast<int32_t>(i)};
  const auto ranks = sorted.span();
  std::sort(ranks.begin(), ranks.end(),
            [](const auto& a, const auto& b) { return a.degrees < b.degrees; });

  const Run run = LongestRun(ranks, groupAngle);
  if (run.links == 0) return chunks->Allocate(0);
  // Which of several equal directions belong to the run is open only at its ends.
  SettleTies(degrees, run.start, queue.span(), ranks);
  SettleTies(degrees, run.start + run.links, queue.span(), ranks);

  const auto members = ranks.subspan(run.start, run.links + 1);
  std::sort(members.begin(), members.end(),
            [](const auto& a, const auto& b) { return a.index < b.index; });
  if (!chunks->Allocate(run.links)) return false;
  for (size_t i = 0; i < run.links; ++i) (*chunks)[i] = members[i].index;
  return true;
}

}  // namespace vorlanepic::deskew
