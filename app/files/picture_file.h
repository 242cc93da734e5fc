// A file of pictures: what kind it is, how many pages it holds, and each of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "app/files/byte_source.h"
#include "app/files/decoders.h"
#include "app/files/page.h"

namespace vorlane::files {

// What is read never changes: any number of threads may read pages of one file at once.
class PictureFile {
 public:
  // Looks at the file and counts its pages; no pixels are decoded. Throws FileError, which names
  // the file, when it is missing, no ordinary file, empty, no picture or has too many pages.
  explicit PictureFile(const std::string& path, const ReadLimits& limits = {});

  // The same for bytes that are known by `name`.
  PictureFile(std::string name, std::shared_ptr<const ByteSource> source,
              const ReadLimits& limits = {});

  const std::string& name() const { return name_; }

  // Where a TIFF file's list of pages breaks off, the page that cannot be found is counted too.
  int32_t count() const { return contents_.count; }

  // Page `number`, 1..count(). Throws FileError, which names file and page and quotes the decoder,
  // when the page is damaged or beyond the limits.
  Page Read(int32_t number, SizeGate gate = nullptr) const;

  // The directory of a TIFF page, for handing it on as it is; nothing in other files.
  struct TiffPlace {
    const ByteSource& source;
    TiffHeader header;
    uint64_t directory;
  };
  std::optional<TiffPlace> PlaceOf(int32_t number) const;

  // The bytes of a PDF file, for handing on what it holds besides pictures; null for other files.
  const ByteSource* pdf() const {
    return contents_.kind == FileKind::kPdf ? source_.get() : nullptr;
  }

 private:
  void Decode(int32_t number, const ReadLimits& limits, Page* page) const;
  std::string NameOf(int32_t number) const;

  std::string name_;
  std::shared_ptr<const ByteSource> source_;
  ReadLimits limits_;
  FileContents contents_;
};

}  // namespace vorlane::files
