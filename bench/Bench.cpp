#include "bench/Bench.h"

#include <objbase.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bench {

double Now() {
    static const double nanoseconds = [] {
        LARGE_INTEGER frequency;
        QueryPerformanceFrequency(&frequency);
        return 1e9 / static_cast<double>(frequency.QuadPart);
    }();
    LARGE_INTEGER count;
    QueryPerformanceCounter(&count);
    return static_cast<double>(count.QuadPart) * nanoseconds;
}

double TimeOf(const Action& action, int repeats) {
    const double start = Now();
    for (int i = 0; i < repeats; ++i) action();
    return (Now() - start) / repeats;
}

Measured Timed(Action action, int repeats) {
    return [action = std::move(action), repeats] { return TimeOf(action, repeats); };
}

void Compare(const char* row, const std::string& detail, const Measured& ours, const Measured& limit, int runs) {
    ours();
    limit();
    for (int run = 0; run < runs; ++run) {
        // Neither always goes first.
        const double first = run % 2 == 0 ? ours() : limit();
        const double second = run % 2 == 0 ? limit() : ours();
        std::printf("pair\t%s\t%s\t%.0f\t%.0f\n", row, detail.c_str(), run % 2 == 0 ? first : second,
                    run % 2 == 0 ? second : first);
    }
    std::fflush(stdout);
}

void Tell(const char* row, const std::string& detail, double figure) {
    std::printf("value\t%s\t%s\t%.4f\n", row, detail.c_str(), figure);
    std::fflush(stdout);
}

void Fail(const std::string& what) {
    std::fprintf(stderr, "bench: %s\n", what.c_str());
    std::fflush(stdout);
    std::_Exit(1);
}

void Require(bool good, const char* what) {
    if (!good) Fail(what);
}

}  // namespace bench

namespace {

struct Row {
    const char* name;
    void (*measure)();
};
constexpr Row kRows[] = {{"copy", bench::MaskedCopy},
                         {"packed", bench::PackedCopy},
                         {"query", bench::QueryExports},
                         {"enumerate", bench::Enumeration},
                         {"settings", bench::LoadAndStore},
                         {"scale", bench::PageScaling},
                         {"repaint", bench::Repaint},
                         {"turn", bench::PageTurn},
                         {"dialogs", bench::Dialogs},
                         {"load", bench::Loading},
                         {"decode", bench::Decoding},
                         {"import", bench::Import},
                         {"import-refused", bench::ImportRefused},
                         {"list", bench::Listing}};

}  // namespace

int main(int count, char** arguments) {
    // One processor: ours and the limit share its caches and its clock.
    SetProcessAffinityMask(GetCurrentProcess(), 1);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    for (const Row& row : kRows) {
        bool wanted = count == 1;
        for (int i = 1; i < count; ++i) wanted |= std::strcmp(arguments[i], row.name) == 0;
        if (!wanted) continue;
        try {
            row.measure();
        } catch (const std::exception& error) {
            bench::Fail(std::string(row.name) + ": " + error.what());
        }
    }
    CoUninitialize();
    return 0;
}
