// Pages into files of any format that can be written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/files/encoded_page.h"
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

// Whether the pages of a file are to become a BigTIFF: it is one, or its pages may take more than
// 4 GB.
bool NeedsBigTiff(const PictureFile& file);

class PictureWriter {
 public:
  // Throws FileError when no file can be made there.
  PictureWriter(const std::string& path, FileFormat format, Replacing replacing,
                Durability durability, bool isBig = false);

  // Adds a page: to a TIFF file any number, to another exactly one. Throws FileError.
  void Add(EncodedPage page);

  // Gives the file its name. Throws FileError.
  void Commit() { file_.Commit(); }

 private:
  std::string path_;
  FileFormat format_;
  PendingFile file_;
  TiffChain chain_;
};

// Writes a file of one page in the format that its name asks for. Throws FileError.
void WritePicture(const std::string& path, const ImageRec& image, const Page& source,
                  Replacing replacing);

}  // namespace vorlane::files
