// Pages into files of any format that can be written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/files/encoded_page.h"
#include "app/files/pdf_writer.h"
#include "app/files/pending_file.h"
#include "app/files/picture_file.h"
#include "app/files/tiff_chain.h"

namespace vorlane::files {

// Encodes `image`, which was made from `source`, with what the source's file said about the page.
// What the format cannot keep is told in `notes`. Any number of threads may encode at once. Throws
// EncodeError.
EncodedPage EncodePage(FileFormat format, const ImageRec& image, const Page& source,
                       const WriteOptions& options, std::vector<std::string>* notes);

// A page as it is, for a file of several pages: from TIFF to TIFF its bytes and all it says, else
// encoded anew. Throws EncodeError.
EncodedPage KeepPage(FileFormat format, const PictureFile& file, const Page& page,
                     const WriteOptions& options, std::vector<std::string>* notes);

class PictureWriter {
 public:
  // `source` is the file that the pages come from: a PDF file hands on all else that it holds, and
  // a TIFF file's size decides on the kind of TIFF; it outlives the writer. Throws FileError when
  // no file can be made there.
  PictureWriter(const std::string& path, FileFormat format, Replacing replacing,
                Durability durability, const PictureFile* source = nullptr);

  // Adds a page: to a TIFF or PDF file any number, to another exactly one. Throws FileError.
  void Add(EncodedPage page);

  // Gives the file its name. Throws FileError.
  void Commit();

 private:
  std::string path_;
  FileFormat format_;
  PendingFile file_;
  TiffChain chain_;
  std::optional<PdfWriter> pdf_;
};

// Writes a file of one page in the format that its name asks for. Throws FileError.
void WritePicture(const std::string& path, const ImageRec& image, const Page& source,
                  Replacing replacing);

}  // namespace vorlane::files
