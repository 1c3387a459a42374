// zonhost mask: what would make every page fail is told before the first.

#include <algorithm>
#include <system_error>

#include "refhost/app/Commands.h"
#include "refhost/app/HostSession.h"
#include "refhost/app/MaskRun.h"
#include "refhost/files/PartFile.h"

namespace zonhost {

namespace fs = std::filesystem;

namespace {

struct Format {
    const char* name;
    const char* extension;
    HostImageFormat format;
};
constexpr Format kFormats[] = {
    {"png", ".png", kHostFormatPng}, {"tif", ".tif", kHostFormatTiff}, {"bmp", ".bmp", kHostFormatBmp}};

const Format& FormatOf(const std::string& name) {
    return *std::find_if(std::begin(kFormats), std::end(kFormats) - 1, [&](const auto& f) { return name == f.name; });
}

// The set to mask with. All that would make every page fail is told once, before the first.
TreeSet FindSet(const HostSession& session, const std::string& name, const std::string& file) {
    const std::vector<TreeSet> sets = session.Sets();
    const TreeSet* set = FindByName(sets, name, file);
    const auto refuse = [&](const std::string& reason) { throw CommandError(ExitCode::kNothingDone, reason); };
    const std::string shown = "the area set \"" + name + "\" ";
    if (set == nullptr) {
        refuse("there is no area set \"" + name + "\"; `zonhost sets list` shows those that there are");
    } else if (set->record.areas.empty()) {
        refuse(shown + "has no areas to mask by");
    } else if (Utf16Length(name) > kLongestName) {
        refuse(shown + "has a name of more than " + std::to_string(kLongestName) +
               " characters and cannot be masked with; give it a shorter one in `zonhost manage`");
    }
    return *set;
}

// Whether the log is, or would become, a file with the name of a result: an earlier one, or one that is to come.
bool IsAmongResults(const fs::path& log, const fs::path& out, const OutputNames& names) {
    const auto place = IdentityOf(log.has_parent_path() ? log.parent_path() : fs::path("."));
    const auto folder = IdentityOf(out);
    if (!folder) return false;
    if (place && SameFile(*place, *folder) && names.Covers(log.filename())) return true;
    const auto wanted = IdentityOf(log);
    std::error_code error;
    for (fs::directory_iterator entry(out, error); wanted && !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        if (!names.Covers(entry->path().filename())) continue;
        const auto identity = IdentityOf(entry->path());
        if (identity && SameFile(*identity, *wanted)) return true;
    }
    return false;
}

void MakeFolder(const fs::path& out) {
    std::error_code error;
    fs::create_directories(out, error);
    if (fs::is_directory(out)) return;
    throw CommandError(ExitCode::kNothingDone, "the folder " + Utf8FromPath(out) + " cannot be made: " +
                                                   (error ? error.message() : "a file is in its place"));
}

}  // namespace

ExitCode MaskPages(const CommonOptions& common, const MaskOptions& options) {
    const Format& format = FormatOf(options.format);
    const PageList pages = FindPages(options.pages);
    OutputNames names(pages.files, format.extension);
    FilesInUse files(common);
    for (const fs::path& page : pages.files) files.Add(page, "one of the pages to be masked");
    if (!common.log.empty() && IsAmongResults(common.log, options.out, names)) {
        throw CommandError(ExitCode::kNothingDone, Utf8FromPath(common.log) +
                                                       " is the place of a result and cannot be the log; choose "
                                                       "another --log");
    }
    HostSession session(common, files);
    files.Add(common.log, "the log");
    const TreeSet set = FindSet(session, options.set, Utf8FromPath(common.settings));
    const ZonwickLibrary& library = session.LibraryWith(set);
    MakeFolder(options.out);
    files::SweepParts(options.out.native());
    const OutputGuard guard(files, options.force);
    return RunMask({options, library, pages, names, guard, format.format});
}

}  // namespace zonhost
