#pragma once
// The one reader of area sets that all commands use: what stands in a settings tree, and what of it cannot be relied
// on. The library takes a default for a value that it cannot read, and stops at a set that is no group of areas; a set
// that was not read whole is therefore never masked with, listed as good or handed on.

#include <string>
#include <vector>

#include "refhost/app/ImportPlan.h"
#include "refhost/settings/HostSettings.h"

namespace zonhost {

struct TreeSet {
    AreaSetRecord record;  // what could be read of it, areas with their edges in order
    std::string key;       // name of its node
    // The first reason why the set was not read whole: a value or an area is missing, of another kind or out of range,
    // or another node has its identifier. Empty: the set is whole.
    std::string problem;
    // Why its page cannot be read; then the page is all 0. Only the set's preview depends on it.
    std::string pageProblem;

    bool Whole() const { return problem.empty(); }
    // "area set 0x00000002 \"Letter\"", fit for a terminal.
    std::string Title() const;
};

// All sets in the order of the tree. Throws CommandError (kSettings) when the node cannot be walked.
std::vector<TreeSet> ReadTreeSets(ISettingsNode* root, decltype(&HostSettingsWalk) walk);

std::vector<StoredSet> StoredSets(const std::vector<TreeSet>& sets);

// The first set of that name, null when there is none. Throws CommandError (kSettings) when any set of that name is not
// whole: which one is meant could not be told.
const TreeSet* FindByName(const std::vector<TreeSet>& sets, const std::string& name, const std::string& file);

// The sets that are not whole, a line each with the reason, under a head line that says what to do; empty: there are
// none. `file` is what the user knows the tree by.
std::string TellBroken(const std::vector<TreeSet>& sets, const std::string& file);
// Lines about pages that cannot be read; nothing depends on them but previews.
std::string TellPages(const std::vector<TreeSet>& sets);

}  // namespace zonhost
