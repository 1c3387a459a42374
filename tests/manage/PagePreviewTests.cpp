// The preview in a real window; "Manage Area Sets" shows what it paints.
#include <gtest/gtest.h>

#include "manage/PagePreviewCtrl.h"

namespace {

// Either may go first.
TEST(PagePreview, PaintsAndLeavesItsWindowWhichLeavesIt) {
    constexpr UINT kPreviewId = 7;
    const HWND parent = CreateWindowExW(WS_EX_TOPMOST, L"#32770", L"Preview", WS_POPUP | WS_VISIBLE, 50, 50, 240, 280,
                                        nullptr, nullptr, nullptr, nullptr);
    const HWND label = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 20, 20, 200, 240, parent,
                                       reinterpret_cast<HMENU>(UINT_PTR{kPreviewId}), nullptr, nullptr);
    {
        CPagePreviewCtrl preview;
        ASSERT_TRUE(preview.SubclassControl(kPreviewId, parent));
        // A page whose corners are the wrong way round covers what a page of that width would.
        preview.SetPageSize({-2100, 2970});
        preview.RedrawNow();
        const HDC dc = GetDC(label);
        std::wstring row;
        for (int x = 0; x < 200; ++x) row += GetPixel(dc, x, 120) == GetSysColor(COLOR_WINDOW) ? L'w' : L'f';
        ReleaseDC(label, dc);
        EXPECT_EQ(row, std::wstring(15, L'f') + std::wstring(169, L'w') + std::wstring(16, L'f'));
    }
    RedrawWindow(label, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    CPagePreviewCtrl other;
    ASSERT_TRUE(other.SubclassControl(kPreviewId, parent));
    DestroyWindow(label);
    EXPECT_EQ(other.GetSafeHwnd(), nullptr);
    DestroyWindow(parent);
}

}  // namespace
