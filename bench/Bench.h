#pragma once
// Measures by pairs: ours and its limit take turns, so that whatever else the machine does weighs on both. Each pair is
// a line of standard output, "pair ROW DETAIL OURS LIMIT" in nanoseconds, tabs between; report.py makes ratios of them.

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

using Action = std::function<void()>;
// Nanoseconds of the part that counts.
using Measured = std::function<double()>;

inline constexpr int kRuns = 9;

double Now();
double TimeOf(const Action& action, int repeats = 1);
// As often as it takes to be long against the clock, at most `most` times.
Measured Timed(Action action, int repeats = 1);

void Compare(const char* row, const std::string& detail, const Measured& ours, const Measured& limit, int runs = kRuns);
// A figure with nothing beside it: "value ROW DETAIL FIGURE".
void Tell(const char* row, const std::string& detail, double figure);
[[noreturn]] void Fail(const std::string& what);
void Require(bool good, const char* what);

// The rows, each printing what it measures.
void MaskedCopy();
void PackedCopy();
void QueryExports();
void Enumeration();
void LoadAndStore();
void Import();
void ImportRefused();
void Listing();
void PageScaling();
void Repaint();
void PageTurn();
void Dialogs();
void Loading();
void Decoding();

}  // namespace bench
