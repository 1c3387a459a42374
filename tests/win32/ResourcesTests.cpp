// A translation is used where it has something, the module's own resources elsewhere.
#include "win32/Resources.h"

#include <gtest/gtest.h>

#include "resource.h"
#include "test_resource.h"
#include "win32/Dialog.h"
#include "win32/DialogDriver.h"
#include "win32/DialogScript.h"

namespace {

class TranslatedDlg final : public CDialog {
public:
    using CDialog::CDialog;

protected:
    const wchar_t* GetName() const override { return L"TranslatedDlg"; }
};

TEST(Resources, ATranslationMayLackSome) {
    const HMODULE translation = LoadLibraryExW(L"test_language.dll", nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(translation, nullptr);
    win32::SetInstances(GetModuleHandleW(nullptr), translation);

    EXPECT_EQ(win32::FormatText(IDS_NUMBER_REFUSED, {L"%2", L"0", L"9"}), L"0 bis 9: %2, %4, 100 %");
    EXPECT_EQ(win32::LoadText(IDS_FAILED_MEMORY).rfind(L"This could not be done", 0), 0U);
    EXPECT_EQ(win32::LoadText(1), L"");

    ASSERT_TRUE(win32::EnableControlHosting());
    const auto titleOf = [](UINT id) {
        std::wstring title;
        TranslatedDlg dialog(id);
        test::PlayScript(
            [&](HWND window) {
                title = GetTextOfWindow(window);
                test::Cancel(window);
            },
            [&] { dialog.DoModal(); });
        return title;
    };
    EXPECT_EQ(titleOf(IDD_TEST_PLAIN), L"Schlicht");
    EXPECT_EQ(titleOf(IDD_TEST_CONTROL), L"Control");

    win32::SetInstances(nullptr, nullptr);
    FreeLibrary(translation);
}

// The dialogs are themed in a host that is not.
TEST(Resources, TheModulesManifestIsActiveInItsScope) {
    const auto redirected = [] {
        ACTCTX_SECTION_KEYED_DATA data = {};
        data.cbSize = sizeof(data);
        return FindActCtxSectionStringW(0, nullptr, ACTIVATION_CONTEXT_SECTION_DLL_REDIRECTION, L"comctl32.dll",
                                        &data) != FALSE;
    };
    EXPECT_FALSE(redirected());
    {
        const win32::ResourceScope scope;
        EXPECT_TRUE(redirected());
        const win32::ResourceScope nested;
        EXPECT_TRUE(redirected());
    }
    EXPECT_FALSE(redirected());
}

}  // namespace
