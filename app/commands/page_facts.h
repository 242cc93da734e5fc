// What every command that turns pages tells of a page.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "app/files/page.h"

namespace vorlane::commands {

// The page's name in messages: the file, with [number] when it holds several pages.
std::string NameOf(const files::Page& page);

// "2480 x 3508".
std::string SizeWords(const ImageRec& image);

// width, height, depth and dpi of the page as it was.
nlohmann::ordered_json PictureFacts(const files::Page& page);

// newWidth and newHeight.
void PutNewSize(const ImageRec& made, nlohmann::ordered_json* facts);

// A reason as an object of its code and words.
nlohmann::ordered_json ReasonFacts(const std::string& code, const std::string& words);

}  // namespace vorlane::commands
