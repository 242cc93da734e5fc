// File names as people and programs get to see them.
#pragma once

#include <string>
#include <string_view>

namespace vorlane::batch {

// Whether the bytes are UTF-8 without surrogates and overlong forms.
bool IsUtf8(std::string_view bytes);

// A name in which no line end and no terminal sequence can act: control characters and bytes that
// are not UTF-8 become \n, \t or \xHH, a backslash becomes two.
std::string Printable(std::string_view name);

// Two lower-case digits a byte, and back; FromHex gives nothing for other text.
std::string ToHex(std::string_view bytes);
std::string FromHex(std::string_view digits);

}  // namespace vorlane::batch
