// A host that handles messages, and asks the module, in the middle of each of its calls.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "processes/SettingsFileDialog.h"

namespace test {
namespace {

enum class Phase { kLoad, kOk, kCancel };

class Reentry : public SettingsFileDialog {
protected:
    void SetUp() override {
        SettingsFileDialog::SetUp();
        Load(SampleFile());
        m_sets = ModuleSets();
        m_left = m_sets.substr(m_sets.find(L'\n') + 1);
        m_masked = m_page.Masked(L"Set 2");
        ASSERT_GT(m_masked.size(), 1000u);
        m_empty.Attach(MakeFakeNode(std::make_shared<FakeTree>()));
    }
    void TearDown() override {
        Calls() = {};
        m_empty = nullptr;
        SettingsFileDialog::TearDown();
    }

    // The calls of the phase; in the n-th one, or in each for 0, the host handles messages and asks.
    int Run(Phase phase, int n) {
        file.Write(SampleFile());
        const auto act = [&](const std::function<void()>& body, HWND dialog) {
            Calls() = {};
            Calls().during = [&, dialog] {
                if (n == 0 || Calls().count == n) HandleAndAsk(phase, dialog);
            };
            body();
            Calls().during = nullptr;
        };
        if (phase == Phase::kLoad) {
            act([&] { Load(); }, nullptr);
            return Calls().count;
        }
        Load();
        const auto play = [&](HWND dialog) {
            Push(dialog, IDC_MANAGE_REMOVE);
            act([&] { Push(dialog, phase == Phase::kOk ? IDOK : IDCANCEL); }, dialog);
        };
        EXPECT_EQ(Pilot(play, {}, [this] { Open(); }), Flight::kClosed);
        return Calls().count;
    }
    // Handles what was posted, but for the steps of the test itself, and asks the module for everything.
    void HandleAndAsk(Phase phase, HWND dialog) {
        for (const UINT id : {IDOK, IDCANCEL, IDC_MANAGE_REMOVE, IDC_MANAGE_CREATE, IDC_MANAGE_COPY}) {
            if (dialog != nullptr) Post(dialog, id);
        }
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            if (message.hwnd != nullptr) DispatchMessageW(&message);
        }
        EXPECT_FALSE(Open());
        for (IUnknown* host : {static_cast<IUnknown*>(nullptr), static_cast<IUnknown*>(m_empty)}) m_init(host);
        // Those that are edited, or of those being read the ones that are whole.
        const std::wstring now = ModuleSets();
        const bool read = phase != Phase::kOk && m_sets.starts_with(now);
        EXPECT_TRUE(read || (phase != Phase::kLoad && now == m_left)) << testing::PrintToString(now);
        EXPECT_EQ(m_page.Masked(L"Set 2"), now.find(L"Set 2") != std::wstring::npos ? m_masked : "");
    }

    const LoadedPage m_page{SAMPLES_DIR L"/letter.tif"};
    std::wstring m_sets, m_left;  // all, and without the first
    std::string m_masked;
    win32::ComPtr<ISettingsNode> m_empty;
};

// The file has the new sets after OK and the old ones after Cancel, whatever came in between.
TEST_F(Reentry, MessagesAndQuestionsInEachCallChangeNothing) {
    const bool all = std::getenv("ZONWICK_TEST_LONG") != nullptr;
    for (const Phase phase : {Phase::kLoad, Phase::kOk, Phase::kCancel}) {
        const int calls = Run(phase, -1);
        const std::string stored = file.Read();
        EXPECT_EQ(stored != SampleFile(), phase == Phase::kOk);
        EXPECT_GT(calls, 40);
        int runs = 0;
        for (int n = 0; n <= calls; n += all ? 1 : std::max(calls / 8, 1), ++runs) {
            SCOPED_TRACE(testing::Message() << "phase " << static_cast<int>(phase) << ", call " << n);
            EXPECT_EQ(Run(phase, n), calls);
            EXPECT_EQ(file.Read(), stored);
            EXPECT_EQ(ModuleSets(), phase == Phase::kOk ? m_left : m_sets);
            EXPECT_TRUE(TakeHostBoxes().empty());
            Load();
            EXPECT_EQ(ModuleSets(), phase == Phase::kOk ? m_left : m_sets) << "as they stand in the file";
        }
        std::printf("%d calls of the host, messages and questions in %d of them and in all at once\n", calls, runs - 1);
    }
}

// Where the host has no memory or its node is gone, a page is masked by the whole set or not at all, and nothing is
// stored over what was not read.
TEST_F(Reentry, AReadThatIsCutOffTakesNothingFromTheFile) {
    const bool all = std::getenv("ZONWICK_TEST_LONG") != nullptr;
    const int calls = Run(Phase::kLoad, -1);
    int runs = 0, masked = 0;
    for (const HRESULT status : {E_OUTOFMEMORY, RPC_E_DISCONNECTED}) {
        for (int n = 1; n <= calls; n += all ? 1 : calls / 8, ++runs) {
            SCOPED_TRACE(testing::Message() << std::hex << status << std::dec << " at call " << n);
            file.Write(SampleFile());
            Calls() = {0, 0, n, status};
            Load();
            Calls() = {};
            const std::string page = m_page.Masked(L"Set 2");
            EXPECT_TRUE(page.empty() || page == m_masked);
            masked += page.empty() ? 0 : 1;
            const auto play = [](HWND dialog) {
                for (const UINT id : {IDC_MANAGE_REMOVE, IDOK, IDCANCEL}) SendMessageW(dialog, WM_COMMAND, id, 0);
            };
            Pilot(play, {}, [this] { Open(); });
            EXPECT_EQ(file.Read(), SampleFile());
            TakeHostBoxes();
            Load();
            EXPECT_EQ(ModuleSets(), m_sets);
        }
    }
    std::printf("%d reads cut off, %d times the page was masked\n", runs, masked);
    EXPECT_TRUE(masked > 0 && masked < runs);
}

}  // namespace
}  // namespace test
