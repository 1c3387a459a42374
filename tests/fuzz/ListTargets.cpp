// Numbers and texts that people type, and widths that were stored for them.
#include <algorithm>
#include <numeric>
#include <vector>

#include "configure/RectListCells.h"
#include "configure/RectListRules.h"
#include "fuzz/Targets.h"
#include "manage/PreviewLayout.h"
#include "refhost/controls/list/TableRules.h"
#include "refhost/units/UnitRules.h"
#include "win32/NumberText.h"

namespace fuzz {
namespace {

class HostUnits final : public rectlist::Units {
public:
    explicit HostUnits(bool metric)
        : m_system(metric ? units::MeasureSystem::kMetric : units::MeasureSystem::kInches) {}
    bool IsMetric() const override { return m_system == units::MeasureSystem::kMetric; }
    double ToUser(int32_t length) const override { return units::ToUser(length, m_system); }
    int32_t FromUser(double value) const override { return units::FromUser(value, m_system); }
    std::wstring Format(int32_t length) const override { return units::Format(length, m_system); }

private:
    units::MeasureSystem m_system;
};

PageRect ReadRect(Input& input) {
    PageRect rect;
    rect.left = input.Coordinate();
    rect.top = input.Coordinate();
    rect.right = input.Coordinate();
    rect.bottom = input.Coordinate();
    return rect;
}

int64_t Sum(const std::vector<int>& numbers) {
    return std::accumulate(numbers.begin(), numbers.end(), int64_t{0});
}

void RequireWithin(const std::vector<int>& widths, size_t count) {
    Require(widths.size() == count, "every column has a width");
    for (const int width : widths) Require(width >= 0 && width <= listtable::kWidestColumn, "widths stay in bounds");
}

void CheckMoves(Input& input) {
    const int rowCount = input.Byte() % 12;
    const int target = input.Byte() % 14 - 1;
    std::vector<int> rows;
    for (int i = input.Byte() % 5; i > 0; --i) rows.push_back(input.Byte() % 14 - 1);
    if (auto order = listtable::GetMovedOrder(rowCount, target, rows)) {
        std::ranges::sort(*order);
        std::vector<int> all(static_cast<size_t>(rowCount));
        std::iota(all.begin(), all.end(), 0);
        Require(*order == all, "moving rows loses none");
    }
}

}  // namespace

void cell_text(Input input) {
    const uint8_t kinds = input.Byte();
    const HostUnits hostUnits(kinds % 2 == 0);
    const auto column = static_cast<size_t>(kinds / 2 % rectlist::kLengthColumns);
    std::optional<PageRect> shown;
    rectlist::RowTexts cells;
    if (kinds < 192) {
        shown = ReadRect(input);
        cells = rectlist::GetRowTexts(*shown, hostUnits);
        if (kinds % 16 == 15) cells[(column + 1) % cells.size()] = input.Text();
    }
    cells[column] = input.Text();

    const auto edit = rectlist::ApplyCellEdit(cells, static_cast<rectlist::Column>(column), shown, hostUnits);
    Require(edit.has_value() == rectlist::ReadCell(cells[column]).has_value(),
            "a number changes the row, else nothing");
    if (!edit) return;
    Require(rectlist::ReadCell(edit->text).has_value(), "what a cell shows is a number");
    cells[column] = edit->text;
    const auto again = rectlist::ApplyCellEdit(cells, static_cast<rectlist::Column>(column), shown, hostUnits);
    Require(again && again->text == edit->text && again->rect == edit->rect, "the same number changes nothing more");
    const PageRect rect = rectlist::Normalise(edit->rect);
    Require(rect.left <= rect.right && rect.top <= rect.bottom, "the rectangle can be made normal");
}

void column_widths(Input input) {
    const int listWidth = static_cast<int>(input.Number() % 40000) - 10;
    CheckMoves(input);
    const std::wstring text = input.Text();
    const std::wstring line = listtable::GetOneLine(text);
    Require(line.find_first_of(L"\r\n\v\f\t") == std::wstring::npos && line == listtable::GetOneLine(line),
            "a cell has one line");

    const auto parsed = listtable::ParseColumnWidths(text);
    if (!parsed) return;
    RequireWithin(parsed->widths, parsed->widths.size());
    Require(listtable::ParseColumnWidths(listtable::FormatColumnWidths(*parsed)) == parsed, "widths read back");
    const auto thousandths = listtable::GetThousandths(parsed->widths, listWidth);
    RequireWithin(thousandths, parsed->widths.size());
    if (listWidth <= 0) return;
    const auto pixels = listtable::GetPixels(thousandths, listWidth);
    RequireWithin(pixels, parsed->widths.size());
    if (listWidth < listtable::kThousandths && Sum(parsed->widths) <= listWidth) {
        Require(pixels == parsed->widths, "widths that were not changed come back");
    }
    if (listWidth <= listtable::kWidestColumn && Sum(parsed->widths) == listWidth)
        Require(Sum(pixels) == listWidth, "columns that fill the list go on to");
}

void page_lengths(Input input) {
    const PageRect client = ReadRect(input);
    const int32_t length = input.Coordinate();
    for (const bool metric : {true, false}) {
        const HostUnits hostUnits(metric);
        const auto shown = win32::ParseNumber(hostUnits.Format(length));
        Require(shown && hostUnits.FromUser(*shown) == length, "a length that is shown reads back");
        Require(hostUnits.FromUser(hostUnits.ToUser(length)) == length, "a length converts back");
    }
    const PageRect middle = rectlist::GetMiddleHalf(input.Coordinate(), length);
    (void)rectlist::Normalise(middle);
    if (const auto zoom = rectlist::GetZoom(length)) {
        Require(rectlist::GetZoom(rectlist::GetStartScaleCommand(length)) == zoom, "a command of the menu stays");
    }

    PreviewLayout layout;
    layout.SetClient(client);
    layout.SetAreasIgnored(input.Byte() % 2 == 1);
    const int32_t width = input.Coordinate();
    if (width != 0) layout.SetPageSize(width, input.Coordinate());
    for (int i = input.Byte() % 4; i > 0; --i) layout.AddRect(ReadRect(input));
    const std::vector<PreviewShape> shapes = layout.GetShapes();
    const PageRect& page = shapes[1].rect;
    for (size_t i = 2; i < shapes.size(); ++i) {
        const PageRect& area = shapes[i].rect;
        Require(area.left >= page.left && area.top >= page.top && area.right <= page.right &&
                    area.bottom <= page.bottom && area.left < area.right && area.top < area.bottom,
                "areas are drawn on the page");
    }
}

}  // namespace fuzz
