#pragma once
// The document stack's COM objects.

#include <memory>
#include <vector>

#include "host/DocumentStack.h"
#include "refhost/documents/DocumentFiles.h"

namespace documents {

// The stack has one reference, the caller's.
IQuire* MakeQuire(std::vector<std::shared_ptr<DocumentFiles>> documents);

}  // namespace documents
