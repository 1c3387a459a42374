// "Configure Area Set" over the host's settings file, which "Manage Area Sets" alone writes: whatever becomes of the
// dialog, of a call of the host's store or of the process, the file stays as it is.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "faults/DialogPilot.h"
#include "processes/Process.h"
#include "processes/SettingsFile.h"

namespace test {
namespace {

constexpr UINT kEndedWhileOpen = 12;
constexpr int kWhileOpen = -1;

void Edit(HWND dialog) {
    Push(dialog, IDC_CONFIG_ADD);
    CheckRadioButton(dialog, IDC_CONFIG_REQUIRED, IDC_CONFIG_IGNORED, IDC_CONFIG_IGNORED);
}

class ConfigDeath : public SettingsFileDialog {
protected:
    void Start() {
        NewFile(m_file);
        OpenFile(m_path);
        m_sets = Sets();
        TakeTraces();
        KeepPages();
    }
    void ExpectOldFile() {
        EXPECT_EQ(ReadFile(), m_file);
        OpenFile(m_path);
        EXPECT_EQ(Sets(), m_sets);
    }

    const std::string m_file = SampleFile();
    std::wstring m_sets;
};

TEST_F(ConfigDeath, CancelAndOkLeaveTheFile) {
    Start();
    EXPECT_TRUE(PlaySet(2, {Edit, PressCancel}));
    EXPECT_EQ(Sets(), m_sets);
    EXPECT_TRUE(PlaySet(2, {Edit, PressOk}));
    EXPECT_EQ(StoredRects(2).size(), 3u);
    ExpectOldFile();
}

TEST_F(ConfigDeath, AStoreThatFailsAtEveryCallLeavesTheFile) {
    Start();
    const int stride = std::getenv("ZONWICK_TEST_LONG") != nullptr ? 1 : 5;
    int n = 1, stored = 0;
    for (bool reached = true; reached && n < 1000; n += stride) {
        SCOPED_TRACE(n);
        Pilot(
            [](HWND dialog) {
                Edit(dialog);
                PressOk(dialog);
            },
            [] { Calls() = {}; },
            [&] {
                Calls() = {0, 0, n};
                m_configureSet(m_owner, 2);
                reached = Calls().count >= n;
                Calls() = {};
            });
        const size_t areas = StoredRects(2).size();
        EXPECT_TRUE(areas == 2 || areas == 3) << areas;
        stored += areas == 3 ? 1 : 0;
        ExpectOldFile();
        TakeTraces();
        TakeHostBoxes();
    }
    EXPECT_GT(n, 20);
    EXPECT_LT(n, 1000);
    EXPECT_GT(stored, 0);
    std::printf("about %d calls of the store until OK is done\n", n - stride);
}

TEST_F(ConfigDeath, AProcessThatEndsLeavesTheFile) {
    Start();
    const auto run = [&](int endAt) {
        return Process(L"ConfigureUntilTheEnd", std::to_wstring(endAt) + L" " + m_path).ExitCode();
    };
    EXPECT_EQ(run(kWhileOpen), kEndedWhileOpen);
    ExpectOldFile();
    const int calls = static_cast<int>(run(0)) - static_cast<int>(kFinished);
    ASSERT_GT(calls, 5);
    ExpectOldFile();
    const int stride = std::getenv("ZONWICK_TEST_LONG") != nullptr ? 1 : std::max(calls / 4, 1);
    int kills = 0, locksLeft = 0;
    TakeTraces();
    for (int call = 1; call <= calls; call += stride, ++kills) {
        SCOPED_TRACE(call);
        EXPECT_EQ(run(call), kEndedAtCall);
        ExpectOldFile();
        locksLeft += MetAnAbandonedLock() ? 1 : 0;
    }
    std::printf("%d calls of the store in OK; %d processes ended, %d with the lock held\n", calls, kills, locksLeft);
}

// What the other processes do; nothing in a normal run.
class ConfigDeathJob : public SettingsFileDialog {};

TEST_F(ConfigDeathJob, ConfigureUntilTheEnd) {
    std::wstring words;
    if (!JobWords(L"ConfigureUntilTheEnd", words)) GTEST_SKIP();
    const size_t space = words.find(L' ');
    const int endAt = std::stoi(words.substr(0, space));
    OpenFile(words.substr(space + 1));
    KeepPages();
    PlaySet(2, {Edit, [&](HWND dialog) {
                    if (endAt == kWhileOpen) TerminateProcess(GetCurrentProcess(), kEndedWhileOpen);
                    Calls() = {0, endAt, 0};
                    PressOk(dialog);
                }});
    TerminateProcess(GetCurrentProcess(), kFinished + static_cast<UINT>(Calls().count));
}

}  // namespace
}  // namespace test
