// The page engine's calls. Each has a context of its own, so that any number of threads may call;
// the interpreter is free while the engine works.
#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "core/finding_fields.h"
#include "core/page_memory.h"
#include "core/rooms.h"
#include "vorlane/vorlane.h"

namespace vorlane::python {
namespace {

namespace py = pybind11;

// Becomes vorlane.Error.
struct StatusError : std::exception {
  explicit StatusError(vorlane_status failed) : status(failed) {}
  vorlane_status status;
};

void Check(vorlane_status status) {
  if (status != VORLANE_OK) throw StatusError(status);
}

void RaiseError(std::exception_ptr thrown) {
  try {
    if (thrown) std::rethrow_exception(std::move(thrown));
  } catch (const StatusError& error) {
    const py::object type = py::module_::import("vorlane._finding").attr("Error");
    PyErr_SetObject(type.ptr(), py::int_(error.status).ptr());
  }
}

struct FreeContext {
  void operator()(vorlane_context* context) const { vorlane_context_free(context); }
};
using Context = std::unique_ptr<vorlane_context, FreeContext>;

Context NewContext() {
  vorlane_context* context = nullptr;
  Check(vorlane_context_new(&context));
  return Context(context);
}

py::dict Detect(const ByteArray& rows, int32_t format, int64_t width,
                const vorlane_detect_options& options) {
  const vorlane_image page = PageIn(rows, format, width);
  vorlane_finding finding{};
  vorlane_finding_init(&finding, sizeof finding);
  {
    const py::gil_scoped_release others;
    Check(vorlane_detect(NewContext().get(), &page, &options, &finding));
  }
  return FieldsOf(finding);
}

std::pair<int32_t, int32_t> ResultSize(const ByteArray& rows, int32_t format, int64_t width,
                                       const Placement& placement,
                                       const vorlane_apply_options& options) {
  const vorlane_image page = PageIn(rows, format, width);
  const vorlane_finding finding = FindingAt(placement);
  std::pair<int32_t, int32_t> size;
  Check(vorlane_result_size(&page, &finding, &options, &size.first, &size.second));
  return size;
}

// The rows of the upright page, and its width.
std::pair<ByteArray, int32_t> Apply(const ByteArray& rows, int32_t format, int64_t width,
                                    const Placement& placement,
                                    const vorlane_apply_options& options) {
  const auto [outWidth, outHeight] = ResultSize(rows, format, width, placement, options);
  const vorlane_image page = PageIn(rows, format, width);
  const vorlane_finding finding = FindingAt(placement);
  ByteArray made = NewRows(format, outWidth, outHeight);
  vorlane_result result{made.mutable_data(), made.strides(0), outWidth, outHeight};
  {
    const py::gil_scoped_release others;
    Check(vorlane_apply(NewContext().get(), &page, &finding, &options, &result));
  }
  return {std::move(made), outWidth};
}

py::dict Decide(int32_t width, int32_t height, double turn,
                const std::optional<std::array<std::array<double, 2>, 4>>& corners) {
  vorlane_finding finding{};
  vorlane_finding_init(&finding, sizeof finding);
  std::array<vorlane_point, 4> points{};
  for (size_t i = 0; corners && i < points.size(); ++i) {
    points[i] = {(*corners)[i][0], (*corners)[i][1]};
  }
  Check(vorlane_finding_decide(&finding, width, height, turn, corners ? points.data() : nullptr));
  return FieldsOf(finding);
}

}  // namespace

void AddEngine(py::module_& module) {
  py::register_exception_translator(&RaiseError);
  module.def("detect", &Detect);
  module.def("result_size", &ResultSize);
  module.def("apply", &Apply);
  module.def("decide", &Decide);
  module.def("status_text", &vorlane_status_text);
  module.attr("version") = VORLANE_VERSION_STRING;
}

}  // namespace vorlane::python
