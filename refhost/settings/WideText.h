#pragma once
// Between the strings of the interfaces and those of the tree.

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>

namespace settings {

// A null string is an empty one.
std::u16string UnitsFrom(BSTR text);
// Throws std::bad_alloc.
BSTR NewBstr(std::u16string_view text);
std::wstring WideFrom(std::string_view utf8);

}  // namespace settings
