#pragma once
// What zonhost prints: UTF-8 into files and pipes, Unicode on a console whatever its code page.

#include <windows.h>

#include <string>
#include <string_view>

namespace zonhost {

// Both print names from files as well: what a terminal would obey is shown as \uXXXX, but for line ends.
// To standard output. Throws CommandError (kNothingDone) when not all of it arrives there.
void Print(std::string_view text);
// To standard error, as far as it goes: there is nowhere else to tell.
void PrintError(std::string_view text);
// Whether messages go to a person's terminal.
bool ErrorsGoToTerminal();

std::string Utf8FromWide(std::wstring_view text);
std::wstring WideFromUtf8(std::string_view text);
// The system's words for an error code of GetLastError or an HRESULT.
std::string SystemMessage(DWORD error);

// A bar on the terminal; nothing at all where there is none.
class ProgressBar {
public:
    explicit ProgressBar(size_t total);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    void Advance();
    // Prints a message above the bar.
    void Report(std::string_view line);
    // Takes the bar away for good.
    void End();

private:
    void Draw() const;
    void Clear() const;
    size_t m_total;
    size_t m_done = 0;
    bool m_shown;
};

}  // namespace zonhost
