// What files of all formats can say about a picture besides its pixels.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vorlane::files {

using Bytes = std::vector<uint8_t>;

// Pixels per inch, as exactly as the file says; 0: it does not say.
struct Resolution {
  double x = 0;
  double y = 0;
  bool isMetric = false;  // the file counts by the centimetre or metre
};

// A line of text under a keyword: those of PNG (Title, Author, Description, Copyright,
// Creation Time, Software) and Comment.
struct TextEntry {
  std::string keyword;
  std::string text;
};

}  // namespace vorlane::files
