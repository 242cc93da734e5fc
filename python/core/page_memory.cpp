#include "core/page_memory.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace vorlane::python {
namespace {

namespace py = pybind11;

bool IsOfBits(int32_t format) { return format == VORLANE_BIT_LIGHT || format == VORLANE_BIT_DARK; }

// Bytes of a pixel; 1 for pages of bits, whose arrays count bytes.
py::ssize_t PixelBytes(int32_t format) {
  return IsOfBits(format) ? 1 : static_cast<py::ssize_t>(vorlane_row_bytes(format, 1));
}

// Whether the bytes of each row lie side by side. Numpy leaves the stride of a single item open.
bool HasWholeRows(const ByteArray& rows, py::ssize_t pixelBytes) {
  if (rows.ndim() == 2) return rows.shape(1) <= 1 || rows.strides(1) == 1;
  return rows.strides(2) == 1 && (rows.shape(1) <= 1 || rows.strides(1) == pixelBytes);
}

// Larger sizes than the engine counts are as much too large as the largest.
int32_t Clamp(int64_t pixels) {
  constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(std::clamp<int64_t>(pixels, 0, kMost));
}

}  // namespace

vorlane_image PageIn(const ByteArray& rows, int32_t format, int64_t width) {
  const py::ssize_t pixelBytes = PixelBytes(format);
  const bool isLaidOut =
      pixelBytes == 1 ? rows.ndim() == 2 : rows.ndim() == 3 && rows.shape(2) == pixelBytes;
  if (!isLaidOut || !HasWholeRows(rows, pixelBytes)) {
    throw std::invalid_argument("the array is not laid out as its format asks");
  }
  vorlane_image page{};
  page.pixels = rows.data();
  page.stride = rows.strides(0);
  page.width = Clamp(IsOfBits(format) ? width : rows.shape(1));
  page.height = Clamp(rows.shape(0));
  page.format = format;
  if (IsOfBits(format) && (width + 7) / 8 > rows.shape(1)) {
    throw std::invalid_argument("the rows hold fewer bits than the width says");
  }
  return page;
}

ByteArray NewRows(int32_t format, int32_t width, int32_t height) {
  if (IsOfBits(format)) return ByteArray({py::ssize_t{height}, py::ssize_t{(width + 7) / 8}});
  const py::ssize_t pixelBytes = PixelBytes(format);
  if (pixelBytes == 1) return ByteArray({py::ssize_t{height}, py::ssize_t{width}});
  return ByteArray({py::ssize_t{height}, py::ssize_t{width}, pixelBytes});
}

}  // namespace vorlane::python
