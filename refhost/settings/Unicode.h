#pragma once
// Between the UTF-16 of the interfaces and the UTF-8 of the file.

#include <string>
#include <string_view>

namespace settings {

// Whether every surrogate has its partner.
bool IsValidUtf16(std::u16string_view text);
// What cannot be converted becomes U+FFFD.
std::string Utf8From(std::u16string_view text);
std::u16string Utf16From(std::string_view text);

}  // namespace settings
