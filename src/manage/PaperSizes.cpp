#include "manage/PaperSizes.h"

#include <utility>

#include "win32/NumberText.h"

const std::array<PaperSizeEntry, 43> kPaperSizes = {{
    {0, 841, 1189, 33.11, 46.81, L"A0"},
    {1, 594, 841, 23.39, 33.11, L"A1"},
    {2, 420, 594, 16.54, 23.39, L"A2"},
    {3, 297, 420, 11.69, 16.54, L"A3"},
    {4, 210, 297, 8.27, 11.69, L"A4"},
    {5, 148, 210, 5.83, 8.27, L"A5"},
    {6, 105, 148, 4.13, 5.83, L"A6"},
    {7, 74, 105, 2.91, 4.13, L"A7"},
    {8, 52, 74, 2.05, 2.91, L"A8"},
    {9, 37, 52, 1.46, 2.05, L"A9"},
    {10, 26, 37, 1.02, 1.46, L"A10"},
    {11, 1000, 1414, 39.37, 55.67, L"B0"},
    {12, 707, 1000, 27.83, 39.37, L"B1"},
    {13, 500, 707, 19.69, 27.83, L"B2"},
    {14, 353, 500, 13.9, 19.69, L"B3"},
    {15, 250, 353, 9.84, 13.9, L"B4"},
    {16, 176, 250, 6.93, 9.84, L"B5"},
    {17, 125, 176, 4.92, 6.93, L"B6"},
    {18, 88, 125, 3.46, 4.92, L"B7"},
    {19, 62, 88, 2.44, 3.46, L"B8"},
    {20, 44, 62, 1.73, 2.44, L"B9"},
    {21, 31, 44, 1.22, 1.73, L"B10"},
    {22, 917, 1297, 36.1, 51.06, L"C0"},
    {23, 648, 917, 25.51, 36.1, L"C1"},
    {24, 458, 648, 18.03, 25.51, L"C2"},
    {25, 324, 458, 12.76, 18.03, L"C3"},
    {26, 229, 324, 9.02, 12.76, L"C4"},
    {27, 162, 229, 6.38, 9.02, L"C5"},
    {28, 114, 162, 4.49, 6.38, L"C6"},
    {29, 81, 114, 3.19, 4.49, L"C7"},
    {30, 57, 81, 2.24, 3.19, L"C8"},
    {31, 40, 57, 1.57, 2.24, L"C9"},
    {32, 28, 40, 1.1, 1.57, L"C10"},
    {33, 216, 279, 8.5, 11.0, L"Letter"},
    {34, 216, 356, 8.5, 14.0, L"Legal"},
    {35, 191, 254, 7.5, 10.0, L"Executive"},
    {36, 279, 432, 11.0, 17.0, L"Ledger/Tabloid"},
    {37, 216, 279, 8.5, 11.0, L"A"},
    {38, 279, 432, 11.0, 17.0, L"B"},
    {39, 432, 559, 17.0, 22.0, L"C"},
    {40, 559, 864, 22.0, 34.0, L"D"},
    {41, 864, 1118, 34.0, 44.0, L"E"},
    {42, 140, 216, 5.5, 8.5, L"Statement"},
}};

const std::array<int32_t, 10> kOfferedPaperSizes = {3, 4, 5, 6, 15, 16, 33, 34, 42, 38};

namespace {

constexpr int kInchDecimals = 2;

}  // namespace

const PaperSizeEntry* GetPaperSize(int32_t iFormat) {
    if (iFormat < 0 || static_cast<size_t>(iFormat) >= kPaperSizes.size()) return nullptr;
    return &kPaperSizes[static_cast<size_t>(iFormat)];
}

std::wstring GetPaperSizeText(const PaperSizeEntry& entry, bool metric, const std::wstring& unit) {
    const std::wstring width =
        metric ? std::to_wstring(entry.iWidthMm) : win32::FormatFixed(entry.dWidthInches, kInchDecimals);
    const std::wstring height =
        metric ? std::to_wstring(entry.iHeightMm) : win32::FormatFixed(entry.dHeightInches, kInchDecimals);
    return entry.pszName + (L"  " + width + L" x " + height + L"  " + unit);
}

UserPageSize GetEffectiveSize(const PaperChoice& choice, bool metric) {
    const PaperSizeEntry* entry = choice.standard ? GetPaperSize(choice.iFormat) : nullptr;
    if (entry == nullptr) return choice.custom;
    UserPageSize size;
    if (metric) {
        size = {static_cast<float>(entry->iWidthMm), static_cast<float>(entry->iHeightMm)};
    } else {
        size = {static_cast<float>(entry->dWidthInches), static_cast<float>(entry->dHeightInches)};
    }
    if (choice.landscape) std::swap(size.fWidth, size.fHeight);
    return size;
}
