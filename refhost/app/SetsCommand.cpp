// zonhost sets list, show and export: what stands in the settings file, also what the library cannot serve.

#include <algorithm>

#include "refhost/app/AreaSetFile.h"
#include "refhost/app/Commands.h"
#include "refhost/app/Console.h"
#include "refhost/app/HostSession.h"
#include "refhost/app/OutputFile.h"
#include "refhost/app/SetTable.h"

namespace zonhost {

namespace {

// By name, then by identifier. Throws when it, or another one that could be meant, was not read whole.
const AreaSetRecord& FindSet(const std::vector<TreeSet>& sets, const std::string& wanted, const std::string& file) {
    auto found = FindByName(sets, wanted, file);
    if (const auto id = ParseNumber(wanted); found == nullptr && id) {
        const auto same = std::find_if(sets.begin(), sets.end(), [&](const auto& set) { return set.record.id == *id; });
        if (same != sets.end()) found = &*same;
    }
    if (found == nullptr) {
        throw CommandError(ExitCode::kNothingDone, "there is no area set with the name or identifier \"" + wanted +
                                                       "\"; `zonhost sets list` shows those that there are");
    }
    if (!found->Whole()) throw CommandError(ExitCode::kSettings, TellBroken({*found}, file));
    return found->record;
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
    ExitCode code = ExitCode::kDone;
    std::vector<AreaSetRecord> sets = WholeSets(session.Sets(), Utf8FromPath(common.settings), code);
    if (options.json) {
        Print(FormatAreaSets(sets));
        return code;
    }
    Print(SetTable(std::move(sets)));
    return code;
}

ExitCode ShowSet(const CommonOptions& common, const ShowOptions& options) {
    HostSession session(common);
    const std::vector<TreeSet> sets = session.Sets();
    const AreaSetRecord& set = FindSet(sets, options.set, Utf8FromPath(common.settings));
    if (options.json) {
        Print(FormatAreaSets({set}));
        return ExitCode::kDone;
    }
    std::string text = Printable(set.name) + "\n  ID    " + KeyOfId(set.id) + "\n  Mode  " + Mode(set) +
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
    const std::string file = Utf8FromPath(common.settings);
    std::vector<TreeSet> stored = session.Sets();
    ExitCode code = ExitCode::kDone;
    std::vector<AreaSetRecord> sets;
    if (options.sets.empty()) {
        sets = WholeSets(std::move(stored), file, code);
    } else {
        for (const std::string& name : options.sets) sets.push_back(FindSet(stored, name, file));
    }
    const std::string text = FormatAreaSets(sets);
    if (options.out.empty()) {
        Print(text);
    } else {
        WriteNewFile(options.out, text, common, options.force);
    }
    return code;
}

}  // namespace zonhost
