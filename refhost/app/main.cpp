#include <windows.h>

#include "refhost/app/CommandLine.h"
#include "refhost/app/Console.h"

int wmain(int argc, wchar_t** argv) {
    // A damaged page must never stop an unattended run with a box.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) arguments.push_back(zonhost::Utf8FromWide(argv[i]));
    return static_cast<int>(zonhost::RunCommandLine(arguments));
}
