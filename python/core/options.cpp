// The option records, which begin with the engine's defaults.
#include <array>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "core/rooms.h"
#include "vorlane/vorlane.h"

namespace vorlane::python {
namespace {

namespace py = pybind11;

template <typename Options, typename Init>
Options Defaults(Init init) {
  Options options{};
  init(&options, sizeof options);
  return options;
}

void AddDetectOptions(py::module_& module) {
  using Options = vorlane_detect_options;
  py::class_<Options>(module, "DetectOptions")
      .def(py::init([] { return Defaults<Options>(vorlane_detect_options_init); }))
      .def_readwrite("by", &Options::by)
      .def_readwrite("crop", &Options::crop)
      .def_readwrite("min_confidence", &Options::min_confidence)
      .def_readwrite("is_form", &Options::is_form)
      .def_readwrite("has_no_mount", &Options::has_no_mount)
      .def_readwrite("max_turn", &Options::max_turn)
      .def_readwrite("min_turn", &Options::min_turn)
      .def_readwrite("margin", &Options::margin);
}

std::array<uint8_t, 3> Fill(const vorlane_apply_options& options) {
  return {options.fill[0], options.fill[1], options.fill[2]};
}

void SetFill(vorlane_apply_options& options, const std::array<uint8_t, 3>& redGreenBlue) {
  std::copy(redGreenBlue.begin(), redGreenBlue.end(), options.fill);
}

void AddApplyOptions(py::module_& module) {
  using Options = vorlane_apply_options;
  py::class_<Options>(module, "ApplyOptions")
      .def(py::init([] { return Defaults<Options>(vorlane_apply_options_init); }))
      .def_readwrite("interpolation", &Options::interpolation)
      .def_readwrite("quarter_turns", &Options::quarter_turns)
      .def_readwrite("keep_whole", &Options::keep_whole)
      .def_readwrite("min_confidence", &Options::min_confidence)
      .def_readwrite("threads", &Options::threads)
      .def_property("fill", &Fill, &SetFill)
      .def_readwrite("margin", &Options::margin)
      .def_readwrite("min_turn", &Options::min_turn)
      .def_readwrite("max_turn", &Options::max_turn)
      .def_readwrite("max_growth", &Options::max_growth);
}

}  // namespace

void AddOptions(py::module_& module) {
  AddDetectOptions(module);
  AddApplyOptions(module);
}

}  // namespace vorlane::python
