// Runs the host in plain C as a process of its own.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "refhost/com/ClassRegistration.h"

namespace {

// A host that loads the module for each use: no slot, handle or block of any cycle stays.
TEST(CycleHost, NothingStaysOfALoad) {
    const std::wstring cycles = std::getenv("ZONWICK_TEST_LONG") != nullptr ? L" 1000" : L" 50";
    for (const wchar_t* way : {L"plain", L"sta", L"mta", L"threads"}) {
        std::string text(200, '\0');
        FILE* pipe = _wpopen((com::ProgramFolder() + L"cycle_host.exe " + way + cycles).c_str(), L"r");
        ASSERT_NE(pipe, nullptr);
        text.resize(std::fread(text.data(), 1, text.size(), pipe));
        EXPECT_EQ(_pclose(pipe), 0) << testing::PrintToString(way) << ": " << text;
    }
}

}  // namespace
