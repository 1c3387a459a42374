// The main program of every test binary. scripts/test takes a run as good only when its last line is there: under Wine
// a crash can end a process with code 0.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#ifdef _WIN32
#include <windows.h>

namespace {

constexpr UINT kCrashExitCode = 77;

LONG WINAPI EndOnCrash(EXCEPTION_POINTERS* exception) {
    std::fprintf(stderr, "crash: exception 0x%08lx at %p\n", exception->ExceptionRecord->ExceptionCode,
                 exception->ExceptionRecord->ExceptionAddress);
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), kCrashExitCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace
#endif

int main(int argc, char** argv) {
#ifdef _WIN32
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetUnhandledExceptionFilter(EndOnCrash);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
#endif
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    const auto& unit = *testing::UnitTest::GetInstance();
    std::printf("RESULT passed=%d failed=%d skipped=%d\n", unit.successful_test_count(), unit.failed_test_count(),
                unit.skipped_test_count());
    std::fflush(stdout);
    return result;
}
