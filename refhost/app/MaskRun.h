#pragma once
// The work of `zonhost mask`, once it is known that there is something to do.

#include "refhost/app/OutputFile.h"
#include "refhost/app/PagePlan.h"
#include "refhost/app/ZonwickLibrary.h"
#include "refhost/imaging/HostImaging.h"

namespace zonhost {

struct MaskJob {
    const MaskOptions& options;
    const ZonwickLibrary& library;
    const PageList& pages;
    OutputNames& names;
    const OutputGuard& guard;
    HostImageFormat format;
};

// Tells each page that fails and the outcome of all.
ExitCode RunMask(const MaskJob& job);

}  // namespace zonhost
