#include "manage/PaperSizes.h"

#include <gtest/gtest.h>

namespace {

TEST(PaperSizes, TheTableIsWholeAndPortrait) {
    int32_t expected = 0;
    std::wstring names;
    for (const PaperSizeEntry& entry : kPaperSizes) {
        EXPECT_EQ(entry.iFormat, expected++);
        EXPECT_LT(entry.iWidthMm, entry.iHeightMm) << entry.iFormat;
        // A typing slip in either column shows as a difference of more than the customary rounding.
        EXPECT_NEAR(entry.iWidthMm, entry.dWidthInches * 25.4, 0.6) << entry.iFormat;
        EXPECT_NEAR(entry.iHeightMm, entry.dHeightInches * 25.4, 0.6) << entry.iFormat;
        names += entry.pszName;
        names += L' ';
    }
    EXPECT_EQ(names,
              L"A0 A1 A2 A3 A4 A5 A6 A7 A8 A9 A10 B0 B1 B2 B3 B4 B5 B6 B7 B8 B9 B10 C0 C1 C2 C3 C4 C5 C6 C7 C8 C9 C10 "
              L"Letter Legal Executive Ledger/Tabloid A B C D E Statement ");
    for (const int32_t iFormat : {-1, 43, INT32_MIN, INT32_MAX}) EXPECT_EQ(GetPaperSize(iFormat), nullptr);
}

TEST(PaperSizes, OfferedTextsInBothUnits) {
    std::wstring names;
    for (const int32_t format : kOfferedPaperSizes) names += GetPaperSize(format)->pszName + std::wstring(L" ");
    EXPECT_EQ(names, L"A3 A4 A5 A6 B4 B5 Letter Legal Statement B ");
    EXPECT_EQ(GetPaperSizeText(*GetPaperSize(15), true, L"mm"), L"B4  250 x 353  mm");
    EXPECT_EQ(GetPaperSizeText(*GetPaperSize(15), false, L"in"), L"B4  9.84 x 13.90  in");
}

TEST(PaperSizes, EffectiveSize) {
    const struct {
        bool standard, landscape, metric;
        int32_t iFormat;
        float width, height;
    } cases[] = {
        {true, false, true, 4, 210.0F, 297.0F},  {true, true, true, 4, 297.0F, 210.0F},
        {true, false, false, 4, 8.27F, 11.69F},  {true, true, false, 42, 8.5F, 5.5F},
        {false, true, true, 4, 12.5F, 1500.0F},   // the orientation does not turn a custom size
        {true, false, true, 99, 12.5F, 1500.0F},  // nothing selected
    };
    for (const auto& one : cases) {
        const UserPageSize size =
            GetEffectiveSize({one.standard, one.landscape, one.iFormat, {12.5F, 1500.0F}}, one.metric);
        EXPECT_EQ(size.fWidth, one.width);
        EXPECT_EQ(size.fHeight, one.height);
    }
}

}  // namespace
