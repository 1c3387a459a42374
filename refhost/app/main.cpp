#include <windows.h>

#include "refhost/app/CommandLine.h"
#include "refhost/app/Console.h"
#include "refhost/app/Crash.h"

int wmain(int argc, wchar_t** argv) {
    // A damaged page must never stop an unattended run with a box.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    zonhost::EndOnCrash();
    // What is loaded later comes from the program's folder and the system's, never from the current one.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) arguments.push_back(zonhost::Utf8FromWide(argv[i]));
    return static_cast<int>(zonhost::RunCommandLine(arguments));
}
