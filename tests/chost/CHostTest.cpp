// Runs the host in plain C as a process of its own.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

std::string ProgramFolder() {
    char path[MAX_PATH];
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    const std::string file(path);
    return file.substr(0, file.find_last_of('\\') + 1);
}

// A white 24-bit page of 100 x 100 pixels at 254 dpi: ten pixels are a millimetre.
void WritePage(const std::string& path) {
    BITMAPFILEHEADER file = {0x4D42, 54 + 300 * 100, 0, 0, 54};
    BITMAPINFOHEADER info = {sizeof info, 100, 100, 1, 24, BI_RGB, 300 * 100, 10000, 10000, 0, 0};
    const std::vector<unsigned char> pixels(300 * 100, 0x11);
    FILE* out = std::fopen(path.c_str(), "wb");
    ASSERT_NE(out, nullptr);
    std::fwrite(&file, sizeof file, 1, out);
    std::fwrite(&info, sizeof info, 1, out);
    std::fwrite(pixels.data(), pixels.size(), 1, out);
    std::fclose(out);
}

std::string RunProgram(const std::string& command, int& exitCode) {
    std::string text;
    FILE* pipe = _popen(command.c_str(), "r");
    if (pipe == nullptr) return text;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) text += static_cast<char>(c);
    exitCode = _pclose(pipe);
    return text;
}

TEST(CHost, EnumeratesReadsAndMasks) {
    const std::string page = ProgramFolder() + "c_host_page.bmp";
    WritePage(page);
    int exitCode = -1;
    const std::string text = RunProgram(
        "\"\"" + ProgramFolder() + "c_host.exe\" \"Z:" SAMPLES_DIR "/settings.json\" \"" + page + "\"\"", exitCode);
    EXPECT_EQ(exitCode, 0) << text;
    EXPECT_NE(text.find(" areas, first at "), std::string::npos) << text;
    EXPECT_NE(text.find("masked: "), std::string::npos) << text;
    EXPECT_NE(text.find("bytes, BM"), std::string::npos) << text;
    std::remove(page.c_str());
}

// A host that loads the module for each use: no slot, handle or block of any cycle stays.
TEST(CycleHost, NothingStaysOfALoad) {
    const std::string cycles = std::getenv("ZONWICK_TEST_LONG") != nullptr ? "1000" : "50";
    for (const char* host : {"cycle_host"
#ifdef HAVE_MSVC_HOST
                             ,
                             "cycle_host_msvc"
#endif
         }) {
        for (const char* way : {"plain", "sta", "mta", "threads"}) {
            int exitCode = -1;
            const std::string text = RunProgram(ProgramFolder() + host + ".exe " + way + " " + cycles, exitCode);
            EXPECT_EQ(exitCode, 0) << host << " " << way << ": " << text;
        }
    }
}

}  // namespace
