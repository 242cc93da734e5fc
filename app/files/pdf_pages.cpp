#include "app/files/pdf_pages.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include <qpdf/QPDFMatrix.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include "app/files/pdf_document.h"

namespace vorlane::files {
namespace {

constexpr double kPointsPerInch = 72.0;

// Of the picture's own extent; scanners write no more digits.
constexpr double kEvenly = 1e-3;

// What a page's content draws, as far as a page of one picture goes.
class ContentReader : public QPDFObjectHandle::ParserCallbacks {
 public:
  void handleObject(QPDFObjectHandle object) override {
    if (!object.isOperator()) {
      if (operands_.size() < kMostOperands) operands_.push_back(object);
      return;
    }
    Take(object.getOperatorValue());
    operands_.clear();
    if (!refusal.empty()) terminateParsing();
  }
  void handleEOF() override {}

  std::string refusal;
  std::string picture;   // its name among the page's resources
  QPDFMatrix placement;  // of the picture's unit square

 private:
  static constexpr size_t kMostOperands = 6;

  void Take(const std::string& name) {
    static const std::set<std::string> kText = {"Tj", "TJ", "'", "\""};
    static const std::set<std::string> kDrawing = {"f",  "F", "f*", "B",  "B*", "b",
                                                   "b*", "S", "s",  "sh", "BI"};
    if (name == "q") {
      saved_.push_back(current_);
    } else if (name == "Q") {
      if (!saved_.empty()) current_ = saved_.back();
      if (!saved_.empty()) saved_.pop_back();
    } else if (name == "cm") {
      Concatenate();
    } else if (name == "Do") {
      if (!picture.empty()) refusal = "it has more than one picture";
      picture = operands_.empty() || !operands_[0].isName() ? "?" : operands_[0].getName();
      placement = current_;
    } else if (kText.count(name) > 0) {
      refusal = "it has text";
    } else if (kDrawing.count(name) > 0) {
      refusal = "it has drawings";
    }
  }

  void Concatenate() {
    std::array<double, 6> m{};
    for (size_t i = 0; i < m.size(); ++i) {
      if (i >= operands_.size() || !operands_[i].isNumber()) return;
      m[i] = operands_[i].getNumericValue();
    }
    current_.concat(QPDFMatrix(m[0], m[1], m[2], m[3], m[4], m[5]));
  }

  QPDFMatrix current_;
  std::vector<QPDFMatrix> saved_;
  std::vector<QPDFObjectHandle> operands_;
};

std::string RefusalOf(QPDFObjectHandle picture) {
  if (!picture.isStream()) return "it has no picture";
  QPDFObjectHandle facts = picture.getDict();
  if (!facts.getKey("/Subtype").isNameAndEquals("/Image")) return "it has drawings";
  if (facts.getKey("/ImageMask").isBool() && facts.getKey("/ImageMask").getBoolValue()) {
    return "its picture is a stencil";
  }
  if (facts.hasKey("/SMask") || facts.hasKey("/Mask")) return "its picture has a mask";
  // The bytes are handed on, and mean the opposite there.
  if (facts.hasKey("/Decode") && facts.getKey("/BitsPerComponent").isInteger() &&
      facts.getKey("/BitsPerComponent").getIntValue() > 1) {
    return "its picture has levels of its own order";
  }
  return "";
}

std::string RefusalOf(const QPDFMatrix& placement) {
  const bool isEven = std::abs(placement.b) <= kEvenly * std::abs(placement.a) &&
                      std::abs(placement.c) <= kEvenly * std::abs(placement.d);
  return isEven && placement.a > 0 && placement.d > 0 ? "" : "its picture is turned or mirrored";
}

uint32_t SizeIn(QPDFObjectHandle facts, const char* key) {
  QPDFObjectHandle size = facts.getKey(key);
  const long long value = size.isInteger() ? size.getIntValue() : 0;
  return static_cast<uint32_t>(std::clamp<long long>(value, 0, INT32_MAX));
}

double UserUnit(QPDFPageObjectHelper page) {
  QPDFObjectHandle unit = page.getObjectHandle().getKey("/UserUnit");
  return unit.isNumber() && unit.getNumericValue() > 0 ? unit.getNumericValue() : 1.0;
}

int32_t RotationOf(QPDFPageObjectHelper page) {
  QPDFObjectHandle rotation = page.getAttribute("/Rotate", false);
  const long long degrees = rotation.isInteger() ? rotation.getIntValue() % 360 : 0;
  return static_cast<int32_t>((degrees + 360) % 360);
}

PdfPage LookAtPage(QPDFPageObjectHelper page) {
  PdfPage found;
  found.rotation = RotationOf(page);
  ContentReader content;
  page.parseContents(&content);
  found.refusal = content.refusal;
  if (found.refusal.empty() && content.picture.empty()) found.refusal = "it has no picture";
  if (found.refusal.empty() && page.getObjectHandle().hasKey("/Annots")) {
    found.refusal = "it has annotations";
  }
  if (!found.refusal.empty()) return found;

  QPDFObjectHandle resources = page.getAttribute("/Resources", false);
  QPDFObjectHandle pictures = resources.isDictionary() ? resources.getKey("/XObject") : resources;
  QPDFObjectHandle picture = pictures.isDictionary() ? pictures.getKey(content.picture) : pictures;
  found.refusal = RefusalOf(picture);
  if (found.refusal.empty()) found.refusal = RefusalOf(content.placement);
  if (found.refusal.empty() && found.rotation % 90 != 0) found.refusal = "it is turned";
  if (!found.refusal.empty()) return found;

  found.width = SizeIn(picture.getDict(), "/Width");
  found.height = SizeIn(picture.getDict(), "/Height");
  const double points = UserUnit(page) / kPointsPerInch;
  found.resolution.x = found.width / (content.placement.a * points);
  found.resolution.y = found.height / (content.placement.d * points);
  return found;
}

}  // namespace

std::vector<PdfPage> LookAtPdf(std::FILE* stream, size_t most) {
  const std::unique_ptr<QPDF> pdf = OpenPdf(stream);
  return WithPdfErrors<DecodeError>("is damaged: ", [&] {
    std::vector<PdfPage> pages;
    for (QPDFPageObjectHelper& page : QPDFPageDocumentHelper(*pdf).getAllPages()) {
      if (pages.size() == most) {
        throw DecodeError("has more than the " + std::to_string(most) + " pages allowed");
      }
      pages.push_back(LookAtPage(page));
    }
    RefuseForgottenObjects(pdf.get());
    return pages;
  });
}

}  // namespace vorlane::files
