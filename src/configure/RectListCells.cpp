#include "configure/RectListCells.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "win32/NumberText.h"

namespace rectlist {
namespace {

// Far beyond any page, and far enough from the ends of 32 bits that an offset and a size can be added.
constexpr int32_t kLargestLength = 0x10000000;

// White space as spreadsheets and web pages put it around a number.
constexpr std::wstring_view kBlanks = L" \t\r\n\v\f\u0085\u00a0\u2028\u2029";

int32_t Saturate(int64_t value) {
    using Limits = std::numeric_limits<int32_t>;
    return static_cast<int32_t>(std::clamp<int64_t>(value, Limits::min(), Limits::max()));
}

double Single(double value) {
    return static_cast<double>(static_cast<float>(value));
}

using Lengths = std::array<int32_t, kLengthColumns>;

Lengths GetLengths(const PageRect& rect) {
    const PageRect normal = Normalise(rect);
    return {normal.left, normal.top, Saturate(int64_t{normal.right} - normal.left),
            Saturate(int64_t{normal.bottom} - normal.top)};
}

// The offset of the same axis for a size, nothing for an offset.
std::optional<size_t> OffsetOf(size_t column) {
    if (column < kWidth) return std::nullopt;
    return column - kWidth;
}

// A row with one cell edited: where each of the other lengths comes from.
class Row {
public:
    Row(const RowTexts& cells, const std::optional<PageRect>& shown, const Units& units)
        : m_cells(cells), m_units(units) {
        if (!shown) return;
        m_shown = GetLengths(*shown);
        m_shownTexts = GetRowTexts(*shown, units);
    }

    // In the user's unit.
    double Value(size_t column) const {
        if (const auto number = ReadCell(m_cells[column])) return Bound(Single(*number));
        return m_shown ? Single(m_units.ToUser((*m_shown)[column])) : 0.0;
    }

    int32_t Length(size_t column) const {
        const bool asShown = m_shown && (m_cells[column] == m_shownTexts[column] || !ReadCell(m_cells[column]));
        return asShown ? (*m_shown)[column] : m_units.FromUser(Value(column));
    }

    double Bound(double value) const {
        const double bound = Single(m_units.ToUser(kLargestLength));
        return std::clamp(value, -bound, bound);
    }

private:
    const RowTexts& m_cells;
    const Units& m_units;
    std::optional<Lengths> m_shown;
    RowTexts m_shownTexts;
};

}  // namespace

std::optional<double> ReadCell(std::wstring_view text) {
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::wstring_view::npos) return 0.0;
    return win32::ParseNumber(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

PageRect Normalise(const PageRect& rect) {
    return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom), std::max(rect.left, rect.right),
            std::max(rect.top, rect.bottom)};
}

RowTexts GetRowTexts(const PageRect& rect, const Units& units) {
    const Lengths lengths = GetLengths(rect);
    RowTexts texts;
    for (size_t column = 0; column < lengths.size(); ++column) texts[column] = units.Format(lengths[column]);
    return texts;
}

std::optional<CellEdit> ApplyCellEdit(const RowTexts& cells, Column edited, const std::optional<PageRect>& shown,
                                      const Units& units) {
    const auto column = static_cast<size_t>(edited);
    const auto number = ReadCell(cells[column]);
    if (!number) return std::nullopt;

    const Row row(cells, shown, units);
    const auto offset = OffsetOf(column);
    double value = row.Bound(*number);
    // An offset lies on the page; a size may point backwards as far as the page's edge.
    value = std::max(value, offset ? -row.Value(*offset) : 0.0);

    CellEdit edit;
    edit.text = win32::FormatFixed(value, units.IsMetric() ? 1 : 2);
    // A small negative number rounded away would leave its sign.
    if (edit.text.find_first_of(L"123456789") == std::wstring::npos && edit.text.front() == L'-') edit.text.erase(0, 1);

    Lengths lengths;
    for (size_t other = 0; other < lengths.size(); ++other) {
        if (other != column) lengths[other] = row.Length(other);
    }
    lengths[column] = units.FromUser(Single(ReadCell(edit.text).value_or(0.0)));
    // The displayed digits can round past the edge again.
    if (offset) lengths[column] = std::max(lengths[column], Saturate(-int64_t{lengths[*offset]}));

    edit.rect = {lengths[kXOffset], lengths[kYOffset], Saturate(int64_t{lengths[kXOffset]} + lengths[kWidth]),
                 Saturate(int64_t{lengths[kYOffset]} + lengths[kHeight])};
    return edit;
}

}  // namespace rectlist
