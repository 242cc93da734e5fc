// Runs several ways of doing one job in turn and compares their times.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vorlanepic::bench {

// One way of doing a job. `run` does all of it, gives back everything it took, and returns false
// when it fails.
struct Contender {
  std::string name;
  std::function<bool()> run;
};

// Milliseconds of wall time.
struct Timing {
  double median;
  double least;
};

// Runs every contender `rounds` times, one after the other in each round and each round beginning
// with the next one, so that what else the machine does hits all alike. One round before is not
// counted. Before every run the thread sleeps a little: a peer's worker threads go on looking for
// work for a while, and would take a core from the next.
// Throws std::runtime_error when a run fails.
std::vector<Timing> RunInTurn(const std::vector<Contender>& contenders, int32_t rounds);

}  // namespace vorlanepic::bench
