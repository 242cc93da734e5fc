#include "peak_memory.h"

#include <fstream>
#include <malloc.h>
#include <stdexcept>
#include <string>
#include <unistd.h>

#include <sys/wait.h>

namespace vorlanepic::bench {
namespace {

// A field of /proc/self/status, in bytes; -1 when it is not there.
int64_t StatusField(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name + ":")) return std::stoll(line.substr(name.size() + 1)) * 1024;
  }
  return -1;
}

// Makes the peak begin anew at what is resident now.
bool ResetPeak() {
  std::ofstream clear("/proc/self/clear_refs");
  return static_cast<bool>(clear << "5" << std::flush);
}

int64_t MeasureHere(const std::function<std::function<bool()>()>& prepare) {
  const std::function<bool()> job = prepare();
  malloc_trim(0);  // what the preparation freed would serve the job unseen
  if (!ResetPeak()) return -1;
  const int64_t before = StatusField("VmRSS");
  if (!job()) return -1;
  const int64_t peak = StatusField("VmHWM");
  return before < 0 || peak < 0 ? -1 : peak - before;
}

}  // namespace

int64_t PeakBytes(const std::function<std::function<bool()>()>& prepare) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe to a child process");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no child process");
  if (child == 0) {
    const int64_t bytes = MeasureHere(prepare);
    const bool isTold = write(ends[1], &bytes, sizeof bytes) == sizeof bytes;
    _exit(isTold ? 0 : 1);
  }
  close(ends[1]);
  int64_t bytes = -1;
  const bool isRead = read(ends[0], &bytes, sizeof bytes) == sizeof bytes;
  close(ends[0]);
  waitpid(child, nullptr, 0);
  if (!isRead || bytes < 0) throw std::runtime_error("the job failed in the child process");
  return bytes;
}

}  // namespace vorlanepic::bench
