#pragma once
// Which identifier each imported set gets, decided before anything is written.

#include <string>
#include <vector>

#include "refhost/app/AreaSetRecord.h"

namespace zonhost {

// A set that the settings hold already.
struct StoredSet {
    uint32_t id = 0;
    std::string name;
    std::string key;  // name of its node
};

// The identifier that a node's name stands for, as the module reads it; 0: the node is no set.
uint32_t IdOfKey(const std::string& key);
// The name of a new set's node.
std::string KeyOfId(uint32_t id);

struct PlannedSet {
    AreaSetRecord set;  // with its identifier
    std::string key;    // of the node to be written
    bool replaces = false;
};

// New sets get identifiers above all that are there; with `replace`, a set takes the place and the identifier of the
// first stored one of its name, as references to the identifier are the host's. Throws CommandError (kNothingDone) that
// names every set that is there already (without `replace`) or twice in `sets`.
std::vector<PlannedSet> PlanImport(std::vector<AreaSetRecord> sets, const std::vector<StoredSet>& stored, bool replace);

}  // namespace zonhost
