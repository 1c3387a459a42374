#pragma once
// Strings in the text of a settings file.

#include <string>
#include <string_view>

namespace settings {

// How a list begins that stands for a string of arbitrary UTF-16 units.
inline constexpr std::string_view kUnitsMark = "[\"utf-16\"";

// Appends a string with its quotes, escaping what JSON wants escaped.
void AppendJsonString(std::string& text, std::string_view utf8);
void AppendJsonString(std::string& text, std::u16string_view value);

}  // namespace settings
