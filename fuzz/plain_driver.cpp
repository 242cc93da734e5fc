// Feeds a fuzz target where there is no libFuzzer: made-up inputs, the same ones in every run, or
// instead what is named on the command line. Fails when a file cannot be read or a folder holds
// none.
//
//   TARGET [-runs=N] [FILE or FOLDER...]
//
// By the C library's calls alone, because the memory sanitizer follows those.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <sys/stat.h>

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

[[noreturn]] void Fail(const std::string& path, const char* what) {
  std::fprintf(stderr, "%s: %s\n", path.c_str(), what);
  std::exit(1);
}

struct Closer {
  void operator()(std::FILE* file) const { (void)std::fclose(file); }
  void operator()(DIR* folder) const { (void)closedir(folder); }
};

int RunFile(const std::string& path) {
  const std::unique_ptr<std::FILE, Closer> file(std::fopen(path.c_str(), "rb"));
  if (!file) Fail(path, "cannot be opened");
  Bytes input;
  for (int byte = 0; (byte = std::fgetc(file.get())) != EOF;) {
    input.push_back(static_cast<uint8_t>(byte));
  }
  if (std::ferror(file.get()) != 0) Fail(path, "cannot be read");
  // The last name in the log is that of an input that ends the run.
  std::printf("%s\n", path.c_str());
  (void)std::fflush(stdout);
  Run(input);
  return 1;
}

// In the order of their names.
std::vector<std::string> FilesIn(const std::string& path) {
  const std::unique_ptr<DIR, Closer> folder(opendir(path.c_str()));
  if (!folder) Fail(path, "cannot be listed");
  std::vector<std::string> files;
  while (const dirent* entry = readdir(folder.get())) {
    if (entry->d_name[0] != '.') files.push_back(path + "/" + entry->d_name);
  }
  if (files.empty()) Fail(path, "holds no file to replay");
  std::sort(files.begin(), files.end());
  return files;
}

int Replay(const std::string& path) {
  struct stat about {};
  if (stat(path.c_str(), &about) != 0) Fail(path, "is not there");
  if (!S_ISDIR(about.st_mode)) return RunFile(path);
  int runs = 0;
  for (const std::string& file : FilesIn(path)) runs += RunFile(file);
  return runs;
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 2000;
  int replayed = 0;
  for (int i = 1; i < argc; ++i) {
    if (std::strncmp(argv[i], "-runs=", 6) == 0) {
      runs = std::atoi(argv[i] + 6);
    } else if (argv[i][0] != '-') {
      replayed += Replay(argv[i]);
    }
  }
  if (replayed > 0) {
    std::printf("%d files replayed\n", replayed);
    return 0;
  }
  RunMadeUp(runs);
  std::printf("%d runs\n", runs);
  return 0;
}
