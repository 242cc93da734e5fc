// Findings as plain Python values, and back.
#pragma once

#include <array>
#include <cstdint>
#include <tuple>

#include <pybind11/pybind11.h>

#include "vorlane/vorlane.h"

namespace vorlane::python {

// What apply reads of a finding: page width and height, both confidences, the turn, the corners.
using Placement =
    std::tuple<int32_t, int32_t, int32_t, int32_t, double, std::array<std::array<double, 2>, 4>>;

// The fields of vorlane.Finding by their names.
pybind11::dict FieldsOf(const vorlane_finding& finding);

vorlane_finding FindingAt(const Placement& placement);

}  // namespace vorlane::python
