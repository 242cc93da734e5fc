// A colour copy of a page to draw on, at the size of a screen.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/files/pix_owner.h"
#include "app/services/place.h"
#include "vorlanepic/imgbuf.h"

namespace vorlane::overlay {

using services::Place;

struct Colour {
  uint8_t red;
  uint8_t green;
  uint8_t blue;
};

// One line of the caption under the page. Entries with a mark get a swatch of its colour.
struct CaptionLine {
  std::string text;
  bool hasMark = false;
  Colour mark{};
};

class OverlayCanvas {
 public:
  // Copies `image`, made smaller where it is larger than a screen and paled so that what is drawn
  // stands out. Places and widths stay those of the page. Throws FileError without memory.
  explicit OverlayCanvas(const ImageRec& image);

  // Everything is clipped to the page; any finite coordinate is served. Widths are in units of
  // unit() pixels, and every stroke has a dark rim that keeps it visible on paper.
  void Line(Place from, Place to, double width, Colour colour);
  void Polygon(const std::vector<Place>& corners, double width, Colour colour);
  void Box(double left, double top, double right, double bottom, double width, Colour colour);
  void Dot(Place center, double radius, Colour colour);
  void Cross(Place center, double arm, double width, Colour colour);
  // Text with its lower left corner at `at`, on a dark ground. Printable ASCII.
  void Label(Place at, const std::string& text, Colour colour);

  // The page with the caption below it.
  files::PixPtr WithCaption(const std::vector<CaptionLine>& lines) const;

  int32_t width() const { return width_; }
  int32_t height() const { return height_; }

  // One stroke unit in pixels: 1 on a page of 1000 pixels and below, growing with the page, so that
  // a picture scaled to a screen looks alike.
  double unit() const { return unit_; }

 private:
  Place OnCopy(Place place) const;
  void Stroke(Place from, Place to, double halfWidth, Colour colour, double opacity);
  void Blend(int32_t x, int32_t y, Colour colour, double share);

  int32_t width_;
  int32_t height_;
  double unit_;
  double scale_ = 1;  // sizes of the copy in those of the page
  files::PixPtr pix_;
  int32_t copyWidth_;
  int32_t copyHeight_;
};

}  // namespace vorlane::overlay
