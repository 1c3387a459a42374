#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

#include "configure/RectListCells.h"
#include "configure/RectListRules.h"

namespace {

using rectlist::Column;
using rectlist::RowTexts;

// A host's units; what it displays can be coarser than its lengths, and can have a comma.
class TestUnits final : public rectlist::Units {
public:
    explicit TestUnits(bool metric, int decimals = 1, wchar_t point = L'.')
        : m_metric(metric), m_decimals(decimals), m_point(point) {}

    bool IsMetric() const override { return m_metric; }
    double ToUser(int32_t length) const override { return length / PerUnit(); }
    int32_t FromUser(double value) const override { return static_cast<int32_t>(std::lround(value * PerUnit())); }
    std::wstring Format(int32_t length) const override {
        const auto scale = static_cast<int64_t>(std::pow(10, m_decimals));
        const int64_t digits = std::llround(std::abs(ToUser(length)) * static_cast<double>(scale));
        return (length < 0 ? L"-" : L"") + std::to_wstring(digits / scale) + m_point +
               std::to_wstring(scale + digits % scale).substr(1);
    }

private:
    double PerUnit() const { return m_metric ? 10.0 : 254.0; }

    bool m_metric;
    int m_decimals;
    wchar_t m_point;
};

const TestUnits kMetric(true);
const TestUnits kInches(false, 3);

// Types a text into one cell of the row of `rect`, on which the page still agrees.
std::optional<rectlist::CellEdit> Type(const PageRect& rect, Column column, const wchar_t* text,
                                       const rectlist::Units& units) {
    RowTexts cells = rectlist::GetRowTexts(rect, units);
    cells[column] = text;
    return rectlist::ApplyCellEdit(cells, column, rect, units);
}

TEST(Cells, ReadsPlainNumbersOnly) {
    const std::pair<const wchar_t*, double> numbers[] = {
        {L"", 0.0},       {L"  ", 0.0}, {L" 12", 12.0},  {L"12.5 \r\n", 12.5},    {L"\t-3.", -3.0}, {L".5", 0.5},
        {L"1e3", 1000.0}, {L"+4", 4.0}, {L"-1E9", -1e9}, {L"\u00a07\u00a0", 7.0}, {L"1e-999", 0.0},
    };
    for (const auto& [text, value] : numbers) {
        const auto number = rectlist::ReadCell(text);
        ASSERT_TRUE(number) << testing::PrintToString(text);
        EXPECT_EQ(*number, value) << testing::PrintToString(text);
    }
    EXPECT_TRUE(std::isinf(rectlist::ReadCell(L"1e999").value()));
    const std::wstring longText(100000, L'a');
    for (const wchar_t* text : {L"12a", L"1,5", L"1.000,5", L"inf", L"-inf", L"nan", L"0x10", L"1 2", L"-", L".", L"1e",
                                L"12\n13", L"+-4", L"\u0661", longText.c_str()}) {
        EXPECT_FALSE(rectlist::ReadCell(text)) << testing::PrintToString(text);
    }
}

TEST(Cells, EditedCellIsLimitedRewrittenAndMovesTheRectangle) {
    struct Case {
        bool metric;
        Column column;
        const wchar_t* typed;
        const wchar_t* text;
        PageRect rect;
    };
    const PageRect start = {300, 400, 800, 1000};  // 30 40 50 60 mm
    const int32_t huge = 268435460;                // 0x10000000 as the nearest single-precision number of millimetres
    const Case cases[] = {
        {true, rectlist::kXOffset, L"12.3456", L"12.3", {123, 400, 623, 1000}},
        {false, rectlist::kXOffset, L"12.3456", L"12.35", {3137, 400, 3637, 1000}},
        {true, rectlist::kYOffset, L"", L"0.0", {300, 0, 800, 600}},
        {true, rectlist::kXOffset, L"-5", L"0.0", {0, 400, 500, 1000}},
        {true, rectlist::kXOffset, L"-0", L"0.0", {0, 400, 500, 1000}},
        {true, rectlist::kWidth, L"70", L"70.0", {300, 400, 1000, 1000}},
        {true, rectlist::kWidth, L"-50", L"-30.0", {300, 400, 0, 1000}},
        {true, rectlist::kHeight, L"-15.5", L"-15.5", {300, 400, 800, 245}},
        {true, rectlist::kHeight, L"-0.04", L"0.0", {300, 400, 800, 400}},
        {true, rectlist::kXOffset, L"1e9", L"26843546.0", {huge, 400, huge + 500, 1000}},
        {true, rectlist::kWidth, L"1e999", L"26843546.0", {300, 400, 300 + huge, 1000}},
        {true, rectlist::kHeight, L"-1e9", L"-40.0", {300, 400, 800, 0}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(testing::PrintToString(test.typed));
        const auto edit = Type(start, test.column, test.typed, test.metric ? kMetric : kInches);
        ASSERT_TRUE(edit);
        EXPECT_EQ(edit->text, test.text);
        EXPECT_EQ(edit->rect, test.rect);
    }
    EXPECT_FALSE(Type(start, rectlist::kXOffset, L"12a", kMetric));
}

// Inches show two or three decimals, ten lengths to one text: reading the text back must not move the other edges.
TEST(Cells, OtherLengthsStayAsTheyWere) {
    const TestUnits unitsUsed[] = {
        kMetric, kInches, TestUnits(false, 2), TestUnits(true, 0), TestUnits(true, 1, L','), TestUnits(false, 2, L',')};
    const PageRect rects[] = {
        {31, 62, 1001, 2003}, {0, 0, 0, 0}, {-70, -9, 55, 7}, {7, 7, 2147483647, 2147483647}, {1573, 1, 1, 1573}};
    for (const auto& units : unitsUsed) {
        for (const PageRect& rect : rects) {
            const PageRect normal = rectlist::Normalise(rect);
            const int64_t width = int64_t{normal.right} - normal.left;
            const int64_t height = int64_t{normal.bottom} - normal.top;
            const auto offset = Type(rect, rectlist::kXOffset, L"1", units);
            ASSERT_TRUE(offset);
            EXPECT_EQ(offset->rect.left, units.FromUser(1));
            EXPECT_EQ(offset->rect.right, std::min<int64_t>(units.FromUser(1) + width, INT32_MAX));
            EXPECT_EQ(offset->rect.top, normal.top);
            EXPECT_EQ(offset->rect.bottom - int64_t{normal.top}, height);
            const auto size = Type(rect, rectlist::kHeight, L"3", units);
            ASSERT_TRUE(size);
            EXPECT_EQ(size->rect.left, normal.left);
            EXPECT_EQ(size->rect.right - int64_t{normal.left}, width);
            EXPECT_EQ(size->rect.top, normal.top);
        }
    }
}

TEST(Cells, ASizeNeverReachesPastTheEdgeThroughRounding) {
    for (int32_t left = 0; left < 600; ++left) {
        const auto edit = Type({left, 0, left + 100, 100}, rectlist::kWidth, L"-9999", kInches);
        ASSERT_TRUE(edit);
        EXPECT_GE(edit->rect.right, 0) << left;
    }
}

TEST(Cells, AnotherCellThatHoldsNoNumberKeepsItsLength) {
    const PageRect rect = {300, 400, 800, 1000};
    RowTexts cells = {L"30.0", L"12a", L"50.0", L"61.5"};
    const auto edit = rectlist::ApplyCellEdit(cells, rectlist::kWidth, rect, kMetric);
    ASSERT_TRUE(edit);
    // A number that the page does not have yet counts.
    EXPECT_EQ(edit->rect, (PageRect{300, 400, 800, 1015}));
    // Without the page's word the texts are all there is.
    EXPECT_EQ(rectlist::ApplyCellEdit(cells, rectlist::kWidth, std::nullopt, kMetric)->rect,
              (PageRect{300, 0, 800, 615}));
}

TEST(Cells, GermanLocaleChangesNothing) {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr && std::setlocale(LC_ALL, "de-DE") == nullptr &&
        std::setlocale(LC_ALL, "German_Germany.1252") == nullptr) {
        GTEST_SKIP() << "no German locale here";
    }
    const auto edit = Type({300, 400, 800, 1000}, rectlist::kXOffset, L"12.35", kInches);
    const bool comma = rectlist::ReadCell(L"1,5").has_value();
    std::setlocale(LC_ALL, "C");
    ASSERT_TRUE(edit);
    EXPECT_EQ(edit->text, L"12.35");
    EXPECT_FALSE(comma);
}

TEST(Rules, RowsAreShownNormalised) {
    EXPECT_EQ(rectlist::GetRowTexts({800, 1000, 300, 400}, kMetric), (RowTexts{L"30.0", L"40.0", L"50.0", L"60.0"}));
    constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
    constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(rectlist::GetRowTexts({kMax, 0, kMin, 0}, kMetric)[rectlist::kWidth], L"214748364.7");
}

TEST(Rules, MiddleHalfOfThePage) {
    EXPECT_EQ(rectlist::GetMiddleHalf(2100, 2970), (PageRect{525, 742, 1575, 2227}));
    EXPECT_EQ(rectlist::GetMiddleHalf(0, 0), PageRect());
    EXPECT_EQ(rectlist::GetMiddleHalf(INT32_MAX, 1), (PageRect{536870911, 0, 1610612735, 0}));
}

// Heights of the dialog's parts at 100, 150 and 200 %, on screens from large to far too low.
TEST(Rules, ALowMonitorTakesHeightOffThePageThenOffTheList) {
    using rectlist::GetHeightCuts;
    using rectlist::HeightCuts;
    for (const int percent : {100, 150, 200}) {
        const int page = 424 * percent / 100, list = 93 * percent / 100, room = 172 * percent / 100;
        for (int excess = -10; excess < 700 * percent / 100; ++excess) {
            const auto [fromPage, fromList] = GetHeightCuts(excess, room, page, list);
            SCOPED_TRACE(testing::Message() << percent << " %, " << excess << ": " << fromPage << ", " << fromList);
            ASSERT_TRUE(fromPage >= 0 && fromList >= 0 && page - fromPage >= 80 && list - fromList >= list / 3);
            if (excess <= page - 80 + list / 2) {
                ASSERT_EQ(fromPage + fromList, std::max(excess, 0));
            }
            // What lies below the page covers the choice beside it only when the list has nothing left to give.
            if (fromPage > room) {
                ASSERT_EQ(fromList, list * 2 / 3);
            }
        }
    }
    EXPECT_EQ(GetHeightCuts(250, 344, 848, 186), (HeightCuts{250, 0}));
    EXPECT_EQ(GetHeightCuts(50, -5, 60, 90), (HeightCuts{0, 50})) << "a page that has nothing to give";
}

TEST(Rules, AFieldStandsOnOneRow) {
    EXPECT_EQ(rectlist::GetRowsLosingField({L"A", L"", L"A", L"a", L"A"}, 2), (std::vector{0, 4}));
    EXPECT_TRUE(rectlist::GetRowsLosingField({L"", L"", L"A"}, 1).empty());

    rectlist::RemovedFields removed;
    removed.Remember(4, L"Total");
    removed.Remember(5, L"Date");
    removed.Remember(6, L"");
    EXPECT_TRUE(removed.Holds(4) && removed.Holds(5));
    EXPECT_FALSE(removed.Holds(6));
    EXPECT_EQ(removed.TakeBack(4, {L"", L"Date"}), L"Total");
    EXPECT_EQ(removed.TakeBack(4, {}), L"");
    EXPECT_EQ(removed.TakeBack(5, {L"", L"Date"}), L"");
    EXPECT_EQ(removed.TakeBack(6, {}), L"");
}

TEST(Rules, ScaleCommands) {
    using rectlist::Zoom;
    using rectlist::ZoomMode;
    EXPECT_EQ(rectlist::GetZoom(27786), (Zoom{ZoomMode::kPercent, 20}));
    EXPECT_EQ(rectlist::GetZoom(27791), (Zoom{ZoomMode::kPercent, 150}));
    EXPECT_EQ(rectlist::GetZoom(27793), (Zoom{ZoomMode::kWholePage, 0}));
    EXPECT_EQ(rectlist::GetZoom(27794), (Zoom{ZoomMode::kPageHeight, 0}));
    EXPECT_EQ(rectlist::GetZoom(27795), (Zoom{ZoomMode::kPageWidth, 0}));
    for (const int64_t stored : {int64_t{-1}, int64_t{0}, int64_t{27785}, int64_t{27796}, INT64_MAX, INT64_MIN}) {
        EXPECT_EQ(rectlist::GetStartScaleCommand(stored), 27793U) << stored;
    }
    EXPECT_EQ(rectlist::GetStartScaleCommand(27787), 27787U);
}

}  // namespace
