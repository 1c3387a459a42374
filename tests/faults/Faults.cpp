#include "faults/Faults.h"

#include <winternl.h>

#include <cstdlib>
#include <iterator>
#include <type_traits>
#include <unordered_set>

#include "support/FakeObject.h"

// Exported by the system under these names alone.
extern "C" NTSTATUS NTAPI NtQueryMutant(HANDLE mutant, int infoClass, void* info, ULONG length, ULONG* written);

namespace test {

namespace {

FaultPlan g_plan;
DWORD g_thread = 0;
std::unordered_set<void*> g_blocks, g_strings;

bool Meet(Fault kind) {
    return FaultHooks::Meet(kind);
}
bool Keeper(int kind) {
    return Meet(static_cast<Fault>(kind));
}

struct MutantInfo {
    LONG count;
    BOOLEAN owned, abandoned;
};
bool QueryMutant(HANDLE handle, MutantInfo& info) {
    return NtQueryMutant(handle, 0, &info, sizeof info, nullptr) >= 0;
}

void* Allocate(size_t size) {
    void* block = Meet(Fault::kMemory) ? nullptr : std::malloc(size);
    if (block != nullptr) g_blocks.insert(block);
    return block;
}
void* AllocateCleared(size_t count, size_t size) {
    void* block = Meet(Fault::kMemory) ? nullptr : std::calloc(count, size);
    if (block != nullptr) g_blocks.insert(block);
    return block;
}
void* Resize(void* old, size_t size) {
    if (Meet(Fault::kMemory)) return nullptr;
    void* block = std::realloc(old, size);
    if (block == nullptr) return nullptr;
    g_blocks.erase(old);
    g_blocks.insert(block);
    return block;
}
void Free(void* block) {
    g_blocks.erase(block);
    std::free(block);
}

// The system's own, because this program's calls of them are led here too.
struct Automation {
    decltype(&SysAllocStringLen) allocate;
    decltype(&SysFreeString) free;
    decltype(&SafeArrayCreateVector) create;
    decltype(&SafeArrayDestroy) destroy;
} g_automation;

BSTR WINAPI GiveString(const OLECHAR* text, UINT length) {
    BSTR string = g_automation.allocate(text, length);
    if (string != nullptr) g_strings.insert(string);
    return string;
}
// Strings of the host's parts never fail here: the call that hands one out does.
BSTR WINAPI AllocateString(const OLECHAR* text, UINT length) {
    return Meet(Fault::kString) ? nullptr : GiveString(text, length);
}
void WINAPI FreeString(BSTR string) {
    g_strings.erase(string);
    g_automation.free(string);
}
SAFEARRAY* WINAPI GiveArray(VARTYPE type, LONG lower, ULONG count) {
    SAFEARRAY* array = g_automation.create(type, lower, count);
    if (array != nullptr) g_strings.insert(array);
    return array;
}
HRESULT WINAPI DestroyArray(SAFEARRAY* array) {
    g_strings.erase(array);
    VARTYPE type = VT_EMPTY;
    // The strings in it go with it.
    if (array != nullptr && SUCCEEDED(SafeArrayGetVartype(array, &type)) && type == VT_BSTR) {
        for (ULONG i = 0; i < array->rgsabound[0].cElements; ++i) g_strings.erase(static_cast<BSTR*>(array->pvData)[i]);
    }
    return g_automation.destroy(array);
}

DWORD WINAPI Wait(HANDLE handle, DWORD milliseconds) {
    MutantInfo info = {};
    if (milliseconds == 0 || !QueryMutant(handle, info)) return WaitForSingleObject(handle, milliseconds);
    if (Meet(Fault::kLockFailed)) return WAIT_FAILED;
    const DWORD result = WaitForSingleObject(handle, milliseconds);
    return Meet(Fault::kLockAbandoned) && result == WAIT_OBJECT_0 ? WAIT_ABANDONED : result;
}

HDC WINAPI Paint(HWND window, PAINTSTRUCT* paint) {
    const HDC dc = BeginPaint(window, paint);
    if (!Meet(Fault::kDrawing)) return dc;
    EndPaint(window, paint);
    return nullptr;
}

void* Function(const wchar_t* library, const char* name) {
    void* function = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name));
    if (function == nullptr) std::abort();
    return function;
}

template <class F>
void* Pointer(F* function) {
    return reinterpret_cast<void*>(function);
}

// Calls that fail with a value, all in Zonwick.dll unless another one is named.
struct Gated {
    Fault kind;
    const wchar_t* library;
    const char* name;  // or an ordinal
    intptr_t failure;
    const wchar_t* importer = L"Zonwick.dll";
};
const Gated kGated[] = {
    {Fault::kObject, L"ole32.dll", "CoCreateInstance", E_OUTOFMEMORY},
    {Fault::kObject, L"ole32.dll", "OleRun", E_FAIL},
    {Fault::kCodec, L"ole32.dll", "CoCreateInstance", E_OUTOFMEMORY, L"HostImaging.dll"},
    {Fault::kString, L"oleaut32.dll", "SafeArrayLock", E_OUTOFMEMORY},
    {Fault::kImaging, L"HostImaging.dll", MAKEINTRESOURCEA(26), 0},
    {Fault::kImaging, L"HostImaging.dll", MAKEINTRESOURCEA(100), 0},
    {Fault::kWindow, L"user32.dll", "DialogBoxIndirectParamW", -1},
    {Fault::kWindow, L"user32.dll", "CreateWindowExW", 0},
    {Fault::kWindow, L"user32.dll", "LoadMenuW", 0},
    {Fault::kWindow, L"kernel32.dll", "LoadResource", 0},
    {Fault::kWindow, L"kernel32.dll", "CreateActCtxW", -1},
    {Fault::kWindow, L"kernel32.dll", "ActivateActCtx", 0},
    {Fault::kWindow, L"comctl32.dll", "SetWindowSubclass", 0},
    {Fault::kWindow, L"atl.dll", "AtlAxCreateControl", E_FAIL},
    {Fault::kWindow, L"atl.dll", "AtlAxGetControl", E_FAIL},
    {Fault::kDrawing, L"gdi32.dll", "CreateCompatibleDC", 0},
    {Fault::kDrawing, L"gdi32.dll", "CreateCompatibleBitmap", 0},
};

}  // namespace

const char* NameOf(Fault kind) {
    constexpr const char* kNames[] = {"settings",    "null",  "part",   "part null", "store",     "config",
                                      "config null", "class", "memory", "string",    "abandoned", "lock failed",
                                      "imaging",     "codec", "window", "drawing"};
    static_assert(std::size(kNames) == static_cast<size_t>(Fault::kCount));
    return kind < Fault::kCount ? kNames[static_cast<size_t>(kind)] : "no fault";
}

FaultHooks::FaultHooks() {
    const HMODULE module = GetModuleHandleW(L"Zonwick.dll");
    const auto hook = [&](HMODULE importer, const wchar_t* library, const char* name, void* replacement) {
        if (!m_hooks.HookImport(importer, Function(library, name), replacement) && importer == module) std::abort();
    };
    hook(module, L"msvcrt.dll", "malloc", Pointer(&Allocate));
    hook(module, L"msvcrt.dll", "calloc", Pointer(&AllocateCleared));
    hook(module, L"msvcrt.dll", "realloc", Pointer(&Resize));
    hook(module, L"msvcrt.dll", "free", Pointer(&Free));
    hook(module, L"kernel32.dll", "WaitForSingleObject", Pointer(&Wait));
    hook(module, L"user32.dll", "BeginPaint", Pointer(&Paint));
    for (const Gated& gated : kGated) {
        void* function = Function(gated.library, gated.name);
        hook(GetModuleHandleW(gated.importer), gated.library, gated.name,
             MakeGate(Keeper, static_cast<int>(gated.kind), function, &gated.failure));
    }
    const auto automation = [&](const char* name, auto& original, void* ofModule, void* ofOthers) {
        void* function = Function(L"oleaut32.dll", name);
        original = reinterpret_cast<std::remove_reference_t<decltype(original)>>(function);
        m_hooks.HookImport(module, function, ofModule);
        // All that hand strings out or free those of others: one freed unseen counts until its place is used again.
        for (const wchar_t* part : {static_cast<const wchar_t*>(nullptr), L"HostDocuments.dll", L"HostUnits.dll",
                                    L"HostSettings.dll", L"Folium.dll"}) {
            const HMODULE importer = GetModuleHandleW(part);
            if (importer != nullptr) m_hooks.HookImport(importer, function, ofOthers);
        }
    };
    automation("SysAllocStringLen", g_automation.allocate, Pointer(&AllocateString), Pointer(&GiveString));
    automation("SysFreeString", g_automation.free, Pointer(&FreeString), Pointer(&FreeString));
    automation("SafeArrayCreateVector", g_automation.create, Pointer(&GiveArray), Pointer(&GiveArray));
    automation("SafeArrayDestroy", g_automation.destroy, Pointer(&DestroyArray), Pointer(&DestroyArray));
}

FaultHooks::~FaultHooks() {
    g_plan = {};
    g_blocks.clear();
    g_strings.clear();
}

void FaultHooks::Gate(void* object, size_t slots, Fault kind, const intptr_t* failure) {
    m_hooks.GateInterface(object, slots, Keeper, static_cast<int>(kind), failure);
}

bool FaultHooks::Meet(Fault kind) {
    if (Host().held || GetCurrentThreadId() != g_thread) return false;
    const int met = ++g_plan.met[static_cast<size_t>(kind)];
    const bool fails = kind == g_plan.kind && (met == g_plan.at || (g_plan.keep && met > g_plan.at));
    g_plan.injected += fails;
    return fails;
}

void FaultHooks::Hold(bool hold) {
    Host().held = hold;
}

void FaultHooks::Arm(Fault kind, int at, bool keep) {
    g_thread = GetCurrentThreadId();
    g_plan = {kind, at, keep};
    Host().Reset();
    if (kind != Fault::kSettings && kind != Fault::kSettingsNull) return;
    Host().failAt = at;
    Host().keepFailing = keep;
    Host().giveNull = kind == Fault::kSettingsNull;
}

FaultPlan FaultHooks::Disarm() {
    FaultPlan done = g_plan;
    for (const Fault settings : {Fault::kSettings, Fault::kSettingsNull}) {
        done.met[static_cast<size_t>(settings)] = Host().calls;
        if (done.kind != settings) continue;
        const int reached = Host().calls - done.at + 1;
        done.injected = reached <= 0 ? 0 : done.keep ? reached : 1;
    }
    g_plan = {};
    g_thread = 0;
    Host().Reset();
    Hold(false);
    return done;
}

Holdings FaultHooks::Measure() {
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    return {g_blocks.size(),
            g_strings.size(),
            Host().liveObjects,
            static_cast<long>(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS)),
            static_cast<long>(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)),
            static_cast<long>(handles)};
}

bool FaultHooks::IsLockFree() {
    const HANDLE mutex = OpenMutexW(MUTEX_ALL_ACCESS, FALSE, L"SASyncMutex");
    if (mutex == nullptr) return false;
    MutantInfo info = {};
    const bool known = QueryMutant(mutex, info);
    CloseHandle(mutex);
    return known && info.count == 1;
}

}  // namespace test
