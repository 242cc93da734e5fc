// Reads the values of a call out of the bytes that a fuzz run is given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>

namespace vorlanepic::fuzz {

// Takes values from the front; past the end everything is 0.
class FuzzInput {
 public:
  FuzzInput(const uint8_t* data, size_t size) : rest_(data, size) {}

  uint8_t Byte() {
    if (rest_.empty()) return 0;
    const uint8_t first = rest_.front();
    rest_ = rest_.subspan(1);
    return first;
  }

  bool Flag() { return (Byte() & 1) != 0; }

  int32_t Int32() {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | Byte();
    return static_cast<int32_t>(value);
  }

  // low..high, both inclusive, at most 65536 values.
  int32_t In(int32_t low, int32_t high) {
    const int32_t raw = Byte() << 8 | Byte();
    return low + raw % (high - low + 1);
  }

  // Mostly low..high, now and then any integer at all.
  int32_t MostlyIn(int32_t low, int32_t high) { return Byte() < 240 ? In(low, high) : Int32(); }

  // Tenths from low..high, now and then a number that no host would pass.
  double MostlyTenths(int32_t low, int32_t high) {
    if (Byte() < 240) return In(low * 10, high * 10) / 10.0;
    uint64_t bits = 0;
    for (int i = 0; i < 8; ++i) bits = bits << 8 | Byte();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
  }

  std::span<const uint8_t> Rest() const { return rest_; }
  std::string_view RestAsText() const {
    return {reinterpret_cast<const char*>(rest_.data()), rest_.size()};
  }

 private:
  std::span<const uint8_t> rest_;
};

// Ends the run as a finding when a promise of the library does not hold.
inline void Require(bool holds, const char* promise) {
  if (holds) return;
  std::fprintf(stderr, "broken promise: %s\n", promise);
  std::abort();
}

}  // namespace vorlanepic::fuzz
