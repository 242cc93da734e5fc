#include "core/finding_fields.h"

namespace vorlane::python {
namespace {

namespace py = pybind11;
using namespace py::literals;

py::tuple Believed(uint32_t by) {
  py::list names;
  for (int32_t place = 0; place < VORLANE_EVIDENCE_KINDS; ++place) {
    if ((by >> place & 1) != 0) names.append(vorlane_evidence_name(place));
  }
  return py::tuple(names);
}

py::tuple CornersOf(const vorlane_finding& finding) {
  py::list corners;
  for (const vorlane_point& corner : finding.corners) {
    corners.append(py::make_tuple(corner.x, corner.y));
  }
  return py::tuple(corners);
}

py::tuple EvidenceOf(const vorlane_finding& finding) {
  py::list pieces;
  for (int32_t place = 0; place < VORLANE_EVIDENCE_KINDS; ++place) {
    const vorlane_evidence& piece = finding.evidence[place];
    pieces.append(
        py::make_tuple(vorlane_evidence_name(place), piece.turn, piece.strength, piece.verdict));
  }
  return py::tuple(pieces);
}

py::tuple ReasonsOf(const vorlane_finding& finding) {
  py::list reasons;
  for (int32_t i = 0; i < finding.reason_count; ++i) {
    const vorlane_reason& reason = finding.reasons[i];
    reasons.append(py::make_tuple(vorlane_reason_name(reason.code), reason.value,
                                  vorlane_reason_unit(reason.code),
                                  vorlane_reason_text(reason.code)));
  }
  return py::tuple(reasons);
}

}  // namespace

py::dict FieldsOf(const vorlane_finding& finding) {
  return py::dict("page_width"_a = finding.page_width, "page_height"_a = finding.page_height,
                  "turn_confidence"_a = finding.turn_confidence,
                  "cut_confidence"_a = finding.cut_confidence, "turn"_a = finding.turn,
                  "corners"_a = CornersOf(finding), "by"_a = Believed(finding.by),
                  "expected"_a = finding.expected, "evidence"_a = EvidenceOf(finding),
                  "reasons"_a = ReasonsOf(finding));
}

vorlane_finding FindingAt(const Placement& placement) {
  vorlane_finding finding{};
  vorlane_finding_init(&finding, sizeof finding);
  const auto& [width, height, turnConfidence, cutConfidence, turn, corners] = placement;
  finding.page_width = width;
  finding.page_height = height;
  finding.turn_confidence = turnConfidence;
  finding.cut_confidence = cutConfidence;
  finding.turn = turn;
  for (size_t i = 0; i < corners.size(); ++i) finding.corners[i] = {corners[i][0], corners[i][1]};
  return finding;
}

}  // namespace vorlane::python
