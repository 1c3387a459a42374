// From rectangles to bands of rows: a sweep from top to bottom that holds the vertical edges of the open rectangles.
#include <algorithm>

#include "refhost/imaging/Mask.h"

namespace imaging {

namespace {

class OpenEdges {
public:
    void Open(const PixelRect& rect) {
        Add(rect.left, 1);
        Add(rect.right, -1);
    }
    void Close(const PixelRect& rect) {
        Add(rect.left, -1);
        Add(rect.right, 1);
    }

    // The pixels that no open rectangle covers, or those that one covers.
    void Collect(uint32_t width, bool covered, std::vector<PixelRange>& ranges) const {
        ranges.clear();
        uint32_t from = 0;
        int64_t depth = 0;
        for (const Edge& edge : m_edges) {
            const int64_t next = depth + edge.delta;
            if ((depth > 0) != (next > 0)) {
                if ((depth > 0) == covered && from < edge.x) ranges.push_back({from, edge.x});
                from = edge.x;
            }
            depth = next;
        }
        if (!covered && from < width) ranges.push_back({from, width});
    }

private:
    struct Edge {
        uint32_t x;
        int32_t delta;  // rectangles that begin here less those that end here
    };

    void Add(uint32_t x, int32_t delta) {
        const auto place = std::lower_bound(m_edges.begin(), m_edges.end(), x,
                                            [](const Edge& edge, uint32_t value) { return edge.x < value; });
        if (place == m_edges.end() || place->x != x) {
            m_edges.insert(place, Edge{x, delta});
        } else if ((place->delta += delta) == 0) {
            m_edges.erase(place);
        }
    }

    std::vector<Edge> m_edges;
};

}  // namespace

Mask MakeMask(const Bitmap& image, bool keep, std::span<const Area> areas) {
    Mask mask;
    mask.keep = keep;
    mask.rects.reserve(areas.size());
    for (const Area& area : areas) {
        const PixelRange x = PixelsTouched(area.left, area.right, image.resolution.x, image.Width());
        const PixelRange y = PixelsTouched(area.top, area.bottom, image.resolution.y, image.Height());
        if (!x.IsEmpty() && !y.IsEmpty()) mask.rects.push_back({x.begin, y.begin, x.end, y.end});
    }
    std::sort(mask.rects.begin(), mask.rects.end(),
              [](const PixelRect& a, const PixelRect& b) { return a.top < b.top; });
    return mask;
}

void ForEachBand(uint32_t width, uint32_t height, const Mask& mask, const BandVisitor& visit) {
    std::vector<const PixelRect*> byBottom;
    byBottom.reserve(mask.rects.size());
    for (const PixelRect& rect : mask.rects) byBottom.push_back(&rect);
    std::sort(byBottom.begin(), byBottom.end(),
              [](const PixelRect* a, const PixelRect* b) { return a->bottom < b->bottom; });

    OpenEdges open;
    std::vector<PixelRange> masked;
    auto opening = mask.rects.begin();
    auto closing = byBottom.begin();
    for (uint32_t y = 0; y < height;) {
        for (; closing != byBottom.end() && (*closing)->bottom == y; ++closing) open.Close(**closing);
        for (; opening != mask.rects.end() && opening->top == y; ++opening) open.Open(*opening);
        uint32_t next = height;
        if (opening != mask.rects.end()) next = std::min(next, opening->top);
        if (closing != byBottom.end()) next = std::min(next, (*closing)->bottom);
        open.Collect(width, !mask.keep, masked);
        visit(y, next, masked);
        y = next;
    }
}

}  // namespace imaging
