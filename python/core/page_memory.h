// Numpy arrays as the engine's pages.
#pragma once

#include <cstdint>

#include <pybind11/numpy.h>

#include "vorlane/vorlane.h"

namespace vorlane::python {

// An array of bytes: rows x bytes, or rows x columns x bytes of a pixel.
using ByteArray = pybind11::array_t<uint8_t>;

// The page that lies in `rows`, which keeps owning it. Bytes of a row lie side by side; rows may
// lie any distance apart.
//
//   width  pixels; of pages of bits, of others the array's own columns
//
// Throws std::invalid_argument for an array of another layout than `format` has, or one too narrow.
vorlane_image PageIn(const ByteArray& rows, int32_t format, int64_t width);

// A new array for a result of width x height pixels.
ByteArray NewRows(int32_t format, int32_t width, int32_t height);

}  // namespace vorlane::python
