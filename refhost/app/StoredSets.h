#pragma once
// Writes area sets into a settings node, as the library keeps them there: one sub-node per set.

#include "host/SettingsStore.h"
#include "refhost/app/ImportPlan.h"

namespace zonhost {

// Writes the set into its node; what the node holds besides stays. Throws _com_error when the node refuses.
void WriteSet(ISettingsNode* root, const PlannedSet& planned);

}  // namespace zonhost
