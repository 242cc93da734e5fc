#include "app/files/helper_process.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <poll.h>
#include <sstream>
#include <system_error>
#include <unistd.h>
#include <utility>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include "app/files/errors.h"
#include "app/walls/call_filter.h"
#include "app/walls/file_walls.h"

namespace vorlane::files {
namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kMostMessages = 4096;
constexpr int kNotStarted = 127;

class Descriptor {
 public:
  explicit Descriptor(int value) : value_(value) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { Close(); }
  int value() const { return value_; }
  void Close() {
    if (value_ >= 0) (void)::close(std::exchange(value_, -1));
  }

 private:
  int value_;
};

void Limit(__rlimit_resource resource, int64_t most) {
  const rlimit limit{static_cast<rlim_t>(most), static_cast<rlim_t>(most)};
  (void)::setrlimit(resource, &limit);
}

struct Walls {
  std::optional<walls::FileWalls> files;
  std::optional<walls::CallFilter> calls;
};

Walls WallsFor(HelperWalls wanted, const std::string& path, const std::string& folder, int input) {
  Walls made;
  if (wanted == HelperWalls::kNone) return made;
  const std::string place = std::filesystem::path(path).parent_path().native();
  try {
    made.calls = walls::CallFilter::ForHelpers();
    made.files.emplace(std::vector<std::string>{"/usr", "/lib", "/lib32", "/lib64", "/libx32",
                                                "/bin", "/etc", "/opt", place},
                       folder, input);
  } catch (const std::system_error& error) {
    if (wanted == HelperWalls::kAlways) {
      throw DecodeError(path + ": the system does not allow a sandbox for it: " + error.what());
    }
  }
  return made;
}

struct Start {
  const char* path;
  char* const* arguments;
  int input;
  int nothing;   // open for writing
  int messages;  // the writing end
  const HelperLimits& limits;
  const Walls& walls;
};

// In the child, where only calls that are safe in a signal handler may be made.
[[noreturn]] void Become(const Start& start) {
  (void)::setpgid(0, 0);
  (void)::prctl(PR_SET_PDEATHSIG, SIGKILL);
  Limit(RLIMIT_AS, start.limits.memory);
  Limit(RLIMIT_FSIZE, start.limits.fileSize);
  Limit(RLIMIT_CPU, start.limits.seconds);
  Limit(RLIMIT_CORE, 0);
  const bool isSet = ::dup2(start.input, 0) == 0 && ::dup2(start.nothing, 1) == 1 &&
                     ::dup2(start.messages, 2) == 2;
  const Walls& walls = start.walls;
  const bool isWalled =
      (!walls.files || walls.files->Apply() == 0) && (!walls.calls || walls.calls->Apply() == 0);
  if (isSet && isWalled) (void)::execv(start.path, start.arguments);
  ::_exit(kNotStarted);
}

// Reads until the program closes its error output. Returns whether it did so in time.
bool Listen(int from, int32_t seconds, std::string* messages) {
  const Clock::time_point end = Clock::now() + std::chrono::seconds(seconds);
  std::array<char, 512> bytes{};
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    if (left.count() <= 0) return false;
    pollfd wait{from, POLLIN, 0};
    if (::poll(&wait, 1, static_cast<int>(left.count())) <= 0) continue;
    const ssize_t got = ::read(from, bytes.data(), bytes.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return true;
    const size_t room = kMostMessages - std::min(kMostMessages, messages->size());
    messages->append(bytes.data(), std::min(room, static_cast<size_t>(got)));
  }
}

std::string EndingWords(int status, bool isInTime) {
  if (!isInTime) return "took too long and was ended";
  if (WIFSIGNALED(status)) {
    return std::string("was ended by a signal: ") + strsignal(WTERMSIG(status));
  }
  if (WEXITSTATUS(status) == kNotStarted) return "could not be started";
  return "ended with the exit code " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

std::string FindProgram(const std::string& name) {
  const char* folders = std::getenv("PATH");
  std::istringstream list(folders != nullptr ? folders : "/usr/bin:/bin");
  for (std::string folder; std::getline(list, folder, ':');) {
    std::string path = (folder.empty() ? "." : folder) + "/" + name;
    if (::access(path.c_str(), X_OK) == 0) return path;
  }
  return "";
}

HelperResult RunHelper(const std::string& path, const std::vector<std::string>& arguments,
                       int input, const HelperLimits& limits, HelperWalls walls,
                       const std::string& folder) {
  std::vector<char*> words{const_cast<char*>(path.c_str())};
  for (const std::string& word : arguments) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  std::array<int, 2> ends{};
  Descriptor nothing(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  if (nothing.value() < 0 || ::pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw DecodeError(path + ": cannot be started: " + std::strerror(errno));
  }
  Descriptor listening(ends[0]);
  Descriptor telling(ends[1]);
  const Walls made = WallsFor(walls, path, folder, input);
  const Start start{path.c_str(),    words.data(), input, nothing.value(),
                    telling.value(), limits,       made};
  const pid_t child = ::fork();
  if (child < 0) throw DecodeError(path + ": cannot be started: " + std::strerror(errno));
  if (child == 0) Become(start);
  telling.Close();

  HelperResult result;
  const bool isInTime = Listen(listening.value(), limits.seconds, &result.messages);
  if (!isInTime) (void)::kill(child, SIGKILL);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  result.isDone = isInTime && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  if (!result.isDone) result.ending = EndingWords(status, isInTime);
  return result;
}

}  // namespace vorlane::files
