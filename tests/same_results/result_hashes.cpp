// Prints what every call makes of drawn pages, a line each, or compares it with a recorded list:
// the results are the same to the bit on every build, processor and system.
//
//   result_hashes services|engine [RECORDED [one-processor]]
//
// With one-processor, threads of a call take turns on the first processor that there is. Exits with
// 0, with 1 where a line differs from the list and with 77 where the processor lacks the
// instruction set that the environment asks for.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#if defined(__linux__)
#include <sched.h>
#endif

#include "drawn_calls/checksum.h"
#include "drawn_calls/drawn_calls.h"
#if defined(VORLANEPIC_TEST_HOOKS)
#include "frame/processor.h"
#endif

namespace vorlanepic::testing {
namespace {

constexpr size_t kMostInWords = 3;

// Builds without hooks take the best set, whatever it is called.
bool HasWantedSet() {
#if defined(VORLANEPIC_TEST_HOOKS)
  const char* wanted = std::getenv("VORLANEPIC_INSTRUCTION_SET");
  constexpr const char* kNames[] = {"scalar", "sse2", "avx2", "avx512"};
  const auto set = static_cast<size_t>(frame::BestInstructionSet());
  return wanted == nullptr || std::string(wanted) == kNames[set];
#else
  return true;
#endif
}

bool StayOnOneProcessor() {
#if defined(__linux__)
  cpu_set_t all;
  if (sched_getaffinity(0, sizeof all, &all) != 0) return false;
  for (size_t processor = 0; processor < CPU_SETSIZE; ++processor) {
    if (!CPU_ISSET(processor, &all)) continue;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(processor, &one);
    return sched_setaffinity(0, sizeof one, &one) == 0;
  }
#endif
  return false;
}

std::string LineOf(const DrawnCall& call) {
  const CallResult result = call.run([](const std::function<void()>& run) { run(); });
  std::string line = call.name + ": status " + std::to_string(result.status);
  if (result.made.size() <= kMostInWords) {
    for (const std::string& made : result.made) line += ", " + made;
    return line;
  }
  Checksum all;
  for (const std::string& made : result.made) {
    all.Add(std::span(reinterpret_cast<const uint8_t*>(made.data()), made.size()));
  }
  return line + ", " + std::to_string(result.made.size()) + " things " + all.text();
}

// By the C library's calls alone, because the memory sanitizer follows those.
std::vector<std::string> LinesOf(const std::string& path) {
  std::vector<std::string> lines;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return lines;
  std::string line;
  for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
    if (c == '\n') {
      lines.push_back(std::exchange(line, {}));
    } else if (c != '\r') {
      line.push_back(static_cast<char>(c));
    }
  }
  (void)std::fclose(file);
  return lines;
}

// Tells of the first lines that differ; the count of all.
size_t Differences(const std::vector<std::string>& lines, const std::vector<std::string>& wanted) {
  constexpr size_t kMostTold = 6;
  static const std::string kNone = "(no line)";
  size_t differing = 0;
  for (size_t i = 0; i < std::max(lines.size(), wanted.size()); ++i) {
    const std::string& line = i < lines.size() ? lines[i] : kNone;
    const std::string& old = i < wanted.size() ? wanted[i] : kNone;
    if (line == old) continue;
    if (++differing > kMostTold) continue;
    std::printf("recorded %s\nnow      %s\n", old.c_str(), line.c_str());
  }
  return differing;
}

int Main(const std::vector<std::string>& words) {
  const bool isEngine = !words.empty() && words[0] == "engine";
  const bool isAlone = words.size() == 3 && words[2] == "one-processor" && StayOnOneProcessor();
  const bool isUnderstood =
      !words.empty() && (isEngine || words[0] == "services") && (words.size() < 3 || isAlone);
  if (!isUnderstood) {
    (void)std::fprintf(stderr, "usage: result_hashes services|engine [RECORDED [one-processor]]\n");
    return 2;
  }
  if (!HasWantedSet()) return 77;
  std::vector<std::string> lines;
  const auto calls = isEngine ? EngineCalls(Extent::kBroad) : ServiceCalls(Extent::kBroad);
  for (const DrawnCall& call : calls) lines.push_back(LineOf(call));
  if (words.size() == 1) {
    for (const std::string& line : lines) std::printf("%s\n", line.c_str());
    return std::fflush(stdout) == 0 ? 0 : 1;
  }
  const size_t differing = Differences(lines, LinesOf(words[1]));
  std::printf("%zu of %zu results differ from %s\n", differing, lines.size(), words[1].c_str());
  return differing == 0 ? 0 : 1;
}

}  // namespace
}  // namespace vorlanepic::testing

int main(int argc, char** argv) {
  return vorlanepic::testing::Main(std::vector<std::string>(argv + 1, argv + argc));
}
