#pragma once
// Area sets in a settings node, as the host keeps them there: one sub-node per set.

#include "host/SettingsStore.h"
#include "refhost/app/ImportPlan.h"

namespace zonhost {

// Identifiers, names and keys of the sets. All functions throw _com_error when the node refuses.
std::vector<StoredSet> ReadStoredSets(ISettingsNode* root);
// The page of the set with that key; all 0 when there is none.
Rect ReadPage(ISettingsNode* root, const std::string& key);
// The set of that key; what is missing counts as 0, a missing page as one that holds the areas.
AreaSetRecord ReadSet(ISettingsNode* root, const StoredSet& stored);
// Writes the set into its node; what the node holds besides stays.
void WriteSet(ISettingsNode* root, const PlannedSet& planned);

}  // namespace zonhost
