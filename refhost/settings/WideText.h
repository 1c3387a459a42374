#pragma once
// Between the strings of the interfaces and those of the tree.

#include <windows.h>

#include <oleauto.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace settings {

// A null string is an empty one.
std::u16string UnitsFrom(BSTR text);

// The same for the length of a call, without the heap when it is as short as names are.
class Units {
public:
    explicit Units(BSTR text) {
        const size_t length = SysStringLen(text);
        if (length > std::size(m_short)) {
            m_long = UnitsFrom(text);
            m_text = m_long;
        } else {
            std::copy_n(text, length, m_short);
            m_text = {m_short, length};
        }
    }
    Units(const Units&) = delete;
    Units& operator=(const Units&) = delete;
    operator std::u16string_view() const { return m_text; }

private:
    char16_t m_short[32];
    std::u16string m_long;
    std::u16string_view m_text;
};
// Throws std::bad_alloc.
BSTR NewBstr(std::u16string_view text);
std::wstring WideFrom(std::string_view utf8);

}  // namespace settings
