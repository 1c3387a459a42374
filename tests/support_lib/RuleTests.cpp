// What the host's support, language and controls libraries decide apart from Windows.
#include <gtest/gtest.h>

#include <cstdarg>

#include "refhost/controls/HelpChapter.h"
#include "refhost/language/LanguageName.h"
#include "refhost/support/TraceText.h"

namespace {

std::wstring Format(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::wstring text = support::FormatText(format, arguments);
    va_end(arguments);
    return text;
}

TEST(TraceText, FormatsAnything) {
    EXPECT_EQ(L"AreaSet name too long, maximum: 64", Format(L"AreaSet name too long, maximum: %d", 64));
    const std::wstring longText(5000, L'x');
    EXPECT_EQ(longText + L"!", Format(L"%ls!", longText.c_str()));
    const std::wstring tooLong(200000, L'x');
    EXPECT_EQ(L"%ls", Format(L"%ls", tooLong.c_str())) << "the format at least";
    EXPECT_EQ(L"(no text)", Format(nullptr));
    EXPECT_EQ(L"a b  c\x4E2D", support::OneLine(L"a\x7F"
                                                L"b\r\nc\x4E2D"));
}

// The messages that an operator sees keep their own words; any other gets advice at least.
TEST(TraceText, EveryMessageSaysWhatToDo) {
    for (const unsigned int id : {34106u, 34108u, 34109u}) EXPECT_NE(support::UserTextOf(id).what, nullptr) << id;
    for (const unsigned int id : {0u, 1u, 34107u}) {
        EXPECT_EQ(support::UserTextOf(id).what, nullptr) << id;
        EXPECT_NE(support::UserTextOf(id).remedy, nullptr) << id;
    }
}

TEST(LanguageName, LooksBesideTheModuleAlone) {
    using Paths = std::vector<std::wstring>;
    EXPECT_EQ((Paths{L"C:\\a.b\\Some.zh-Hant-TW.dll", L"C:\\a.b\\Some.zh-Hant.dll", L"C:\\a.b\\Some.zh.dll"}),
              language::ModulePaths(L"C:\\a.b\\Some.dll", L"zh-Hant-TW"));
    EXPECT_EQ(Paths{L"C:\\a.b\\Some.de.dll"}, language::ModulePaths(L"C:\\a.b\\Some", L"de"));
    EXPECT_EQ(Paths{L"Some.de.dll"}, language::ModulePaths(L"Some.dll", L"de"));
    EXPECT_EQ(Paths{L"Some.2a.dll"}, language::ModulePaths(L"Some", L"2a"));
    const std::wstring longest(84, L'a');
    EXPECT_TRUE(language::IsLanguageName(longest) && !language::IsLanguageName(longest + L"a"));
    for (const wchar_t* name :
         {L"", L"..", L"d{", L"d\x00E9", L"d@", L"d[", L"d/", L"d:", L"de\\x", L"de/..", L"-de", L"de-", L"d e"}) {
        EXPECT_TRUE(language::ModulePaths(L"C:\\Some.dll", name).empty());
    }
}

TEST(HelpChapter, LeadsToTheDialogsChapter) {
    EXPECT_EQ(L"manage-area-sets", controls::ChapterOf(0x20000 + 27784));
    EXPECT_EQ(L"", controls::ChapterOf(27784));
    EXPECT_EQ(L"file:///C:/My%20files%23/50%25%7F.html#x", controls::FileUrl(L"C:\\My files#\\50%\x7F.html", L"x"));
    EXPECT_EQ(L"file://server/share/\x00E4.html", controls::FileUrl(L"\\\\server\\share\\\x00E4.html", L""));
}

}  // namespace
