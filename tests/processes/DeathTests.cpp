// A process that ends in the middle of "Manage Area Sets": the settings file holds the old or the new sets, each of
// them whole, and whoever comes next gets the lock.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "processes/Process.h"
#include "processes/SettingsFile.h"
#include "refhost/settings/HostSettings.h"

namespace test {
namespace {

constexpr UINT kEndedAtStep = 10;
constexpr UINT kLeft = 11;
constexpr wchar_t kReady[] = L"ZonwickProcessTestReady";
constexpr wchar_t kGo[] = L"ZonwickProcessTestGo";

// What the job does before OK: one set gone, one new and named. By messages: keys go to one process alone.
Steps EditSets(const std::function<void(HWND)>& ok) {
    return {[](HWND dialog) { Push(dialog, IDC_MANAGE_REMOVE); }, [](HWND dialog) { Push(dialog, IDC_MANAGE_CREATE); },
            [](HWND dialog) {
                const HWND edit = LabelEdit(dialog);
                SetWindowTextW(edit, L"Added");
                SendMessageW(edit, WM_KEYDOWN, VK_RETURN, 0);
            },
            ok};
}

class Death : public SettingsFileDialog {
protected:
    // Runs the job to its end at a call (positive) or a step of the commit (negative); 0 is not at all.
    DWORD RunJob(int endAt) { return Process(L"EditUntilTheEnd", std::to_wstring(endAt) + L" " + m_path).ExitCode(); }
    // The file and the sets are the old ones or the new ones; true for the new.
    bool ExpectOldOrNew() {
        const std::string content = ReadFile();
        OpenFile(m_path);
        const std::wstring sets = Sets();
        const bool isNew = content == m_newFile;
        EXPECT_TRUE(isNew || content == m_oldFile) << content;
        EXPECT_EQ(sets, isNew ? m_newSets : m_oldSets);
        return isNew;
    }

    std::string m_oldFile = SampleFile(), m_newFile;
    std::wstring m_oldSets, m_newSets;
};

TEST_F(Death, AtEveryCallAndEveryWriteLeavesOldOrNewSets) {
    NewFile(m_oldFile);
    OpenFile(m_path);
    m_oldSets = Sets();
    const int calls = static_cast<int>(RunJob(0)) - static_cast<int>(kFinished);
    ASSERT_GT(calls, 20);
    m_newFile = ReadFile();
    ASSERT_NE(m_newFile, m_oldFile);
    OpenFile(m_path);
    m_newSets = Sets();
    ASSERT_NE(m_newSets.find(L"Added"), std::wstring::npos);
    ASSERT_NE(m_newSets, m_oldSets);
    TakeTraces();

    const int stride = std::getenv("ZONWICK_TEST_LONG") != nullptr ? 1 : calls / 8;
    int kills = 0, locksLeft = 0, renewed = 0;
    const auto die = [&](int endAt, UINT code) {
        SCOPED_TRACE(endAt);
        WriteFile(m_oldFile);
        ASSERT_EQ(RunJob(endAt), code);
        ++kills;
        renewed += ExpectOldOrNew() ? 1 : 0;
        locksLeft += MetAnAbandonedLock() ? 1 : 0;
        // The next one can do what the dead one was at.
        const DWORD next = RunJob(0);
        EXPECT_GT(next, kFinished);
    };
    for (int call = 1; call <= calls; call += stride) die(call, kEndedAtCall);
    for (int step = kHostStepLocked; step <= kHostStepLast; ++step) die(-step, kEndedAtStep);
    EXPECT_GT(locksLeft, 0) << "no process ended with the lock held";
    EXPECT_GT(renewed, 0);
    std::printf("%d calls of the host in OK; %d processes ended, %d with the lock held, %d with the new sets stored\n",
                calls, kills, locksLeft, renewed);
}

// The end of a process does not wait for another one that holds the lock.
TEST_F(Death, LeavingDoesNotWaitForTheLock) {
    NewFile(m_oldFile);
    const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, kReady);
    const HANDLE go = CreateEventW(nullptr, TRUE, FALSE, kGo);
    Process process(L"LeaveWithTheModuleLoaded", m_path);
    EXPECT_EQ(WaitForSingleObject(ready, 60000), WAIT_OBJECT_0);
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"SASyncMutex");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(WaitForSingleObject(mutex, 60000), WAIT_OBJECT_0);
    SetEvent(go);
    EXPECT_EQ(process.ExitCode(20000), kLeft);
    ReleaseMutex(mutex);
    for (const HANDLE handle : {ready, go, mutex}) CloseHandle(handle);
}

// What the other processes do; nothing in a normal run.
class DeathJob : public SettingsFileDialog {};

DWORD CALLBACK EndAtStep(int step, void* endAt) {
    if (step == *static_cast<int*>(endAt)) TerminateProcess(GetCurrentProcess(), kEndedAtStep);
    return ERROR_SUCCESS;
}

TEST_F(DeathJob, EditUntilTheEnd) {
    std::wstring words;
    if (!JobWords(L"EditUntilTheEnd", words)) GTEST_SKIP();
    const size_t space = words.find(L' ');
    int endAt = std::stoi(words.substr(0, space));
    OpenFile(words.substr(space + 1));
    Play(EditSets([&](HWND dialog) {
        Calls() = {0, std::max(endAt, 0), 0};
        int step = -endAt;
        if (endAt < 0) counted.Store().Export<decltype(HostSettingsSetStep)>("HostSettingsSetStep")(EndAtStep, &step);
        PressOk(dialog);
        TerminateProcess(GetCurrentProcess(), kFinished + static_cast<UINT>(Calls().count));
    }));
}

TEST_F(DeathJob, LeaveWithTheModuleLoaded) {
    std::wstring path;
    if (!JobWords(L"LeaveWithTheModuleLoaded", path)) GTEST_SKIP();
    OpenFile(path);
    Sets();
    SetEvent(OpenEventW(EVENT_MODIFY_STATE, FALSE, kReady));
    WaitForSingleObject(OpenEventW(SYNCHRONIZE, FALSE, kGo), 60000);
    ExitProcess(kLeft);
}

}  // namespace
}  // namespace test
