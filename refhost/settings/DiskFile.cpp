#include "refhost/settings/DiskFile.h"

#include <algorithm>

#include "refhost/settings/HostSettings.h"
#include "refhost/settings/Status.h"

namespace settings {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr ULONGLONG kLockPatience = 10000;
// A file that is being deleted, or looked at by a virus scanner, refuses for a moment.
constexpr ULONGLONG kDeniedPatience = 1000;
// From then on a wait is told.
constexpr ULONGLONG kQuietWait = 3000;
constexpr const wchar_t* kWaiting = L"\" is held by another program that is storing its settings; waiting for it.";
constexpr DWORD kPause = 10;
constexpr size_t kLongestBlock = size_t{1} << 20;

void WriteAll(HANDLE file, std::string_view bytes, const std::wstring& path) {
    while (!bytes.empty()) {
        const DWORD block = static_cast<DWORD>(std::min(bytes.size(), kLongestBlock));
        DWORD written = 0;
        if (!WriteFile(file, bytes.data(), block, &written, nullptr) || written == 0) {
            ThrowFileError(L"\"" + path + L"\" could not be written", GetLastError(),
                           L"Make room on the disk and try again.");
        }
        bytes.remove_prefix(written);
    }
}

void Flush(HANDLE file, const std::wstring& path) {
    if (!FlushFileBuffers(file)) ThrowFileError(L"\"" + path + L"\" could not be written to the disk", GetLastError());
}

// A new file; whatever has its name is left alone.
FileHandle MakeFile(const std::wstring& path, void* access) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, access, FALSE};
    FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, access == nullptr ? nullptr : &attributes,
                                CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.get() != INVALID_HANDLE_VALUE) return file;
    const DWORD error = GetLastError();
    if (error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS) {
        ThrowFileError(L"\"" + path + L"\" is in the way", ERROR_FILE_EXISTS,
                       L"It may be your own, or be left of a computer that stopped. Move it away and try again.");
    }
    ThrowFileError(L"\"" + path + L"\" could not be made", error, L"Check that you may write in its folder.");
}

// Why a file of the lock's name is there: ERROR_SHARING_VIOLATION when a process holds it, ERROR_FILE_NOT_FOUND when it
// went away. A file that nobody holds is no lock, as locks go away with their processes.
DWORD WhoHolds(const std::wstring& path) {
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    if (file.get() == INVALID_HANDLE_VALUE) return GetLastError();
    ThrowFileError(L"\"" + path + L"\" is in the way", ERROR_FILE_EXISTS,
                   L"No program holds it as its lock; it may be your own. Move it away and try again.");
}

}  // namespace

std::wstring FullPath(const wchar_t* path) {
    if (path == nullptr || *path == L'\0') throw StatusError(E_INVALIDARG, L"The settings file has no name.");
    const DWORD size = GetFullPathNameW(path, 0, nullptr, nullptr);
    std::wstring full(size, L'\0');
    const DWORD length = size == 0 ? 0 : GetFullPathNameW(path, size, full.data(), nullptr);
    if (length == 0 || length >= size)
        ThrowFileError(L"\"" + std::wstring(path) + L"\" is no file name", GetLastError());
    full.resize(length);
    // Room for the endings of the files beside it.
    constexpr size_t kLongEnding = 32;
    if (full.size() + kLongEnding < MAX_PATH || full.starts_with(L"\\\\?\\")) return full;
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

std::optional<std::string> ReadFileBytes(const std::wstring& path, size_t limit) {
    const std::wstring what = L"\"" + path + L"\" could not be read";
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        throw StatusError(HRESULT_FROM_WIN32(ERROR_DIRECTORY), what + L": it is a folder. Name a file in it.");
    }
    const FileHandle file(
        CreateFileW(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.get() == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND) return std::nullopt;
        ThrowFileError(what, error, L"Check the name and that you may use the file.");
    }
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file.get(), &size)) ThrowFileError(what, GetLastError());
    if (size.QuadPart > static_cast<LONGLONG>(limit)) {
        ThrowFileError(what, ERROR_FILE_TOO_LARGE, L"It is too large for a settings file.");
    }
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) {
        ThrowFileError(what, GetLastError());
    }
    bytes.resize(read);
    return bytes;
}

void WriteNewFile(const std::wstring& path, std::string_view bytes, void* access) {
    FileHandle file = MakeFile(path, access);
    try {
        WriteAll(file.get(), bytes, path);
        Flush(file.get(), path);
    } catch (...) {
        file.reset();
        DeleteFileW(path.c_str());
        throw;
    }
}

TemporaryFile::TemporaryFile(const std::wstring& path, void* access) : m_path(path), m_file(MakeFile(path, access)) {
    try {
        SetRemoved(true);
    } catch (...) {
        m_file.reset();
        DeleteFileW(path.c_str());
        throw;
    }
}

void TemporaryFile::SetRemoved(bool removed) {
    FILE_DISPOSITION_INFO info{};
    info.DeleteFile = removed ? TRUE : FALSE;
    if (!SetFileInformationByHandle(m_file.get(), FileDispositionInfo, &info, sizeof info)) {
        ThrowFileError(L"\"" + m_path + L"\" could not be made safely", GetLastError());
    }
}

void TemporaryFile::Write(std::string_view bytes, const WriteStep& step) {
    const auto at = [&](int part) {
        if (step) step(part);
    };
    WriteAll(m_file.get(), bytes.substr(0, bytes.size() / 2), m_path);
    at(0);
    WriteAll(m_file.get(), bytes.substr(bytes.size() / 2), m_path);
    at(1);
    Flush(m_file.get(), m_path);
    at(2);
}

void TemporaryFile::Keep() {
    SetRemoved(false);
    m_file.reset();
}

void TemporaryFile::MoveOver(const std::wstring& to) {
    Keep();
    const ULONGLONG start = GetTickCount64();
    while (!MoveFileExW(m_path.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        const DWORD error = GetLastError();
        const bool passing = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
        if (!passing || GetTickCount64() - start > kDeniedPatience) {
            DeleteFileW(m_path.c_str());
            ThrowFileError(L"\"" + to + L"\" could not be replaced", error,
                           L"Close programs that use the file, check that you may write it, and try again.");
        }
        Sleep(kPause);
    }
}

namespace {

FileHandle OpenToLook(const std::wstring& path) {
    return FileHandle(
        CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

}  // namespace

std::wstring RealPath(const std::wstring& path) {
    const FileHandle file = OpenToLook(path);
    if (file.get() == INVALID_HANDLE_VALUE) return path;
    const DWORD size = GetFinalPathNameByHandleW(file.get(), nullptr, 0, FILE_NAME_NORMALIZED);
    std::wstring real(size, L'\0');
    const DWORD length = size == 0 ? 0 : GetFinalPathNameByHandleW(file.get(), real.data(), size, FILE_NAME_NORMALIZED);
    if (length == 0 || length >= size) {
        ThrowFileError(L"It cannot be told whether \"" + path + L"\" is a link", GetLastError());
    }
    real.resize(length);
    constexpr std::wstring_view kShare = L"\\\\?\\UNC\\";
    constexpr std::wstring_view kPlain = L"\\\\?\\";
    if (real.starts_with(kShare)) {
        real.replace(0, kShare.size(), L"\\\\");
    } else if (real.starts_with(kPlain)) {
        real.erase(0, kPlain.size());
    }
    real = FullPath(real.c_str());
    // The spelling of the user.
    return CompareStringOrdinal(real.c_str(), -1, path.c_str(), -1, TRUE) == CSTR_EQUAL ? path : real;
}

DWORD CountNames(const std::wstring& path) {
    const FileHandle file = OpenToLook(path);
    BY_HANDLE_FILE_INFORMATION info{};
    if (file.get() == INVALID_HANDLE_VALUE || !GetFileInformationByHandle(file.get(), &info)) {
        ThrowFileError(L"It cannot be told whether \"" + path + L"\" has other names", GetLastError());
    }
    return info.nNumberOfLinks;
}

void RequireFreeName(const std::wstring& path) {
    const FileHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    if (file.get() == INVALID_HANDLE_VALUE) {
        ThrowFileError(L"\"" + path + L"\" could not be made", GetLastError(),
                       L"If it is a link, let it lead to a file that is there, or remove it.");
    }
}

FileLock::FileLock(const std::wstring& path, void* access) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, access, FALSE};
    const ULONGLONG start = GetTickCount64();
    ULONGLONG held = start;  // when it was seen in use last
    for (bool told = false;; Sleep(kPause)) {
        m_file.reset(CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, access == nullptr ? nullptr : &attributes,
                                 CREATE_NEW, FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
        if (m_file.get() != INVALID_HANDLE_VALUE) return;
        DWORD error = GetLastError();
        if (error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS) error = WhoHolds(path);
        const ULONGLONG now = GetTickCount64();
        if (error == ERROR_SHARING_VIOLATION) {
            held = now;
            if (now - start > kLockPatience) {
                throw StatusError(kSettingsBusy,
                                  L"\"" + path +
                                      L"\" is held by another program that is storing its settings. Wait for "
                                      L"it to finish and try again.");
            }
            if (!told && now - start > kQuietWait) TraceWait(L"\"" + path + kWaiting);
            told = told || now - start > kQuietWait;
        } else if ((error != ERROR_ACCESS_DENIED && error != ERROR_FILE_NOT_FOUND) || now - held > kDeniedPatience) {
            // A link that leads nowhere is there for who makes a file and not there for who opens it.
            ThrowFileError(L"\"" + path + L"\" could not be made", error,
                           L"Check that you may write in its folder, and that nothing has this name.");
        }
    }
}

}  // namespace settings
