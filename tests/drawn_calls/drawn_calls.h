// Calls of everything that hosts can call, on drawn pages, with what came of each in words that can
// be compared: from build to build, and between a call that was disturbed and one that was not.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vorlanepic::testing {

struct CallResult {
  int32_t status = 0;
  bool isDone = false;  // what the status means for this function
  // One text for each image, angle, block or number that the call made: its size and a checksum of
  // its pixels, or its bits. Of a failed call, what it left to its caller all the same.
  std::vector<std::string> made;
};

// Runs its argument once: the call alone, without what is drawn before it and released after it.
using Around = std::function<void(const std::function<void()>& call)>;

struct DrawnCall {
  std::string name;
  std::vector<int32_t> exhausted;  // what it may return for a lack of memory
  std::function<CallResult(const Around&)> run;
  // The call as which this one may come out where a file cannot be read; empty for all others.
  std::string orAs;
  bool sparesLargest = false;  // whether it comes out whole without its largest request for memory
};

// Everything at every depth, interpolation and method on pages of several turns; or each function
// on a page or two, small enough to be called thousands of times.
enum class Extent { kBroad, kNarrow };

// The 19 functions and the image library.
std::vector<DrawnCall> ServiceCalls(Extent extent);

// The page engine's. Angles and places are told in millionths of a degree and thousandths of a
// pixel: its sines are those of the C library at hand.
std::vector<DrawnCall> EngineCalls(Extent extent);

}  // namespace vorlanepic::testing
