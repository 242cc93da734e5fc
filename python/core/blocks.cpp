// Connected blocks of pixels as rows of a table.
#include <new>
#include <stdexcept>
#include <string>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include "core/page_memory.h"
#include "core/rooms.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::python {
namespace {

namespace py = pybind11;

// A set that is released with its scope.
struct BlockSet : BlockSetRec {
  BlockSet() : BlockSetRec{} {}
  BlockSet(const BlockSet&) = delete;
  BlockSet& operator=(const BlockSet&) = delete;
  ~BlockSet() { DestoryBlockSetRec(this); }
};

void CheckMarking(int32_t status) {
  if (status == OUT_OF_MEMORY) throw std::bad_alloc();
  if (status == BAD_ARGUMENT) throw std::invalid_argument("the region begins outside the page");
  if (status != STATUS_OK) {
    throw std::runtime_error("the block marker failed with code " + std::to_string(status));
  }
}

// Numbers of each block, in the order of vorlane.block_type before its points, and all points one
// block behind the other.
py::tuple TablesOf(const BlockSetRec& set) {
  constexpr py::ssize_t kNumbers = 11;
  py::ssize_t points = 0;
  for (int32_t i = 0; i < set.count; ++i) points += set.blocks[i].pointCount;
  py::array_t<int32_t> numbers({py::ssize_t{set.count}, kNumbers});
  py::array_t<uint16_t> places({points, py::ssize_t{2}});
  int32_t* number = numbers.mutable_data();
  uint16_t* place = places.mutable_data();
  for (int32_t i = 0; i < set.count; ++i) {
    const BlockRec& block = set.blocks[i];
    for (const int32_t value :
         {block.area, block.centerX, block.centerY, block.left, block.top, block.right,
          block.bottom, block.width, block.height, static_cast<int32_t>(block.minValue),
          static_cast<int32_t>(block.maxValue)}) {
      *number++ = value;
    }
    for (int32_t point = 0; point < block.pointCount; ++point) {
      *place++ = block.points[point].x;
      *place++ = block.points[point].y;
    }
  }
  return py::make_tuple(numbers, places);
}

// Marks pixels at or below a threshold of 0..255, or, below 0, all that are not 0. `rows` lies in
// one piece; the region's columns and rows are inclusive.
py::tuple Blocks(const py::array_t<uint8_t, py::array::c_style>& rows, int32_t threshold,
                 int16_t minRun, int16_t maxRun, int16_t joinGap, int32_t left, int32_t top,
                 int32_t right, int32_t bottom) {
  if (rows.ndim() != 2) throw std::invalid_argument("the array is not laid out as a page");
  const auto height = py::cast<int32_t>(py::int_(rows.shape(0)));
  const auto width = py::cast<int32_t>(py::int_(rows.shape(1)));
  const BlockMarkParam param{minRun, maxRun, joinGap, static_cast<uint8_t>(threshold)};
  const BlockRect rect{left, top, right - left, bottom - top};
  const auto mark = threshold < 0 ? &BWBlockMarkHorEx : &ImageBlockMarkHorEx;
  BlockSet set;
  {
    const py::gil_scoped_release others;
    CheckMarking(mark(rows.data(), height, width, &param, &rect, &set));
  }
  return TablesOf(set);
}

}  // namespace

void AddBlocks(py::module_& module) { module.def("blocks", &Blocks); }

}  // namespace vorlane::python
