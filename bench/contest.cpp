#include "contest.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <thread>

namespace vorlanepic::bench {
namespace {

double MillisecondsOf(const Contender& contender) {
  std::this_thread::sleep_for(std::chrono::milliseconds(3));
  const auto begin = std::chrono::steady_clock::now();
  const bool isDone = contender.run();
  const auto end = std::chrono::steady_clock::now();
  if (!isDone) throw std::runtime_error(contender.name + " failed");
  return std::chrono::duration<double, std::milli>(end - begin).count();
}

Timing Summarise(std::vector<double> times) {
  std::sort(times.begin(), times.end());
  const size_t middle = times.size() / 2;
  const double median =
      times.size() % 2 == 1 ? times[middle] : (times[middle - 1] + times[middle]) / 2;
  return {median, times.front()};
}

}  // namespace

std::vector<Timing> RunInTurn(const std::vector<Contender>& contenders, int32_t rounds) {
  std::vector<std::vector<double>> times(contenders.size());
  for (int32_t round = -1; round < rounds; ++round) {
    for (size_t turn = 0; turn < contenders.size(); ++turn) {
      const size_t next = (turn + static_cast<size_t>(round + 1)) % contenders.size();
      const double milliseconds = MillisecondsOf(contenders[next]);
      if (round >= 0) times[next].push_back(milliseconds);
    }
  }
  std::vector<Timing> timings;
  timings.reserve(times.size());
  for (std::vector<double>& each : times) timings.push_back(Summarise(std::move(each)));
  return timings;
}

}  // namespace vorlanepic::bench
