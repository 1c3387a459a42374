#pragma once
// Trees of other makers' nodes, read and written through ISettingsNode.

#include "refhost/settings/HostSettings.h"
#include "refhost/settings/Tree.h"

namespace settings {

// A copy of what a node tells of itself. Throws _com_error or StoreError.
NodePtr ReadOtherNode(ISettingsNode* node);
// Sets the values and sub-nodes of `content`; what ISettingsNode has no call for is left out.
void WriteOtherNode(ISettingsNode* node, const Node& content);
// Removes all sub-nodes. Values cannot be removed through ISettingsNode; those that are written next replace them.
void ClearOtherNode(ISettingsNode* node);

}  // namespace settings
