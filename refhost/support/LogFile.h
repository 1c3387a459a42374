#pragma once
// The log file: lines are appended whole, also by several processes at once.

#include <windows.h>

#include <string>
#include <string_view>

namespace support {

class LogFile {
public:
    LogFile() = default;
    ~LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    // Closes the file before; null leaves it at that. False with GetLastError when it cannot be opened.
    // Closing it is false when a line was lost since it was opened.
    bool Open(const wchar_t* path);
    void Append(std::wstring_view line) noexcept;

private:
    bool Reopen();
    void Close() noexcept;
    void PutAside();

    std::wstring m_path;
    HANDLE m_file = INVALID_HANDLE_VALUE;
    DWORD m_problem = 0;  // of the first line that was lost
};

}  // namespace support
