// vorlane-compare: runs VorlanePic and its peers in turn in one process on the same pages, and
// prints what it measured as Markdown tables.
//
//   vorlane-compare [--rounds N] [memory] [straighten] [rotation] [blocks] [engine]
//
// Without a section all are run. Wants an otherwise idle machine.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <malloc.h>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/files/picture_writer.h"
#include "contest.h"
#include "file_straighteners.h"
#include "labellers.h"
#include "peak_memory.h"
#include "sample_pages.h"
#include "straighteners.h"

using namespace vorlanepic;
using namespace vorlanepic::bench;

namespace {

constexpr int32_t kOpenCvThreads = 2;

struct Job {
  const char* name;
  int32_t bitsPerPixel;
  int32_t interpolation;
};

constexpr Job kJobs[] = {
    {"8 bits, bilinear", 8, INTERP_BILINEAR},
    {"8 bits, nearest", 8, INTERP_NEAREST},
    {"8 bits, bicubic", 8, INTERP_BICUBIC},
    {"24 bits, bilinear", 24, INTERP_BILINEAR},
    {"24 bits, nearest", 24, INTERP_NEAREST},
    {"24 bits, bicubic", 24, INTERP_BICUBIC},
    {"1 bit", 1, INTERP_NEAREST},
};

const testing::TestImage& Scan(int32_t bitsPerPixel) {
  static const testing::TestImage grey = DrawPage(ContestPage(8));
  static std::map<int32_t, testing::TestImage> scans;
  const auto found = scans.find(bitsPerPixel);
  if (found != scans.end()) return found->second;
  return scans.emplace(bitsPerPixel, AtDepth(grey, bitsPerPixel)).first->second;
}

std::vector<Straightener> StraightenersOf(const Job& job) {
  const testing::TestImage& scan = Scan(job.bitsPerPixel);
  std::vector<Straightener> all{Ours(scan, job.interpolation)};
  for (Straightener& peer : OpenCvStraighteners(scan, job.interpolation)) all.push_back(peer);
  for (Straightener& peer : LeptonicaStraighteners(scan, job.interpolation)) all.push_back(peer);
  return all;
}

std::vector<Straightener> RotationsOf(const Job& job) {
  const testing::TestImage& scan = Scan(job.bitsPerPixel);
  std::vector<Straightener> all{OurRotation(scan, job.interpolation)};
  if (job.bitsPerPixel != 1) all.push_back(OpenCvRotation(scan, job.interpolation));
  for (Straightener& peer : LeptonicaRotations(scan, job.interpolation)) all.push_back(peer);
  return all;
}

// Mean grey levels of a page's middle 80 % in five by five patches.
std::vector<double> PatchLevels(const testing::TestImage& page) {
  constexpr int32_t kPatches = 5;
  std::vector<double> levels;
  const int32_t patchWidth = page.rec()->width * 16 / 100;
  const int32_t patchHeight = page.rec()->height * 16 / 100;
  for (int32_t j = 0; j < kPatches; ++j) {
    for (int32_t i = 0; i < kPatches; ++i) {
      const int32_t left = page.rec()->width / 10 + i * patchWidth;
      const int32_t top = page.rec()->height / 10 + j * patchHeight;
      double sum = 0;
      for (int32_t y = top; y < top + patchHeight; ++y) {
        for (int32_t x = left; x < left + patchWidth; ++x) sum += page.Get(x, y);
      }
      levels.push_back(sum / patchWidth / patchHeight);
    }
  }
  return levels;
}

// "2.00 degrees, 1800 x 2800", or what is wrong with the page that a straightener returned.
std::string Verdict(const Straightener& straightener, int32_t bitsPerPixel) {
  const testing::DrawnPage truth = ContestPage(bitsPerPixel);
  StraightPage found{};
  if (!straightener.run(&found)) throw std::runtime_error(straightener.name + " failed");
  const ImageRec& page = *found.page->rec();
  char text[96];
  std::snprintf(text, sizeof text, "%.2f°, %d × %d", found.degrees, page.width, page.height);
  std::string verdict = text;
  if (std::abs(found.degrees - truth.degrees) > 0.1) verdict += " (angle off)";
  if (std::abs(page.width - truth.pageWidth) > 8 || std::abs(page.height - truth.pageHeight) > 8) {
    verdict += " (size off)";
  }

  testing::DrawnPage upright = truth;
  upright.degrees = 0;
  upright.imageWidth = static_cast<int32_t>(truth.pageWidth);
  upright.imageHeight = static_cast<int32_t>(truth.pageHeight);
  upright.centerX = truth.pageWidth / 2;
  upright.centerY = truth.pageHeight / 2;
  static std::map<int32_t, std::vector<double>> wanted;
  if (!wanted.contains(bitsPerPixel)) wanted[bitsPerPixel] = PatchLevels(DrawPage(upright));
  const std::vector<double> levels = PatchLevels(*found.page);
  for (size_t i = 0; i < levels.size(); ++i) {
    if (std::abs(levels[i] - wanted[bitsPerPixel][i]) > 20) return verdict + " (content off)";
  }
  return verdict;
}

std::vector<Straightener> EngineContestantsOf(const Job& job) {
  const testing::TestImage& scan = Scan(job.bitsPerPixel);
  std::vector<Straightener> all = EngineStraighteners(scan, job.interpolation);
  all.push_back(OpenCvOutline(scan, job.interpolation));
  all.push_back(OpenCvStraighteners(scan, job.interpolation).front());
  return all;
}

void PrintRows(const char* job, const std::vector<Contender>& contenders,
               const std::vector<Timing>& timings, const std::vector<std::string>& notes) {
  for (size_t i = 0; i < contenders.size(); ++i) {
    std::printf("| %s | %s | %.2f | %.2f | %.2f | %s |\n", i == 0 ? job : "",
                contenders[i].name.c_str(), timings[i].median, timings[i].least,
                timings[i].median / timings[0].median, notes[i].c_str());
  }
  std::fflush(stdout);
}

void ComparePages(const char* title, std::vector<Straightener> (*contestantsOf)(const Job&),
                  bool isWholeJob, int32_t rounds) {
  std::printf("### %s\n\n", title);
  std::printf("| job | by | median ms | least ms | times ours | %s |\n|---|---|--:|--:|--:|---|\n",
              isWholeJob ? "found" : "turned by");
  for (const Job& job : kJobs) {
    std::vector<Contender> contenders;
    std::vector<std::string> notes;
    for (const Straightener& each : contestantsOf(job)) {
      contenders.push_back({each.name, [run = each.run] { return run(nullptr); }});
      if (isWholeJob) {
        notes.push_back(Verdict(each, job.bitsPerPixel));
      } else {
        StraightPage turned{};
        each.run(&turned);
        char text[64];
        std::snprintf(text, sizeof text, "%.2f°, %d × %d", turned.degrees,
                      turned.page->rec()->width, turned.page->rec()->height);
        notes.push_back(text);
      }
    }
    PrintRows(job.name, contenders, RunInTurn(contenders, rounds), notes);
  }
  std::printf("\n");
}

std::string Describe(const BlockTotals& totals) {
  char text[128];
  std::snprintf(text, sizeof text, "%lld blocks, %lld pixels, %lld listed",
                static_cast<long long>(totals.blocks), static_cast<long long>(totals.pixels),
                static_cast<long long>(totals.listed));
  return text;
}

void CompareBlocks(const char* name, const ByteImage& image, int32_t rounds) {
  std::vector<Labeller> labellers = OurLabellers(image);
  for (Labeller& peer : OpenCvLabellers(image)) labellers.push_back(peer);
  for (Labeller& peer : LeptonicaLabellers(image)) labellers.push_back(peer);

  std::vector<Contender> contenders;
  std::vector<std::string> notes;
  BlockTotals ours{};
  for (const Labeller& labeller : labellers) {
    BlockTotals totals{};
    if (!labeller.run(&totals)) throw std::runtime_error(labeller.name + " failed");
    if (contenders.empty()) ours = totals;
    // Centres are truncated by some and kept in single precision by others: less than one each.
    const bool agrees =
        totals.blocks == ours.blocks && totals.pixels == ours.pixels &&
        totals.perimeters == ours.perimeters &&
        std::abs(totals.centerSum - ours.centerSum) <= 0.01 * static_cast<double>(ours.blocks);
    notes.push_back(Describe(totals) + (agrees ? "" : " (differs)"));
    contenders.push_back({labeller.name, [run = labeller.run] { return run(nullptr); }});
  }
  PrintRows(name, contenders, RunInTurn(contenders, rounds), notes);
}

void CompareAllBlocks(int32_t rounds) {
  std::printf("### Blocks, one thread\n\n");
  std::printf("| image | by | median ms | least ms | times ours | found |\n");
  std::printf("|---|---|--:|--:|--:|---|\n");
  SetOpenCvThreads(1);
  CompareBlocks("text, 2550 × 3300", DenseText(kLetterSheet), rounds);
  CompareBlocks("noise, a tenth set", Noise(kLetterSheet), rounds);
  SetOpenCvThreads(kOpenCvThreads);
  std::printf("\n");
}

struct FileJob {
  const char* name;
  const char* file;
  int32_t bitsPerPixel;
  uint16_t compression;  // of TIFF, by its tag
};

constexpr uint16_t kNone = 1;
constexpr uint16_t kGroup4 = 4;
constexpr uint16_t kLzw = 5;
constexpr FileJob kFileJobs[] = {{"TIFF, 1 bit, G4", "g4.tif", 1, kGroup4},
                                 {"TIFF, grey, LZW", "grey.tif", 8, kLzw},
                                 {"TIFF, colour, LZW", "colour.tif", 24, kLzw},
                                 {"TIFF, colour, plain", "plain.tif", 24, kNone},
                                 {"PNG, grey", "grey.png", 8, 0},
                                 {"PNG, colour", "colour.png", 24, 0},
                                 {"JPEG, grey", "grey.jpg", 8, 0},
                                 {"JPEG, colour", "colour.jpg", 24, 0}};

// The contest's page with the grain of a scanner, at 200 dots per inch.
void WriteScan(const FileJob& job, const std::string& path) {
  testing::DrawnPage drawn = ContestPage(job.bitsPerPixel);
  drawn.noise = job.bitsPerPixel == 1 ? 0 : 3;
  const testing::TestImage scan = DrawPage(drawn);
  vorlane::files::Page source;
  source.metadata.resolution = {200, 200};
  source.coding.tiff.compression = job.compression;
  source.coding.jpeg.quality = 90;
  vorlane::files::WritePicture(path, *scan.rec(), source, vorlane::files::Replacing::kAllowed);
}

void CompareFiles(int32_t rounds) {
  namespace fs = std::filesystem;
  std::string folder = (fs::temp_directory_path() / "vorlane-compare-XXXXXX").string();
  if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no temporary folder");
  std::printf("### From file to file, one thread\n\n");
  std::printf("| job | by | median ms | least ms | times ours | bytes |\n");
  std::printf("|---|---|--:|--:|--:|--:|\n");
  SetOpenCvThreads(1);
  for (const FileJob& job : kFileJobs) {
    const std::string from = folder + "/" + job.file;
    const std::string to = folder + "/out-" + job.file;
    WriteScan(job, from);
    std::vector<Contender> contenders = {
        {"VorlanePic", [=] { return StraightenFile(from, to); }},
        {"its codecs alone", [=] { return CopyByOurCodecs(from, to); }}};
    if (job.bitsPerPixel != 1) {
      contenders.push_back({"OpenCV", [=] { return StraightenFileByOpenCv(from, to); }});
    }
    contenders.push_back({"Leptonica", [=] { return StraightenFileByLeptonica(from, to); }});
    const std::vector<Timing> timings = RunInTurn(contenders, rounds);
    std::vector<std::string> sizes;
    for (const Contender& contender : contenders) {
      if (!contender.run()) throw std::runtime_error(contender.name + " failed");
      sizes.push_back(std::to_string(fs::file_size(to)));
    }
    PrintRows(job.name, contenders, timings, sizes);
  }
  std::printf("\n");
  SetOpenCvThreads(kOpenCvThreads);
  fs::remove_all(folder);
}

void CompareMemory() {
  std::printf("### Peak memory of a job, beyond the page itself\n\n");
  std::printf("| job | by | MB at the peak | the upright page itself, MB |\n|---|---|--:|--:|\n");
  for (const Job& job : kJobs) {
    const size_t contestants = StraightenersOf(job).size();
    for (size_t i = 0; i < contestants; ++i) {
      const Straightener named = StraightenersOf(job)[i];
      const int64_t peak = PeakBytes([&]() -> std::function<bool()> {
        return [run = StraightenersOf(job)[i].run] { return run(nullptr); };
      });
      const double result = 1800.0 * 2800 * job.bitsPerPixel / 8;
      std::printf("| %s | %s | %.1f | %.1f |\n", i == 0 ? job.name : "", named.name.c_str(),
                  static_cast<double>(peak) / 1e6, result / 1e6);
    }
  }
  std::printf("\n");
}

struct Options {
  int32_t rounds = 51;
  std::vector<std::string> sections;

  bool Wants(const char* section) const {
    return sections.empty() ||
           std::find(sections.begin(), sections.end(), section) != sections.end();
  }
};

Options ReadOptions(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--rounds" && i + 1 < argc) {
      options.rounds = std::max(1, std::atoi(argv[++i]));
    } else if (argument == "memory" || argument == "straighten" || argument == "rotation" ||
               argument == "blocks" || argument == "engine" || argument == "files") {
      options.sections.push_back(argument);
    } else {
      throw std::runtime_error("unknown argument " + argument);
    }
  }
  return options;
}

}  // namespace

int main(int argc, char** argv) try {
  const Options options = ReadOptions(argc, argv);
  // First, while no library has started threads that a child process would miss.
  if (options.Wants("memory")) CompareMemory();
  SetOpenCvThreads(kOpenCvThreads);
  if (options.Wants("straighten")) {
    ComparePages("From the scan to the upright page", StraightenersOf, true, options.rounds);
  }
  if (options.Wants("rotation")) {
    ComparePages("The turn alone", RotationsOf, false, options.rounds);
  }
  if (options.Wants("blocks")) CompareAllBlocks(options.rounds);
  if (options.Wants("files")) CompareFiles(options.rounds);
  // Last, because every large request is fresh memory from here on, for all alike.
  if (options.Wants("engine")) {
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    ComparePages("Detect and apply in fresh memory", EngineContestantsOf, true, options.rounds);
  }
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "vorlane-compare: %s\n", error.what());
  return 1;
}
