#include "exports/MemoryReserve.h"

#include <cxxabi.h>

#include <cstdlib>
#include <utility>

namespace {

bool g_refuseNext = false;

}  // namespace

// The linker leads the runtime's calls of malloc here (option --wrap), by these names.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" void* __real_malloc(size_t size);
extern "C" void* __wrap_malloc(size_t size) {
    return std::exchange(g_refuseNext, false) ? nullptr : __real_malloc(size);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace exports {

void PrepareForLackOfMemory() noexcept {
    void* volatile const state = abi::__cxa_get_globals();  // used, or there would be no call
    (void)state;
    // Nothing else of the module runs yet, so it is the exception that is refused, and made from the reserve.
    g_refuseNext = true;
    void* exception = abi::__cxa_allocate_exception(sizeof(int));
    abi::__cxa_free_exception(exception);
}

}  // namespace exports
