#include "refhost/controls/list/TableRules.h"

#include <algorithm>
#include <numeric>

namespace listtable {
namespace {

constexpr std::wstring_view kThousandthsMark = L"[%]";
constexpr std::wstring_view kLineEnds = L"\r\n\v\f\u0085\u2028\u2029";

std::optional<int> ParseWidth(std::wstring_view digits) {
    if (digits.empty() || digits.find_first_not_of(L"0123456789") != std::wstring_view::npos) return std::nullopt;
    int width = 0;
    for (const wchar_t digit : digits) width = std::min(width * 10 + (digit - L'0'), kWidestColumn);
    return width;
}

}  // namespace

std::optional<ColumnWidths> ParseColumnWidths(std::wstring_view text) {
    ColumnWidths widths;
    widths.thousandths = text.starts_with(kThousandthsMark);
    if (widths.thousandths) text.remove_prefix(kThousandthsMark.size());
    for (;;) {
        const size_t comma = std::min(text.find(L','), text.size());
        const auto width = ParseWidth(text.substr(0, comma));
        if (!width) return std::nullopt;
        widths.widths.push_back(*width);
        if (comma == text.size()) return widths;
        text.remove_prefix(comma + 1);
    }
}

std::wstring FormatColumnWidths(const ColumnWidths& widths) {
    std::wstring text(widths.thousandths ? kThousandthsMark : std::wstring_view());
    for (size_t column = 0; column < widths.widths.size(); ++column) {
        if (column > 0) text += L',';
        text += std::to_wstring(widths.widths[column]);
    }
    return text;
}

std::vector<int> GetPixels(const std::vector<int>& thousandths, int listWidth) {
    std::vector<int> pixels;
    long long sum = 0;
    long long left = 0;
    for (const int share : thousandths) {
        sum += share;
        const long long right = (sum * listWidth + kThousandths / 2) / kThousandths;
        pixels.push_back(static_cast<int>(std::min<long long>(right - left, kWidestColumn)));
        left = right;
    }
    return pixels;
}

std::vector<int> GetThousandths(const std::vector<int>& pixels, int listWidth) {
    std::vector<int> thousandths;
    if (listWidth <= 0) return std::vector<int>(pixels.size(), 0);
    long long sum = 0;
    long long left = 0;
    for (const int width : pixels) {
        sum += width;
        const long long right = (sum * kThousandths + listWidth / 2) / listWidth;
        thousandths.push_back(static_cast<int>(std::min<long long>(right - left, kWidestColumn)));
        left = right;
    }
    return thousandths;
}

std::optional<std::vector<int>> GetMovedOrder(int rowCount, int target, const std::vector<int>& rows) {
    if (target < 0 || target > rowCount) return std::nullopt;
    std::vector<bool> moved(static_cast<size_t>(rowCount));
    for (const int row : rows) {
        if (row < 0 || row >= rowCount || moved[static_cast<size_t>(row)]) return std::nullopt;
        moved[static_cast<size_t>(row)] = true;
    }
    std::vector<int> order;
    order.reserve(moved.size());
    for (int row = 0; row <= rowCount; ++row) {
        if (row == target) order.insert(order.end(), rows.begin(), rows.end());
        if (row < rowCount && !moved[static_cast<size_t>(row)]) order.push_back(row);
    }
    return order;
}

std::optional<int> GetNeighbourTarget(int rowCount, const std::vector<int>& rows, bool up) {
    if (rows.empty()) return std::nullopt;
    const auto [first, last] = std::minmax_element(rows.begin(), rows.end());
    const int target = up ? *first - 1 : *last + 2;
    if (target < 0 || target > rowCount) return std::nullopt;
    return target;
}

std::wstring GetOneLine(std::wstring_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kLineEnds), text.size()));
    std::wstring line(text.substr(0, text.find_first_of(kLineEnds)));
    // Cells of a spreadsheet come with tabs between them; an edit control has no use for them.
    std::replace(line.begin(), line.end(), L'\t', L' ');
    return line;
}

std::optional<CellPosition> GetNeighbourCell(CellPosition cell, const std::vector<int>& editable, int rowCount,
                                             bool forward) {
    const auto here = std::find(editable.begin(), editable.end(), cell.column);
    if (here == editable.end()) return std::nullopt;
    if (forward) {
        if (here + 1 != editable.end()) return CellPosition{cell.row, *(here + 1)};
        if (cell.row + 1 >= rowCount) return std::nullopt;
        return CellPosition{cell.row + 1, editable.front()};
    }
    if (here != editable.begin()) return CellPosition{cell.row, *(here - 1)};
    if (cell.row <= 0) return std::nullopt;
    return CellPosition{cell.row - 1, editable.back()};
}

}  // namespace listtable
