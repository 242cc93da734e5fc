// Owners of storage that lives no longer than its scope.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <type_traits>
#include <utility>

#include "vorlanepic/imgbuf.h"

namespace vorlanepic::frame {

// An image that is released with its scope, on whichever path the scope is left.
class ScratchImage {
 public:
  ScratchImage() = default;
  ScratchImage(const ScratchImage&) = delete;
  ScratchImage& operator=(const ScratchImage&) = delete;
  ScratchImage(ScratchImage&& other) noexcept : rec_(other.Take()) {}
  ScratchImage& operator=(ScratchImage&& other) noexcept {
    std::swap(rec_, other.rec_);
    return *this;
  }
  ~ScratchImage() { Release(); }

  ImageRec* rec() { return &rec_; }
  const ImageRec* rec() const { return &rec_; }

  // Releases the image early and returns the image library's status; 0 when there is none.
  int32_t Release() {
    const int32_t status = rec_.pixels != nullptr ? Imgbuf_Destory(&rec_) : 0;
    rec_ = {};
    return status;
  }

  // Hands the image over to the caller.
  ImageRec Take() { return std::exchange(rec_, ImageRec{}); }

 private:
  ImageRec rec_{};
};

// A zeroed array of plain records. On calloc, which refuses a count that overflows and reports
// exhaustion without throwing.
template <typename T>
class ScratchArray {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
  ScratchArray() = default;
  ScratchArray(const ScratchArray&) = delete;
  ScratchArray& operator=(const ScratchArray&) = delete;
  ScratchArray(ScratchArray&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
  ScratchArray& operator=(ScratchArray&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    return *this;
  }
  ~ScratchArray() { std::free(data_); }

  // Takes `size` zeroed elements in place of what it held. False when there is no memory; the array
  // is then empty. Size 0 is served.
  [[nodiscard]] bool Allocate(size_t size) {
    std::free(data_);
    size_ = 0;
    data_ = static_cast<T*>(std::calloc(size > 0 ? size : 1, sizeof(T)));
    if (data_ == nullptr) return false;
    size_ = size;
    return true;
  }

  // Lets the array have `size` elements at least, whose content is undefined. False when there is
  // no memory; the array is then empty.
  [[nodiscard]] bool Reserve(size_t size) { return size_ >= size || Allocate(size); }

  // Makes the array longer by `more` elements whose content is undefined. False when there is no
  // memory; the array is then as it was.
  [[nodiscard]] bool Grow(size_t more) {
    const size_t size = size_ + more;
    if (size < size_ || size > SIZE_MAX / sizeof(T)) return false;
    void* grown = std::realloc(data_, size * sizeof(T));
    if (grown == nullptr) return false;
    data_ = static_cast<T*>(grown);
    size_ = size;
    return true;
  }

  // Hands the storage over to the caller, who frees it.
  T* Release() {
    size_ = 0;
    return std::exchange(data_, nullptr);
  }

  T* data() { return data_; }
  const T* data() const { return data_; }
  size_t size() const { return size_; }
  T& operator[](size_t i) { return data_[i]; }
  const T& operator[](size_t i) const { return data_[i]; }
  std::span<T> span() { return {data_, size_}; }
  std::span<const T> span() const { return {data_, size_}; }

 private:
  T* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace vorlanepic::frame
