#pragma once
// A file that is written under a name of its own in the folder of its place, and takes its place when all of it is on
// the disk. Every failing or short write is remembered: a writer that looks away loses the file, not the user's data.

#include <windows.h>

#include <cstdint>
#include <string>

namespace files {

class PartFile {
public:
    PartFile() = default;
    // What was not committed is gone from the disk.
    ~PartFile() { Drop(); }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    // These give an error code of the system, 0 for success. `target` is where the file is to be in the end.
    DWORD Open(const std::wstring& target);
    DWORD Write(const void* bytes, size_t length, size_t* written = nullptr);
    DWORD Read(void* bytes, size_t length, size_t* read);
    // `origin` as SetFilePointerEx has it.
    DWORD Seek(int64_t distance, DWORD origin, uint64_t* position);
    DWORD SetSize(uint64_t size);
    DWORD Size(uint64_t* size);
    // To the disk, then to its place. Fails with the first error of any call before, too.
    DWORD Commit(bool replace);
    void Drop();

    // The first failure of a call that should have changed the file.
    DWORD Problem() const { return m_problem; }

private:
    DWORD Remember(DWORD error);
    DWORD Hold(const std::wstring& path);
    DWORD MoveTo(const std::wstring& path, bool replace);

    std::wstring m_target;
    HANDLE m_file = INVALID_HANDLE_VALUE;
    DWORD m_problem = 0;
};

// Removes from a folder the unfinished files that a process of this machine left there and that no process holds any
// more. Nothing else: not those of other machines, whose locks may not be seen from here.
void SweepParts(const std::wstring& folder);

// The beginning of the names of unfinished files of this machine.
const std::wstring& PartPrefix();
inline constexpr wchar_t kPartExtension[] = L".part";

// Whether this process got the lock that the writer of an unfinished file holds on it.
bool LockPart(HANDLE file);

}  // namespace files
