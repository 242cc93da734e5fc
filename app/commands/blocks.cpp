// vorlane blocks: the connected dark or non-zero blocks of a page.
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <memory>
#include <string_view>
#include <vector>

#include "app/batch/page_loop.h"
#include "app/batch/page_output.h"
#include "app/batch/page_record.h"
#include "app/batch/printable_name.h"
#include "app/commands/commands.h"
#include "app/files/image_convert.h"
#include "app/overlay/block_overlay.h"
#include "app/services/block_listing.h"
#include "app/services/threshold_choice.h"

namespace vorlane::commands {
namespace {

using services::Block;

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

struct Column {
  const char* name;
  int64_t (*value)(const Block& block);
};

constexpr std::array<Column, 11> kColumns = {
    {{"left", [](const Block& b) -> int64_t { return b.left; }},
     {"top", [](const Block& b) -> int64_t { return b.top; }},
     {"right", [](const Block& b) -> int64_t { return b.right; }},
     {"bottom", [](const Block& b) -> int64_t { return b.bottom; }},
     {"width", [](const Block& b) -> int64_t { return b.right - b.left + 1; }},
     {"height", [](const Block& b) -> int64_t { return b.bottom - b.top + 1; }},
     {"area", [](const Block& b) { return b.area; }},
     {"centerX", [](const Block& b) -> int64_t { return b.centerX; }},
     {"centerY", [](const Block& b) -> int64_t { return b.centerY; }},
     {"minLevel", [](const Block& b) -> int64_t { return b.minLevel; }},
     {"maxLevel", [](const Block& b) -> int64_t { return b.maxLevel; }}}};

std::string NameOf(const files::Page& page) {
  return batch::NameOf(page.file, page.number, page.count);
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

// A line of numbers that is written millions of times.
class Line {
 public:
  void Put(std::string_view text) { text_ += text; }
  void PutNumber(int64_t number, size_t width = 0) {
    std::array<char, 24> digits{};
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const auto length = static_cast<size_t>(end - digits.data());
    text_.append(width > length ? width - length : 0, ' ').append(digits.data(), length);
  }
  void Print() {
    (void)std::fwrite(text_.data(), 1, text_.size(), stdout);
    text_.clear();
  }

 private:
  std::string text_;
};

// Prints the blocks of one page as they come.
class BlockPrinter {
 public:
  BlockPrinter(const BlockOptions& options, const files::Page& page, int32_t threshold)
      : options_(options), page_(page), csvName_(Quoted(batch::Printable(page.file))) {
    if (options.csv) return;
    if (options.batch.report.json) {
      BeginJson(threshold);
    } else {
      BeginTable();
    }
  }

  void Print(const Block& block) {
    if (options_.csv) {
      line_.Put(csvName_);
      line_.Put(",");
      line_.PutNumber(page_.number);
      line_.Put(",");
      line_.PutNumber(count_);
      for (const Column& column : kColumns) {
        line_.Put(",");
        line_.PutNumber(column.value(block));
      }
      line_.Put("\n");
    } else if (options_.batch.report.json) {
      PutJson(block);
    } else {
      line_.PutNumber(count_, 6);
      for (const Column& column : kColumns) line_.PutNumber(column.value(block), 9);
      line_.Put("\n");
    }
    line_.Print();
    ++count_;
  }

  void End(double milliseconds) const {
    if (options_.csv) return;
    if (options_.batch.report.json) {
      nlohmann::ordered_json rest = {{"milliseconds", milliseconds}, {"notes", page_.notes}};
      std::printf("],%s\n", batch::Dump(rest).c_str() + 1);  // without its brace
    } else {
      std::printf("%s: %lld blocks, %.1f ms\n", NameOf(page_).c_str(),
                  static_cast<long long>(count_), milliseconds);
    }
  }

 private:
  void BeginTable() const {
    std::printf("%s\n%6s", NameOf(page_).c_str(), "block");
    for (const Column& column : kColumns) std::printf(" %8s", column.name);
    std::printf("\n");
  }

  void BeginJson(int32_t threshold) const {
    batch::PageRecord record;
    record.command = "blocks";
    record.file = page_.file;
    record.number = page_.number;
    record.count = page_.count;
    nlohmann::ordered_json json = batch::JsonHead(record, "measured");
    json["threshold"] = threshold;
    std::string head = batch::Dump(json);
    head.pop_back();
    std::printf("%s,\"blocks\":[", head.c_str());
  }

  void PutJson(const Block& block) {
    const char* before = count_ > 0 ? ",{\"" : "{\"";
    for (const Column& column : kColumns) {
      line_.Put(before);
      line_.Put(column.name);
      line_.Put("\":");
      line_.PutNumber(column.value(block));
      before = ",\"";
    }
    line_.Put("}");
  }

  const BlockOptions& options_;
  const files::Page& page_;
  std::string csvName_;
  Line line_;
  int64_t count_ = 0;
};

services::BlockSearch SearchFor(const BlockOptions& options, const ImageRec& image,
                                int32_t threshold) {
  services::BlockSearch search;
  search.threshold = threshold;
  search.isNonZero = options.nonZero;
  search.runs = options.param;
  search.rect = {0, 0, image.width, image.height};
  if (!options.rect.empty()) {
    search.rect = {options.rect[0], options.rect[1], options.rect[2], options.rect[3]};
  }
  return search;
}

void Sort(BlockOrder order, std::vector<Block>* blocks) {
  const auto key = order == BlockOrder::kCenter ? &Block::centerX : &Block::left;
  std::stable_sort(blocks->begin(), blocks->end(),
                   [key](const Block& a, const Block& b) { return a.*key < b.*key; });
}

void RunPage(const BlockOptions& options, const files::Page& page, const std::string& overlay) {
  const ImageRec& image = *page.image.rec();
  const int32_t threshold =
      options.threshold >= 0 ? options.threshold : services::SplitLevel(image);
  const services::BlockSearch search = SearchFor(options, image, threshold);
  vorlanepic::frame::PixelRect area{};
  if (!vorlanepic::omr::ClipToImage(search.rect, image.width, image.height, &area)) {
    throw files::FileError(NameOf(page) + ": the rectangle begins outside the page");
  }
  const bool isSorted = options.order != BlockOrder::kAsFound;
  std::vector<Block> blocks;  // where all are needed at once
  BlockPrinter printer(options, page, threshold);
  const double milliseconds = Timed([&] {
    const std::vector<uint8_t> grey = files::ToGreyBuffer(image);
    services::ListBlocks(grey, image.width, image.height, search, [&](const Block& block) {
      if (isSorted || !overlay.empty()) blocks.push_back(block);
      if (!isSorted) printer.Print(block);
      return std::ferror(stdout) == 0;
    });
  });
  if (isSorted) Sort(options.order, &blocks);
  for (size_t i = 0; isSorted && i < blocks.size(); ++i) printer.Print(blocks[i]);
  printer.End(milliseconds);
  if (overlay.empty()) return;
  const bool mayReplace = options.batch.overwriting.outputs;
  batch::WritePicture(overlay, overlay::DrawBlocks(page, blocks),
                      mayReplace ? files::Replacing::kAllowed : files::Replacing::kNever);
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
