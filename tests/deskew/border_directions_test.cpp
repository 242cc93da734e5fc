#include "deskew/border_directions.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace vorlanepic::testing {

using namespace deskew;
namespace {

std::vector<int32_t> Pick(const std::vector<double>& degrees, double groupAngle) {
  frame::ScratchArray<int32_t> chunks;
  EXPECT_TRUE(PickLargestGroup(degrees, groupAngle, &chunks));
  return {chunks.span().begin(), chunks.span().end()};
}

TEST(PickLargestGroup, PicksChunksThatAgree) {
  struct Case {
    std::vector<double> degrees;
    double groupAngle;
    std::vector<int32_t> chunks;
  };
  const Case cases[] = {
      {{1, 1}, 2, {}},  // two directions are chance
      {{3, 1, 2}, 2, {0, 1}},
      {{1, 3, 5}, 2, {}},
      {{40, 41, 42, 1, 2, 3, 4}, 2, {3, 4, 5}},
      {{40, 41, 42, 1, 2, 3}, 2, {3, 4}},  // the first of equal ones
      // 12 is 10 or more from the first and ends the group; 8 is still linked to it.
      {{0, 4, 8, 12, 16, 20}, 5, {0, 1, 2}},
      // After the end at rank 3 a new group of four links starts at rank 4.
      {{0, 4, 8, 12, 13, 14, 15, 16, 17}, 5, {4, 5, 6, 7}},
      // Halves -6.5, -3.5 and 1, 3: means of 5 and 2 degrees' steepness.
      {{-6.5, -3.5, 1, 3, 3.2}, 5, {0, 1, 2, 3}},
      {{0, 2, 6.5, 9.5, 9.7}, 5, {}},            // halves of 1 and 8 bend
      {{0.5, 1.5, 6, 8, 8.5}, 5, {0, 1, 2, 3}},  // 1 and 7 differ by no more than 6
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Pick(c.degrees, c.groupAngle), c.chunks) << ::testing::PrintToString(c.degrees);
  }
}

// The picking as it is described: an exchange sort that carries each direction's chunk, groups of
// neighbours, and passes over the picked chunks.
std::vector<int32_t> PickPlainly(std::vector<double> d, double groupAngle) {
  std::vector<int32_t> chunk(d.size());
  for (size_t i = 0; i < d.size(); ++i) chunk[i] = static_cast<int32_t>(i);
  for (size_t p = 0; p + 1 < d.size(); ++p) {
    for (size_t q = p + 1; q < d.size(); ++q) {
      if (d[q] < d[p]) {
        std::swap(d[p], d[q]);
        std::swap(chunk[p], chunk[q]);
      }
    }
  }
  struct Group {
    size_t start;
    size_t end;
    size_t count;
  };
  std::vector<Group> groups;
  bool inGroup = false;
  size_t count = 0;
  size_t start = 0;
  for (size_t i = 0; i + 1 < d.size(); ++i) {
    if (std::abs(d[i] - d[i + 1]) < groupAngle) {
      if (!inGroup) start = i;
      if (std::abs(d[i] - d[start]) < 10.0) {
        ++count;
        inGroup = true;
        continue;
      }
      groups.push_back({start, i, count});
    } else if (inGroup) {
      groups.push_back({start, i, count});
    }
    inGroup = false;
    count = 0;
  }
  if (inGroup) groups.push_back({start, d.size() - 1, count});

  const Group* best = nullptr;
  for (const Group& group : groups) {
    if (group.count < 2) continue;
    const size_t mid = group.start + group.count / 2;
    double first = 0.0;
    double second = 0.0;
    for (size_t i = group.start; i < mid; ++i) first += d[i];
    for (size_t i = mid; i < group.end; ++i) second += d[i];
    first /= static_cast<double>(mid - group.start);
    second /= static_cast<double>(group.end - mid);
    if (std::abs(std::abs(first) - std::abs(second)) > 6.0) continue;
    if (best == nullptr || group.count > best->count) best = &group;
  }
  if (best == nullptr) return {};
  std::vector<int32_t> picked(chunk.begin() + static_cast<ptrdiff_t>(best->start),
                              chunk.begin() + static_cast<ptrdiff_t>(best->end) + 1);
  std::sort(picked.begin(), picked.end());
  picked.pop_back();
  return picked;
}

// Few different directions, so that most have equals, also across the ends of groups.
TEST(PickLargestGroup, IsThePlainOneOnAnyDirections) {
  std::mt19937 random(3);
  int32_t found = 0;
  for (int32_t round = 0; round < 4000; ++round) {
    const auto count = static_cast<size_t>(random() % 60);
    const auto spread = static_cast<int32_t>(1 + random() % 40);
    const double unit = random() % 2 == 0 ? 1.0 : 0.7;
    std::vector<double> degrees(count);
    for (double& direction : degrees) {
      direction = unit * static_cast<double>(static_cast<int32_t>(random() % 1000) % spread - 10);
    }
    const double groupAngle = static_cast<double>(random() % 6);
    const auto expected = PickPlainly(degrees, groupAngle);
    ASSERT_EQ(Pick(degrees, groupAngle), expected) << "round " << round;
    if (!expected.empty()) ++found;
  }
  EXPECT_GT(found, 1000);
}

TEST(MeasureDirections, LeaveTheFirstChunkAndTheLastDirectionOut) {
  // Chunks of two with centres (1, 0), (5, 0), (9, 4), (9, 9), (11, 9), (13, 8).
  const frame::PixelPoint means[] = {{0, 0},  {2, 0},  {4, 0},  {6, 0},  {8, 4},  {10, 4}, {9, 8},
                                     {9, 10}, {10, 9}, {12, 9}, {13, 7}, {13, 9}, {99, 99}};
  std::vector<analysis::BorderSegment> segments;
  for (const frame::PixelPoint& mean : means) segments.push_back({1, nullptr, 0, mean.x, mean.y});
  frame::ScratchArray<double> degrees;
  ASSERT_TRUE(MeasureDirections(segments, 2, &degrees));
  ASSERT_EQ(degrees.size(), 3U);
  EXPECT_NEAR(degrees[0], 45.0, 1e-5);
  EXPECT_EQ(degrees[1], 90.0);
  EXPECT_EQ(degrees[2], 0.0);
  ASSERT_TRUE(MeasureDirections(std::span(segments).first(9), 2, &degrees));
  EXPECT_EQ(degrees.size(), 0U);
}

}  // namespace
}  // namespace vorlanepic::testing
