#pragma once
// What a host sets up before it uses the library: COM, its classes, its log and its settings node.

#include <functional>
#include <memory>
#include <string>

#include "host/SettingsStore.h"
#include "refhost/app/Options.h"
#include "refhost/app/OutputFile.h"
#include "refhost/app/SetReader.h"
#include "refhost/app/ZonwickLibrary.h"

namespace zonhost {

class HostSession {
public:
    enum class Settings { kMustExist, kMayBeNew };
    // Throws CommandError: kSettings when the settings file cannot be read, with file, line and reason.
    // `files`: all that the command reads; the log must be none of them.
    HostSession(const CommonOptions& options, const FilesInUse& files, Settings settings = Settings::kMustExist);
    // For a command that reads no other files than the settings.
    explicit HostSession(const CommonOptions& options, Settings settings = Settings::kMustExist)
        : HostSession(options, FilesInUse(options), settings) {}
    ~HostSession();
    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;

    // The host's settings node.
    ISettingsNode* Node() const;
    // The sets of the node, or of another one of the store, as they stand there. Throws CommandError (kSettings).
    std::vector<TreeSet> Sets() const { return Sets(Node()); }
    std::vector<TreeSet> Sets(ISettingsNode* root) const;
    // The library, loaded at the first call, with the sets of the node.
    ZonwickLibrary& Library();
    // The library with this set alone, so that nothing else in the node can change what it makes of it. Throws
    // CommandError when it serves anything but this set. Once for a session, in place of Library.
    ZonwickLibrary& LibraryWith(const TreeSet& set);
    // Changes the node and commits it to the file as a whole. Throws CommandError (kSettings): then the file is as
    // before.
    void Change(const std::function<void(ISettingsNode*)>& change);

    // Shows the settings of another file, which stays as it is. Throws CommandError (kSettings).
    void Look(const std::filesystem::path& file, const std::function<void(ISettingsNode*)>& look) const;
    // What became of the commits since the session began: whether one reached the file, and the store's words for the
    // last one when it failed.
    struct Outcome {
        bool saved = false;
        std::string failure;
    };
    const Outcome& Commits() const;

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

}  // namespace zonhost
