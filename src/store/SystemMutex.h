#pragma once

#include <atomic>
#include <cstdint>

// A named system mutex, shared by all processes of the Windows session and re-entrant for its owning thread. Nested
// locks of the owner are counted in memory; the system's mutex is taken once. A mutex that its owner left behind by
// ending counts as acquired, with one trace.
//
// Natively the name is ignored and the lock is between threads of the process only.
class CSystemMutex {
public:
    // Opens the mutex by name, or creates it; does not take it. When neither is possible, or a wait for it fails, Lock
    // traces that and serialises the threads of this process only.
    explicit CSystemMutex(const wchar_t* name) noexcept;
    ~CSystemMutex();
    CSystemMutex(const CSystemMutex&) = delete;
    CSystemMutex& operator=(const CSystemMutex&) = delete;

    void Lock() noexcept;  // waits without a time limit
    void Unlock() noexcept;

private:
    void* m_handle = nullptr;
    [[maybe_unused]] void* m_local = nullptr;  // between the process's own threads
    std::atomic<uint64_t> m_owner = 0;         // a thread, 0 for none
    int m_depth = 0;                           // of the owner
    [[maybe_unused]] bool m_held = false;      // the wait succeeded, so there is something to release
};

// Holds the mutex for its own life.
class CSystemLock {
public:
    explicit CSystemLock(CSystemMutex& mutex) noexcept : m_mutex(mutex) { m_mutex.Lock(); }
    ~CSystemLock() { m_mutex.Unlock(); }
    CSystemLock(const CSystemLock&) = delete;
    CSystemLock& operator=(const CSystemLock&) = delete;

private:
    CSystemMutex& m_mutex;
};
