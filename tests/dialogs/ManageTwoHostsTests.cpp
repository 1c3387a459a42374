// Two processes that have "Manage Area Sets" open on one settings file.
#include "dialogs/ManageFileFixture.h"
#include "processes/Process.h"

namespace {

using namespace test;

constexpr DWORD kLongestWait = 60000;
constexpr wchar_t kJob[] = L"AddASetWhileAnotherHostWaits";

class Signal {
public:
    Signal(const wchar_t* name, const std::wstring& path) {
        const std::wstring unique = name + std::to_wstring(std::hash<std::wstring>()(path));
        m_event = CreateEventW(nullptr, TRUE, FALSE, unique.c_str());
    }
    ~Signal() { CloseHandle(m_event); }
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    void Give() const { SetEvent(m_event); }
    void Await() const { ASSERT_EQ(WaitForSingleObject(m_event, kLongestWait), WAIT_OBJECT_0); }

private:
    HANDLE m_event;
};

// By messages: two processes cannot both have the keyboard.
void AddSetNamed(HWND dialog, const wchar_t* name) {
    SendMessageW(dialog, WM_COMMAND, IDC_MANAGE_CREATE, 0);
    SetWindowTextW(LabelEdit(dialog), name);
    SendMessageW(LabelEdit(dialog), WM_KEYDOWN, VK_RETURN, 0);
}

// Runs zonhost over the settings file.
DWORD RunZonhost(const std::wstring& settings, const std::wstring& arguments) {
    std::wstring line = L"zonhost.exe --settings \"" + settings + L"\" " + arguments;
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::wstring folder(program, wcsrchr(program, L'\\') - program + 1);
    if (!CreateProcessW((folder + L"zonhost.exe").c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process)) {
        return GetLastError();
    }
    WaitForSingleObject(process.hProcess, kLongestWait);
    DWORD code = STILL_ACTIVE;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

class ManageTwoHosts : public ManageFile {
protected:
    void ExpectSetsInTheFile(const wchar_t* names) {
        OpenFile();
        EXPECT_TRUE(Play({[=](HWND dialog) { EXPECT_EQ(SetNames(dialog), names); }, PressCancel}));
    }
};

TEST_F(ManageTwoHosts, TheSecondOkIsRefusedAndNothingIsLost) {
    EXPECT_TRUE(Play({[](HWND dialog) { AddSetNamed(dialog, L"Common"); }, PressOk}));
    const std::wstring kept = m_path + L".refused-1";
    EXPECT_TRUE(Play({[&](HWND dialog) {
                          AddSetNamed(dialog, L"Mine");
                          AddSetNamed(dialog, L"Mine too");
                          const Signal open(L"open", m_path), go(L"go", m_path);
                          Process other(kJob, m_path);
                          open.Await();
                          go.Give();
                          ASSERT_EQ(other.ExitCode(), 0u) << "the first OK is good";
                          EXPECT_NE(Content().find("Theirs"), std::string::npos);
                      },
                      PressOk,
                      [&](HWND dialog) {
                          const std::vector<std::wstring> boxes = TakeHostBoxes();
                          ASSERT_EQ(boxes.size(), 1u);
                          EXPECT_TRUE(boxes[0].starts_with(L"The area sets could not be saved.")) << boxes[0];
                          EXPECT_NE(boxes[0].find(kept.substr(kept.rfind(L'\\'))), std::wstring::npos) << boxes[0];
                          TakeTraces();
                          EXPECT_TRUE(IsWindowVisible(dialog));
                          EXPECT_EQ(SetNames(dialog), L"Common|Mine|Mine too|");
                          PressCancel(dialog);
                      }}));
    ExpectSetsInTheFile(L"Common|Theirs|");

    EXPECT_EQ(RunZonhost(m_path, L"sets import \"" + kept + L"\" --set \"Mine too\""), 0u);
    ExpectSetsInTheFile(L"Common|Theirs|Mine too|");
}

class ManageOtherHostJob : public ManageFile {};

// The other host.
TEST_F(ManageOtherHostJob, AddASetWhileAnotherHostWaits) {
    std::wstring path;
    if (!JobWords(kJob, path)) GTEST_SKIP();
    m_path = path;
    OpenFile();
    EXPECT_TRUE(Play({[&](HWND dialog) {
                          AddSetNamed(dialog, L"Theirs");
                          const Signal open(L"open", m_path), go(L"go", m_path);
                          open.Give();
                          go.Await();
                      },
                      PressOk}));
    m_path.clear();  // the file is the first process's
}

}  // namespace
