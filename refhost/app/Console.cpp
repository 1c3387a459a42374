#include "refhost/app/Console.h"

#include <algorithm>

#include "refhost/app/Text.h"

namespace zonhost {

namespace {

constexpr size_t kBarWidth = 40;

// The system's error code, 0 when all was written.
DWORD Write(DWORD which, std::string_view text) {
    const HANDLE handle = GetStdHandle(which);
    // A program that was started without outputs has nobody to tell.
    if (handle == nullptr) return 0;
    DWORD mode = 0;
    DWORD written = 0;
    if (GetConsoleMode(handle, &mode)) {
        const std::wstring wide = WideFromUtf8(text);
        return WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr) ? 0
                                                                                                      : GetLastError();
    }
    while (!text.empty()) {
        const auto length = static_cast<DWORD>(std::min<size_t>(text.size(), 1 << 20));
        if (!WriteFile(handle, text.data(), length, &written, nullptr)) return GetLastError();
        if (written == 0) return ERROR_DISK_FULL;
        text.remove_prefix(written);
    }
    return 0;
}

}  // namespace

void Print(std::string_view text) {
    const DWORD error = Write(STD_OUTPUT_HANDLE, Printable(text, true));
    if (error == 0) return;
    throw CommandError(ExitCode::kNothingDone, "standard output cannot be written: " + SystemMessage(error) +
                                                   "; what is there of it is not whole");
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
