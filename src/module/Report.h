#pragma once
// How exports and dialogs tell failures that several of them meet.

#include <windows.h>

#include "store/AreaSetManager.h"

namespace module {

// Loads the sets; false, and string 34106 traced at severity 2, when they cannot be read. A load that failed is
// reported as such once only: with `whole` one that did not come to its end counts as failed for good.
bool LoadSets(CAreaSetManager& manager, const char* source, int line, bool whole = false);

// The host support library's box, which tells the failure just traced at severity 2.
void ShowFailure(HWND parent) noexcept;

}  // namespace module
