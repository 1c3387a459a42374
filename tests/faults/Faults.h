#pragma once
// Faults of every kind that the module can meet, each at its n-th chance, and counts of what the module holds.

#include <windows.h>

#include <array>

#include "faults/ImportHook.h"

namespace test {

enum class Fault {
    kSettings,       // a call of the host's settings fails
    kSettingsNull,   // or gives null
    kPart,           // a call of another part of the host fails: pages, units, page display
    kPartNull,       // or, of the document stack, gives null
    kStore,          // a call of the store of settings files fails
    kConfig,         // a call of the host's configuration object fails
    kConfigNull,     // or gives null
    kObject,         // an object of a host class cannot be made
    kMemory,         // the module's memory
    kString,         // a BSTR
    kLockAbandoned,  // the lock's owner had ended
    kLockFailed,     // the lock cannot be waited for
    kImaging,        // the imaging library refuses
    kCodec,          // the system's codecs, as the host's parts create them
    kWindow,         // a window, dialog, menu or subclass
    kDrawing,        // a device context or bitmap
    kCount
};
const char* NameOf(Fault kind);

struct FaultPlan {
    Fault kind = Fault::kCount;
    int at = 0;
    bool keep = false;
    int injected = 0;
    std::array<int, static_cast<size_t>(Fault::kCount)> met = {};  // chances of each kind

    int Met(Fault of) const { return of < Fault::kCount ? met[static_cast<size_t>(of)] : 0; }
};

// What the module holds now.
struct Holdings {
    size_t blocks, strings;
    int objects;
    long userObjects, gdiObjects, handles;
};

// While it lives, chances for faults are counted in Zonwick.dll and the host's parts, which have to be loaded.
class FaultHooks {
public:
    FaultHooks();
    ~FaultHooks();
    FaultHooks(const FaultHooks&) = delete;
    FaultHooks& operator=(const FaultHooks&) = delete;

    // All operations of an object's interface can fail from now on.
    void Gate(void* object, size_t slots, Fault kind = Fault::kPart, const intptr_t* failure = &kGateFails);

    // From now on, on this thread, the n-th chance of the kind fails, and those of all kinds are counted.
    static void Arm(Fault kind, int at, bool keep);
    // No more faults; what came of the last ones.
    static FaultPlan Disarm();
    // While held, nothing is counted and nothing fails.
    static void Hold(bool hold);
    // Whether a chance of this kind that comes up now is to fail.
    static bool Meet(Fault kind);
    static Holdings Measure();
    // Whether nobody holds the lock of the area sets.
    static bool IsLockFree();

private:
    PointerHooks m_hooks;
};

}  // namespace test
