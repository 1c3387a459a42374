#pragma once
// What the list control decides without its window.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace listtable {

// Column widths as a text: "90,120" in pixels, "[%]250,750" in thousandths of the list's width.
struct ColumnWidths {
    bool thousandths = false;
    std::vector<int> widths;
    bool operator==(const ColumnWidths&) const = default;
};
// Nothing for a text that is not one. Widths end at kWidestColumn.
std::optional<ColumnWidths> ParseColumnWidths(std::wstring_view text);
std::wstring FormatColumnWidths(const ColumnWidths& widths);
inline constexpr int kWidestColumn = 30000;
inline constexpr int kThousandths = 1000;

// Thousandths to pixels and back. Widths that fill the list together fill it to the pixel, and widths that were not
// changed in between come back the same.
std::vector<int> GetPixels(const std::vector<int>& thousandths, int listWidth);
std::vector<int> GetThousandths(const std::vector<int>& pixels, int listWidth);

// The old positions of all rows in their new order when `rows` come before the row at `target`. Nothing for positions
// that are not there or stand twice.
std::optional<std::vector<int>> GetMovedOrder(int rowCount, int target, const std::vector<int>& rows);

// The target one row up or down for rows that move together; nothing when they are at the end already.
std::optional<int> GetNeighbourTarget(int rowCount, const std::vector<int>& rows, bool up);

// The line of a text that goes into a cell: line ends before it are skipped, and what follows it is cut off.
std::wstring GetOneLine(std::wstring_view text);

struct CellPosition {
    int row = -1;
    int column = -1;
    bool operator==(const CellPosition&) const = default;
};
// The cell that Tab goes to: the next or previous one in the columns that can be edited (in the order in which they are
// shown), row by row; nothing past either end.
std::optional<CellPosition> GetNeighbourCell(CellPosition cell, const std::vector<int>& editable, int rowCount,
                                             bool forward);

}  // namespace listtable
