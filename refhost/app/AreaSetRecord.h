#pragma once
// An area set as zonhost hands it between files, the settings store and the screen.

#include <cstdint>
#include <string>
#include <vector>

namespace zonhost {

// The areas are the parts of the page to leave out.
inline constexpr uint32_t kAreasIgnored = 0x10000000;
// UTF-16 units of a name; a longer one could not be found by the exports.
inline constexpr size_t kLongestName = 63;

// Tenths of a millimetre from the page's top-left corner.
struct Rect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
    bool operator==(const Rect&) const = default;
};

struct AreaSetRecord {
    uint32_t id = 0;  // 0: not stored yet
    std::string name;
    uint32_t flags = 0;
    Rect page;  // extent of the page that the areas were laid out on; all 0: not known
    std::vector<Rect> areas;
    bool Ignored() const { return (flags & kAreasIgnored) != 0; }
    bool operator==(const AreaSetRecord&) const = default;
};

// A4, made larger where an area reaches beyond it: for sets that come without a page.
Rect DefaultPage(const std::vector<Rect>& areas);

// Why a set cannot have this name, or an empty text.
std::string NameProblem(const std::string& name);

}  // namespace zonhost
