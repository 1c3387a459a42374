#pragma once
// The one logger of the process, behind CLogBase and the functions of HostSupport.h.

#include <windows.h>

#include <string>
#include <vector>

#include "refhost/support/HostSupport.h"
#include "refhost/support/LogFile.h"

namespace support {

class SharedLock {
public:
    explicit SharedLock(SRWLOCK& lock) : m_lock(lock) { AcquireSRWLockExclusive(&m_lock); }
    ~SharedLock() { ReleaseSRWLockExclusive(&m_lock); }
    SharedLock(const SharedLock&) = delete;
    SharedLock& operator=(const SharedLock&) = delete;

private:
    SRWLOCK& m_lock;
};

struct Failure {
    std::wstring text;
    unsigned int stringId;
    ULONGLONG ticks;
};

class Logger {
public:
    static Logger& Get();

    void AddComponent(const wchar_t* component, HINSTANCE instance, HINSTANCE resources);
    // The string of a module: from the resources named at its start, else from the module itself.
    std::wstring LoadText(HINSTANCE instance, unsigned int stringId);
    void Write(int severity, HINSTANCE instance, const char* source, int line, std::wstring text,
               unsigned int stringId);

    bool SetFile(const wchar_t* path);
    void SetObserver(HostTraceObserver observer, void* context);
    std::vector<Failure> Failures();
    void ForgetFailures();

private:
    struct Component {
        HINSTANCE instance;
        HINSTANCE resources;
        std::wstring name;
    };

    Component Find(HINSTANCE instance);

    SRWLOCK m_lock = SRWLOCK_INIT;  // members below, not the callbacks
    std::vector<Component> m_components;
    std::vector<Failure> m_failures;

    SRWLOCK m_outputLock = SRWLOCK_INIT;  // one trace at a time goes out
    LogFile m_file;
    HostTraceObserver m_observer = nullptr;
    void* m_context = nullptr;
    volatile DWORD m_writingThread = 0;
};

}  // namespace support
