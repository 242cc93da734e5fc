// Arithmetic whose outcome is the same on every compiler and machine: what plain C++ leaves
// undefined or to the platform is decided here, with a test per edge.
#pragma once

#include <cstdint>

namespace vorlanepic::frame {

// a + b modulo 2^32. Summed unsigned, because signed overflow is undefined.
constexpr int32_t WrapAdd(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

// a - b modulo 2^32.
constexpr int32_t WrapSub(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// a * b modulo 2^32.
constexpr int32_t WrapMul(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

// |a| modulo 2^32: INT32_MIN stays what it is.
constexpr int32_t WrapAbs(int32_t a) { return a < 0 ? WrapSub(0, a) : a; }

// v cut toward zero. NaN and values outside int32 give INT32_MIN, as the 32-bit convert instruction
// does; a plain cast of those is undefined.
constexpr int32_t TruncToInt32(double v) {
  const bool fits = v > -2147483649.0 && v < 2147483648.0;
  return fits ? static_cast<int32_t>(v) : INT32_MIN;
}

// v rounded as this library rounds: v + 0.5 cut toward zero, so -0.7 gives 0 and -1.6 gives -1.
constexpr int32_t RoundToInt32(double v) { return TruncToInt32(v + 0.5); }

}  // namespace vorlanepic::frame
