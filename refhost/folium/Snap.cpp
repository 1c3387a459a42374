#include "refhost/folium/Snap.h"

#include <algorithm>
#include <cstdlib>

namespace folium {

SnapLines CollectSnapLines(const std::vector<Item>& items, const std::vector<int32_t>& dragged, Size page) {
    SnapLines lines = {{0, page.width}, {0, page.height}};
    for (const Item& item : items) {
        if (std::find(dragged.begin(), dragged.end(), item.id) != dragged.end()) continue;
        lines.x.insert(lines.x.end(), {item.rect.left, item.rect.right});
        lines.y.insert(lines.y.end(), {item.rect.top, item.rect.bottom});
    }
    return lines;
}

int64_t SnapShift(const std::vector<int32_t>& lines, std::initializer_list<int64_t> edges, double reach) {
    int64_t best = 0;
    bool found = false;
    for (const int32_t line : lines) {
        for (const int64_t edge : edges) {
            const int64_t shift = line - edge;
            if (static_cast<double>(std::abs(shift)) > reach || (found && std::abs(shift) >= std::abs(best))) continue;
            best = shift;
            found = true;
        }
    }
    return best;
}

}  // namespace folium
