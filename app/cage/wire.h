// Records as bytes and back. What a record holds is said once, by a function for both ways:
//
//   template <class Archive, Is<Size> Record>
//   void Carry(Archive& archive, Record& size) { archive(size.width, size.height); }
//
// The reading way believes nothing: what is cut short, too long or nested too deep is a WireError,
// and no more memory is taken than a few times the bytes' own number.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace vorlane::cage {

struct WireError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

template <class T, class Record>
concept Is = std::same_as<std::remove_const_t<T>, Record>;

// Numbers, and arrays of them, are carried as they lie in memory: both sides are one program.
template <class T>
struct IsPlain : std::bool_constant<std::is_arithmetic_v<T> || std::is_enum_v<T>> {};
template <>
struct IsPlain<bool> : std::false_type {};
template <class T, size_t kCount>
struct IsPlain<std::array<T, kCount>> : IsPlain<T> {};

class WireWriter {
 public:
  template <class... T>
  void operator()(const T&... values) {
    (Put(values), ...);
  }

  const std::vector<uint8_t>& bytes() const { return bytes_; }

 private:
  void PutBytes(const void* from, size_t count) {
    const auto* first = static_cast<const uint8_t*>(from);
    bytes_.insert(bytes_.end(), first, first + count);
  }

  template <class T>
  void Put(const T& value) {
    if constexpr (std::same_as<T, bool>) {
      bytes_.push_back(value ? 1 : 0);
    } else if constexpr (IsPlain<T>::value) {
      PutBytes(&value, sizeof(value));
    } else {
      Carry(*this, value);
    }
  }

  void Put(const std::string& text) {
    Put(uint64_t{text.size()});
    PutBytes(text.data(), text.size());
  }

  template <class T>
  void Put(const std::vector<T>& list) {
    Put(uint64_t{list.size()});
    if constexpr (IsPlain<T>::value) {
      PutBytes(list.data(), list.size() * sizeof(T));
    } else {
      for (const T& value : list) Put(value);
    }
  }

  std::vector<uint8_t> bytes_;
};

class WireReader {
 public:
  explicit WireReader(std::span<const uint8_t> bytes) : rest_(bytes) {}

  template <class... T>
  void operator()(T&... values) {
    (Get(values), ...);
  }

  // Everything was read.
  void Finish() const {
    if (!rest_.empty()) throw WireError("too long");
  }

 private:
  static constexpr int kDeepest = 8;  // vectors in vectors

  void GetBytes(void* to, size_t count) {
    if (count > rest_.size()) throw WireError("cut short");
    if (count > 0) std::memcpy(to, rest_.data(), count);
    rest_ = rest_.subspan(count);
  }

  // Each element takes a byte at least.
  size_t GetCount(size_t bytesEach) {
    uint64_t count = 0;
    Get(count);
    if (count > rest_.size() / bytesEach) throw WireError("cut short");
    return static_cast<size_t>(count);
  }

  template <class T>
  void Get(T& value) {
    if constexpr (std::same_as<T, bool>) {
      uint8_t byte = 0;
      GetBytes(&byte, 1);
      value = byte != 0;
    } else if constexpr (IsPlain<T>::value) {
      GetBytes(&value, sizeof(value));
    } else {
      Carry(*this, value);
    }
  }

  void Get(std::string& text) {
    text.resize(GetCount(1));
    GetBytes(text.data(), text.size());
  }

  template <class T>
  void Get(std::vector<T>& list) {
    if (++depth_ > kDeepest) throw WireError("nested too deep");
    list.clear();
    if constexpr (IsPlain<T>::value) {
      list.resize(GetCount(sizeof(T)));
      GetBytes(list.data(), list.size() * sizeof(T));
    } else {
      for (size_t left = GetCount(1); left > 0; --left) Get(list.emplace_back());
    }
    --depth_;
  }

  std::span<const uint8_t> rest_;
  int depth_ = 0;
};

}  // namespace vorlane::cage
