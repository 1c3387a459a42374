#pragma once
// Runs the built zonhost in a folder of its own and reads what it prints.

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace test {

namespace fs = std::filesystem;

inline std::string ReadAll(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

inline void WriteAll(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

struct Result {
    DWORD code = 0xFFFF;
    std::string out;
    std::string err;
};

// A zonhost that runs. Both outputs go into files named after `number`: a file of an earlier run may still be open in a
// process that the system started meanwhile for its first window and that lives on.
class RunningZonhost {
public:
    RunningZonhost(const fs::path& folder, int number, const std::wstring& arguments)
        : m_out(folder / ("stdout-" + std::to_string(number))), m_err(folder / ("stderr-" + std::to_string(number))) {
        wchar_t self[MAX_PATH];
        GetModuleFileNameW(nullptr, self, MAX_PATH);
        std::wstring line = L"\"" + fs::path(self).replace_filename(L"zonhost.exe").wstring() +
                            L"\" --settings settings.json " + arguments;
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = OutputTo(m_out);
        startup.hStdError = OutputTo(m_err);
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(), &startup,
                                   &m_process))
            << GetLastError();
        CloseHandle(startup.hStdOutput);
        CloseHandle(startup.hStdError);
    }
    ~RunningZonhost() {
        if (WaitForSingleObject(m_process.hProcess, 0) == WAIT_TIMEOUT) TerminateProcess(m_process.hProcess, 1);
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }
    RunningZonhost(const RunningZonhost&) = delete;
    RunningZonhost& operator=(const RunningZonhost&) = delete;

    DWORD Id() const { return m_process.dwProcessId; }
    Result End() const {
        Result result;
        EXPECT_EQ(WaitForSingleObject(m_process.hProcess, 120000), WAIT_OBJECT_0) << "zonhost does not end";
        GetExitCodeProcess(m_process.hProcess, &result.code);
        result.out = ReadAll(m_out);
        result.err = ReadAll(m_err);
        return result;
    }

private:
    static HANDLE OutputTo(const fs::path& path) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        const HANDLE file =
            CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_NEW, 0, nullptr);
        EXPECT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
        return file;
    }

    const fs::path m_out, m_err;
    PROCESS_INFORMATION m_process{};
};

class ZonhostFolder : public testing::Test {
protected:
    // A name outside every code page.
    void SetUp() override {
        m_folder = fs::temp_directory_path() / (L"zonhost \u00E9\u4E2D " + std::to_wstring(std::random_device{}()) +
                                                L"-" + std::to_wstring(GetCurrentProcessId()));
        fs::create_directories(m_folder / "in");
        WriteAll(m_folder / "sets.json",
                 R"({"sets":[{"name":"Keep","mode":"required","areas":[{"left":20,"top":10,"right":120,"bottom":60}]},)"
                 R"({"name":"Drop","mode":"ignored","areas":[{"left":20,"top":10,"right":120,"bottom":60}]}]})");
    }
    void TearDown() override {
        std::error_code error;
        fs::remove_all(m_folder, error);
    }

    // With the folder as the current one and its settings.json; `arguments` as typed.
    Result Run(const std::wstring& arguments) { return RunningZonhost(m_folder, ++m_runs, arguments).End(); }

    void Import() {
        const Result result = Run(L"sets import sets.json");
        ASSERT_EQ(result.code, 0u) << result.err;
    }

    fs::path m_folder;
    int m_runs = 0;
};

}  // namespace test
