#pragma once

#include <cstdint>

namespace bench {

// Traces since the last call; they all went to the host's logger.
int64_t TakeTraceCount();

}  // namespace bench
