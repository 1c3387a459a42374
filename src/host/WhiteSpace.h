#pragma once
// White space as the target's runtime library takes it before a number, whatever the platform and the locale.

#include <string_view>

namespace host {

inline constexpr std::wstring_view kWhiteSpace =
    L"\t\n\v\f\r \u00a0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200a\u2028\u2029\u202f"
    L"\u205f\u3000";

constexpr bool IsSpace(wchar_t c) {
    return kWhiteSpace.find(c) != std::wstring_view::npos;
}

}  // namespace host
