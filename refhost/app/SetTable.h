#pragma once
// Area sets as zonhost shows them.

#include <string>
#include <vector>

#include "refhost/app/SetReader.h"
#include "refhost/app/Text.h"

namespace zonhost {

// The sets that were read whole; the others are told and make `code` kSettings. `file` is what the user knows them by.
std::vector<AreaSetRecord> WholeSets(std::vector<TreeSet> sets, const std::string& file, ExitCode& code);

// A line for each set under a head line.
std::string SetTable(std::vector<AreaSetRecord> sets);

// A cell of a table, as wide as its text at least.
std::string Padded(const std::string& text, size_t width, bool right = false);
const char* Mode(const AreaSetRecord& set);

}  // namespace zonhost
