// The preview in a real window.
#include <gtest/gtest.h>

#include "manage/PagePreviewCtrl.h"
#include "support/TraceRecorder.h"
#include "win32/DialogDriver.h"

namespace {

constexpr UINT kPreviewId = 7;

class PagePreview : public testing::Test {
protected:
    void SetUp() override {
        m_parent = CreateWindowExW(WS_EX_TOPMOST, L"#32770", L"Preview", WS_POPUP | WS_VISIBLE, 50, 50, 240, 280,
                                   nullptr, nullptr, nullptr, nullptr);
        const auto id = reinterpret_cast<HMENU>(UINT_PTR{kPreviewId});
        m_static = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | SS_GRAYRECT, 20, 20, 200, 240, m_parent,
                                   id, nullptr, nullptr);
        test::TakeTraces();
    }
    void TearDown() override { DestroyWindow(m_parent); }

    COLORREF PixelAt(int x, int y) const {
        const HDC dc = GetDC(m_static);
        const COLORREF color = GetPixel(dc, x, y);
        ReleaseDC(m_static, dc);
        return color;
    }

    HWND m_parent = nullptr;
    HWND m_static = nullptr;
};

TEST_F(PagePreview, PaintsOnlyWhenAskedAndByThenEverything) {
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    const COLORREF window = GetSysColor(COLOR_WINDOW);
    const COLORREF highlight = GetSysColor(COLOR_HIGHLIGHT);
    CPagePreviewCtrl preview;
    ASSERT_TRUE(preview.SubclassControl(kPreviewId, m_parent));
    preview.RedrawNow();
    EXPECT_EQ(PixelAt(1, 1), window);
    EXPECT_EQ(PixelAt(198, 238), window);

    preview.SetPageSize({2100, 2970});
    EXPECT_EQ(preview.AddRect({1050, 1485, 210, 297}), 0);
    EXPECT_EQ(PixelAt(1, 1), window);
    for (const DWORD ignored : {0x10000000, 0}) {
        preview.SetAreasIgnored(ignored);
        preview.RedrawNow();
        EXPECT_EQ(PixelAt(15, 120), face);
        EXPECT_EQ(PixelAt(16, 0), ignored ? highlight : window);
        EXPECT_EQ(PixelAt(32, 24), ignored ? window : highlight);
        EXPECT_EQ(PixelAt(99, 119), ignored ? window : highlight);
        EXPECT_EQ(PixelAt(100, 120), ignored ? highlight : window);
        EXPECT_EQ(PixelAt(185, 239), face);
    }
    test::Screenshot(m_parent, L"preview");
    const DWORD objects = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    for (int i = 0; i < 500; ++i) preview.RedrawNow();
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), objects + 2);
}

TEST_F(PagePreview, AMissingControlIsTraced) {
    CPagePreviewCtrl preview;
    EXPECT_FALSE(preview.SubclassControl(99, m_parent));
    const std::vector<test::TraceLine> expected = {
        {6, "PagePreviewCtrl", L"CPagePreviewCtrl::SubclassControl: SubclassDlgItem failed."}};
    EXPECT_EQ(test::TakeTraces(), expected);
}

// Either may go first.
TEST_F(PagePreview, TheObjectMayGoBeforeItsWindow) {
    {
        CPagePreviewCtrl preview;
        ASSERT_TRUE(preview.SubclassControl(kPreviewId, m_parent));
    }
    RedrawWindow(m_static, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    CPagePreviewCtrl other;
    ASSERT_TRUE(other.SubclassControl(kPreviewId, m_parent));
    DestroyWindow(m_static);
    EXPECT_EQ(other.GetSafeHwnd(), nullptr);
}

}  // namespace
