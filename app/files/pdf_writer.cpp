#include "app/files/pdf_writer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageLabelDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include "app/files/pdf_document.h"

namespace vorlane::files {
namespace {

using Object = QPDFObjectHandle;

// Bytes that wait in a file without a name.
class Spool {
 public:
  Spool() : file_(std::tmpfile()) {
    if (file_ == nullptr) Fail();
  }
  Spool(const Spool&) = delete;
  Spool& operator=(const Spool&) = delete;
  ~Spool() { (void)std::fclose(file_); }

  // Returns where they stand.
  long Put(const std::vector<uint8_t>& bytes) {
    if (std::fseek(file_, 0, SEEK_END) != 0) Fail();
    const long at = std::ftell(file_);
    if (at < 0 || std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) Fail();
    return at;
  }

  void Pass(long at, size_t count, Pipeline* to) {
    std::array<unsigned char, 65536> bytes{};
    if (std::fseek(file_, at, SEEK_SET) != 0) Fail();
    while (count > 0) {
      const size_t got = std::fread(bytes.data(), 1, std::min(count, bytes.size()), file_);
      if (got == 0) Fail();
      to->write(bytes.data(), got);
      count -= got;
    }
    to->finish();
  }

 private:
  [[noreturn]] static void Fail() {
    throw FileError(std::string("pages cannot be kept in the folder for temporary files: ") +
                    std::strerror(errno));
  }
  std::FILE* file_;
};

class SpooledBytes : public Object::StreamDataProvider {
 public:
  SpooledBytes(std::shared_ptr<Spool> spool, const std::vector<uint8_t>& bytes)
      : spool_(std::move(spool)), at_(spool_->Put(bytes)), count_(bytes.size()) {}
  void provideStreamData(const QPDFObjGen& /*id*/, Pipeline* to) override {
    spool_->Pass(at_, count_, to);
  }

 private:
  std::shared_ptr<Spool> spool_;
  long at_;
  size_t count_;
};

class SinkPipe : public Pipeline {
 public:
  explicit SinkPipe(const PdfWriter::Sink& sink) : Pipeline("file", nullptr), sink_(sink) {}
  void write(const unsigned char* bytes, size_t count) override { sink_(bytes, count); }
  void finish() override {}

 private:
  const PdfWriter::Sink& sink_;
};

Object Number(double value) { return Object::newReal(value, 4); }

Object ColourSpace(QPDF* pdf, const PdfPicture& picture) {
  const bool isGrey = picture.channels == 1;
  Object plain = Object::newName(isGrey ? "/DeviceGray" : "/DeviceRGB");
  if (picture.icc.empty()) return plain;
  Object profile = Object::newStream(pdf, std::string(picture.icc.begin(), picture.icc.end()));
  profile.getDict().replaceKey("/N", Object::newInteger(picture.channels));
  profile.getDict().replaceKey("/Alternate", plain);
  return Object::newArray({Object::newName("/ICCBased"), pdf->makeIndirectObject(profile)});
}

struct Filter {
  const char* name;
  Object parameters;
};

Filter FilterOf(const PdfPicture& picture) {
  Object parameters = Object::newDictionary();
  parameters.replaceKey("/Columns", Object::newInteger(picture.width));
  switch (picture.coding) {
    case PdfCoding::kFax:
      parameters.replaceKey("/K", Object::newInteger(-1));
      parameters.replaceKey("/Rows", Object::newInteger(picture.height));
      return {"/CCITTFaxDecode", parameters};
    case PdfCoding::kJpeg:
      return {"/DCTDecode", Object::newNull()};
    default:
      // TIFF's differences between neighbours.
      parameters.replaceKey("/Predictor", Object::newInteger(2));
      parameters.replaceKey("/Colors", Object::newInteger(picture.channels));
      return {"/FlateDecode", parameters};
  }
}

// The colour space of the picture that a page had: a JPEG picture's numbers still mean the same.
Object FormerColourSpace(const Object& page, const PdfPicture& picture) {
  QPDFPageObjectHelper helper(page);
  for (const auto& [name, stream] : helper.getImages()) {
    Object space = Object(stream).getDict().getKey("/ColorSpace");
    const bool isProfile = space.isArray() && space.getArrayNItems() == 2 &&
                           space.getArrayItem(0).isNameAndEquals("/ICCBased") &&
                           space.getArrayItem(1).isStream();
    if (!isProfile) break;
    Object channels = space.getArrayItem(1).getDict().getKey("/N");
    if (channels.isInteger() && channels.getIntValue() == picture.channels) return space;
    break;
  }
  return Object::newNull();
}

const std::map<std::string, std::string>& InformationKeys() {
  static const std::map<std::string, std::string> kKeys = {{"Title", "/Title"},
                                                           {"Author", "/Author"},
                                                           {"Description", "/Subject"},
                                                           {"Software", "/Creator"}};
  return kKeys;
}

}  // namespace

struct PdfWriter::Parts {
  std::unique_ptr<QPDF> pdf;
  std::shared_ptr<Spool> spool = std::make_shared<Spool>();
  std::vector<Object> former;  // the source's pages
  std::vector<bool> hasCome;   // of these
  bool isNew = false;

  void PutPicture(const PdfPicture& picture, const Bytes& bytes, Object* to);
  void PutInformation(const PdfPicture& picture);
  void RemoveOthers();
};

PdfWriter::PdfWriter(std::FILE* source) : parts_(std::make_unique<Parts>()) {
  parts_->isNew = source == nullptr;
  if (parts_->isNew) {
    parts_->pdf = std::make_unique<QPDF>();
    parts_->pdf->emptyPDF();
    return;
  }
  parts_->pdf = OpenPdf(source);
  WithPdfErrors<DecodeError>("is damaged: ", [&] {
    QPDFPageDocumentHelper(*parts_->pdf).pushInheritedAttributesToPage();
    parts_->former = parts_->pdf->getAllPages();
  });
  parts_->hasCome.resize(parts_->former.size());
}

PdfWriter::~PdfWriter() = default;

// Makes the page one of this picture.
void PdfWriter::Parts::PutPicture(const PdfPicture& picture, const Bytes& bytes, Object* to) {
  Object stream = Object::newStream(pdf.get());
  Object facts = stream.getDict();
  Object space = picture.coding == PdfCoding::kJpeg && picture.icc.empty()
                     ? FormerColourSpace(*to, picture)
                     : Object::newNull();
  facts.replaceKey("/Type", Object::newName("/XObject"));
  facts.replaceKey("/Subtype", Object::newName("/Image"));
  facts.replaceKey("/Width", Object::newInteger(picture.width));
  facts.replaceKey("/Height", Object::newInteger(picture.height));
  facts.replaceKey("/BitsPerComponent",
                   Object::newInteger(picture.coding == PdfCoding::kFax ? 1 : 8));
  facts.replaceKey("/ColorSpace", space.isNull() ? ColourSpace(pdf.get(), picture) : space);
  const Filter filter = FilterOf(picture);
  stream.replaceStreamData(std::make_shared<SpooledBytes>(spool, bytes),
                           Object::newName(filter.name), filter.parameters);

  const std::string wide = Number(picture.pointsWide).unparse();
  const std::string high = Number(picture.pointsHigh).unparse();
  Object content =
      Object::newStream(pdf.get(), "q " + wide + " 0 0 " + high + " 0 0 cm /Page Do Q\n");
  Object pictures = Object::newDictionary();
  pictures.replaceKey("/Page", pdf->makeIndirectObject(stream));
  Object resources = Object::newDictionary();
  resources.replaceKey("/XObject", pictures);
  for (const char* key : {"/CropBox", "/BleedBox", "/TrimBox", "/ArtBox", "/UserUnit", "/Thumb"}) {
    to->removeKey(key);
  }
  to->replaceKey("/MediaBox", Object::parse("[0 0 " + wide + " " + high + "]"));
  to->replaceKey("/Resources", resources);
  to->replaceKey("/Contents", pdf->makeIndirectObject(content));
}

void PdfWriter::Parts::PutInformation(const PdfPicture& picture) {
  Object information = Object::newDictionary();
  information.replaceKey("/Producer", Object::newString("VorlanePic"));
  for (const TextEntry& text : picture.texts) {
    const auto key = InformationKeys().find(text.keyword);
    if (key == InformationKeys().end()) continue;
    information.replaceKey(key->second, Object::newUnicodeString(text.text));
  }
  pdf->getTrailer().replaceKey("/Info", pdf->makeIndirectObject(information));
}

void PdfWriter::Add(const PdfPicture& picture, const Bytes& bytes) {
  WithPdfErrors<FileError>("", [&] {
    if (parts_->isNew) {
      if (parts_->pdf->getAllPages().empty()) parts_->PutInformation(picture);
      Object made = Object::parse("<< /Type /Page >>");
      parts_->PutPicture(picture, bytes, &made);
      parts_->pdf->addPage(parts_->pdf->makeIndirectObject(made), false);
      return;
    }
    const auto index = static_cast<size_t>(picture.number) - 1;
    parts_->hasCome.at(index) = true;
    if (!picture.isKept) parts_->PutPicture(picture, bytes, &parts_->former.at(index));
  });
}

// Labels stand by the pages' places: those that stay keep theirs.
void PdfWriter::Parts::RemoveOthers() {
  if (std::find(hasCome.begin(), hasCome.end(), false) == hasCome.end()) return;
  QPDFPageLabelDocumentHelper labels(*pdf);
  Object numbers = Object::newArray();
  long long place = 0;
  for (size_t i = 0; i < former.size(); ++i) {
    if (!hasCome[i]) {
      // An outline may still lead to it, and would keep its picture in the file.
      pdf->removePage(former[i]);
      former[i].removeKey("/Contents");
      former[i].removeKey("/Resources");
      continue;
    }
    Object label = labels.getLabelForPage(static_cast<long long>(i));
    if (!label.isNull()) {
      numbers.appendItem(Object::newInteger(place));
      numbers.appendItem(label);
    }
    ++place;
  }
  if (!labels.hasPageLabels()) return;
  Object tree = Object::newDictionary();
  tree.replaceKey("/Nums", numbers);
  pdf->getRoot().replaceKey("/PageLabels", tree);
}

void PdfWriter::Finish(const Sink& sink) {
  WithPdfErrors<FileError>("", [&] {
    if (!parts_->isNew) parts_->RemoveOthers();
    SinkPipe pipe(sink);
    QPDFWriter writer(*parts_->pdf);
    writer.setOutputPipeline(&pipe);
    writer.setStreamDataMode(qpdf_s_preserve);
    // The same pages give the same file, but for encrypted ones.
    if (!parts_->pdf->isEncrypted()) writer.setDeterministicID(true);
    writer.write();
    RefuseForgottenObjects(parts_->pdf.get());
  });
}

}  // namespace vorlane::files
