// Feeds a fuzz target made-up inputs where there is no libFuzzer: the same ones in every run, and
// each file named on the command line instead.
//
//   TARGET [-runs=N] [FILE...]
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

using Bytes = std::vector<uint8_t>;

// Exact storage, so that a sanitizer sees a byte read too many.
void Run(const Bytes& input) { LLVMFuzzerTestOneInput(Bytes(input).data(), input.size()); }

// Half of the inputs are new, the others variations of one before.
void RunMadeUp(int runs) {
  std::mt19937 random(1);
  const auto below = [&](size_t end) { return random() % end; };
  Bytes last;
  for (int run = 0; run < runs; ++run) {
    if (last.empty() || below(2) == 0) {
      last.resize(below(2) == 0 ? below(64) : below(2048));
      std::generate(last.begin(), last.end(), [&] { return static_cast<uint8_t>(random()); });
    } else {
      for (size_t edits = 1 + below(4); edits > 0; --edits) {
        last[below(last.size())] = static_cast<uint8_t>(random());
      }
    }
    Run(last);
  }
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 2000;
  bool hasFiles = false;
  for (int i = 1; i < argc; ++i) {
    if (std::strncmp(argv[i], "-runs=", 6) == 0) {
      runs = std::atoi(argv[i] + 6);
    } else if (argv[i][0] != '-') {
      std::ifstream file(argv[i], std::ios::binary);
      Run(Bytes(std::istreambuf_iterator<char>(file), {}));
      hasFiles = true;
    }
  }
  if (hasFiles) return 0;
  RunMadeUp(runs);
  std::printf("%d runs\n", runs);
  return 0;
}
