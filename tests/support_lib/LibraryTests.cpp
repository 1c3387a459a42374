// The support, language and controls libraries as modules of the host use them.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>
#include <vector>

#include "host/Controls.h"
#include "host/Language.h"
#include "host/Support.h"
#include "refhost/controls/HostControls.h"
#include "refhost/language/HostLanguage.h"
#include "refhost/support/HostSupport.h"
#include "strings.h"

namespace {

const HINSTANCE kModule = GetModuleHandleW(nullptr);

template <class Payload>
void Trace(int severity, Payload payload, ...) {
    va_list arguments;
    va_start(arguments, payload);
    CLogBase::TraceImpl(severity, kModule, "AreaSetManager", 42, payload, arguments);
    va_end(arguments);
}

class SupportTest : public testing::Test {
protected:
    SupportTest() {
        HostSupportForgetFailures();
        HostSupportSetTraceObserver(Observe, this);
        HostSupportSetBoxAnswerer(Answer, this);
        CLogBase::InitImpl(L"Component", kModule, kModule);
    }
    ~SupportTest() override {
        HostSupportSetTraceObserver(nullptr, nullptr);
        HostSupportSetBoxAnswerer(nullptr, nullptr);
        HostSupportSetLogFile(nullptr);
    }

    std::wstring Box() {
        m_box.clear();
        EXPECT_EQ(IDCANCEL, QWMessageBoxExW(nullptr, nullptr, nullptr, MB_ICONERROR, 0, 0, 0, kModule));
        return m_box;
    }

    std::vector<std::wstring> m_traces;
    std::wstring m_box;
    std::wstring m_caption;

private:
    static void CALLBACK Observe(const HostTrace* trace, void* context) {
        // Must be dropped: a trace about a trace would never end.
        CLogBase::TraceImpl(6, nullptr, "Observer", 1, L"again", nullptr);
        static_cast<SupportTest*>(context)->m_traces.push_back(
            std::to_wstring(trace->severity) + L" " +
            std::wstring(trace->source, trace->source + strlen(trace->source)) + L"(" + std::to_wstring(trace->line) +
            L") " + trace->text + L" #" + std::to_wstring(trace->stringId));
    }
    static int CALLBACK Answer(const HostBox* box, void* context) {
        auto* const test = static_cast<SupportTest*>(context);
        test->m_box = box->text;
        test->m_caption = box->caption;
        CLogBase::TraceImpl(6, nullptr, "Answerer", 1, L"box", nullptr);
        return IDCANCEL;
    }
};

TEST_F(SupportTest, TakesTheThreeKindsOfTraces) {
    Trace(6, L"%ls: %d", L"count", 3);
    Trace(2, static_cast<unsigned int>(IDS_TEST_TEXT));
    Trace(2, Log::Message{0}, L"{ABC}");
    Trace(6, Log::Message{7});
    Trace(6, 999u);
    CLogBase::TraceImpl(6, nullptr, nullptr, 0, static_cast<const wchar_t*>(nullptr), nullptr);
    CLogBase::TraceImpl(6, kModule, "X", 1, static_cast<unsigned int>(IDS_TEST_PERCENT), nullptr);
    ASSERT_EQ(7u, m_traces.size());
    EXPECT_EQ(L"6 AreaSetManager(42) count: 3 #0", m_traces[0]);
    EXPECT_EQ(L"2 AreaSetManager(42) A text of the test. #500", m_traces[1]);
    EXPECT_NE(std::wstring::npos, m_traces[2].find(L"{ABC}"));
    EXPECT_NE(std::wstring::npos, m_traces[4].find(L"999"));
    EXPECT_EQ(L"6 X(1) 100 %s #501", m_traces[6]) << "without arguments nothing is formatted";
}

TEST_F(SupportTest, ShowsTheLastFailureInTheUsersWords) {
    EXPECT_NE(std::wstring::npos, Box().find(L"Something went wrong"));
    Trace(2, static_cast<unsigned int>(IDS_TEST_TEXT));
    Trace(6, L"Some::Operation failed.");
    EXPECT_EQ(0u, Box().find(L"A text of the test."));
    Trace(2, L"sets.json was changed.");
    Trace(2, 34106u);
    const std::wstring box = Box();
    EXPECT_EQ(0u, box.find(L"The area sets could not be read from the settings."));
    EXPECT_NE(std::wstring::npos, box.find(L"sets.json was changed."));
    EXPECT_NE(std::wstring::npos, box.find(L"try again"));
    EXPECT_EQ(std::wstring::npos, box.find(L"Operation"));
    EXPECT_EQ(HostApplicationName(), m_caption);
    wchar_t text[4];
    EXPECT_GT(HostSupportLastFailure(text, std::size(text)), 3u);
    EXPECT_EQ(3u, wcslen(text));
    EXPECT_EQ(IDCANCEL, QWMessageBoxExW(nullptr, L"own", L"title", 0, 0, 0, 0, nullptr));
    EXPECT_EQ(L"own", m_box);
    EXPECT_EQ(L"title", m_caption);
}

TEST_F(SupportTest, WritesWholeLinesFromManyThreads) {
    const auto path = std::filesystem::temp_directory_path() / L"support-tests.log";
    std::filesystem::remove(path);
    ASSERT_TRUE(HostSupportSetLogFile(path.c_str()));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 100; ++i) Trace(6, L"line %d\nof \x4E2D", i);
        });
    }
    for (auto& thread : threads) thread.join();
    HostSupportSetLogFile(nullptr);
    std::ifstream file(path);
    int count = 0;
    for (std::string line; std::getline(file, line); ++count) {
        const std::string start = "0000-00-00 00:00:00.000 6 AreaSetManager(42): line ";
        ASSERT_GT(line.size(), start.size());
        for (char& digit : line) digit = digit >= '0' && digit <= '9' && &digit < &line[24] ? '0' : digit;
        EXPECT_EQ(start, line.substr(0, start.size()));
        EXPECT_TRUE(line.ends_with(" of \xE4\xB8\xAD")) << line;
    }
    file.close();
    EXPECT_EQ(400, count);
    EXPECT_EQ(400u, m_traces.size());
    EXPECT_FALSE(HostSupportSetLogFile((path / L"no").c_str()));

    std::ofstream(path, std::ios::app) << std::string(5 << 20, '-');
    ASSERT_TRUE(HostSupportSetLogFile(path.c_str()));
    Trace(6, L"next");
    HostSupportSetLogFile(nullptr);
    EXPECT_LT(std::filesystem::file_size(path), 100u);
    EXPECT_GT(std::filesystem::file_size(path.wstring() + L".old"), 5u << 20);
    std::filesystem::remove(path);
    std::filesystem::remove(path.wstring() + L".old");
}

// The module of the language stands beside this program; it lacks one text and would leave a mark if it were run.
TEST_F(SupportTest, TakesTextsFromTheLanguageModule) {
    EXPECT_FALSE(HostLanguageSet(L"..\\x"));
    ASSERT_TRUE(HostLanguageSet(L"de-AT"));
    const HINSTANCE resources = CLang::GetResourceHandle(kModule);
    EXPECT_NE(kModule, resources);
    EXPECT_EQ(resources, CLang::GetResourceHandle(kModule));
    EXPECT_EQ(0u, GetEnvironmentVariableW(L"LANGUAGE_MODULE_RAN", nullptr, 0));
    const HINSTANCE support = GetModuleHandleW(L"HostSupport.dll");
    EXPECT_EQ(support, CLang::GetResourceHandle(support)) << "there is no language module";
    EXPECT_EQ(nullptr, CLang::GetResourceHandle(nullptr));

    CLogBase::InitImpl(L"", kModule, resources);
    Trace(6, static_cast<unsigned int>(IDS_TEST_TEXT));
    Trace(6, static_cast<unsigned int>(IDS_TEST_PERCENT));
    EXPECT_NE(std::wstring::npos, m_traces[0].find(L"Ein Text."));
    EXPECT_NE(std::wstring::npos, m_traces[1].find(L"100 "));
}

std::wstring g_chapter;

BOOL CALLBACK TakeHelp(const HostHelpRequest* request, void* context) {
    g_chapter = request->chapter;
    return *static_cast<BOOL*>(context);
}

TEST_F(SupportTest, OpensHelpOrSaysWhyNot) {
    BOOL handled = TRUE;
    HostControlsSetHelpOpener(TakeHelp, &handled);
    HostHelp(nullptr, 0x20000 + 27770, 0);
    EXPECT_EQ(L"configure-area-set", g_chapter);
    EXPECT_EQ(L"", m_box);
    handled = FALSE;
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const auto docs = std::filesystem::path(program).parent_path() / L"docs";
    if (!exists(docs)) {
        HostHelp(nullptr, 1, 0);
        EXPECT_NE(std::wstring::npos, m_box.find(L"docs\\operator.html"));
    }
    HostControlsSetHelpOpener(nullptr, nullptr);
    EXPECT_EQ(IDCANCEL, HostMessageBox(nullptr, L"text", MB_OK));
    EXPECT_EQ(L"text", m_box);
}

}  // namespace
