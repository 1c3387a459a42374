// The fuzzer's entry; the build says which target.
#include "fuzz/Targets.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    fuzz::ZONWICK_FUZZ_TARGET(fuzz::Input(bytes, size));
    return 0;
}
