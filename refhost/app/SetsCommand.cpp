// zonhost sets list, show and export: what the exports of the library tell.

#include <algorithm>

#include "refhost/app/AreaSetFile.h"
#include "refhost/app/Commands.h"
#include "refhost/app/Console.h"
#include "refhost/app/HostSession.h"
#include "refhost/app/OutputFile.h"
#include "refhost/app/StoredSets.h"

namespace zonhost {

namespace {

std::vector<AreaSetRecord> ReadSets(HostSession& session) {
    std::vector<std::string> unusable;
    std::vector<AreaSetRecord> sets = session.Library().Sets(unusable);
    for (const std::string& line : unusable) PrintError("zonhost: " + line + "\n");
    // The page belongs to the host's settings; the exports do not serve it.
    for (const StoredSet& stored : ReadStoredSets(session.Node())) {
        for (AreaSetRecord& set : sets) {
            if (set.id == stored.id) set.page = ReadPage(session.Node(), stored.key);
        }
    }
    return sets;
}

// By name, then by identifier.
const AreaSetRecord& FindSet(const std::vector<AreaSetRecord>& sets, const std::string& wanted) {
    auto found = std::find_if(sets.begin(), sets.end(), [&](const auto& set) { return set.name == wanted; });
    if (const auto id = ParseNumber(wanted); found == sets.end() && id) {
        found = std::find_if(sets.begin(), sets.end(), [&](const auto& set) { return set.id == *id; });
    }
    if (found != sets.end()) return *found;
    throw CommandError(ExitCode::kNothingDone, "there is no area set with the name or identifier \"" + wanted +
                                                   "\"; `zonhost sets list` shows those that there are");
}

std::string Padded(const std::string& text, size_t width, bool right = false) {
    const std::string blanks(width - std::min(width, Utf16Length(text)), ' ');
    return right ? blanks + text : text + blanks;
}

const char* Mode(const AreaSetRecord& set) {
    return set.Ignored() ? "ignored" : "required";
}

std::string Millimetres(int64_t tenths) {
    const int64_t size = tenths < 0 ? -tenths : tenths;
    std::string text = tenths < 0 ? "-" : "";
    text += std::to_string(size / 10) + "." + std::to_string(size % 10);
    return text;
}

void WriteNewFile(const std::filesystem::path& path, const std::string& text, const CommonOptions& common, bool force) {
    FilesInUse files(common);
    files.Add(common.log, "the log");
    try {
        OutputGuard(files, force).Write(path, text);
    } catch (const CommandError& error) {
        throw CommandError(ExitCode::kNothingDone, error.what());
    }
}

}  // namespace

ExitCode ListSets(const CommonOptions& common, const ListOptions& options) {
    HostSession session(common);
    const std::vector<AreaSetRecord> sets = ReadSets(session);
    if (options.json) {
        Print(FormatAreaSets(sets));
        return ExitCode::kDone;
    }
    size_t width = 4;
    for (const AreaSetRecord& set : sets) width = std::max(width, Utf16Length(set.name));
    Print(Padded("ID", 10) + "  " + Padded("Name", width) + "  Areas  Mode\n");
    for (const AreaSetRecord& set : sets) {
        Print(KeyOfId(set.id) + "  " + Padded(set.name, width) + "  " +
              Padded(std::to_string(set.areas.size()), 5, true) + "  " + Mode(set) + "\n");
    }
    return ExitCode::kDone;
}

ExitCode ShowSet(const CommonOptions& common, const ShowOptions& options) {
    HostSession session(common);
    const std::vector<AreaSetRecord> sets = ReadSets(session);
    const AreaSetRecord& set = FindSet(sets, options.set);
    if (options.json) {
        Print(FormatAreaSets({set}));
        return ExitCode::kDone;
    }
    std::string text = set.name + "\n  ID    " + KeyOfId(set.id) + "\n  Mode  " + Mode(set) +
                       (set.Ignored() ? " (the areas are left out)" : " (the areas are kept)") + "\n  Page  " +
                       Millimetres(int64_t{set.page.right} - set.page.left) + " x " +
                       Millimetres(int64_t{set.page.bottom} - set.page.top) + " mm\n  Areas in mm\n";
    text += "  " + Padded("left", 10, true) + Padded("top", 10, true) + Padded("right", 10, true) +
            Padded("bottom", 10, true) + "\n";
    for (const Rect& area : set.areas) {
        text += "  ";
        for (const int32_t edge : {area.left, area.top, area.right, area.bottom}) {
            text += Padded(Millimetres(edge), 10, true);
        }
        text += "\n";
    }
    Print(text);
    return ExitCode::kDone;
}

ExitCode ExportSets(const CommonOptions& common, const ExportOptions& options) {
    HostSession session(common);
    std::vector<AreaSetRecord> sets = ReadSets(session);
    if (!options.sets.empty()) {
        std::vector<AreaSetRecord> wanted;
        for (const std::string& name : options.sets) wanted.push_back(FindSet(sets, name));
        sets = std::move(wanted);
    }
    const std::string text = FormatAreaSets(sets);
    if (options.out.empty()) {
        Print(text);
    } else {
        WriteNewFile(options.out, text, common, options.force);
    }
    return ExitCode::kDone;
}

}  // namespace zonhost
