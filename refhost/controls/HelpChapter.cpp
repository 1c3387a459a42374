#include "refhost/controls/HelpChapter.h"

#include <cwchar>

namespace controls {

namespace {

// A dialog's help context is this base plus the number of its template.
constexpr uint32_t kDialogContexts = 0x20000;

constexpr struct {
    uint32_t dialog;
    const wchar_t* chapter;
} kChapters[] = {
    {27770, L"configure-area-set"},
    {27784, L"manage-area-sets"},
    {27788, L"select-paper-size"},
};

}  // namespace

std::wstring ChapterOf(uint32_t context) {
    for (const auto& entry : kChapters) {
        if (context == kDialogContexts + entry.dialog) return entry.chapter;
    }
    return {};
}

std::wstring FileUrl(const std::wstring& path, const std::wstring& chapter) {
    constexpr wchar_t kHex[] = L"0123456789ABCDEF";
    std::wstring url = path.starts_with(L"\\\\") ? L"file:" : L"file:///";
    for (const wchar_t unit : path) {
        if (unit == L'\\') {
            url += L'/';
        } else if (unit <= 0x20 || unit == 0x7F || std::wcschr(L"%#?\"<>", unit) != nullptr) {
            url += L'%';
            url += kHex[(unit >> 4) & 15];
            url += kHex[unit & 15];
        } else {
            url += unit;
        }
    }
    return chapter.empty() ? url : url + L'#' + chapter;
}

}  // namespace controls
