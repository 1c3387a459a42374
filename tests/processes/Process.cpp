#include "processes/Process.h"

#include <gtest/gtest.h>

namespace test {

namespace {

constexpr wchar_t kJob[] = L"PROCESS_TEST_JOB";
constexpr wchar_t kWords[] = L"PROCESS_TEST_WORDS";

std::wstring Variable(const wchar_t* name) {
    wchar_t value[1024] = L"";
    return GetEnvironmentVariableW(name, value, 1024) < 1024 ? value : L"";
}

}  // namespace

Process::Process(const std::wstring& job, const std::wstring& words) {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(program) + L"\" --gtest_filter=*Job." + job + L" --gtest_brief=1";
    SetEnvironmentVariableW(kJob, job.c_str());
    SetEnvironmentVariableW(kWords, words.c_str());
    STARTUPINFOW start{};
    start.cb = sizeof start;
    EXPECT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr, nullptr,
                               &start, &m_info));
    SetEnvironmentVariableW(kJob, nullptr);
    SetEnvironmentVariableW(kWords, nullptr);
}

Process::~Process() {
    if (Running()) TerminateProcess(m_info.hProcess, 1);
    CloseHandle(m_info.hThread);
    CloseHandle(m_info.hProcess);
}

DWORD Process::ExitCode(DWORD wait) {
    DWORD code = STILL_ACTIVE;
    EXPECT_EQ(WaitForSingleObject(m_info.hProcess, wait), WAIT_OBJECT_0) << "still runs";
    GetExitCodeProcess(m_info.hProcess, &code);
    return code;
}

bool JobWords(const wchar_t* job, std::wstring& words) {
    words = Variable(kWords);
    return Variable(kJob) == job;
}

}  // namespace test
