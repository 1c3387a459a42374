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

void WriteNewFile(const std::wstring& path, std::string_view bytes, void* access, const WriteStep& step) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, access, FALSE};
    FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, access == nullptr ? nullptr : &attributes, CREATE_NEW,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.get() == INVALID_HANDLE_VALUE) {
        ThrowFileError(L"\"" + path + L"\" could not be made", GetLastError(),
                       L"Check that you may write in its folder.");
    }
    const auto at = [&](int part) {
        if (step) step(part);
    };
    try {
        WriteAll(file.get(), bytes.substr(0, bytes.size() / 2), path);
        at(0);
        WriteAll(file.get(), bytes.substr(bytes.size() / 2), path);
        at(1);
        if (!FlushFileBuffers(file.get())) {
            ThrowFileError(L"\"" + path + L"\" could not be written to the disk", GetLastError());
        }
        at(2);
    } catch (...) {
        file.reset();
        DeleteFileW(path.c_str());
        throw;
    }
}

void MoveOver(const std::wstring& from, const std::wstring& to) {
    const ULONGLONG start = GetTickCount64();
    while (!MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        const DWORD error = GetLastError();
        const bool passing = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
        if (!passing || GetTickCount64() - start > kDeniedPatience) {
            ThrowFileError(L"\"" + to + L"\" could not be replaced", error,
                           L"Close programs that use the file, check that you may write it, and try again.");
        }
        Sleep(kPause);
    }
}

FileLock::FileLock(const std::wstring& path, void* access) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, access, FALSE};
    const ULONGLONG start = GetTickCount64();
    for (;;) {
        m_file.reset(CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, access == nullptr ? nullptr : &attributes,
                                 OPEN_ALWAYS, FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
        if (m_file.get() != INVALID_HANDLE_VALUE) return;
        const DWORD error = GetLastError();
        const ULONGLONG waited = GetTickCount64() - start;
        if (error == ERROR_SHARING_VIOLATION && waited > kLockPatience) {
            throw StatusError(kSettingsBusy,
                              L"\"" + path +
                                  L"\" is held by another program that is storing its settings. Wait for "
                                  L"it to finish and try again.");
        }
        if (error != ERROR_SHARING_VIOLATION && (error != ERROR_ACCESS_DENIED || waited > kDeniedPatience)) {
            ThrowFileError(L"\"" + path + L"\" could not be made", error, L"Check that you may write in its folder.");
        }
        Sleep(kPause);
    }
}

}  // namespace settings
