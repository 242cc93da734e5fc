#include "app/files/page_reader.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <unistd.h>
#include <utility>

#include "app/files/image_convert.h"
#include "app/files/pix_owner.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::files {
namespace {

// The decoders write to the error output on their own; what they find is told in our words.
class QuietErrors {
 public:
  QuietErrors() : kept_(::dup(STDERR_FILENO)) {
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (kept_ >= 0 && nowhere >= 0) (void)::dup2(nowhere, STDERR_FILENO);
    if (nowhere >= 0) (void)::close(nowhere);
  }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;
  ~QuietErrors() {
    if (kept_ < 0) return;
    (void)::dup2(kept_, STDERR_FILENO);
    (void)::close(kept_);
  }

 private:
  int kept_;
};

struct FileClose {
  void operator()(std::FILE* file) const { (void)std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileClose>;

FilePtr OpenFile(const std::string& path) {
  std::error_code code;
  if (std::filesystem::is_directory(path, code)) {
    throw FileError(path + ": is a folder; name the files in it, as in " + path + "/*.tif");
  }
  FilePtr file(std::fopen(path.c_str(), "rb"));
  if (!file) throw FileError(path + ": cannot be opened: " + std::strerror(errno));
  const int first = std::fgetc(file.get());
  if (first == EOF && std::ferror(file.get()) != 0) {
    throw FileError(path + ": cannot be read: " + std::strerror(errno));
  }
  if (first == EOF) throw FileError(path + ": is empty");
  std::rewind(file.get());
  return file;
}

bool IsTiff(int32_t format) {
  return format == IFF_TIFF || (format >= IFF_TIFF_PACKBITS && format <= IFF_TIFF_ZIP) ||
         format == IFF_TIFF_JPEG;
}

// A page image holds at most 2^31 - 1 bytes; refused here before anything that large is decoded.
void RefuseTooLarge(const std::string& path, int64_t width, int64_t height) {
  if (width * height > INT32_MAX / 3) {
    throw FileError(path + ": " + std::to_string(width) + " x " + std::to_string(height) +
                    " pixels are too many; a page of up to 715 megapixels can be handled");
  }
}

// Files cut short are refused: half a page has other borders than the whole one.
PixPtr ReadSinglePage(const std::string& path) {
  const FilePtr file(std::fopen(path.c_str(), "rb"));
  if (!file) throw FileError(path + ": cannot be opened: " + std::strerror(errno));
  return PixPtr(pixReadStream(file.get(), 0));
}

std::string PageName(const std::string& path, int32_t number, int32_t count) {
  return count > 1 ? path + "[" + std::to_string(number) + "]" : path;
}

}  // namespace

PageReader::PageReader(const std::string& path) : path_(path) {
  const FilePtr file = OpenFile(path);
  const QuietErrors quiet;
  if (findFileFormatStream(file.get(), &format_) != 0 || format_ == IFF_UNKNOWN) {
    throw FileError(path + ": is no image file (TIFF, PNG, JPEG, BMP or PNM), or is damaged");
  }
  int32_t width = 0;
  int32_t height = 0;
  if (pixReadHeader(path.c_str(), nullptr, &width, &height, nullptr, nullptr, nullptr) == 0) {
    RefuseTooLarge(path, width, height);
  }
  if (!IsTiff(format_)) return;
  std::rewind(file.get());
  if (tiffGetCount(file.get(), &count_) != 0 || count_ < 1) {
    throw FileError(path + ": is damaged: its pages cannot be counted");
  }
}

bool PageReader::Next(Page* page) {
  if (done_ >= count_) return false;
  *page = Page{};
  page->file = path_;
  page->number = ++done_;
  page->count = count_;

  const QuietErrors quiet;
  PixPtr pix = IsTiff(format_) ? PixPtr(pixReadFromMultipageTiff(path_.c_str(), &offset_))
                               : ReadSinglePage(path_);
  const std::string name = PageName(path_, done_, count_);
  if (!pix) throw FileError(name + ": is damaged or of a kind that cannot be read");
  RefuseTooLarge(name, pixGetWidth(pix.get()), pixGetHeight(pix.get()));
  page->xDpi = pixGetXRes(pix.get());
  page->yDpi = pixGetYRes(pix.get());
  pix = ToServiceDepth(std::move(pix), &page->notes);
  if (!pix || PixToImage(pix, &page->image) != STATUS_OK) {
    throw FileError(name + ": there is not enough memory for this page");
  }
  return true;
}

}  // namespace vorlane::files
