#pragma once
// Writes area sets into a settings node, as the library keeps them there: one sub-node per set.

#include "host/SettingsStore.h"
#include "refhost/app/ImportPlan.h"

namespace zonhost {

// Throws CommandError (kNothingDone) for sets that no settings file could store, before a tree is filled with them: the
// areas alone are counted, as the store writes them.
void ExpectRoom(const std::vector<AreaSetRecord>& sets);

// Writes the set into its node; what the node holds besides stays. Throws _com_error when the node refuses.
void WriteSet(ISettingsNode* root, const PlannedSet& planned);

}  // namespace zonhost
