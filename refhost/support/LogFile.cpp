#include "refhost/support/LogFile.h"

#include <utility>

namespace support {

namespace {

constexpr LONGLONG kLargestLog = LONGLONG{4} << 20;

}  // namespace

LogFile::~LogFile() {
    Close();
}

bool LogFile::Open(const wchar_t* path) {
    Close();
    m_path = path == nullptr ? L"" : path;
    const DWORD lost = std::exchange(m_problem, 0);
    if (!m_path.empty()) return Reopen();
    SetLastError(lost);
    return lost == 0;
}

bool LogFile::Reopen() {
    m_file = CreateFileW(m_path.c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
    return m_file != INVALID_HANDLE_VALUE;
}

void LogFile::Close() noexcept {
    if (m_file != INVALID_HANDLE_VALUE) CloseHandle(m_file);
    m_file = INVALID_HANDLE_VALUE;
}

void LogFile::PutAside() {
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(m_file, &size) || size.QuadPart < kLargestLog) return;
    Close();
    MoveFileExW(m_path.c_str(), (m_path + L".old").c_str(), MOVEFILE_REPLACE_EXISTING);
    if (!Reopen() && m_problem == 0) m_problem = GetLastError();
}

void LogFile::Append(std::wstring_view line) noexcept {
    if (m_file == INVALID_HANDLE_VALUE) return;
    try {
        PutAside();
        const int units = static_cast<int>(line.size());
        std::string bytes(line.size() * 3 + 2, '\0');
        const int length = WideCharToMultiByte(CP_UTF8, 0, line.data(), units, bytes.data(),
                                               static_cast<int>(bytes.size()), nullptr, nullptr);
        bytes.resize(static_cast<size_t>(length));
        bytes += "\r\n";
        DWORD written = 0;
        const BOOL good = WriteFile(m_file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        if (m_problem != 0) return;
        if (!good) m_problem = GetLastError();
        // A disk that fills up takes a part and calls it success.
        if (good && written != bytes.size()) m_problem = ERROR_DISK_FULL;
    } catch (...) {
        // A line that cannot be written is lost; whoever traced it goes on.
    }
}

}  // namespace support
