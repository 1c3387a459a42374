#include "refhost/app/Console.h"

#include <algorithm>

#include "refhost/app/Text.h"

namespace zonhost {

namespace {

constexpr size_t kBarWidth = 40;

void Write(DWORD which, std::string_view text) {
    const HANDLE handle = GetStdHandle(which);
    DWORD mode = 0;
    DWORD written = 0;
    if (GetConsoleMode(handle, &mode)) {
        const std::wstring wide = WideFromUtf8(text);
        WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
        return;
    }
    while (!text.empty()) {
        const auto length = static_cast<DWORD>(std::min<size_t>(text.size(), 1 << 20));
        // A reader that went away is no concern of ours.
        if (!WriteFile(handle, text.data(), length, &written, nullptr) || written == 0) return;
        text.remove_prefix(written);
    }
}

}  // namespace

void Print(std::string_view text) {
    Write(STD_OUTPUT_HANDLE, Printable(text, true));
}

void PrintError(std::string_view text) {
    Write(STD_ERROR_HANDLE, Printable(text, true));
}

bool ErrorsGoToTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

std::string Utf8FromWide(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(std::max(needed, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), needed, nullptr, nullptr);
    return utf8;
}

std::wstring WideFromUtf8(std::string_view text) {
    const int length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<size_t>(std::max(needed, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), needed);
    return wide;
}

std::string SystemMessage(DWORD error) {
    wchar_t text[256];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                                  static_cast<DWORD>(std::size(text)), nullptr);
    while (length > 0 && (text[length - 1] <= L' ' || text[length - 1] == L'.')) --length;
    if (length == 0) return "error " + std::to_string(error);
    return Utf8FromWide({text, length});
}

ProgressBar::ProgressBar(size_t total) : m_total(total), m_shown(total > 0 && ErrorsGoToTerminal()) {
    Draw();
}

ProgressBar::~ProgressBar() {
    End();
}

void ProgressBar::Advance() {
    m_done = std::min(m_done + 1, m_total);
    Draw();
}

void ProgressBar::Report(std::string_view line) {
    Clear();
    PrintError(std::string(line) + "\n");
    Draw();
}

void ProgressBar::End() {
    Clear();
    m_shown = false;
}

void ProgressBar::Draw() const {
    if (!m_shown) return;
    const size_t filled = kBarWidth * m_done / m_total;
    Write(STD_ERROR_HANDLE, "\r[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] " +
                                std::to_string(m_done) + "/" + std::to_string(m_total));
}

void ProgressBar::Clear() const {
    if (m_shown) Write(STD_ERROR_HANDLE, "\r" + std::string(kBarWidth + 30, ' ') + "\r");
}

}  // namespace zonhost
