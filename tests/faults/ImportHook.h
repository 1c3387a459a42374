#pragma once
// Stands in for functions that a loaded module imports, and for the operations of COM objects.

#include <windows.h>

#include <cstdint>
#include <vector>

namespace test {

// Asked before each call that a gate leads to; true makes the call fail.
using GateKeeper = bool (*)(int kind);

inline constexpr intptr_t kGateFails = E_FAIL;

// Code that asks `keeper` and then either goes on to `original` with all arguments as they were, or returns what is in
// `failure` then.
void* MakeGate(GateKeeper keeper, int kind, void* original, const intptr_t* failure);

// Puts other pointers into tables of function pointers, and the old ones back when it goes.
class PointerHooks {
public:
    PointerHooks() = default;
    ~PointerHooks();
    PointerHooks(const PointerHooks&) = delete;
    PointerHooks& operator=(const PointerHooks&) = delete;

    // Where `importer` imports a function, by name or by ordinal; false when it does not.
    bool HookImport(HMODULE importer, void* function, void* replacement);
    // Gates for all operations of an interface of `slots` entries, but for those of IUnknown.
    // The objects share the table: all of their class and interface are meant.
    void GateInterface(void* object, size_t slots, GateKeeper keeper, int kind, const intptr_t* failure = &kGateFails);

private:
    void Put(void** place, void* pointer);

    struct Old {
        void** place;
        void* pointer;
    };
    std::vector<Old> m_old;
};

}  // namespace test
