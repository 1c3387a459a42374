#pragma once
// The command line of zonhost.
//
// Exit codes: 0 all done; 1 some pages were not masked; 2 the command line is wrong; 3 the settings file cannot be read
// or written; 4 nothing was done.

#include <string>
#include <vector>

#include "refhost/app/Text.h"

namespace zonhost {

// Arguments without the program's name, in UTF-8.
ExitCode RunCommandLine(const std::vector<std::string>& arguments);

}  // namespace zonhost
