#include "refhost/documents/PageFiles.h"

#include <algorithm>
#include <iterator>

namespace documents {

namespace {

wchar_t Lower(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
}

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

bool SameText(std::wstring_view left, std::wstring_view right) {
    return std::ranges::equal(left, right, {}, Lower, Lower);
}

bool EndsWithOneOf(std::wstring_view name, const std::wstring_view* begin, const std::wstring_view* end) {
    const size_t point = name.rfind(L'.');
    if (point == std::wstring_view::npos || point == 0) return false;
    return std::any_of(begin, end, [&](std::wstring_view ending) { return SameText(name.substr(point + 1), ending); });
}

constexpr std::wstring_view kEndings[] = {L"tif", L"tiff", L"png", L"jpg", L"jpeg", L"jpe", L"jfif", L"bmp", L"dib"};

// Takes a run of digits off the front, without its leading zeros.
std::wstring_view TakeNumber(std::wstring_view& text) {
    const auto isNoDigit = [](wchar_t c) { return !IsDigit(c); };
    const auto length = std::ranges::find_if(text, isNoDigit) - text.begin();
    std::wstring_view digits = text.substr(0, static_cast<size_t>(length));
    text.remove_prefix(digits.size());
    digits.remove_prefix(std::min(digits.find_first_not_of(L'0'), digits.size()));
    return digits;
}

// Below, equal, above: -1, 0, 1.
int Compare(std::wstring_view left, std::wstring_view right) {
    while (!left.empty() && !right.empty()) {
        if (IsDigit(left[0]) && IsDigit(right[0])) {
            const std::wstring_view a = TakeNumber(left);
            const std::wstring_view b = TakeNumber(right);
            if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
            if (const int order = a.compare(b); order != 0) return order < 0 ? -1 : 1;
            continue;
        }
        const wchar_t a = Lower(left[0]);
        const wchar_t b = Lower(right[0]);
        if (a != b) return a < b ? -1 : 1;
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
    return left.empty() ? (right.empty() ? 0 : -1) : 1;
}

}  // namespace

bool IsPageFile(std::wstring_view name) {
    return EndsWithOneOf(name, std::begin(kEndings), std::end(kEndings));
}

bool MayHoldSeveralPages(std::wstring_view name) {
    return EndsWithOneOf(name, kEndings, kEndings + 2);
}

bool ComesBefore(std::wstring_view left, std::wstring_view right) {
    const int order = Compare(left, right);
    return order != 0 ? order < 0 : left < right;
}

}  // namespace documents
