#pragma once
// Whole files: read, write with flush, move, lock. Failures are thrown as StatusError.

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace settings {

struct CloseFileHandle {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const noexcept {
        if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
    }
};
using FileHandle = std::unique_ptr<HANDLE, CloseFileHandle>;

struct FreeLocal {
    void operator()(void* block) const noexcept { LocalFree(block); }
};
using LocalBlock = std::unique_ptr<void, FreeLocal>;

// Absolute, and in the form that allows for long paths where it is needed.
std::wstring FullPath(const wchar_t* path);

// The file's bytes, or nothing when there is no such file.
std::optional<std::string> ReadFileBytes(const std::wstring& path, size_t limit);

// Who may use a new file: as with the file at `model`, or its owner alone when there is none.
LocalBlock AccessLike(const std::wstring& model);

// Called between the two halves of the bytes, after them, and after the flush.
using WriteStep = std::function<void(int part)>;
// Writes a new file to the disk; one of that name must not exist. What was begun is removed on failure.
void WriteNewFile(const std::wstring& path, std::string_view bytes, void* access);

// The file's own path, where a name is a link to it or leads through one; the name itself where there is no such file.
std::wstring RealPath(const std::wstring& path);

// The names under which the file stands in its file system: 1, or more with hard links.
DWORD CountNames(const std::wstring& path);

// Throws when the name is taken by anything, a link that leads nowhere included.
void RequireFreeName(const std::wstring& path);

// A new file that goes away with its process, however that ends, until it is put in its place. Nothing that stands
// under its name already is followed, changed or removed.
class TemporaryFile {
public:
    TemporaryFile(const std::wstring& path, void* access);
    void Write(std::string_view bytes, const WriteStep& step = {});
    // It stays from now on.
    void Keep();
    // Puts it in the place of another one in one step; readers that hold that one open for a moment are waited for.
    void MoveOver(const std::wstring& to);

private:
    void SetRemoved(bool removed);

    std::wstring m_path;
    FileHandle m_file;
};

// Keeps other processes out while it lives, as an open file that goes away with its process, however that ends. A file
// of that name that nobody holds is somebody's own: it stays, and the lock is refused.
class FileLock {
public:
    FileLock(const std::wstring& path, void* access);

private:
    FileHandle m_file;
};

}  // namespace settings
