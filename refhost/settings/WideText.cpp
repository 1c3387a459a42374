#include "refhost/settings/WideText.h"

#include <new>

#include "refhost/settings/Unicode.h"

namespace settings {

std::u16string UnitsFrom(BSTR text) {
    return text == nullptr ? std::u16string() : std::u16string(text, text + SysStringLen(text));
}

BSTR NewBstr(std::u16string_view text) {
    BSTR copy = SysAllocStringLen(nullptr, static_cast<UINT>(text.size()));
    if (copy == nullptr) throw std::bad_alloc();
    for (size_t i = 0; i < text.size(); ++i) copy[i] = static_cast<wchar_t>(text[i]);
    return copy;
}

std::wstring WideFrom(std::string_view utf8) {
    const std::u16string units = Utf16From(utf8);
    return {units.begin(), units.end()};
}

}  // namespace settings
