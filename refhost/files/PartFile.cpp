#include "refhost/files/PartFile.h"

#include <algorithm>
#include <atomic>
#include <cwctype>
#include <utility>
#include <vector>

namespace files {

namespace {

constexpr size_t kMostAtOnce = size_t{1} << 28;

std::wstring MachineName() {
    wchar_t name[256];
    auto length = static_cast<DWORD>(std::size(name));
    if (!GetComputerNameExW(ComputerNameDnsHostname, name, &length)) return L"unknown";
    std::wstring machine(name, length);
    // Names of machines are short and plain; whatever else one holds must not spoil a file name.
    for (wchar_t& c : machine) {
        if (c >= 128 || (!std::iswalnum(c) && c != L'-')) c = L'_';
    }
    return machine.substr(0, 63);
}

// The folder with its separator.
std::wstring FolderOf(const std::wstring& path) {
    return path.substr(0, path.find_last_of(L"\\/:") + 1);
}

// Until it is committed, the system itself deletes the file when its handle closes, however the process ends.
bool DeleteAtClose(HANDLE file, bool yes) {
    FILE_DISPOSITION_INFO disposition{yes};
    return SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition) != FALSE;
}

// Whether the file still has its name: whoever cleans up may have come between its making and its lock.
bool StillThere(HANDLE file) {
    FILE_STANDARD_INFO info{};
    return GetFileInformationByHandleEx(file, FileStandardInfo, &info, sizeof info) && info.NumberOfLinks > 0 &&
           !info.DeletePending;
}

}  // namespace

const std::wstring& PartPrefix() {
    static const std::wstring prefix = L"~zonwick-" + MachineName() + L"-";
    return prefix;
}

bool LockPart(HANDLE file) {
    // Far behind the data: where locks bind every reader, nobody reads there.
    OVERLAPPED place{};
    place.OffsetHigh = 0x10000;
    return LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place) != FALSE;
}

DWORD PartFile::Hold(const std::wstring& path) {
    m_file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
    if (m_file == INVALID_HANDLE_VALUE) return GetLastError();
    if (LockPart(m_file) && StillThere(m_file)) {
        DeleteAtClose(m_file, true);
        return 0;
    }
    Drop();
    return ERROR_FILE_EXISTS;
}

DWORD PartFile::Open(const std::wstring& target) {
    static std::atomic<uint32_t> number{0};
    Drop();
    m_target = target;
    m_problem = 0;
    const std::wstring start = FolderOf(target) + PartPrefix() + std::to_wstring(GetCurrentProcessId()) + L"-";
    // Another system on this machine may have a process of the same number; a free name is soon found.
    constexpr int kTries = 1000;
    DWORD error = 0;
    for (int i = 0; i < kTries; ++i) {
        error = Hold(start + std::to_wstring(++number) + kPartExtension);
        if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) break;
    }
    return error;
}

DWORD PartFile::Remember(DWORD error) {
    if (m_problem == 0) m_problem = error;
    return error;
}

DWORD PartFile::Write(const void* bytes, size_t length, size_t* written) {
    const auto* from = static_cast<const uint8_t*>(bytes);
    size_t done = 0;
    DWORD error = m_problem;
    while (error == 0 && done < length) {
        const auto part = static_cast<DWORD>(std::min(length - done, kMostAtOnce));
        DWORD count = 0;
        if (!WriteFile(m_file, from + done, part, &count, nullptr)) error = Remember(GetLastError());
        done += count;
        // A disk that fills up takes a part and calls it success.
        if (error == 0 && count != part) error = Remember(ERROR_DISK_FULL);
    }
    if (written != nullptr) *written = done;
    return error;
}

DWORD PartFile::Read(void* bytes, size_t length, size_t* read) {
    DWORD count = 0;
    if (!ReadFile(m_file, bytes, static_cast<DWORD>(std::min(length, kMostAtOnce)), &count, nullptr)) {
        return Remember(GetLastError());
    }
    *read = count;
    return 0;
}

DWORD PartFile::Seek(int64_t distance, DWORD origin, uint64_t* position) {
    LARGE_INTEGER to;
    to.QuadPart = distance;
    LARGE_INTEGER reached{};
    if (!SetFilePointerEx(m_file, to, &reached, origin)) return Remember(GetLastError());
    if (position != nullptr) *position = static_cast<uint64_t>(reached.QuadPart);
    return 0;
}

DWORD PartFile::SetSize(uint64_t size) {
    uint64_t before = 0;
    DWORD error = Seek(0, FILE_CURRENT, &before);
    if (error == 0) error = Seek(static_cast<int64_t>(size), FILE_BEGIN, nullptr);
    if (error == 0 && !SetEndOfFile(m_file)) error = Remember(GetLastError());
    if (error == 0) error = Seek(static_cast<int64_t>(before), FILE_BEGIN, nullptr);
    return error;
}

DWORD PartFile::Size(uint64_t* size) {
    LARGE_INTEGER length{};
    if (!GetFileSizeEx(m_file, &length)) return Remember(GetLastError());
    *size = static_cast<uint64_t>(length.QuadPart);
    return 0;
}

// By the handle, so that the file is never without its lock under its own name.
DWORD PartFile::MoveTo(const std::wstring& path, bool replace) {
    std::vector<wchar_t> whole(32768);
    const DWORD length = GetFullPathNameW(path.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr);
    if (length == 0 || length >= whole.size()) return ERROR_FILENAME_EXCED_RANGE;
    std::vector<uint8_t> block(sizeof(FILE_RENAME_INFO) + length * sizeof(wchar_t));
    auto* info = reinterpret_cast<FILE_RENAME_INFO*>(block.data());
    info->ReplaceIfExists = replace;
    info->FileNameLength = length * static_cast<DWORD>(sizeof(wchar_t));
    std::copy_n(whole.data(), length + 1, info->FileName);
    if (!DeleteAtClose(m_file, false)) return GetLastError();
    if (SetFileInformationByHandle(m_file, FileRenameInfo, info, static_cast<DWORD>(block.size()))) return 0;
    const DWORD error = GetLastError();
    DeleteAtClose(m_file, true);
    return error;
}

DWORD PartFile::Commit(bool replace) {
    if (m_file == INVALID_HANDLE_VALUE) return ERROR_INVALID_HANDLE;
    if (m_problem == 0 && !FlushFileBuffers(m_file)) Remember(GetLastError());
    if (m_problem == 0) Remember(MoveTo(m_target, replace));
    if (m_problem == 0) CloseHandle(std::exchange(m_file, INVALID_HANDLE_VALUE));
    const DWORD problem = m_problem;
    Drop();
    return problem;
}

void PartFile::Drop() {
    if (m_file == INVALID_HANDLE_VALUE) return;
    // Once more, for a file system that did not take it at the beginning.
    DeleteAtClose(m_file, true);
    CloseHandle(m_file);
    m_file = INVALID_HANDLE_VALUE;
}

}  // namespace files
