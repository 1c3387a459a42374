#pragma once
// What a row of the rectangle list shows, and what a number typed into it does to the rectangle.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "model/PageRect.h"

namespace rectlist {

// Columns of the list. The first four are lengths in the user's unit.
enum Column : int { kXOffset, kYOffset, kWidth, kHeight, kIndexingField };
inline constexpr int kLengthColumns = 4;

using RowTexts = std::array<std::wstring, kLengthColumns>;

// The host's units, made for one operation. What it throws passes through.
class Units {
public:
    virtual ~Units() = default;
    virtual bool IsMetric() const = 0;
    virtual double ToUser(int32_t length) const = 0;
    virtual int32_t FromUser(double value) const = 0;
    virtual std::wstring Format(int32_t length) const = 0;
};

// The number in a cell, with a decimal point whatever the locale. An empty cell is 0, and blanks or line ends around
// the number (as they come from a spreadsheet) do not matter. Nothing for everything else: a unit, a comma, inf, nan,
// hexadecimal. A number too large for a double is infinite.
std::optional<double> ReadCell(std::wstring_view text);

PageRect Normalise(const PageRect& rect);

// The row of a rectangle, normalised.
RowTexts GetRowTexts(const PageRect& rect, const Units& units);

struct CellEdit {
    std::wstring text;  // what the edited cell shows from now on
    PageRect rect;      // not normalised: a negative size stays one
};

// What becomes of a row whose cell in one of the length columns was edited; nothing when the cell holds no number.
// `shown` is the rectangle as the page still has it, when it can be had: cells that show one of its lengths keep
// exactly that length, however coarsely it is displayed, and so do cells that hold no number themselves.
std::optional<CellEdit> ApplyCellEdit(const RowTexts& cells, Column edited, const std::optional<PageRect>& shown,
                                      const Units& units);

}  // namespace rectlist
