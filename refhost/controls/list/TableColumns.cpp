// Columns: kinds, choices and widths.
#include <algorithm>
#include <cwchar>

#include "refhost/controls/list/TableWindow.h"

namespace listtable {
namespace {

constexpr int kLongestTitle = 256;

// As TextRecord says.
LRESULT HandOut(const std::wstring& text, const TextRecord& record) {
    if (record.text != nullptr && record.size > 0) {
        const size_t length = text.copy(record.text, static_cast<size_t>(record.size) - 1);
        record.text[length] = L'\0';
    }
    return static_cast<LRESULT>(text.size());
}

}  // namespace

bool Table::HandleColumns(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    Column* const column = FindColumn(wParam);
    switch (message) {
        case kInsertColumn:
            result = InsertColumn(static_cast<int>(wParam), *reinterpret_cast<const ColumnRecord*>(lParam));
            return true;
        case kGetColumnKind:
            result = column != nullptr ? static_cast<LRESULT>(column->kind) : 0;
            return true;
        case kAddChoice:
            result = -1;
            if (column == nullptr || lParam == 0) return true;
            column->choices.emplace_back(reinterpret_cast<const wchar_t*>(lParam));
            result = static_cast<LRESULT>(column->choices.size()) - 1;
            return true;
        case kResetChoices:
            if (column != nullptr) column->choices.clear();
            return true;
        case kGetChoiceCount:
            result = column != nullptr ? static_cast<LRESULT>(column->choices.size()) : 0;
            return true;
        case kGetChoice: {
            const auto& record = *reinterpret_cast<const TextRecord*>(lParam);
            const auto choice = static_cast<size_t>(record.index);
            const bool there = column != nullptr && record.index >= 0 && choice < column->choices.size();
            result = there ? HandOut(column->choices[choice], record) : -1;
            return true;
        }
        case kSetColumnWidths:
            result = lParam != 0 && SetColumnWidths(reinterpret_cast<const wchar_t*>(lParam));
            return true;
        case kGetColumnWidths:
            result = HandOut(GetColumnWidths(wParam != 0), *reinterpret_cast<const TextRecord*>(lParam));
            return true;
        default:
            return false;
    }
}

Table::Column* Table::FindColumn(WPARAM column) {
    return column < m_columns.size() ? &m_columns[column] : nullptr;
}

LRESULT Table::InsertColumn(int position, const ColumnRecord& record) {
    const LRESULT inserted =
        Send(LVM_INSERTCOLUMNW, static_cast<WPARAM>(position), reinterpret_cast<LPARAM>(record.column));
    if (Column* const column = inserted >= 0 ? FindColumn(static_cast<WPARAM>(inserted)) : nullptr) {
        column->kind = record.kind;
    }
    return inserted;
}

std::vector<int> Table::GetShownOrder() const {
    std::vector<int> order(m_columns.size());
    Send(LVM_GETCOLUMNORDERARRAY, order.size(), reinterpret_cast<LPARAM>(order.data()));
    return order;
}

std::wstring Table::GetTitle(int column) const {
    wchar_t title[kLongestTitle] = L"";
    LVCOLUMNW record = {};
    record.mask = LVCF_TEXT;
    record.pszText = title;
    record.cchTextMax = kLongestTitle;
    Send(LVM_GETCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&record));
    return record.pszText;
}

std::vector<int> Table::GetPixelWidths() const {
    std::vector<int> pixels;
    for (size_t column = 0; column < m_columns.size(); ++column) {
        pixels.push_back(static_cast<int>(Send(LVM_GETCOLUMNWIDTH, column)));
    }
    return pixels;
}

int Table::GetListWidth() const {
    RECT client = {};
    GetClientRect(m_window, &client);
    return static_cast<int>(client.right);
}

void Table::SetPixelWidths(const std::vector<int>& pixels) {
    const size_t count = std::min(pixels.size(), m_columns.size());
    for (size_t column = 0; column < count; ++column) {
        if (Send(LVM_GETCOLUMNWIDTH, column) != pixels[column]) {
            Send(LVM_SETCOLUMNWIDTH, column, MAKELPARAM(pixels[column], 0));
        }
    }
}

bool Table::SetColumnWidths(const wchar_t* text) {
    auto parsed = ParseColumnWidths(text);
    if (!parsed) return false;
    if (parsed->widths.size() > m_columns.size()) parsed->widths.resize(m_columns.size());
    m_shares.clear();
    m_sharePixels.clear();
    if (!parsed->thousandths) {
        SetPixelWidths(parsed->widths);
        return true;
    }
    if (parsed->widths.size() < m_columns.size()) {
        const std::vector<int> rest = GetThousandths(GetPixelWidths(), GetListWidth());
        parsed->widths.insert(parsed->widths.end(), rest.begin() + static_cast<std::ptrdiff_t>(parsed->widths.size()),
                              rest.end());
    }
    m_shares = std::move(parsed->widths);
    m_shareWidth = 0;
    FollowListWidth();
    return true;
}

// Columns that were given in thousandths keep them when the list gets narrower or wider, as by a scroll bar. What the
// user made of them with the mouse counts instead.
void Table::FollowListWidth() {
    const int width = GetListWidth();
    if (m_following || m_shares.size() != m_columns.size() || width <= 0 || width == m_shareWidth) return;
    const FlagScope following(m_following);
    if (m_shareWidth > 0 && GetPixelWidths() != m_sharePixels)
        m_shares = GetThousandths(GetPixelWidths(), m_shareWidth);
    m_shareWidth = width;
    SetPixelWidths(GetPixels(m_shares, width));
    m_sharePixels = GetPixelWidths();
}

std::wstring Table::GetColumnWidths(bool thousandths) const {
    const std::vector<int> pixels = GetPixelWidths();
    if (!thousandths) return FormatColumnWidths({false, pixels});
    const bool kept = m_shares.size() == m_columns.size() && (m_shareWidth == 0 || pixels == m_sharePixels);
    return FormatColumnWidths({true, kept ? m_shares : GetThousandths(pixels, GetListWidth())});
}

}  // namespace listtable
