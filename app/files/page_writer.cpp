#include "app/files/page_writer.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <utility>

#include <sys/stat.h>

#include "app/files/image_convert.h"
#include "app/files/page.h"

namespace vorlane::files {
namespace {

// Beside the file it becomes, so that the last step is a rename within one file system.
std::string TemporaryName(const std::string& path) {
  const std::filesystem::path full(path);
  std::string name = ".";
  name.append(full.filename().string()).append(".").append(std::to_string(::getpid()));
  name.append(".part");
  return (full.parent_path() / name).string();
}

std::string HandleName(int handle) {
  return std::string("/proc/self/fd/").append(std::to_string(handle));
}

// A file without a name in the directory of `path`, which vanishes with its last handle: not even a
// kill leaves it behind. -1 where the file system has none or none could be given a name later.
int OpenNameless(const std::string& path) {
  const std::filesystem::path directory = std::filesystem::path(path).parent_path() / ".";
  const int handle = ::open(directory.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, 0666);
  if (handle < 0 || ::access(HandleName(handle).c_str(), F_OK) == 0) return handle;
  (void)::close(handle);
  return -1;
}

// The file that a link stands for: it is replaced, the link stays.
std::string ThroughLinks(const std::string& path) {
  std::error_code code;
  const std::filesystem::path real = std::filesystem::canonical(path, code);
  return code ? path : real.string();
}

PixPtr ForFormat(PixPtr pix, FileFormat format) {
  const int32_t bits = pixGetDepth(pix.get());
  const bool needsGrey = format == FileFormat::kJpeg || format == FileFormat::kPgm;
  if (bits == 1 && needsGrey) return PixPtr(pixConvert1To8(nullptr, pix.get(), 255, 0));
  if (bits < 32 && format == FileFormat::kPpm) return PixPtr(pixConvertTo32(pix.get()));
  return pix;
}

// The library's memory writers hand over malloc storage.
struct EncodedBytes {
  uint8_t* data = nullptr;
  size_t size = 0;
  EncodedBytes() = default;
  EncodedBytes(const EncodedBytes&) = delete;
  EncodedBytes& operator=(const EncodedBytes&) = delete;
  ~EncodedBytes() { lept_free(data); }
};

int EncodePix(Pix* pix, FileFormat format, int32_t jpegQuality, EncodedBytes* out) {
  switch (format) {
    case FileFormat::kTiff:
      return pixWriteMemTiff(&out->data, &out->size, pix,
                             pixGetDepth(pix) == 1 ? IFF_TIFF_G4 : IFF_TIFF_LZW);
    case FileFormat::kPng:
      return pixWriteMemPng(&out->data, &out->size, pix, 0);
    case FileFormat::kJpeg:
      return pixWriteMemJpeg(&out->data, &out->size, pix, jpegQuality, 0);
    case FileFormat::kBmp:
      return pixWriteMemBmp(&out->data, &out->size, pix);
    default:
      return pixWriteMemPnm(&out->data, &out->size, pix);
  }
}

}  // namespace

PendingFile::PendingFile(const std::string& path)
    : path_(ThroughLinks(path)), temporary_(TemporaryName(path_)) {
  // As an ordinary new file: the user's umask decides who may read it.
  int handle = OpenNameless(temporary_);
  isNamed_ = handle < 0;
  if (isNamed_) handle = ::open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (handle >= 0) file_ = ::fdopen(handle, "wb");
  if (file_ == nullptr) {
    throw FileError(path_ + ": cannot be written here: " + std::strerror(errno));
  }
}

PendingFile::~PendingFile() {
  if (file_ == nullptr) return;
  (void)std::fclose(file_);
  if (isNamed_) (void)::unlink(temporary_.c_str());
}

void PendingFile::Fail(const char* what) {
  throw FileError(path_ + ": " + what + ": " + std::strerror(errno) + "; nothing was written");
}

void PendingFile::Write(const void* bytes, size_t count) {
  if (std::fwrite(bytes, 1, count, file_) != count) Fail("cannot be written");
}

void PendingFile::WriteAt(uint32_t offset, const void* bytes, size_t count) {
  if (::fseeko(file_, static_cast<off_t>(offset), SEEK_SET) != 0) Fail("cannot be written");
  Write(bytes, count);
  if (::fseeko(file_, 0, SEEK_END) != 0) Fail("cannot be written");
}

void PendingFile::Commit() {
  if (std::fflush(file_) != 0) Fail("cannot be written");
  if (!isNamed_) {
    const std::string handle = HandleName(::fileno(file_));
    isNamed_ =
        ::linkat(AT_FDCWD, handle.c_str(), AT_FDCWD, temporary_.c_str(), AT_SYMLINK_FOLLOW) == 0;
    if (!isNamed_) Fail("cannot be given a name");
  }
  if (std::rename(temporary_.c_str(), path_.c_str()) != 0) Fail("cannot be given its name");
  (void)std::fclose(std::exchange(file_, nullptr));
}

PageWriter::PageWriter(const std::string& path, int32_t jpegQuality)
    : path_(path),
      format_(FormatOfName(path).value_or(FileFormat::kTiff)),
      jpegQuality_(jpegQuality),
      file_(path) {}

std::vector<uint8_t> PageWriter::Encode(PixPtr pix) const {
  if (pix && format_ == FileFormat::kPbm && pixGetDepth(pix.get()) != 1) {
    throw FileError(path_ + ": PBM holds 1-bit pages only; name it .pnm, .pgm or .ppm");
  }
  if (pix && format_ == FileFormat::kPgm && pixGetDepth(pix.get()) == 32) {
    throw FileError(path_ + ": PGM holds grey pages only; name it .pnm or .ppm");
  }
  if (pix) pix = ForFormat(std::move(pix), format_);
  EncodedBytes encoded;
  if (!pix || EncodePix(pix.get(), format_, jpegQuality_, &encoded) != 0 || encoded.size == 0) {
    throw FileError(path_ + ": a page of this size cannot be encoded in this format");
  }
  return {encoded.data, encoded.data + encoded.size};
}

void PageWriter::Add(const ImageRec& image, int32_t xDpi, int32_t yDpi) {
  PixPtr pix = ImageToPix(image);
  if (pix) pixSetResolution(pix.get(), xDpi, yDpi);
  Add(std::move(pix));
}

void PageWriter::Add(PixPtr pix) {
  std::vector<uint8_t> bytes = Encode(std::move(pix));
  if (format_ == FileFormat::kTiff) {
    const uint32_t link = chain_.link;
    uint32_t directory = 0;
    if (!AppendTiffPage(&chain_, &bytes, &directory)) {
      throw FileError(path_ + ": the pages take more than a TIFF file of 4 GB holds");
    }
    if (pages_ > 0) file_.WriteAt(link, &directory, sizeof(directory));
  }
  file_.Write(bytes.data(), bytes.size());
  ++pages_;
}

void PageWriter::Commit() { file_.Commit(); }

}  // namespace vorlane::files
