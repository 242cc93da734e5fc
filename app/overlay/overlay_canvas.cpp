#include "app/overlay/overlay_canvas.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>

#include "app/files/errors.h"
#include "app/overlay/small_copy.h"

namespace vorlane::overlay {
namespace {

constexpr Colour kRim{0, 0, 0};
constexpr Colour kCaptionGround{24, 26, 32};
constexpr Colour kCaptionText{235, 235, 235};
constexpr double kRimWidth = 0.8;        // units on each side of a stroke
constexpr double kRimOpacity = 0.55;     // a soft shadow, not a line of its own
constexpr double kPaling = 0.72;         // share of the page's own contrast that is kept
constexpr double kLeastLine = 20;        // pixels of a text line that can still be read
constexpr int32_t kLongestSide = 1200;   // of the copy: with its caption it stays within 1600
constexpr double kLineShare = 1 / 45.0;  // of the copy's longer side: the height of a text line

uint32_t Word(Colour c) {
  return static_cast<uint32_t>(c.red) << L_RED_SHIFT |
         static_cast<uint32_t>(c.green) << L_GREEN_SHIFT |
         static_cast<uint32_t>(c.blue) << L_BLUE_SHIFT;
}

uint32_t Mix(uint32_t below, uint32_t above, double share) {
  uint32_t mixed = 0;
  for (const int shift : {L_RED_SHIFT, L_GREEN_SHIFT, L_BLUE_SHIFT}) {
    const double b = below >> shift & 0xFF;
    const double a = above >> shift & 0xFF;
    mixed |= static_cast<uint32_t>(std::lround(b + (a - b) * share)) << shift;
  }
  return mixed;
}

// The part of a line inside the rectangle that a stroke can touch; false when there is none.
bool ClipLine(Place* from, Place* to, double margin, double width, double height) {
  const double dx = to->x - from->x;
  const double dy = to->y - from->y;
  const double ways[4] = {-dx, dx, -dy, dy};
  const double room[4] = {from->x + margin, width + margin - from->x, from->y + margin,
                          height + margin - from->y};
  double begin = 0;
  double end = 1;
  for (int i = 0; i < 4; ++i) {
    if (ways[i] == 0 && room[i] < 0) return false;
    if (ways[i] < 0) begin = std::max(begin, room[i] / ways[i]);
    if (ways[i] > 0) end = std::min(end, room[i] / ways[i]);
  }
  if (!(begin <= end)) return false;
  const Place start = *from;
  *from = {start.x + begin * dx, start.y + begin * dy};
  *to = {start.x + end * dx, start.y + end * dy};
  return true;
}

double DistanceToSegment(double x, double y, Place from, Place to) {
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  const double length = dx * dx + dy * dy;
  double along = length > 0 ? ((x - from.x) * dx + (y - from.y) * dy) / length : 0;
  along = std::clamp(along, 0.0, 1.0);
  return std::hypot(x - from.x - along * dx, y - from.y - along * dy);
}

struct FontRelease {
  void operator()(L_Bmf* font) const { bmfDestroy(&font); }
};

// One of the built-in fonts, enlarged where even the largest is too small.
struct Font {
  std::unique_ptr<L_Bmf, FontRelease> font;
  int32_t scale = 1;

  int32_t LineHeight() const { return (font->lineheight + 4) * scale; }
};

// The largest font whose lines are not higher than `height` pixels, but a legible one.
Font FontOfHeight(double height) {
  constexpr int32_t kSmallest = 4;
  constexpr int32_t kLargest = 20;
  Font best{std::unique_ptr<L_Bmf, FontRelease>(bmfCreate(nullptr, kSmallest)), 1};
  if (!best.font) throw files::FileError("there is not enough memory for an overlay of this page");
  for (int32_t size = kSmallest + 2; size <= kLargest; size += 2) {
    Font larger{std::unique_ptr<L_Bmf, FontRelease>(bmfCreate(nullptr, size)), 1};
    if (!larger.font || larger.LineHeight() > height) break;
    best = std::move(larger);
  }
  best.scale = std::max(1, static_cast<int32_t>(height / best.LineHeight()));
  return best;
}

std::string Printable(const std::string& text) {
  std::string ascii;
  for (const char c : text) ascii += c >= ' ' && c <= '~' ? c : '?';
  return ascii;
}

int32_t TextWidth(const Font& font, const std::string& text) {
  int32_t width = 0;
  bmfGetStringWidth(font.font.get(), Printable(text).c_str(), &width);
  return width * font.scale;
}

// Set bits where the text's strokes are.
files::PixPtr DrawText(const Font& font, const std::string& text) {
  const std::string ascii = Printable(text);
  files::PixPtr pix(
      pixCreate(TextWidth(font, text) / font.scale + 6, font.font->lineheight + 4, 1));
  if (!pix) return nullptr;
  pixSetTextline(pix.get(), font.font.get(), ascii.c_str(), 1, 3, font.font->baseline1 + 2, nullptr,
                 nullptr);
  return files::PixPtr(pixExpandReplicate(pix.get(), font.scale));
}

void PaintText(Pix* target, const Pix* text, int32_t left, int32_t top, Colour colour) {
  pixPaintThroughMask(target, const_cast<Pix*>(text), left, top, Word(colour));
}

}  // namespace

OverlayCanvas::OverlayCanvas(const ImageRec& image)
    : width_(image.width),
      height_(image.height),
      unit_(std::max(1.0, std::max(image.width, image.height) / 1000.0)),
      pix_(SmallCopy(image, kLongestSide, &scale_)),
      copyWidth_(pixGetWidth(pix_.get())),
      copyHeight_(pixGetHeight(pix_.get())) {
  uint32_t* words = pixGetData(pix_.get());
  const size_t count =
      static_cast<size_t>(pixGetWpl(pix_.get())) * static_cast<size_t>(copyHeight_);
  const uint32_t grey = Word({128, 128, 128});
  uint32_t last = 0;
  uint32_t paled = Mix(grey, last, kPaling);
  for (size_t i = 0; i < count; ++i) {
    if (words[i] != last) {
      last = words[i];
      paled = Mix(grey, last, kPaling);
    }
    words[i] = paled;
  }
}

void OverlayCanvas::Blend(int32_t x, int32_t y, Colour colour, double share) {
  uint32_t* word = pixGetData(pix_.get()) + static_cast<ptrdiff_t>(y) * pixGetWpl(pix_.get()) + x;
  *word = Mix(*word, Word(colour), share);
}

// Pixel centres are whole numbers on the page and on its copy.
Place OverlayCanvas::OnCopy(Place place) const {
  return {(place.x + 0.5) * scale_ - 0.5, (place.y + 0.5) * scale_ - 0.5};
}

// A capsule around the line: full inside, fading over one pixel at its rim.
void OverlayCanvas::Stroke(Place from, Place to, double halfWidth, Colour colour, double opacity) {
  from = OnCopy(from);
  to = OnCopy(to);
  halfWidth *= scale_;
  const double reach = halfWidth + 1;
  if (!std::isfinite(from.x + from.y + to.x + to.y)) return;
  if (!ClipLine(&from, &to, reach, copyWidth_, copyHeight_)) return;
  const bool steep = std::abs(to.y - from.y) > std::abs(to.x - from.x);
  const double lead0 = steep ? from.y : from.x;
  const double lead1 = steep ? to.y : to.x;
  const double side0 = steep ? from.x : from.y;
  const double slope = lead1 != lead0 ? ((steep ? to.x : to.y) - side0) / (lead1 - lead0) : 0;
  const int32_t leadEnd = steep ? copyHeight_ : copyWidth_;
  const int32_t sideEnd = steep ? copyWidth_ : copyHeight_;
  const double sideReach = reach * 1.5;  // a stroke at 45 degrees is 1.42 times as wide across
  const auto first = static_cast<int32_t>(std::max(0.0, std::min(lead0, lead1) - reach));
  const auto last = static_cast<int32_t>(std::min(leadEnd - 1.0, std::max(lead0, lead1) + reach));
  for (int32_t lead = first; lead <= last; ++lead) {
    const double inside =
        std::clamp(static_cast<double>(lead), std::min(lead0, lead1), std::max(lead0, lead1));
    const double middle = side0 + (inside - lead0) * slope;
    const auto begin = static_cast<int32_t>(std::max(0.0, middle - sideReach));
    const auto end = static_cast<int32_t>(std::min(sideEnd - 1.0, middle + sideReach));
    for (int32_t side = begin; side <= end; ++side) {
      const int32_t x = steep ? side : lead;
      const int32_t y = steep ? lead : side;
      const double cover = halfWidth + 0.5 - DistanceToSegment(x, y, from, to);
      if (cover > 0) Blend(x, y, colour, opacity * std::min(1.0, cover));
    }
  }
}

void OverlayCanvas::Line(Place from, Place to, double width, Colour colour) {
  Stroke(from, to, (width / 2 + kRimWidth) * unit_, kRim, kRimOpacity);
  Stroke(from, to, width / 2 * unit_, colour, 1);
}

void OverlayCanvas::Polygon(const std::vector<Place>& corners, double width, Colour colour) {
  for (size_t i = 0; i < corners.size(); ++i) {
    Stroke(corners[i], corners[(i + 1) % corners.size()], (width / 2 + kRimWidth) * unit_, kRim,
           kRimOpacity);
  }
  for (size_t i = 0; i < corners.size(); ++i) {
    Stroke(corners[i], corners[(i + 1) % corners.size()], width / 2 * unit_, colour, 1);
  }
}

void OverlayCanvas::Box(double left, double top, double right, double bottom, double width,
                        Colour colour) {
  Polygon({{left, top}, {right, top}, {right, bottom}, {left, bottom}}, width, colour);
}

void OverlayCanvas::Dot(Place center, double radius, Colour colour) {
  Stroke(center, center, radius * unit_, colour, 1);
}

void OverlayCanvas::Cross(Place center, double arm, double width, Colour colour) {
  const double reach = arm * unit_;
  Line({center.x - reach, center.y}, {center.x + reach, center.y}, width, colour);
  Line({center.x, center.y - reach}, {center.x, center.y + reach}, width, colour);
}

void OverlayCanvas::Label(Place at, const std::string& text, Colour colour) {
  at = OnCopy(at);
  const Font font = FontOfHeight(std::max(copyWidth_, copyHeight_) * kLineShare);
  const files::PixPtr drawn = DrawText(font, text);
  if (!drawn) return;
  const int32_t textWidth = pixGetWidth(drawn.get());
  const int32_t textHeight = pixGetHeight(drawn.get());
  const auto left = static_cast<int32_t>(
      std::clamp(at.x, 0.0, std::max(0.0, static_cast<double>(copyWidth_ - textWidth))));
  const auto top = static_cast<int32_t>(std::clamp(
      at.y - textHeight, 0.0, std::max(0.0, static_cast<double>(copyHeight_ - textHeight))));
  for (int32_t y = top; y < std::min(top + textHeight, copyHeight_); ++y) {
    for (int32_t x = left; x < std::min(left + textWidth, copyWidth_); ++x) Blend(x, y, kRim, 0.7);
  }
  PaintText(pix_.get(), drawn.get(), left, top, colour);
}

files::PixPtr OverlayCanvas::WithCaption(const std::vector<CaptionLine>& lines) const {
  // Smaller letters where the lines would pass the page's width, as long as they stay legible.
  double height = std::max(copyWidth_, copyHeight_) * kLineShare;
  Font font = FontOfHeight(height);
  const auto widestLine = [&] {
    int32_t widest = 0;
    for (const CaptionLine& line : lines) widest = std::max(widest, TextWidth(font, line.text));
    return widest + 2 * font.LineHeight();
  };
  while (widestLine() > copyWidth_ && height > kLeastLine) {
    height *= 0.85;
    font = FontOfHeight(height);
  }
  const int32_t lineHeight = font.LineHeight() * 5 / 4;
  const int32_t below = lineHeight * (static_cast<int32_t>(lines.size()) + 1);
  files::PixPtr whole(pixCreate(std::max(copyWidth_, widestLine()), copyHeight_ + below, 32));
  if (!whole) throw files::FileError("there is not enough memory for an overlay of this page");
  pixSetAllArbitrary(whole.get(), Word(kCaptionGround));
  pixRasterop(whole.get(), 0, 0, copyWidth_, copyHeight_, PIX_SRC, pix_.get(), 0, 0);
  int32_t top = copyHeight_ + lineHeight / 2;
  for (const CaptionLine& line : lines) {
    const int32_t side = lineHeight / 2;
    if (line.hasMark) {
      for (int32_t i = 0; i < side * side; ++i) {
        pixSetPixel(whole.get(), side / 2 + i % side, top + side / 2 + i / side, Word(line.mark));
      }
    }
    const files::PixPtr text = DrawText(font, line.text);
    if (text) PaintText(whole.get(), text.get(), 2 * side, top + lineHeight / 8, kCaptionText);
    top += lineHeight;
  }
  return whole;
}

}  // namespace vorlane::overlay
