#pragma once
// What a command may write where: nothing that it writes takes the place of a file that it reads, under whatever name
// or link either is reached, and results are there as a whole or not at all.

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "refhost/app/Options.h"

namespace zonhost {

// What tells one file from another.
struct FileIdentity {
    uint64_t volume = 0;  // 0: the system does not tell
    uint64_t index = 0;
    uint32_t links = 1;
    std::wstring path;  // behind all symbolic links; empty: the system does not tell
};

// Nothing when the file cannot be opened. Links are followed.
std::optional<FileIdentity> IdentityOf(const std::filesystem::path& path);
bool SameFile(const FileIdentity& a, const FileIdentity& b);

// The files that a command reads, or writes by another way: the settings file and what belongs to it, pages, files to
// be imported, the log.
class FilesInUse {
public:
    explicit FilesInUse(const CommonOptions& common);
    // `what` goes into a sentence: "the settings file". Files that are not there are passed over.
    void Add(const std::filesystem::path& path, const std::string& what);
    // What the file at a path is; null when it is none of these.
    const std::string* Find(const std::filesystem::path& path) const;

private:
    std::multimap<std::pair<uint64_t, uint64_t>, std::pair<FileIdentity, std::string>> m_files;
};

// Throws CommandError (kNothingDone) when the log of the command line would be added to one of them.
void CheckLog(const std::filesystem::path& log, const FilesInUse& files);

class OutputGuard {
public:
    // `force`: files that are there may be replaced, but for those in use. `files` has to outlive it.
    OutputGuard(const FilesInUse& files, bool force) : m_files(files), m_force(force) {}
    bool Force() const { return m_force; }
    // Throws CommandError (kSomePagesFailed) when nothing may or can be written there. Callable from any thread.
    void Check(const std::filesystem::path& target) const;
    // Writes a file as a whole; throws the same, and then the file is as before.
    void Write(const std::filesystem::path& target, std::string_view text) const;

private:
    const FilesInUse& m_files;
    const bool m_force;
};

}  // namespace zonhost
