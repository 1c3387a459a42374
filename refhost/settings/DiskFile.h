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
void WriteNewFile(const std::wstring& path, std::string_view bytes, void* access, const WriteStep& step = {});

// Puts a file in the place of another one in one step; readers that hold it open for a moment are waited for.
void MoveOver(const std::wstring& from, const std::wstring& to);

// Keeps other processes out while it lives, as an open file that goes away with its process, however that ends.
class FileLock {
public:
    FileLock(const std::wstring& path, void* access);

private:
    FileHandle m_file;
};

}  // namespace settings
