// vorlane blocks: the connected dark or non-zero blocks of a page.
#include <array>
#include <charconv>
#include <cstdio>
#include <memory>
#include <span>

#include "app/batch/page_loop.h"
#include "app/batch/page_output.h"
#include "app/batch/page_record.h"
#include "app/commands/commands.h"
#include "app/files/image_convert.h"
#include "app/overlay/block_overlay.h"
#include "app/services/threshold_choice.h"

namespace vorlane::commands {
namespace {

enum class BlockOrder { kAsFound, kCenter, kLeft };

struct BlockOptions {
  batch::BatchRequest batch;
  int32_t threshold = -1;
  bool nonZero = false;
  bool csv = false;
  BlockMarkParam param{};
  std::vector<int32_t> rect;  // empty: the whole page
  BlockOrder order = BlockOrder::kAsFound;
};

class BlockSet {
 public:
  BlockSet() = default;
  BlockSet(const BlockSet&) = delete;
  BlockSet& operator=(const BlockSet&) = delete;
  ~BlockSet() { DestoryBlockSetRec(&set_); }
  BlockSetRec* rec() { return &set_; }
  std::span<const BlockRec> blocks() const {
    return {set_.blocks, static_cast<size_t>(set_.count)};
  }

 private:
  BlockSetRec set_{};
};

// Points hold 16-bit coordinates.
constexpr int32_t kLargestSide = 65535;

BlockRect RectOf(const BlockOptions& options, const ImageRec& image) {
  if (options.rect.empty()) return {0, 0, image.width, image.height};
  return {options.rect[0], options.rect[1], options.rect[2], options.rect[3]};
}

// The sorting functions look at non-zero pixels of an area, so the dark ones are set first.
bool LabelInOrder(const BlockOptions& options, const ImageRec& image,
                  const std::vector<uint8_t>& marks, BlockSet* set) {
  const BlockRect rect = RectOf(options, image);
  const LabelArea area{rect.y, rect.y + rect.h - 1, rect.x, rect.x + rect.w - 1};
  const auto label =
      options.order == BlockOrder::kCenter ? bw_label_center_area : bw_label_left_area;
  return label(marks.data(), image.height, image.width, &area, set->rec()) == 1;
}

bool FindBlocks(const BlockOptions& options, const ImageRec& image, int32_t threshold,
                BlockSet* set) {
  std::vector<uint8_t> grey = files::ToGreyBuffer(image);
  if (options.order != BlockOrder::kAsFound) {
    if (!options.nonZero) {
      for (uint8_t& level : grey) level = level <= threshold ? 255 : 0;
    }
    return LabelInOrder(options, image, grey, set);
  }
  const BlockRect rect = RectOf(options, image);
  BlockMarkParam param = options.param;
  param.threshold = static_cast<uint8_t>(threshold);
  const auto mark = options.nonZero ? BWBlockMarkHorEx : ImageBlockMarkHorEx;
  return mark(grey.data(), image.height, image.width, &param, &rect, set->rec()) == 0;
}

struct Column {
  const char* name;
  int32_t (*value)(const BlockRec& block);
};

constexpr std::array<Column, 11> kColumns = {
    {{"left", [](const BlockRec& b) { return b.left; }},
     {"top", [](const BlockRec& b) { return b.top; }},
     {"right", [](const BlockRec& b) { return b.right; }},
     {"bottom", [](const BlockRec& b) { return b.bottom; }},
     {"width", [](const BlockRec& b) { return b.width; }},
     {"height", [](const BlockRec& b) { return b.height; }},
     {"area", [](const BlockRec& b) { return b.area; }},
     {"centerX", [](const BlockRec& b) { return b.centerX; }},
     {"centerY", [](const BlockRec& b) { return b.centerY; }},
     {"minLevel", [](const BlockRec& b) { return static_cast<int32_t>(b.minValue); }},
     {"maxLevel", [](const BlockRec& b) { return static_cast<int32_t>(b.maxValue); }}}};

std::string NameOf(const files::Page& page) {
  return batch::NameOf(page.file, page.number, page.count);
}

void PrintTable(const files::Page& page, std::span<const BlockRec> blocks, double milliseconds) {
  std::printf("%s: %zu blocks, %.1f ms\n%6s", NameOf(page).c_str(), blocks.size(), milliseconds,
              "block");
  for (const Column& column : kColumns) std::printf(" %8s", column.name);
  std::printf("\n");
  for (size_t i = 0; i < blocks.size(); ++i) {
    std::printf("%6zu", i);
    for (const Column& column : kColumns) std::printf(" %8d", column.value(blocks[i]));
    std::printf("\n");
  }
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + "\"";
}

void PrintCsvHead() {
  std::printf("file,page,block");
  for (const Column& column : kColumns) std::printf(",%s", column.name);
  std::printf("\n");
}

void PrintCsv(const files::Page& page, std::span<const BlockRec> blocks) {
  const std::string name = Quoted(page.file);
  for (size_t i = 0; i < blocks.size(); ++i) {
    std::printf("%s,%d,%zu", name.c_str(), page.number, i);
    for (const Column& column : kColumns) std::printf(",%d", column.value(blocks[i]));
    std::printf("\n");
  }
}

void PrintBlocksJson(const files::Page& page, std::span<const BlockRec> blocks, int32_t threshold,
                     double milliseconds) {
  batch::PageRecord record;
  record.command = "blocks";
  record.file = page.file;
  record.number = page.number;
  record.count = page.count;
  nlohmann::ordered_json json = batch::JsonHead(record, "measured");
  json["threshold"] = threshold;
  json["milliseconds"] = milliseconds;
  json["blocks"] = nlohmann::ordered_json::array();
  for (const BlockRec& block : blocks) {
    nlohmann::ordered_json one;
    for (const Column& column : kColumns) one[column.name] = column.value(block);
    json["blocks"].push_back(one);
  }
  json["notes"] = page.notes;
  std::printf("%s\n", batch::Dump(json).c_str());
}

void RunPage(const BlockOptions& options, const files::Page& page, const std::string& overlay) {
  const ImageRec& image = *page.image.rec();
  if (image.width > kLargestSide || image.height > kLargestSide) {
    throw files::FileError(NameOf(page) +
                           ": blocks can be marked on pages of up to 65535 x 65535 pixels");
  }
  const int32_t threshold =
      options.threshold >= 0 ? options.threshold : services::SplitLevel(image);
  BlockSet set;
  bool found = false;
  const double milliseconds = Timed([&] { found = FindBlocks(options, image, threshold, &set); });
  if (!found) {
    throw files::FileError(
        NameOf(page) + ": the rectangle begins outside the page, or there is not enough memory");
  }
  if (!overlay.empty()) {
    const bool mayReplace = options.batch.overwriting.outputs;
    batch::WritePicture(overlay, overlay::DrawBlocks(page, set.blocks()),
                        mayReplace ? files::Replacing::kAllowed : files::Replacing::kNever);
  }
  if (options.csv) {
    PrintCsv(page, set.blocks());
  } else if (options.batch.report.json) {
    PrintBlocksJson(page, set.blocks(), threshold, milliseconds);
  } else {
    PrintTable(page, set.blocks(), milliseconds);
  }
}

void AddRunOptions(CLI::App* command, BlockMarkParam* param) {
  command
      ->add_option("--min-run", param->minRunLen,
                   "Shortest run of pixels in a row that is kept; works together with --max-run")
      ->check(CLI::Range(1, 32767));
  command->add_option("--max-run", param->maxRunLen, "Longest run that is kept")
      ->check(CLI::Range(1, 32767));
  command->get_option("--min-run")->needs(command->get_option("--max-run"));
  command->get_option("--max-run")->needs(command->get_option("--min-run"));
  command
      ->add_option("--join-gap", param->joinGap,
                   "Join runs that begin at most this many pixels behind the end of the last")
      ->check(CLI::Range(0, 32767));
}

void AddOrderOption(CLI::App* command, BlockOrder* order) {
  CLI::Option* option =
      command
          ->add_option_function<std::string>(
              "--order",
              [order](const std::string& name) {
                *order = name == "center" ? BlockOrder::kCenter : BlockOrder::kLeft;
              },
              "From left to right, by the blocks' centres or by their left edges [as found, row by "
              "row]")
          ->check(CLI::IsMember({"center", "left"}));
  for (const char* name : {"--min-run", "--max-run", "--join-gap"}) {
    option->excludes(command->get_option(name));
  }
}

}  // namespace

CommandRun AddBlocks(CLI::App* app) {
  auto options = std::make_shared<BlockOptions>();
  CLI::App* command = app->add_subcommand(
      "blocks", "List the connected blocks of dark pixels, or of non-zero ones");
  AddMeasureOptions(command, &options->batch);
  CLI::Option* threshold =
      command
          ->add_option("--threshold", options->threshold,
                       "Grey level: dark is at or below it [where the picture's levels part best]")
          ->check(CLI::Range(0, 255));
  command->add_flag("--nonzero", options->nonZero, "Mark every pixel that is not black instead")
      ->excludes(threshold);
  AddRunOptions(command, &options->param);
  command
      ->add_option("--rect", options->rect,
                   "x,y,w,h: search columns x to x+w and rows y to y+h only")
      ->delimiter(',')
      ->expected(4);
  AddOrderOption(command, &options->order);
  command->add_flag("--csv", options->csv, "Comma-separated values instead of a table")
      ->excludes(command->get_option("--json"));
  command->footer(
      "Examples:\n"
      "  vorlane blocks sheet.png --csv > blocks.csv\n"
      "  vorlane blocks sheet.tif --rect 0,0,400,3000 --order left --overlay found.png");
  return [options, command] {
    FinishRequest(*command, &options->batch);
    if (options->csv) PrintCsvHead();
    return batch::ForEachPage(options->batch,
                              [&](const files::Page& page, const std::string& overlay) {
                                RunPage(*options, page, overlay);
                              });
  };
}

}  // namespace vorlane::commands
