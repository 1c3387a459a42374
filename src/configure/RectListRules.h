#pragma once
// What "Configure Area Set" decides without its windows, apart from the cells of its list.

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "model/PageRect.h"

namespace rectlist {

// The rectangle of a new area: the middle half of the page in both directions.
PageRect GetMiddleHalf(int32_t width, int32_t height);

// What a dialog that is higher than the monitor takes off its page frame and its list, in pixels.
struct HeightCuts {
    int32_t page;
    int32_t list;
    bool operator==(const HeightCuts&) const = default;
};
// The page gives up as much as `room` lets the list come up without lying over the choice beside the page, then the
// list does, then the page whatever it takes. Both stay useful; a monitor too low for that leaves an excess.
HeightCuts GetHeightCuts(int32_t excess, int32_t room, int32_t pageHeight, int32_t listHeight);

// An indexing field stands on one rectangle at most: the rows that lose theirs when `row` was given the field that it
// has in `fields`. Names are compared as they are, with case.
std::vector<int> GetRowsLosingField(const std::vector<std::wstring>& fields, int row);

// Indexing fields of rectangles that were removed, for those that an undo brings back.
class RemovedFields {
public:
    void Remember(uint32_t rectId, const std::wstring& field);
    bool Holds(uint32_t rectId) const { return m_fields.contains(rectId); }
    // The field to put back, once; empty when there was none or another row (`fields`) has taken it.
    std::wstring TakeBack(uint32_t rectId, const std::vector<std::wstring>& fields);

private:
    std::map<uint32_t, std::wstring> m_fields;
};

struct NavigationButton {
    uint32_t flag;    // of GetPage: nothing lies that way
    uint32_t button;  // disabled for it
};
// In the order in which the buttons are set.
inline constexpr std::array<NavigationButton, 4> kNavigationButtons = {{
    {1, 27775},  // previous page
    {2, 27777},  // next page
    {4, 27772},  // previous document
    {8, 27774},  // next document
}};

enum class ZoomMode : int32_t { kPageHeight, kPageWidth, kWholePage, kPercent };
struct Zoom {
    ZoomMode mode;
    int32_t percent;  // 0 unless the mode is kPercent
    bool operator==(const Zoom&) const = default;
};

inline constexpr uint32_t kFirstScaleCommand = 27786;
inline constexpr uint32_t kWholePageCommand = 27793;
inline constexpr std::array<int32_t, 7> kScalePercents = {20, 40, 60, 80, 100, 150, 200};

// What a command of the "Scale" menu sets; nothing for other commands.
std::optional<Zoom> GetZoom(int64_t command);
// The command to start with: the stored one, or "Whole Page" when that is none of the menu.
uint32_t GetStartScaleCommand(int64_t stored);

}  // namespace rectlist
