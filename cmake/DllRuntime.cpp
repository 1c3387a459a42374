// Linked into every DLL, where it stands in for the part of the toolchain's thread library that the compiler's runtime
// uses. That library takes a thread-local slot, blocks and handles from the process and gives none of them back when
// its DLL is unloaded: a host that loads and unloads the DLL would run out of slots after some hundred times. Here
// locks need no memory, and what threads keep is in one list, from which it is freed after the DLL's last destructor;
// so is the runtime's pool for exceptions that find no memory.
#include <windows.h>

#include <cerrno>
#include <cstdint>

namespace __gnu_cxx {
void __freeres();  // NOLINT(bugprone-reserved-identifier): the runtime's own, frees the pool
}

namespace dllruntime {
namespace {

constexpr unsigned kKeys = 16;
using Destructor = void (*)(void*);

// The values of one thread.
struct Values {
    Values* next;
    void* of[kKeys];
};

SRWLOCK g_lock = SRWLOCK_INIT;
DWORD g_slot = TLS_OUT_OF_INDEXES;
Values* g_threads = nullptr;
Destructor g_destructors[kKeys];
unsigned g_keys = 0;

// Locks and conditions are the system's, which begin as 0; the runtime's begin as -1 to -3, as no other does.
template <class Native>
Native* As(intptr_t* object) {
    static_assert(sizeof(Native) == sizeof *object);
    const intptr_t value = *object;
    if (value < 0 && value >= -3) InterlockedCompareExchange64(reinterpret_cast<volatile LONG64*>(object), 0, value);
    return reinterpret_cast<Native*>(object);
}

Values* Own() {
    return g_slot == TLS_OUT_OF_INDEXES ? nullptr : static_cast<Values*>(TlsGetValue(g_slot));
}

void Free(Values* values) {
    for (unsigned key = 0; key < g_keys; ++key) {
        if (values->of[key] != nullptr && g_destructors[key] != nullptr) g_destructors[key](values->of[key]);
    }
    HeapFree(GetProcessHeap(), 0, values);
}

void EndThread() {
    Values* const own = Own();
    if (own == nullptr) return;
    AcquireSRWLockExclusive(&g_lock);
    Values** place = &g_threads;
    while (*place != own) place = &(*place)->next;
    *place = own->next;
    ReleaseSRWLockExclusive(&g_lock);
    TlsSetValue(g_slot, nullptr);
    Free(own);
}

// All other threads are done with the DLL.
void EndAll() {
    __gnu_cxx::__freeres();
    while (Values* const values = g_threads) {
        g_threads = values->next;
        Free(values);
    }
    if (g_slot != TLS_OUT_OF_INDEXES) TlsFree(g_slot);
    g_slot = TLS_OUT_OF_INDEXES;
}

}  // namespace
}  // namespace dllruntime

// The linker leads the runtime's calls here (option --wrap), and the system's calls of the DLL (option --entry).
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

int __wrap_pthread_mutex_init(intptr_t* mutex, const void*) {
    *mutex = 0;
    return 0;
}
int __wrap_pthread_mutex_destroy(intptr_t*) {
    return 0;
}
int __wrap_pthread_mutex_lock(intptr_t* mutex) {
    AcquireSRWLockExclusive(dllruntime::As<SRWLOCK>(mutex));
    return 0;
}
int __wrap_pthread_mutex_unlock(intptr_t* mutex) {
    ReleaseSRWLockExclusive(dllruntime::As<SRWLOCK>(mutex));
    return 0;
}
int __wrap_pthread_cond_wait(intptr_t* condition, intptr_t* mutex) {
    SleepConditionVariableSRW(dllruntime::As<CONDITION_VARIABLE>(condition), dllruntime::As<SRWLOCK>(mutex), INFINITE,
                              0);
    return 0;
}
int __wrap_pthread_cond_broadcast(intptr_t* condition) {
    WakeAllConditionVariable(dllruntime::As<CONDITION_VARIABLE>(condition));
    return 0;
}

// 0 before, 1 while the function runs, 2 afterwards.
int __wrap_pthread_once(LONG volatile* once, void (*function)()) {
    for (;;) {
        const LONG before = InterlockedCompareExchange(once, 1, 0);
        if (before == 2) return 0;
        if (before == 0) break;
        Sleep(0);
    }
    try {
        function();
    } catch (...) {
        InterlockedExchange(once, 0);
        throw;
    }
    InterlockedExchange(once, 2);
    return 0;
}

int __wrap_pthread_key_create(unsigned* key, dllruntime::Destructor destructor) {
    using namespace dllruntime;
    AcquireSRWLockExclusive(&g_lock);
    if (g_slot == TLS_OUT_OF_INDEXES) g_slot = TlsAlloc();
    const bool made = g_slot != TLS_OUT_OF_INDEXES && g_keys < kKeys;
    if (made) {
        g_destructors[g_keys] = destructor;
        *key = g_keys++;
    }
    ReleaseSRWLockExclusive(&g_lock);
    return made ? 0 : EAGAIN;
}
void* __wrap_pthread_getspecific(unsigned key) {
    const auto* own = dllruntime::Own();
    return own != nullptr ? own->of[key] : nullptr;
}
int __wrap_pthread_setspecific(unsigned key, const void* value) {
    using namespace dllruntime;
    Values* own = Own();
    if (own == nullptr) {
        own = static_cast<Values*>(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof *own));
        if (own == nullptr || !TlsSetValue(g_slot, own)) {
            HeapFree(GetProcessHeap(), 0, own);
            return ENOMEM;
        }
        AcquireSRWLockExclusive(&g_lock);
        own->next = g_threads;
        g_threads = own;
        ReleaseSRWLockExclusive(&g_lock);
    }
    own->of[key] = const_cast<void*>(value);
    return 0;
}

BOOL WINAPI DllMainCRTStartup(HINSTANCE instance, DWORD reason, LPVOID processEnds);

// What guards the stack gets its value within: a function that is guarded itself would take that for a fault.
__attribute__((no_stack_protector)) BOOL WINAPI DllRuntimeEntry(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
    const BOOL result = DllMainCRTStartup(instance, reason, processEnds);
    if (reason == DLL_THREAD_DETACH) dllruntime::EndThread();
    // When the whole process ends, other threads may have been stopped anywhere, and the system takes everything back.
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) dllruntime::EndAll();
    return result;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
