// A batch beside its codecs alone: what straightening adds to reading and writing the same pages
// with as many threads. And a batch whose files are decoded in a sandbox beside one that decodes
// them itself.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <tiff.h>
#include <unistd.h>
#include <vector>

#include <sys/resource.h>

#include "app/batch/batch.h"
#include "app/batch/freed_memory.h"
#include "app/commands/engine_service.h"
#include "app/files/picture_file.h"
#include "app/files/picture_writer.h"
#include "sample_pages.h"

namespace vorlanepic::bench {
namespace {

namespace fs = std::filesystem;
namespace files = vorlane::files;
namespace batch = vorlane::batch;

constexpr int32_t kThreads = 2;
constexpr double kA4 = 8.7;  // megapixels of a letter or A4 page of 300 dots per inch

struct Kind {
  const char* name;
  const char* extension;
  int32_t bitsPerPixel;
  uint16_t compression;  // of TIFF
};

constexpr Kind kKinds[] = {{"TIFF, LZW, grey", ".tif", 8, COMPRESSION_LZW},
                           {"TIFF, LZW, colour", ".tif", 24, COMPRESSION_LZW},
                           {"TIFF, G4", ".tif", 1, COMPRESSION_CCITTFAX4},
                           {"PNG, grey", ".png", 8, 0},
                           {"PNG, colour", ".png", 24, 0},
                           {"JPEG, colour", ".jpg", 24, 0}};

void WriteScans(const Kind& kind, double megapixels, int32_t count, const std::string& folder) {
  fs::create_directories(folder);
  testing::DrawnPage drawn = ScannedPage(megapixels, 2, kind.bitsPerPixel);
  drawn.text = true;
  drawn.noise = kind.bitsPerPixel == 1 ? 0 : 3;
  const testing::TestImage scan = DrawPage(drawn);
  files::Page source;
  source.coding.tiff.compression = kind.compression;
  source.metadata.resolution = {300, 300};
  const std::string first = folder + "/0" + kind.extension;
  files::WritePicture(first, *scan.rec(), source, files::Replacing::kAllowed);
  for (int32_t i = 1; i < count; ++i) {
    fs::copy_file(first, folder + "/" + std::to_string(i) + kind.extension);
  }
}

void Copy(const fs::path& from, const std::string& to) {
  const files::Page page = files::PictureFile(from.native()).Read(1);
  std::vector<std::string> notes;
  const files::FileFormat format = files::FormatOfName(to).value();
  files::PictureWriter writer(to, format, files::Replacing::kAllowed, files::Durability::kSynced);
  writer.Add(files::EncodePage(format, *page.image.rec(), page, {}, &notes));
  writer.Commit();
}

void CopyAll(const std::string& from, const std::string& to) {
  std::vector<fs::path> paths;
  for (const auto& entry : fs::directory_iterator(from)) paths.push_back(entry.path());
  fs::create_directories(to);
  std::atomic<size_t> next{0};
  std::vector<std::thread> threads;
  for (int32_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (size_t at = next++; at < paths.size(); at = next++) {
        Copy(paths[at], to + "/" + paths[at].filename().native());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

void Straighten(const std::string& from, const std::string& to,
                batch::Sandbox sandbox = batch::Sandbox::kOff) {
  batch::BatchRequest request;
  request.command = "straighten";
  request.inputs.words = {from};
  request.output = to + "/";
  request.overwriting.outputs = true;
  request.report.isQuiet = true;
  request.isStrict = true;
  request.jobs = kThreads;
  request.sandbox = sandbox;
  vorlane::commands::EngineOptions engine;
  engine.detect.by = VORLANE_BY_PAPER;  // the drawn words speak for angles of their own
  if (batch::RunBatch(request, vorlane::commands::MakeService(engine)) != 0) {
    throw std::runtime_error("a page was not straightened");
  }
}

struct Taken {
  double wall;
  double processor;
};

// Of this process and of those that it started and that have ended.
double ProcessorMs() {
  double ms = 0;
  for (const auto who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage used{};
    (void)::getrusage(who, &used);
    for (const timeval& time : {used.ru_utime, used.ru_stime}) {
      ms += 1e3 * static_cast<double>(time.tv_sec) + 1e-3 * static_cast<double>(time.tv_usec);
    }
  }
  return ms;
}

template <typename Action>
Taken Measure(const Action& action) {
  const auto wall = std::chrono::steady_clock::now();
  const double processor = ProcessorMs();
  action();
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - wall;
  return {taken.count(), ProcessorMs() - processor};
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Two ways to treat the same scans in turns, each first as often as the other: what `second` takes
// and how it compares with `first`.
template <typename First, typename Second>
void Compare(const Kind& kind, double megapixels, int32_t count, int32_t rounds,
             const std::string& folder, const First& first, const Second& second) {
  WriteScans(kind, megapixels, count, folder + "/in");
  std::vector<double> firstMs;
  std::vector<double> secondMs;
  std::vector<double> wallRatios;
  std::vector<double> processorRatios;
  for (int32_t round = 0; round < rounds; ++round) {
    Taken taken[2] = {};
    for (int32_t turn = 0; turn < 2; ++turn) {
      const bool isSecond = (round + turn) % 2 != 0;
      taken[isSecond ? 1 : 0] = isSecond ? Measure(second) : Measure(first);
    }
    firstMs.push_back(taken[0].wall / count);
    secondMs.push_back(taken[1].wall / count);
    wallRatios.push_back(taken[1].wall / taken[0].wall);
    processorRatios.push_back(taken[1].processor / taken[0].processor);
  }
  std::printf("| %s | %.1f | %.1f | %.3f | %.3f |\n", kind.name, Median(secondMs), Median(firstMs),
              Median(wallRatios), Median(processorRatios));
  (void)std::fflush(stdout);
  for (const char* name : {"/in", "/copies", "/pages"}) fs::remove_all(folder + name);
}

void CompareAll(bool isBrief, bool isOfSandbox) {
  batch::KeepFreedMemory();  // for the codecs alone as well
  std::string folder = (fs::temp_directory_path() / "vorlane-batch-XXXXXX").native();
  if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no temporary folder");
  std::printf("### A batch beside %s, two threads\n\n",
              isOfSandbox ? "the same without its sandbox" : "its codecs");
  std::printf("| pages | ms a page | %s | times, by the clock | by processor time |\n",
              isOfSandbox ? "without" : "codecs alone");
  std::printf("|---|--:|--:|--:|--:|\n");
  const double megapixels = isBrief ? 0.3 : kA4;
  const std::string from = folder + "/in";
  const std::string pages = folder + "/pages";
  const auto open = [&] { Straighten(from, pages); };
  for (const Kind& kind : kKinds) {
    if (isOfSandbox) {
      Compare(kind, megapixels, isBrief ? 2 : 24, isBrief ? 1 : 8, folder, open,
              [&] { Straighten(from, pages, batch::Sandbox::kOn); });
    } else {
      Compare(
          kind, megapixels, isBrief ? 2 : 16, isBrief ? 1 : 5, folder,
          [&] { CopyAll(from, folder + "/copies"); }, open);
    }
  }
  std::printf("\n");
  fs::remove_all(folder);
}

}  // namespace
}  // namespace vorlanepic::bench

int main(int argc, char** argv) try {
  const std::vector<std::string> words(argv + 1, argv + argc);
  const auto has = [&](const char* word) {
    return std::find(words.begin(), words.end(), word) != words.end();
  };
  vorlanepic::bench::CompareAll(has("--brief"), has("--sandbox"));
  return EXIT_SUCCESS;
} catch (const std::exception& error) {
  (void)std::fprintf(stderr, "batch_bench: %s\n", error.what());
  return EXIT_FAILURE;
}
