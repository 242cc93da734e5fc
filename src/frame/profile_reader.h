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
// counts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "frame/profile_line.h"
#include "frame/regular_file.h"

namespace vorlanepic::frame {

// The longest profile that is read, in bytes.
inline constexpr size_t kProfileMost = size_t{1} << 20;

// What Profile::Find returns.
enum class ProfileStatus {
  kFound,
  kNoSection,      // the profile ended before the section's header
  kNoKey,          // the section ended before the key
  kMalformedLine,  // on the way: a header without ']' before the section, or in it a line that has
                   // no '=' or begins with it
  kValueTooLong,   // joined lines exceed kProfileLineCapacity characters
};

// A profile, read once. Without one that was loaded every search fails.
class Profile {
 public:
  // Reads the file at `path`, which may be null or empty: the profile then has no name, and none of
  // its keys has even a default. Anything but kDone leaves a profile without sections.
  FileRead Load(const char* path);

  // Finds the value of `key` in `section` and copies it, whole, with a terminating zero, into
  // *value. *value is undefined on failure.
  ProfileStatus Find(std::string_view section, std::string_view key, ProfileText* value) const;

  // The value of a key as a number of 0 or more: leading white space, an optional sign and the
  // digits up to the first other character. Negative numbers and texts without digits give 0,
  // numbers beyond int32 its largest. An empty value and every failure give `defaultValue`; a
  // profile without a name gives 0.
  int32_t Int(std::string_view section, std::string_view key, int32_t defaultValue) const;

  // Stores the value of a key with a terminating zero in `out` and returns its length. Every
  // failure stores `defaultText` instead; a profile without a name gives the empty text.
  //
  //   out   holds size + 1 bytes
  //   size  at least 1: a text of up to `size` characters is stored whole; a longer one is cut to
  //         size - 1
  size_t Text(std::string_view section, std::string_view key, std::string_view defaultText,
              char* out, size_t size) const;

 private:
  bool hasName_ = false;
  ScratchArray<char> bytes_;
};

// The decimal number at the start of `text`, of up to 300 characters: leading white space, an
// optional sign, digits with an optional point, no exponent; 0.0 when there is no digit. Correctly
// rounded up to 15 digits.
double ParseDecimal(std::string_view text);

}  // namespace vorlanepic::frame
