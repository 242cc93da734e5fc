#include "app/commands/page_facts.h"

#include "app/batch/page_record.h"

namespace vorlane::commands {

std::string NameOf(const files::Page& page) {
  return batch::NameOf(page.file, page.number, page.count);
}

std::string SizeWords(const ImageRec& image) {
  return std::to_string(image.width) + " x " + std::to_string(image.height);
}

nlohmann::ordered_json PictureFacts(const files::Page& page) {
  const ImageRec& image = *page.image.rec();
  nlohmann::ordered_json facts = {
      {"width", image.width}, {"height", image.height}, {"depth", image.bitsPerPixel}};
  facts["dpi"] = {page.metadata.resolution.x, page.metadata.resolution.y};
  return facts;
}

void PutNewSize(const ImageRec& made, nlohmann::ordered_json* facts) {
  (*facts)["newWidth"] = made.width;
  (*facts)["newHeight"] = made.height;
}

nlohmann::ordered_json ReasonFacts(const std::string& code, const std::string& words) {
  return {{"code", code}, {"words", words}};
}

}  // namespace vorlane::commands
