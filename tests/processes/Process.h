#pragma once
// This program again as another process, doing one job: the test "Job.<name>" with a few words.

#include <windows.h>

#include <string>

namespace test {

class Process {
public:
    Process(const std::wstring& job, const std::wstring& words);
    ~Process();  // ends it if it still runs
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    HANDLE Handle() const { return m_info.hProcess; }
    bool Running(DWORD wait = 0) const { return WaitForSingleObject(m_info.hProcess, wait) == WAIT_TIMEOUT; }
    // Waits for its end, which has to come within `wait` milliseconds.
    DWORD ExitCode(DWORD wait = 60000);

private:
    PROCESS_INFORMATION m_info{};
};

// The words of this process's job; false when it is none and the test with the name is to be skipped.
bool JobWords(const wchar_t* job, std::wstring& words);

}  // namespace test
