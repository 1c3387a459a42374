#include "refhost/app/OutputFile.h"

#include <windows.h>

#include "refhost/app/Console.h"
#include "refhost/app/Text.h"
#include "refhost/files/PartFile.h"

namespace zonhost {

namespace fs = std::filesystem;

namespace {

constexpr size_t kLongestName = 255;

// Under Wine names are bytes on a Unix file system, and longer ones are cut without a word: two would become one.
bool NamesAreBytes() {
    static const bool bytes = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    return bytes;
}

bool NameIsTooLong(const fs::path& target) {
    const fs::path name = target.filename();
    return name.native().size() > kLongestName || (NamesAreBytes() && Utf8FromPath(name).size() > kLongestName);
}

fs::path WithSuffix(fs::path path, const std::wstring& suffix) {
    path += suffix;
    return path;
}

bool IsThere(const fs::path& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

[[noreturn]] void Refuse(const std::string& message) {
    throw CommandError(ExitCode::kSomePagesFailed, message);
}

}  // namespace

std::optional<FileIdentity> IdentityOf(const fs::path& path) {
    const HANDLE file = CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION info{};
    const BOOL good = GetFileInformationByHandle(file, &info);
    std::wstring name(32767, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file, name.data(), static_cast<DWORD>(name.size()), 0);
    name.resize(length < name.size() ? length : 0);
    CloseHandle(file);
    if (!good) return std::nullopt;
    return FileIdentity{info.dwVolumeSerialNumber, uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow,
                        info.nNumberOfLinks, std::move(name)};
}

bool SameFile(const FileIdentity& a, const FileIdentity& b) {
    if (a.volume != b.volume || a.index != b.index) return false;
    // On volumes that all have no number, files of two of them can have one index; a file with one name has one path.
    if (a.volume != 0 || a.links != 1 || a.path.empty() || b.path.empty()) return true;
    return a.path == b.path;
}

FilesInUse::FilesInUse(const CommonOptions& common) {
    Add(common.settings, "the settings file");
    Add(WithSuffix(common.settings, L".bak"), "the last version of the settings file");
    for (int i = 1; IsThere(WithSuffix(common.settings, L".refused-" + std::to_wstring(i))); ++i) {
        Add(WithSuffix(common.settings, L".refused-" + std::to_wstring(i)), "a file of refused settings");
    }
}

void FilesInUse::Add(const fs::path& path, const std::string& what) {
    if (path.empty()) return;
    if (auto identity = IdentityOf(path)) {
        const std::pair key{identity->volume, identity->index};
        m_files.emplace(key, std::pair{std::move(*identity), what});
    }
}

const std::string* FilesInUse::Find(const fs::path& path) const {
    const auto identity = IdentityOf(path);
    if (!identity) return nullptr;
    const auto [first, last] = m_files.equal_range({identity->volume, identity->index});
    for (auto file = first; file != last; ++file) {
        if (SameFile(file->second.first, *identity)) return &file->second.second;
    }
    return nullptr;
}

void CheckLog(const fs::path& log, const FilesInUse& files) {
    if (log.empty()) return;
    // A log that has become long is put aside under the second name.
    for (const fs::path& path : {log, WithSuffix(log, L".old")}) {
        if (const std::string* what = files.Find(path)) {
            throw CommandError(ExitCode::kNothingDone,
                               Utf8FromPath(path) + " is " + *what + " and cannot be the log; choose another --log");
        }
    }
}

void OutputGuard::Check(const fs::path& target) const {
    const std::string name = Utf8FromPath(target);
    if (NameIsTooLong(target)) {
        Refuse(name + " cannot be written: its name is longer than the 255 " +
               (NamesAreBytes() ? "bytes" : "characters") + " that a name can have; give the page a shorter one");
    }
    if (!IsThere(target)) return;
    if (const std::string* what = m_files.Find(target)) {
        Refuse(name + " is " + *what + " and is not overwritten; choose another --out");
    }
    if (!m_force) Refuse(name + " is there already; use --force to replace it");
}

void OutputGuard::Write(const fs::path& target, std::string_view text) const {
    Check(target);
    files::PartFile file;
    DWORD error = file.Open(target.native());
    if (error == 0) error = file.Write(text.data(), text.size());
    if (error == 0) error = file.Commit(m_force);
    if (error != 0) Refuse(Utf8FromPath(target) + " cannot be written: " + SystemMessage(error));
}

}  // namespace zonhost
