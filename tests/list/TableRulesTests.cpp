#include <gtest/gtest.h>

#include "refhost/controls/list/TableRules.h"

namespace {

using Ints = std::vector<int>;

TEST(ColumnWidths, TextsAreReadStrictly) {
    EXPECT_EQ(listtable::ParseColumnWidths(L"[%]250,750"), (listtable::ColumnWidths{true, {250, 750}}));
    EXPECT_EQ(listtable::ParseColumnWidths(L"90"), (listtable::ColumnWidths{false, {90}}));
    EXPECT_EQ(listtable::ParseColumnWidths(L"0,99999999999999999999"), (listtable::ColumnWidths{false, {0, 30000}}));
    for (const wchar_t* text : {L"", L"[%]", L"[%]250,", L",250", L"250;250", L"-1", L"25 0", L"[%250", L"90px"}) {
        EXPECT_FALSE(listtable::ParseColumnWidths(text)) << testing::PrintToString(text);
    }
    EXPECT_EQ(listtable::FormatColumnWidths({true, {250, 750}}), L"[%]250,750");
    EXPECT_EQ(listtable::FormatColumnWidths({false, {}}), L"");
}

TEST(ColumnWidths, SharesFillTheListAndComeBack) {
    for (int width = 1; width < 3000; width += 7) {
        const Ints pixels = listtable::GetPixels({333, 333, 334}, width);
        EXPECT_EQ(pixels[0] + pixels[1] + pixels[2], width);
        const Ints shares = listtable::GetThousandths(pixels, width);
        EXPECT_EQ(shares[0] + shares[1] + shares[2], 1000);
        EXPECT_EQ(listtable::GetPixels(shares, width), pixels) << width;
    }
    EXPECT_EQ(listtable::GetThousandths({10, 20}, 0), (Ints{0, 0}));
    EXPECT_EQ(listtable::GetThousandths({30000}, 1), (Ints{30000}));
    EXPECT_EQ(listtable::GetPixels({30000, 30000}, 30000), (Ints{30000, 30000}));
}

TEST(Rows, MovedOrder) {
    struct Case {
        int target;
        Ints rows;
        Ints order;  // empty: refused
    };
    const Case cases[] = {{0, {2}, {2, 0, 1, 3}},
                          {4, {0}, {1, 2, 3, 0}},
                          {1, {1}, {0, 1, 2, 3}},
                          {2, {0, 3}, {1, 0, 3, 2}},
                          {3, {3, 0}, {1, 2, 3, 0}},
                          {0, {}, {0, 1, 2, 3}},
                          {-1, {0}, {}},
                          {5, {0}, {}},
                          {0, {4}, {}},
                          {0, {-1}, {}},
                          {0, {1, 1}, {}},
                          {0, {0, 1, 2, 3, 0}, {}}};
    for (const Case& test : cases) {
        const auto order = listtable::GetMovedOrder(4, test.target, test.rows);
        EXPECT_EQ(order.value_or(Ints()), test.order) << test.target << testing::PrintToString(test.rows);
    }
}

TEST(Rows, NeighbourTargetStopsAtTheEnds) {
    EXPECT_EQ(listtable::GetNeighbourTarget(4, {2}, true), 1);
    EXPECT_EQ(listtable::GetNeighbourTarget(4, {2}, false), 4);
    EXPECT_EQ(listtable::GetNeighbourTarget(4, {3, 1}, true), 0);
    EXPECT_EQ(listtable::GetNeighbourTarget(4, {0, 2}, true), std::nullopt);
    EXPECT_EQ(listtable::GetNeighbourTarget(4, {3}, false), std::nullopt);
    EXPECT_EQ(listtable::GetNeighbourTarget(4, {}, false), std::nullopt);
}

TEST(Cells, OneLineOfAText) {
    EXPECT_EQ(listtable::GetOneLine(L"12\r\n13"), L"12");
    EXPECT_EQ(listtable::GetOneLine(L"\r\n\n12"), L"12");
    EXPECT_EQ(listtable::GetOneLine(L"1\t2\u2028x"), L"1 2");
    EXPECT_EQ(listtable::GetOneLine(L"\r\n"), L"");
    EXPECT_EQ(listtable::GetOneLine(L"\t 12.5\u00a0 "), L"12.5");
    EXPECT_EQ(listtable::GetOneLine(L"  "), L"");
}

TEST(Cells, TabGoesThroughTheEditableColumnsAsShown) {
    using listtable::CellPosition;
    using listtable::GetNeighbourCell;
    const Ints editable = {3, 0, 1};
    EXPECT_EQ(GetNeighbourCell({0, 3}, editable, 2, true), (CellPosition{0, 0}));
    EXPECT_EQ(GetNeighbourCell({0, 1}, editable, 2, true), (CellPosition{1, 3}));
    EXPECT_EQ(GetNeighbourCell({1, 1}, editable, 2, true), std::nullopt);
    EXPECT_EQ(GetNeighbourCell({1, 3}, editable, 2, false), (CellPosition{0, 1}));
    EXPECT_EQ(GetNeighbourCell({1, 0}, editable, 2, false), (CellPosition{1, 3}));
    EXPECT_EQ(GetNeighbourCell({0, 3}, editable, 2, false), std::nullopt);
    // The row was the last one and has gone, or the column can no longer be edited.
    EXPECT_EQ(GetNeighbourCell({1, 1}, editable, 1, true), std::nullopt);
    EXPECT_EQ(GetNeighbourCell({0, 2}, editable, 2, true), std::nullopt);
}

}  // namespace
