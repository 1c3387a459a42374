// The program over a folder of damaged files among good ones: each is told, the others are done.
#include <gtest/gtest.h>
#include <objbase.h>
#include <windows.h>

#include <fstream>

#include "hostile/HostileFiles.h"

namespace {

namespace fs = std::filesystem;
using hostile::Sample;

DWORD RunZonhost(const fs::path& folder, const std::wstring& arguments) {
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::wstring line = L"\"" + fs::path(self).replace_filename(L"zonhost.exe").wstring() + L"\" " + arguments;
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    const HANDLE told =
        CreateFileW((folder / "told").c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    &inherit, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = told;
    PROCESS_INFORMATION process{};
    DWORD code = STILL_ACTIVE;
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(), &startup, &process)) {
        constexpr DWORD kPatience = 120000;
        if (WaitForSingleObject(process.hProcess, kPatience) == WAIT_TIMEOUT) TerminateProcess(process.hProcess, 99);
        GetExitCodeProcess(process.hProcess, &code);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    CloseHandle(told);
    return code;
}

std::string Told(const fs::path& folder) {
    const hostile::Bytes bytes = hostile::ReadBytes(folder / "told");
    return {bytes.begin(), bytes.end()};
}

TEST(HostileMask, DamagedPagesAreToldAndGoodOnesDone) {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const fs::path folder = fs::temp_directory_path() / ("hostile-mask-" + std::to_string(GetCurrentProcessId()));
    fs::create_directories(folder / "in");
    std::vector<std::string> cut;
    for (const Sample& sample : hostile::Collection()) hostile::WriteBytes(folder / "in" / sample.name, sample.bytes);
    for (const Sample& sample : hostile::Samples()) {
        hostile::WriteBytes(folder / "in" / sample.name, sample.bytes);
        cut.push_back("cut-" + sample.name);
        const auto half = sample.bytes.begin() + static_cast<ptrdiff_t>(sample.bytes.size() / 2);
        hostile::WriteBytes(folder / "in" / cut.back(), hostile::Bytes(sample.bytes.begin(), half));
    }
    std::ofstream(folder / "sets.json")
        << R"({"sets":[{"name":"Drop","mode":"ignored","areas":[{"left":0,"top":0,"right":9,"bottom":9}]}]})";

    // The folder of the pages is the current one; no library may be taken from there.
    for (const char* name : {"Zonwick.dll", "Zonwick.en.dll", "HostSettings.dll", "HostControls.dll",
                             "windowscodecs.dll", "atl.dll", "uxtheme.dll"}) {
        hostile::WriteBytes(folder / name, {'M', 'Z'});
    }

    ASSERT_EQ(RunZonhost(folder, L"--settings s.json sets import sets.json"), 0u) << Told(folder);
    EXPECT_EQ(RunZonhost(folder, L"--settings s.json mask --set Drop --out out in"), 1u) << Told(folder);
    const std::string told = Told(folder);
    for (const std::string& name : cut) EXPECT_NE(told.find(name), std::string::npos) << name << "\n" << told;
    for (const Sample& sample : hostile::Samples()) {
        const std::string stem = fs::path(sample.name).stem().string();
        const std::string result = stem == "frames" ? "frames-03.png" : stem + ".png";
        EXPECT_TRUE(fs::exists(folder / "out" / result)) << result << "\n" << told;
    }
    std::error_code error;
    fs::remove_all(folder, error);
    CoUninitialize();
}

}  // namespace
