// A host that handles messages, and asks the module, in the middle of each of its calls.
#include "processes/SettingsFile.h"

namespace test {
namespace {

class Reentry : public SettingsFileDialog {
protected:
    void SetUp() override {
        SettingsFileDialog::SetUp();
        NewFile(SampleFile());
        OpenFile(m_path);
        m_sets = Sets();
    }
    void TearDown() override {
        Calls() = {};
        SettingsFileDialog::TearDown();
    }

    std::wstring m_sets;
};

TEST_F(Reentry, WhileTheSetsLoadThoseReadWholeAreServed) {
    int calls = 0;
    Calls().during = [&] {
        ++calls;
        const std::wstring now = Sets();
        EXPECT_EQ(m_sets.substr(0, now.size()), now);
        m_init(nullptr);
        EXPECT_FALSE(Open());
        BYTE* block = nullptr;
        DWORD length = 0;
        EXPECT_FALSE(Export<decltype(::CreateAreaSetImage)>("CreateAreaSetImage")(nullptr, L"none", &block, &length));
    };
    OpenFile(m_path);
    Calls().during = nullptr;
    EXPECT_EQ(Sets(), m_sets);
    EXPECT_GT(calls, 50);
}

// The file has the new sets after OK and the old ones after Cancel, whatever came in between.
TEST_F(Reentry, NoCommandComesIntoOkOrCancel) {
    std::string stored;
    for (const bool ok : {true, false}) {
        for (const UINT command : {0, IDOK, IDCANCEL, IDC_MANAGE_REMOVE, IDC_MANAGE_CREATE, IDC_MANAGE_COPY}) {
            SCOPED_TRACE(testing::Message() << "command " << command << (ok ? " in OK" : " in Cancel"));
            WriteFile(SampleFile());
            OpenFile(m_path);
            EXPECT_TRUE(Play({[](HWND dialog) { Push(dialog, IDC_MANAGE_REMOVE); },
                              [&](HWND dialog) {
                                  if (command != 0) Calls().during = [=] { Push(dialog, command); };
                                  ok ? PressOk(dialog) : PressCancel(dialog);
                                  Calls().during = nullptr;
                              }}));
            if (ok && command == 0) stored = ReadFile();
            EXPECT_EQ(ReadFile(), ok ? stored : SampleFile());
            EXPECT_EQ(Sets(), ok ? m_sets.substr(m_sets.find(L'\n') + 1) : m_sets);
            EXPECT_TRUE(TakeHostBoxes().empty());
        }
    }
}

}  // namespace
}  // namespace test
