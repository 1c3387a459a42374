// zonhost manage: "Manage Area Sets" over the host's pages and settings file.

#include "refhost/app/Commands.h"
#include "refhost/app/Console.h"
#include "refhost/app/HostSession.h"
#include "refhost/app/WindowHost.h"

namespace zonhost {

ExitCode ManageSets(const CommonOptions& common, const ManageOptions& options) {
    HostSession session(common, FilesOfWindow(common, options.window), HostSession::Settings::kMayBeNew);
    const std::string file = Utf8FromPath(common.settings);
    if (const std::string broken = TellBroken(session.Sets(), file); !broken.empty()) {
        // OK stores all sets as the library read them: what it could not read would be lost.
        if (!options.asRead) {
            throw CommandError(ExitCode::kSettings,
                               broken +
                                   "\nThe dialog was not opened: its OK would store them as far as they can be "
                                   "read. --as-read opens it all the same.");
        }
        PrintError("zonhost: " + broken + "\n");
    }
    const WindowHost windows(options.window);
    if (!session.Library().ManageSets(windows.Owner(), windows.Quire())) {
        throw CommandError(ExitCode::kNothingDone, "the dialog could not be opened; --verbose shows the log");
    }
    const HostSession::Outcome& commits = session.Commits();
    // The store's words tell what is wrong with the file and where it keeps the refused sets.
    if (!commits.failure.empty()) {
        throw CommandError(ExitCode::kSettings, "the area sets were not saved to " + file + ": " + commits.failure +
                                                    "\n`zonhost sets import KEPTFILE --set NAME` brings single sets "
                                                    "back from a kept file");
    }
    if (!commits.saved) {
        Print("Nothing was changed in " + file + ".\n");
        return ExitCode::kDone;
    }
    const size_t count = session.Sets().size();
    Print("Saved " + std::to_string(count) + (count == 1 ? " area set to " : " area sets to ") + file + ".\n");
    return ExitCode::kDone;
}

}  // namespace zonhost
