#include "refhost/app/OutputFile.h"

#include <windows.h>

#include <atomic>

#include "refhost/app/Console.h"
#include "refhost/app/Text.h"

namespace zonhost {

namespace fs = std::filesystem;

namespace {

// A name beside the target that no other process and no other thread uses.
fs::path PathBeside(const fs::path& target) {
    static std::atomic<unsigned> number = 0;
    fs::path path;
    do {
        path = target;
        path += L"." + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number) + L".part";
    } while (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES);
    return path;
}

class DeleteOnFailure {
public:
    explicit DeleteOnFailure(const fs::path& path) : m_path(path) {}
    ~DeleteOnFailure() {
        if (!m_kept) DeleteFileW(m_path.c_str());
    }
    DeleteOnFailure(const DeleteOnFailure&) = delete;
    DeleteOnFailure& operator=(const DeleteOnFailure&) = delete;
    void Keep() { m_kept = true; }

private:
    const fs::path& m_path;
    bool m_kept = false;
};

}  // namespace

std::optional<FileIdentity> IdentityOf(const fs::path& path) {
    const HANDLE file = CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION info{};
    const BOOL good = GetFileInformationByHandle(file, &info);
    CloseHandle(file);
    if (!good) return std::nullopt;
    return FileIdentity{info.dwVolumeSerialNumber, uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow};
}

OutputGuard::OutputGuard(const std::vector<fs::path>& sources, bool force) : m_force(force) {
    for (const fs::path& source : sources) {
        if (const auto identity = IdentityOf(source)) m_sources.insert(*identity);
    }
}

void OutputGuard::Check(const fs::path& target) const {
    if (GetFileAttributesW(target.c_str()) == INVALID_FILE_ATTRIBUTES) return;
    const std::string name = Utf8FromPath(target);
    const auto identity = IdentityOf(target);
    if (identity && m_sources.contains(*identity)) {
        throw CommandError(ExitCode::kSomePagesFailed,
                           name + " is one of the pages to be masked and is not overwritten; choose another --out");
    }
    if (!m_force) {
        throw CommandError(ExitCode::kSomePagesFailed, name + " is there already; use --force to replace it");
    }
}

void OutputGuard::Write(const fs::path& target, const std::function<void(const fs::path&)>& write) const {
    Check(target);
    const fs::path beside = PathBeside(target);
    DeleteOnFailure cleanUp(beside);
    write(beside);
    // Once more: writing took its time.
    Check(target);
    if (!MoveFileExW(beside.c_str(), target.c_str(), m_force ? MOVEFILE_REPLACE_EXISTING : 0)) {
        throw CommandError(ExitCode::kSomePagesFailed,
                           Utf8FromPath(target) + " cannot be written: " + SystemMessage(GetLastError()));
    }
    cleanUp.Keep();
}

}  // namespace zonhost
