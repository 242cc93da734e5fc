// The profile reader on files of any bytes.
#include <memory>
#include <string>
#include <string_view>

#include "frame/profile_reader.h"
#include "fuzz_crop_param.h"

using namespace vorlanepic;
using namespace vorlanepic::fuzz;

namespace {

// Names that the made-up files have a fair chance to hold.
const char* const kSections[] = {"S", "[", "]", "ImageDeskew", "a b", "#"};
const char* const kKeys[] = {"K", "", "a b", "+", "[", "SegmentLen"};

void RequireSoundValue(const frame::ProfileText& value) {
  Require(value.length <= frame::kProfileLineCapacity, "a value fits into a line");
  Require(value.text[value.length] == '\0', "a value ends with a zero");
  const std::string_view ends("\n\r\0", 3);
  Require(value.view().find_first_of(ends) == std::string_view::npos, "a value holds no line end");
  Require(value.length == 0 || (value.text[0] != ' ' && value.text[0] != '\t'),
          "a value begins behind its blanks");
}

// In storage of the exact size, so that a sanitizer sees a byte written too many.
void RequireSameText(const frame::ProfileText& value, uint32_t size, const char* section,
                     const char* key, const frame::Profile& profile) {
  const auto out = std::make_unique<char[]>(size_t{size} + 1);
  const size_t length = profile.Text(section, key, "d", out.get(), size);
  const std::string_view expected =
      value.length > size ? value.view().substr(0, size - 1) : value.view();
  Require(std::string_view(out.get(), length) == expected && out[length] == '\0',
          "the text is the value, cut to size");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzInput input(data, size);
  const char* section = kSections[input.In(0, 5)];
  const char* key = kKeys[input.In(0, 5)];
  const auto textSize = static_cast<uint32_t>(input.In(1, 5000));
  // Now and then a line of some thousand characters stands in front.
  std::string bytes(input.Byte() < 230 ? 0 : static_cast<size_t>(input.In(0, 9000)), 'x');
  bytes += input.Flag() ? std::string("\n[") + section + "]\n" : "";
  bytes += input.RestAsText();

  frame::Profile profile;
  Require(profile.Load(PutProfile(bytes)) == frame::FileRead::kDone, "the file is read");
  frame::ProfileText value;
  const bool isFound = profile.Find(section, key, &value) == frame::ProfileStatus::kFound;
  if (isFound) RequireSoundValue(value);

  const int32_t number = profile.Int(section, key, -7);
  if (!isFound || value.length == 0) {
    Require(number == -7, "a failed or empty read gives the default");
  } else {
    Require(number >= 0, "a number is never negative");
  }
  if (isFound) RequireSameText(value, textSize, section, key, profile);
  return 0;
}
