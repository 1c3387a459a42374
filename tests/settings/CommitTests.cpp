// Settings files: commits, refused commits, damage, and what is left when a process ends.
#include <windows.h>

#include <sddl.h>

#include "StoreFixture.h"

namespace test {
namespace {

constexpr UINT kEndedAtStep = 9;
constexpr wchar_t kFileVariable[] = L"STORE_TEST_FILE";
const std::string kOld = "{\n  \"n\": 1,\n  \"kept\": [1.0, null]\n}\n";
const std::string kNew = "{\n  \"n\": 2\n}\n";

std::wstring Variable(const wchar_t* name) {
    wchar_t value[MAX_PATH] = L"";
    return GetEnvironmentVariableW(name, value, MAX_PATH) < MAX_PATH ? value : L"";
}

// This program again, doing one job on a file.
class Process {
public:
    Process(const wchar_t* job, const std::filesystem::path& file) {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        std::wstring command = L"\"" + std::wstring(program) + L"\" --gtest_filter=Job.* --gtest_brief=1";
        SetEnvironmentVariableW(kJobVariable, job);
        SetEnvironmentVariableW(kFileVariable, file.c_str());
        STARTUPINFOW start{};
        start.cb = sizeof start;
        EXPECT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr, nullptr,
                                   &start, &m_info));
        SetEnvironmentVariableW(kJobVariable, nullptr);
    }
    ~Process() {
        CloseHandle(m_info.hThread);
        CloseHandle(m_info.hProcess);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool Running(DWORD wait = 0) const { return WaitForSingleObject(m_info.hProcess, wait) == WAIT_TIMEOUT; }
    DWORD ExitCode() const {
        DWORD code = 0;
        EXPECT_FALSE(Running(60000));
        GetExitCodeProcess(m_info.hProcess, &code);
        return code;
    }

private:
    PROCESS_INFORMATION m_info{};
};

struct Fault {
    int step;
    DWORD error;  // 0: the process ends
};

DWORD CALLBACK RunFault(int step, void* context) {
    const auto* fault = static_cast<const Fault*>(context);
    if (step != fault->step) return ERROR_SUCCESS;
    if (fault->error == ERROR_SUCCESS) TerminateProcess(GetCurrentProcess(), kEndedAtStep);
    return fault->error;
}

class CommitTest : public StoreTest {
protected:
    NodePtr OpenOld() {
        WriteBytes(m_file, kOld);
        return Open();
    }
    // The file that the last message names and that holds what was not stored.
    std::filesystem::path RefusedFile() const {
        const std::wstring message = LastMessage();
        const size_t end = message.rfind(L"\".");
        const size_t start = message.rfind(L'"', end - 1);
        return end == std::wstring::npos ? std::wstring() : message.substr(start + 1, end - start - 1);
    }
};

TEST_F(CommitTest, LookingWritesNothing) {
    const NodePtr root = Open();
    Child(root, L"group")->SetInt64(_bstr_t(L"n"), 1);
    EXPECT_TRUE(FilesInFolder().empty());
    EXPECT_EQ(S_OK, HostSettingsCommit(Open())) << "nothing to store";
    EXPECT_TRUE(FilesInFolder().empty());
    EXPECT_EQ(S_OK, HostSettingsCommit(root));
    EXPECT_EQ("{\n  \"group\": {\"n\": 1}\n}\n", ReadBytes(m_file));
}

TEST_F(CommitTest, StoresWholeTreesAndKeepsTheVersionBefore) {
    const NodePtr root = OpenOld();
    const NodePtr working = NewNode();
    EXPECT_EQ(S_OK, CommitOver(working, root));
    EXPECT_EQ(S_OK, CommitOver(root, working));
    EXPECT_EQ(std::set<std::string>{"sets.json"}, FilesInFolder()) << "nothing changed, nothing written";

    working->SetInt64(_bstr_t(L"n"), 2);
    EXPECT_EQ(S_OK, CommitOver(root, working));
    EXPECT_EQ("{\n  \"n\": 2,\n  \"kept\": [1.0, null]\n}\n", ReadBytes(m_file));
    EXPECT_EQ(kOld, ReadBytes(m_folder / L"sets.json.bak"));
    EXPECT_EQ(S_OK, CommitOver(root, NewNode(3)));
    EXPECT_EQ((std::set<std::string>{"sets.json", "sets.json.bak"}), FilesInFolder());
    EXPECT_EQ(3, Number(Open(), L"n"));
}

TEST_F(CommitTest, NewFilesAreForTheirOwnerAlone) {
    EXPECT_EQ(S_OK, CommitOver(Open(), NewNode(1)));
    BYTE descriptor[4096];
    DWORD size = 0;
    ASSERT_TRUE(GetFileSecurityW(m_file.c_str(), DACL_SECURITY_INFORMATION, descriptor, sizeof descriptor, &size));
    wchar_t* text = nullptr;
    ASSERT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1,
                                                                     DACL_SECURITY_INFORMATION, &text, nullptr));
    EXPECT_EQ(std::wstring::npos, std::wstring(text).find(L";;;WD)")) << "everybody has access";
    LocalFree(text);
}

TEST_F(CommitTest, RefusesToOverwriteWhatOthersStored) {
    const NodePtr root = OpenOld();
    const NodePtr group = Child(root, L"group");
    EXPECT_EQ(S_OK, CommitOver(Open(), NewNode(5)));
    HostSupportForgetFailures();
    EXPECT_EQ(kSettingsChanged, CommitOver(root, NewNode(2)));
    EXPECT_EQ("{\n  \"n\": 5\n}\n", ReadBytes(m_file));
    EXPECT_EQ(kNew, ReadBytes(RefusedFile()));
    wchar_t traced[1000];
    EXPECT_GT(HostSupportLastFailure(traced, std::size(traced)), 0u);
    EXPECT_EQ(LastMessage(), traced);
    // The node is what it was, and so are those taken from it.
    EXPECT_EQ(1, Number(root, L"n"));
    group->SetInt64(_bstr_t(L"x"), 8);
    EXPECT_EQ(8, Number(Child(root, L"group"), L"x"));
    // Again: in place of the same file, but never over what somebody changed in it; and once more when the file is
    // gone.
    const auto first = RefusedFile();
    EXPECT_EQ(kSettingsChanged, HostSettingsCommit(root));
    EXPECT_EQ(first, RefusedFile());
    EXPECT_NE(kNew, ReadBytes(first));
    WriteBytes(first, "mine");
    EXPECT_EQ(kSettingsChanged, HostSettingsCommit(root)) << "the same tree";
    EXPECT_EQ("mine", ReadBytes(first));
    EXPECT_NE(first, RefusedFile());
    std::filesystem::remove(m_file);
    EXPECT_EQ(kSettingsChanged, CommitOver(root, NewNode(2)));
    EXPECT_FALSE(std::filesystem::exists(m_file));
}

TEST_F(CommitTest, LeavesDamagedFilesAlone) {
    for (const std::string& damage : {std::string(), std::string("{\n\"a\": 1,"), std::string("{\n}\0\0", 5)}) {
        WriteBytes(m_file, damage);
        NodePtr root;
        EXPECT_EQ(kSettingsDamaged, HostSettingsOpenFile(m_file.c_str(), &root));
        EXPECT_EQ(nullptr, root.GetInterfacePtr());
        EXPECT_NE(std::wstring::npos,
                  LastMessage().find(damage.empty() ? L"sets.json: line 1: " : L"sets.json: line 2: "));
        EXPECT_EQ(damage, ReadBytes(m_file));
    }
    // Damaged since it was read: neither overwritten.
    const NodePtr root = OpenOld();
    WriteBytes(m_file, "{");
    EXPECT_EQ(kSettingsChanged, CommitOver(root, NewNode(2)));
    EXPECT_EQ("{", ReadBytes(m_file));
}

// A disk that fails at any step: the old tree in the file and in memory, nothing left lying about, and the next try
// stores everything.
TEST_F(CommitTest, SurvivesFailuresAtEachStep) {
    for (int step = kHostStepLocked; step < kHostStepLast; ++step) {
        SCOPED_TRACE(step);
        Fault fault{step, ERROR_DISK_FULL};
        const NodePtr root = OpenOld();
        HostSettingsSetStep(RunFault, &fault);
        EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_DISK_FULL), CommitOver(root, NewNode(2)));
        HostSettingsSetStep(nullptr, nullptr);
        EXPECT_EQ(kOld, ReadBytes(m_file));
        EXPECT_EQ(1, Number(root, L"n"));
        EXPECT_EQ(kNew, ReadBytes(RefusedFile()));
        std::filesystem::remove(RefusedFile());
        std::filesystem::remove(m_folder / L"sets.json.bak");
        EXPECT_EQ(std::set<std::string>{"sets.json"}, FilesInFolder());
        EXPECT_EQ(S_OK, CommitOver(root, NewNode(2)));
        EXPECT_EQ(kNew, ReadBytes(m_file));
    }
}

TEST_F(CommitTest, SurvivesItsProcessEndingAtEachStep) {
    for (int step = kHostStepLocked; step <= kHostStepLast; ++step) {
        SCOPED_TRACE(step);
        WriteBytes(m_file, kOld);
        EXPECT_EQ(kEndedAtStep, Process(std::to_wstring(step).c_str(), m_file).ExitCode());
        EXPECT_EQ(step < kHostStepSwapped ? kOld : kNew, ReadBytes(m_file));
        // What the process left is no obstacle.
        EXPECT_EQ(S_OK, CommitOver(Open(), NewNode(3)));
        EXPECT_EQ((std::set<std::string>{"sets.json", "sets.json.bak"}), FilesInFolder());
    }
}

constexpr int kUpdates = 40;

TEST_F(CommitTest, LosesNoUpdateOfTwoProcesses) {
    WriteBytes(m_file, "{}");
    const Process first(L"first", m_file);
    const Process second(L"second", m_file);
    int reads = 0;
    for (; first.Running() || second.Running(5); ++reads) Open();
    EXPECT_EQ(0u, first.ExitCode());
    EXPECT_EQ(0u, second.ExitCode());
    EXPECT_GT(reads, 10);
    const NodePtr root = Open();
    EXPECT_EQ(2 * kUpdates, Number(root, L"n"));
    EXPECT_EQ(kUpdates, Number(root, L"first"));
    EXPECT_EQ(kUpdates, Number(root, L"second"));
    EXPECT_EQ((std::set<std::string>{"sets.json", "sets.json.bak"}), FilesInFolder());
}

TEST_F(CommitTest, TellsWhatIsInItsWay) {
    NodePtr root;
    EXPECT_EQ(E_INVALIDARG, HostSettingsOpenFile(nullptr, &root));
    EXPECT_EQ(E_INVALIDARG, HostSettingsOpenFile(L"", &root));
    EXPECT_EQ(E_POINTER, HostSettingsOpenFile(m_file.c_str(), nullptr));
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_DIRECTORY), HostSettingsOpenFile(m_folder.c_str(), &root));
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND), HostSettingsOpenFile((m_folder / L"no" / L"x").c_str(), &root));

    for (const wchar_t* ending : {L".lock", L".commit", L".bak"}) {
        root = OpenOld();
        const std::filesystem::path obstacle = m_file.wstring() + ending;
        std::filesystem::create_directory(obstacle);
        EXPECT_TRUE(FAILED(CommitOver(root, NewNode(2)))) << obstacle;
        EXPECT_NE(std::wstring::npos, LastMessage().find(obstacle.wstring())) << LastMessage();
        EXPECT_EQ(kOld, ReadBytes(m_file));
        EXPECT_EQ(kNew, ReadBytes(RefusedFile()));
        std::filesystem::remove(obstacle);
        EXPECT_EQ(S_OK, CommitOver(root, NewNode(2)));
        std::filesystem::remove(m_file.wstring() + L".bak");
    }
    // Files of the user's own, and a second name of one: all stay, and so does the second name of the settings.
    const std::filesystem::path own = m_folder / L"own.txt";
    for (const wchar_t* ending : {L".lock", L".commit", L".bak.commit", L".second"}) {
        root = OpenOld();
        const std::filesystem::path obstacle = m_file.wstring() + ending;
        const bool second = obstacle.extension() == L".second";
        WriteBytes(own, "mine");
        ASSERT_TRUE(CreateHardLinkW(obstacle.c_str(), second ? m_file.c_str() : own.c_str(), nullptr));
        EXPECT_TRUE(FAILED(CommitOver(root, NewNode(2)))) << obstacle;
        EXPECT_NE(std::wstring::npos, LastMessage().find((second ? m_file : obstacle).wstring())) << LastMessage();
        EXPECT_EQ(kOld, ReadBytes(m_file));
        EXPECT_EQ(second ? kOld : "mine", ReadBytes(obstacle));
        EXPECT_TRUE(std::filesystem::remove(obstacle));
        EXPECT_EQ(S_OK, CommitOver(root, NewNode(2)));
        EXPECT_EQ("mine", ReadBytes(own));
    }
    root = OpenOld();
    SetFileAttributesW(m_file.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED), CommitOver(root, NewNode(2)));
    EXPECT_NE(std::wstring::npos, LastMessage().find(L"write-protected"));
    EXPECT_EQ(kOld, ReadBytes(m_file));
    for (const auto& file : {m_file, RefusedFile()}) SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(CommitTest, StoresUnderLongAndForeignNames) {
    const std::filesystem::path folder = m_folder / std::wstring(120, L'l') / std::wstring(120, L'\x4E2D');
    const std::filesystem::path file = L"\\\\?\\" + (folder / L"s\x00E4tze.json").wstring();
    std::error_code error;
    std::filesystem::create_directories(L"\\\\?\\" + folder.wstring(), error);
    if (error) GTEST_SKIP() << "this system has no such paths: " << error.message();
    NodePtr root;
    ASSERT_EQ(S_OK, HostSettingsOpenFile(file.c_str(), &root)) << LastMessage();
    EXPECT_EQ(S_OK, CommitOver(root, NewNode(1))) << LastMessage();
    ASSERT_EQ(S_OK, HostSettingsOpenFile(file.c_str(), &root));
    EXPECT_EQ(1, Number(root, L"n"));
}

// What the processes started above do; nothing in a normal run.
class Job : public CommitTest {
protected:
    const std::wstring m_job = Variable(kJobVariable);
    const std::wstring m_path = Variable(kFileVariable);
};

TEST_F(Job, EndAtStep) {
    if (m_job.empty() || m_job[0] > L'9') GTEST_SKIP();
    Fault fault{m_job[0] - L'0', ERROR_SUCCESS};
    HostSettingsSetStep(RunFault, &fault);
    NodePtr root;
    ASSERT_EQ(S_OK, HostSettingsOpenFile(m_path.c_str(), &root));
    CommitOver(root, NewNode(2));
    FAIL() << "was to end before";
}

TEST_F(Job, Update) {
    if (m_job.empty() || m_job[0] <= L'9') GTEST_SKIP();
    for (int done = 0; done < kUpdates;) {
        NodePtr root;
        ASSERT_EQ(S_OK, HostSettingsOpenFile(m_path.c_str(), &root));
        const NodePtr working = NewNode();
        ASSERT_EQ(S_OK, CommitOver(working, root));
        working->SetInt64(_bstr_t(L"n"), std::max(0LL, Number(root, L"n")) + 1);
        working->SetInt64(_bstr_t(m_job.c_str()), done + 1);
        const HRESULT status = CommitOver(root, working);
        if (status == kSettingsChanged) {
            ASSERT_TRUE(std::filesystem::remove(RefusedFile()));
        } else {
            ASSERT_EQ(S_OK, status) << LastMessage();
            ++done;
        }
    }
}

}  // namespace
}  // namespace test
