#include "app/batch/sha256.h"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <new>
#include <unistd.h>
#include <vector>

#include <openssl/evp.h>

#include "app/batch/printable_name.h"

namespace vorlane::batch {
namespace {

class Hasher {
 public:
  Hasher() : context_(EVP_MD_CTX_new()) {
    if (!context_ || EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr) != 1) {
      throw std::bad_alloc();
    }
  }

  void Add(const void* bytes, size_t count) {
    if (EVP_DigestUpdate(context_.get(), bytes, count) != 1) throw std::bad_alloc();
  }

  std::string Digits() {
    std::array<char, 32> digest{};
    auto* bytes = reinterpret_cast<unsigned char*>(digest.data());
    if (EVP_DigestFinal_ex(context_.get(), bytes, nullptr) != 1) throw std::bad_alloc();
    return ToHex({digest.data(), digest.size()});
  }

 private:
  struct Release {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
  };
  std::unique_ptr<EVP_MD_CTX, Release> context_;
};

}  // namespace

std::string Sha256Of(std::string_view bytes) {
  Hasher hasher;
  hasher.Add(bytes.data(), bytes.size());
  return hasher.Digits();
}

FileDigest Sha256OfFile(const std::string& path) {
  const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (handle < 0) return {};
  Hasher hasher;
  FileDigest digest;
  std::vector<char> buffer(size_t{1} << 17);
  ssize_t count = 0;
  while ((count = ::read(handle, buffer.data(), buffer.size())) > 0) {
    hasher.Add(buffer.data(), static_cast<size_t>(count));
    digest.size += count;
  }
  (void)::close(handle);
  if (count < 0) return {};
  digest.sha256 = hasher.Digits();
  return digest;
}

}  // namespace vorlane::batch
