#pragma once
// What was injected where, printed as one table when all tests have run.

#include <string>

#include "faults/Faults.h"

namespace test {

// An operation is called after the export that it calls, or by its dialog: "SAConfigure, OK", "Manage: Create".
void CountFaults(const std::string& operation, Fault kind, int injected);

}  // namespace test
