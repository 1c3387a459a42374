// A test program with a fault in it, which the test run has to notice. The build says which.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

// Volatile, so that no compiler sees through it.
char* volatile g_block = nullptr;

[[maybe_unused]] void Overrun() {
    constexpr size_t kSize = 24;
    g_block = static_cast<char*>(std::malloc(kSize));
    const volatile size_t end = kSize;
    g_block[end] = 1;
    std::free(g_block);
}

[[maybe_unused]] void DoubleFree() {
    g_block = static_cast<char*>(std::malloc(24));
    std::free(g_block);
    std::free(g_block);
}

[[maybe_unused]] void Leak() {
    g_block = static_cast<char*>(std::malloc(24));
    g_block = nullptr;
}

// As some crashes end here: at once, and with the code of success.
[[maybe_unused]] void CrashWithSuccess() {
    std::_Exit(0);
}

[[maybe_unused]] void Hang() {
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

TEST(Planted, Fault) {
    ZONWICK_PLANTED();
}

}  // namespace
