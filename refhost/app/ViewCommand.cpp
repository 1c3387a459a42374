#include "refhost/app/Commands.h"
#include "refhost/app/HostSession.h"
#include "refhost/app/PageViewer.h"
#include "refhost/app/WindowHost.h"

namespace zonhost {

ExitCode ViewPages(const CommonOptions& common, const ViewOptions& options) {
    const HostSession session(common, FilesOfWindow(common, options.window), HostSession::Settings::kMayBeNew);
    const WindowHost windows(options.window);
    PageViewer viewer(windows.Quire());
    viewer.Open();
    viewer.Run();
    return ExitCode::kDone;
}

}  // namespace zonhost
