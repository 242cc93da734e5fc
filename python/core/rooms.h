// What each file of the module adds to it.
#pragma once

#include <pybind11/pybind11.h>

namespace vorlane::python {

void AddCodes(pybind11::module_& module);
void AddOptions(pybind11::module_& module);
void AddEngine(pybind11::module_& module);
void AddBlocks(pybind11::module_& module);

}  // namespace vorlane::python
