#include "refhost/support/TraceText.h"

#include <algorithm>
#include <cwchar>

namespace support {

namespace {

// A va_list cannot be compared everywhere; where it is a pointer, null stands for no arguments.
bool IsNull(va_list arguments) {
#ifdef _WIN32
    return arguments == nullptr;
#else
    (void)arguments;
    return false;
#endif
}

constexpr struct {
    unsigned int stringId;
    UserText text;
} kUserTexts[] = {
    {34106,
     {L"The area sets could not be read from the settings.",
      L"Check that the settings file is there and can be read, then try again."}},
    {34108,
     {L"The window for configuring area sets could not be opened.",
      L"Try again. If it happens again, close the program and start it anew."}},
    {34109,
     {L"The areas could not be taken over from the window.",
      L"Nothing was changed. Open the window again and repeat the last steps."}},
};

}  // namespace

std::wstring FormatText(const wchar_t* format, va_list arguments) {
    if (format == nullptr) return L"(no text)";
    if (IsNull(arguments)) return format;
    for (size_t size = 256; size <= (size_t{1} << 16); size *= 16) {
        std::wstring text(size, L'\0');
        va_list copy;
        va_copy(copy, arguments);
        const int length = std::vswprintf(text.data(), size, format, copy);
        va_end(copy);
        if (length >= 0 && static_cast<size_t>(length) < size) {
            text.resize(static_cast<size_t>(length));
            return text;
        }
    }
    return format;
}

std::wstring OneLine(std::wstring text) {
    std::ranges::replace_if(
        text, [](wchar_t unit) { return unit < 0x20 || unit == 0x7F; }, L' ');
    return text;
}

UserText UserTextOf(unsigned int stringId) {
    for (const auto& entry : kUserTexts) {
        if (stringId != 0 && entry.stringId == stringId) return entry.text;
    }
    return {nullptr, L"Try again. If it happens again, tell whoever looks after this program what stands here."};
}

}  // namespace support
