#include <windows.h>

#include "store/SystemMutex.h"
#include "trace/Trace.h"

namespace {

constexpr const char* kSource = "AreaSetManager";

static_assert(sizeof(SRWLOCK) == sizeof(void*));

SRWLOCK* Local(void*& place) {
    return reinterpret_cast<SRWLOCK*>(&place);
}

DWORD Wait(HANDLE mutex) {
    constexpr DWORD kQuietWait = 3000;
    const DWORD result = WaitForSingleObject(mutex, kQuietWait);
    if (result != WAIT_TIMEOUT) return result;
    trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                     L"CAreaSetManager: the lock is held by another program or thread; waiting for it.");
    return WaitForSingleObject(mutex, INFINITE);
}

}  // namespace

CSystemMutex::CSystemMutex(const wchar_t* name) noexcept : m_handle(CreateMutexW(nullptr, FALSE, name)) {
    // A mutex that another account created grants less than full access, but waiting is all that is needed.
    if (m_handle == nullptr) m_handle = OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, name);
}

CSystemMutex::~CSystemMutex() {
    if (m_handle != nullptr) CloseHandle(m_handle);
}

void CSystemMutex::Lock() noexcept {
    const uint64_t self = GetCurrentThreadId();
    if (m_owner.load(std::memory_order_relaxed) == self) {
        ++m_depth;
        return;
    }
    // Nothing is held while a long wait is traced: the host's logger may call exports.
    const DWORD result = m_handle != nullptr ? Wait(m_handle) : WAIT_FAILED;
    // The process's own threads are serialised whatever became of the wait.
    AcquireSRWLockExclusive(Local(m_local));
    m_held = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
    m_owner.store(self, std::memory_order_relaxed);
    m_depth = 1;
    if (result == WAIT_ABANDONED) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                         L"CAreaSetManager: the lock's last owner ended without releasing it.");
    } else if (!m_held) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__, L"CAreaSetManager: the lock could not be taken.");
    }
}

void CSystemMutex::Unlock() noexcept {
    if (--m_depth > 0) return;
    const bool held = m_held;
    m_owner.store(0, std::memory_order_relaxed);
    if (held) ReleaseMutex(m_handle);
    ReleaseSRWLockExclusive(Local(m_local));
}
