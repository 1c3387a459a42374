// A process that ends in the middle of a dialog: the settings file holds the old or the new sets, each of them whole,
// and whoever comes next gets the lock.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "processes/Process.h"
#include "processes/SettingsFileDialog.h"
#include "refhost/settings/HostSettings.h"

namespace test {
namespace {

constexpr UINT kEndedAtStep = 10;
constexpr UINT kEndedWhileOpen = 11;
constexpr UINT kLeft = 12;
constexpr int kWhileOpen = -1;
constexpr wchar_t kReady[] = L"ZonwickProcessTestReady";
constexpr wchar_t kGo[] = L"ZonwickProcessTestGo";

// "Configure Area Set" leaves the file to "Manage Area Sets".
class Death : public SettingsFileDialog, public testing::WithParamInterface<bool> {
protected:
    const bool m_manage = GetParam();
    // Runs the job to its end at a call or a step of the commit; 0 is not at all.
    DWORD RunJob(int call, int step = 0) {
        std::wostringstream words;
        words << m_manage << L' ' << call << L' ' << step << L' ' << file.path;
        return Process(L"EditUntilTheEnd", words.str()).ExitCode();
    }
    // The file and the sets are the old ones or the new ones; true for the new.
    bool ExpectOldOrNew() {
        const std::string content = file.Read();
        Load();
        const bool isNew = content == m_newFile;
        EXPECT_TRUE(isNew || content == m_oldFile) << content;
        EXPECT_EQ(ModuleSets(), isNew ? m_newSets : m_oldSets);
        return isNew;
    }
    // Whether the lock was met as a dead process left it.
    bool MetAnAbandonedLock() {
        return std::ranges::any_of(TakeTraces(), [](const Trace& trace) {
            return trace.text.find(L"ended without releasing it") != std::wstring::npos;
        });
    }

    const std::string m_oldFile = SampleFile();
    std::string m_newFile;
    std::wstring m_oldSets, m_newSets;
};

TEST_P(Death, AtEveryCallAndEveryWriteLeavesOldOrNewSets) {
    Load(m_oldFile);
    m_oldSets = ModuleSets();
    const int calls = static_cast<int>(RunJob(0)) - static_cast<int>(kFinished);
    ASSERT_GT(calls, 5);
    m_newFile = file.Read();
    Load();
    m_newSets = ModuleSets();
    EXPECT_EQ(m_newFile != m_oldFile, m_manage);
    EXPECT_EQ(m_newSets.find(L"Added") != std::wstring::npos, m_manage);
    TakeTraces();

    int kills = 0, locksLeft = 0, renewed = 0;
    const auto die = [&](int call, int step, UINT code) {
        SCOPED_TRACE(testing::Message() << "call " << call << ", step " << step);
        file.Write(m_oldFile);
        ASSERT_EQ(RunJob(call, step), code);
        ++kills;
        renewed += ExpectOldOrNew() ? 1 : 0;
        locksLeft += MetAnAbandonedLock() ? 1 : 0;
        // The next one can do what the dead one was at.
        if (m_manage) {
            EXPECT_GT(RunJob(0), kFinished);
        }
    };
    die(kWhileOpen, 0, kEndedWhileOpen);
    const int stride = std::getenv("ZONWICK_TEST_LONG") != nullptr ? 1 : std::max(calls / (m_manage ? 8 : 4), 1);
    for (int call = 1; call <= calls; call += stride) die(call, 0, kEndedAtCall);
    for (int step = kHostStepLocked; m_manage && step <= kHostStepLast; ++step) die(0, step, kEndedAtStep);
    EXPECT_TRUE(!m_manage || locksLeft > 0) << "no process ended with the lock held";
    EXPECT_TRUE(!m_manage || renewed > 0);
    std::printf("%d calls of the host in OK; %d processes ended, %d with the lock held, %d with the new sets stored\n",
                calls, kills, locksLeft, renewed);
}

INSTANTIATE_TEST_SUITE_P(Dialogs, Death, testing::Bool(),
                         [](const auto& manage) { return manage.param ? "Manage" : "Configure"; });

// The end of a process does not wait for another one that holds the lock.
TEST_F(SettingsFileDialog, LeavingDoesNotWaitForTheLock) {
    file.Write(SampleFile());
    const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, kReady);
    const HANDLE go = CreateEventW(nullptr, TRUE, FALSE, kGo);
    Process process(L"LeaveWithTheModuleLoaded", file.path);
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

// One set gone, one new and named; or one more area, and the areas left out. By messages: keys go to one process alone.
void Edit(HWND dialog, bool manage) {
    if (!manage) {
        Push(dialog, IDC_CONFIG_ADD);
        CheckRadioButton(dialog, IDC_CONFIG_REQUIRED, IDC_CONFIG_IGNORED, IDC_CONFIG_IGNORED);
        return;
    }
    Push(dialog, IDC_MANAGE_REMOVE);
    Push(dialog, IDC_MANAGE_CREATE);
    SetWindowTextW(LabelEdit(dialog), L"Added");
    SendMessageW(LabelEdit(dialog), WM_KEYDOWN, VK_RETURN, 0);
}

TEST_F(DeathJob, EditUntilTheEnd) {
    std::wstring text;
    if (!JobWords(L"EditUntilTheEnd", text)) GTEST_SKIP();
    std::wistringstream words(text);
    bool manage = false;
    int call = 0, step = 0;
    words >> manage >> call >> step >> std::ws;
    std::getline(words, file.path);
    Load();
    const auto play = [&](HWND dialog) {
        Edit(dialog, manage);
        if (call == kWhileOpen) TerminateProcess(GetCurrentProcess(), kEndedWhileOpen);
        Calls() = {0, call, 0};
        const auto setStep = file.classes.Dll().Export<decltype(HostSettingsSetStep)>("HostSettingsSetStep");
        if (step != 0) setStep(EndAtStep, &step);
        Push(dialog, IDOK);
    };
    if (!manage) PlayManage([](HWND) {}, IDCANCEL);
    Pilot(play, {}, [&] { manage ? Open() : m_configureSet(m_owner, 2); });
    TerminateProcess(GetCurrentProcess(), kFinished + static_cast<UINT>(Calls().count));
}

TEST_F(DeathJob, LeaveWithTheModuleLoaded) {
    std::wstring path;
    if (!JobWords(L"LeaveWithTheModuleLoaded", path)) GTEST_SKIP();
    file.path = path;
    Load();
    ModuleSets();
    SetEvent(OpenEventW(EVENT_MODIFY_STATE, FALSE, kReady));
    WaitForSingleObject(OpenEventW(SYNCHRONIZE, FALSE, kGo), 60000);
    ExitProcess(kLeft);
}

}  // namespace
}  // namespace test
