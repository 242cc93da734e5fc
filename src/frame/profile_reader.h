// Reads settings from a profile: a text file of section header lines and key lines.
//
//   [ImageDeskew2]
//   # a comment
//   SegmentLen = 10
//   GroupAngle = 1+
//     .5
//
// Blanks (spaces and tabs) around lines, keys and before values do not count; names are compared
// byte for byte. A key line that ends with '+' goes on in the next line, whose leading blanks are
// dropped, whatever it begins with. Of equal keys in a section, and of equal sections, the first
// counts. Every read opens the file, scans it from its start and closes it; nothing is kept.
#pragma once

#include <cstdint>
#include <string_view>

#include "frame/profile_line.h"

namespace vorlanepic::frame {

// What FindProfileValue returns.
enum ProfileStatus : int32_t {
  kProfileFound = 0,
  kProfileNoSection = -1,       // the file ended before the section's header
  kProfileNoKey = -2,           // the section ended before the key
  kProfileNotOpened = -10,      // the file cannot be opened
  kProfileReadError = -12,      // reading failed before the end of the file
  kProfileMalformedLine = -14,  // on the way: a header without ']' before the section, or in it a
                                // line that has no '=' or begins with it
  kProfileValueTooLong = -22,   // joined lines exceed kProfileLineCapacity characters
  kProfileNullArgument = -23,
};

// Finds the value of `key` in `section` of the profile at `path` and copies it, whole, with a
// terminating zero, into *value. *value is undefined on failure.
int32_t FindProfileValue(const char* path, const char* section, const char* key,
                         ProfileText* value);

// The value of a key as a number of 0 or more: leading white space, an optional sign and the digits
// up to the first other character. Negative numbers and texts without digits give 0, numbers beyond
// int32 its largest. An empty value and every failure give `defaultValue`. A null or empty section,
// key or path gives 0.
int32_t ReadProfileInt(const char* section, const char* key, int32_t defaultValue,
                       const char* path);

// Stores the value of a key with a terminating zero in `out` and returns its length. Every failure
// stores `defaultText` instead, or the empty text when that is null.
//
//   out   holds size + 1 bytes
//   size  a text of up to `size` characters is stored whole; a longer one is cut to size - 1
//
// Returns 0 and leaves `out` alone for a null out, size 0 or a null or empty section, key or path.
uint32_t ReadProfileText(const char* section, const char* key, const char* defaultText, char* out,
                         uint32_t size, const char* path);

// The decimal number at the start of `text`, of up to 300 characters: leading white space, an
// optional sign, digits with an optional point, no exponent; 0.0 when there is no digit. Correctly
// rounded up to 15 digits.
double ParseDecimal(std::string_view text);

}  // namespace vorlanepic::frame
