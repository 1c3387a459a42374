#pragma once
// Records what the platform-neutral part traces, instead of a host's logger.

#include <cstdint>
#include <string>
#include <vector>

namespace test {

struct TraceLine {
    int severity;
    std::string source;
    std::wstring text;  // formatted; "#34106" for a string identifier, "!0" for a host message
    bool operator==(const TraceLine&) const = default;
};

// The lines since the last call.
std::vector<TraceLine> TakeTraces();
// The texts of TakeTraces.
std::vector<std::wstring> TakeTraceTexts();

}  // namespace test
