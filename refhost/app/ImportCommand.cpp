// zonhost sets import: writes area sets into the host's settings file.

#include <comdef.h>

#include <algorithm>

#include "refhost/app/AreaSetFile.h"
#include "refhost/app/Commands.h"
#include "refhost/app/Console.h"
#include "refhost/app/HostSession.h"
#include "refhost/app/PageImages.h"
#include "refhost/app/StoredSets.h"
#include "refhost/app/ZoneFile.h"

namespace zonhost {

namespace {

constexpr uintmax_t kLongestFile = uintmax_t{64} << 20;

// Resolution and page of the zones: the page image's, with the resolution of the command line before its own.
struct ZonePage {
    std::optional<Resolution> resolution;
    Rect page;
};

ZonePage PageOfZones(const ImportOptions& options) {
    if (options.page.empty()) return {options.resolution, {}};
    LoadedFrame frame;
    if (const auto file = ImageFile::Open(options.page, frame.problem)) frame = file->Load(0, options.resolution);
    const std::string name = Utf8FromPath(options.page);
    if (!frame.problem.empty()) throw CommandError(ExitCode::kNothingDone, name + ": " + frame.problem);
    if (frame.info.resolutionAssumed) {
        throw CommandError(ExitCode::kNothingDone, name + ": has no resolution; use --dpi to give it");
    }
    const Resolution resolution{frame.info.dpiX, frame.info.dpiY};
    return {resolution, PageOfPixels(frame.info.width, frame.info.height, resolution)};
}

AreaSetRecord ReadZoneFile(const std::filesystem::path& path, const ImportOptions& options, const ZonePage& zonePage) {
    const std::string name = Utf8FromPath(path);
    if (!zonePage.resolution) {
        throw CommandError(ExitCode::kUsage,
                           name + ": zones are in pixels; use --dpi or --page to tell the resolution");
    }
    AreaSetRecord set;
    set.name = options.name.empty() ? Utf8FromPath(path.stem()) : options.name;
    const std::string problem = NameProblem(set.name);
    if (!problem.empty()) throw CommandError(ExitCode::kNothingDone, name + ": the set's name " + problem);
    set.flags = options.ignored ? kAreasIgnored : 0;
    set.areas = ParseZones(ReadTextFile(path, kLongestFile), name, *zonePage.resolution);
    set.page = zonePage.page == Rect{} ? DefaultPage(set.areas) : zonePage.page;
    return set;
}

bool IsZoneFile(const std::filesystem::path& path) {
    return FoldCase(Utf8FromPath(path.extension())) == ".uzn";
}

bool Wanted(const ImportOptions& options, const std::string& name) {
    return options.sets.empty() || std::find(options.sets.begin(), options.sets.end(), name) != options.sets.end();
}

// The sets of another settings file, as of one that the store refused and kept. Only the wanted ones have to be good.
std::vector<AreaSetRecord> ReadSettingsFile(const HostSession& session, const std::filesystem::path& path,
                                            const ImportOptions& options) {
    std::vector<AreaSetRecord> sets;
    const std::string file = Utf8FromPath(path);
    session.Look(path, [&](ISettingsNode* root) {
        for (TreeSet& set : session.Sets(root)) {
            if (!Wanted(options, set.record.name)) continue;
            std::string problem = set.problem;
            if (const std::string named = NameProblem(set.record.name); set.Whole() && !named.empty()) {
                problem = "the name " + named;
            }
            if (!problem.empty()) {
                throw CommandError(ExitCode::kNothingDone, file + ": " + set.Title() + ": " + problem +
                                                               "; use --set to import others, or mend the file");
            }
            PrintError(TellPages({set}));
            if (set.record.page == Rect{}) set.record.page = DefaultPage(set.record.areas);
            sets.push_back(std::move(set.record));
        }
    });
    return sets;
}

void ExpectAllFound(const ImportOptions& options, const std::vector<AreaSetRecord>& sets) {
    for (const std::string& name : options.sets) {
        if (std::any_of(sets.begin(), sets.end(), [&](const AreaSetRecord& set) { return set.name == name; })) continue;
        throw CommandError(ExitCode::kNothingDone, "no file holds an area set \"" + name + "\"");
    }
}

std::vector<AreaSetRecord> ReadFiles(const HostSession& session, const ImportOptions& options) {
    const ZonePage zonePage = PageOfZones(options);
    std::vector<AreaSetRecord> sets;
    for (const std::filesystem::path& path : options.files) {
        std::vector<AreaSetRecord> found;
        if (IsZoneFile(path)) {
            found.push_back(ReadZoneFile(path, options, zonePage));
        } else if (const std::string text = ReadTextFile(path, kLongestFile); IsSettings(text)) {
            found = ReadSettingsFile(session, path, options);
        } else {
            found = ParseAreaSets(text, Utf8FromPath(path));
        }
        for (AreaSetRecord& set : found) {
            if (Wanted(options, set.name)) sets.push_back(std::move(set));
        }
    }
    ExpectAllFound(options, sets);
    ExpectRoom(sets);
    return sets;
}

std::string Describe(const PlannedSet& planned) {
    return KeyOfId(planned.set.id) + "  " + (planned.replaces ? "replaced" : "new     ") + "  \"" +
           Printable(planned.set.name) + "\", " + std::to_string(planned.set.areas.size()) +
           (planned.set.Ignored() ? " ignored" : " required") +
           (planned.set.areas.size() == 1 ? " area\n" : " areas\n");
}

// What is imported must not be what storing it replaces.
void ExpectNotReplaced(std::filesystem::path settings, const std::vector<std::filesystem::path>& files) {
    for (const char* const suffix : {"", ".bak"}) {
        settings += suffix;
        const auto replaced = IdentityOf(settings);
        for (const std::filesystem::path& path : files) {
            const auto imported = IdentityOf(path);
            if (!replaced || !imported || !SameFile(*replaced, *imported)) continue;
            throw CommandError(ExitCode::kNothingDone,
                               Utf8FromPath(path) + " would be replaced by the import; import a copy of it");
        }
    }
}

}  // namespace

ExitCode ImportSets(const CommonOptions& common, const ImportOptions& options) {
    if (!options.dryRun) ExpectNotReplaced(common.settings, options.files);
    FilesInUse files(common);
    for (const std::filesystem::path& path : options.files) files.Add(path, "a file to be imported");
    files.Add(options.page, "the page of the zones");
    HostSession session(common, files, HostSession::Settings::kMayBeNew);
    std::vector<AreaSetRecord> sets = ReadFiles(session, options);
    const auto planned = PlanImport(std::move(sets), StoredSets(session.Sets()), options.replace);
    if (!options.dryRun) {
        session.Change([&](ISettingsNode* root) {
            for (const PlannedSet& set : planned) WriteSet(root, set);
        });
    }
    for (const PlannedSet& set : planned) Print(Describe(set));
    if (options.dryRun) Print("Nothing was written (--dry-run).\n");
    return ExitCode::kDone;
}

}  // namespace zonhost
