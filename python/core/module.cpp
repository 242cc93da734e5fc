// vorlane._core: the C functions of both libraries for the package's Python half, which checks and
// documents what users hand in. Only memory is checked here.
#include <pybind11/pybind11.h>

#include "core/rooms.h"

PYBIND11_MODULE(_core, module) {
  module.doc() = "The C functions beneath the package vorlane.";
  vorlane::python::AddCodes(module);
  vorlane::python::AddOptions(module);
  vorlane::python::AddEngine(module);
  vorlane::python::AddBlocks(module);
}
