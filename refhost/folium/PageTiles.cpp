#include "refhost/folium/PageTiles.h"

#include <algorithm>

namespace folium {

void PageTiles::SetSource(const std::optional<PageSource>& source) {
    m_tiles.clear();
    m_source = source;
    if (m_source && !m_source->Valid()) m_source.reset();
}

void PageTiles::SetView(int32_t width, int32_t height, bool smooth) {
    if (width == m_width && height == m_height && smooth == m_smooth) return;
    m_tiles.clear();
    m_width = width;
    m_height = height;
    m_smooth = smooth;
}

PageTiles::Tile& PageTiles::Get(Place place) {
    Tile& tile = m_tiles[place];
    tile.used = m_draws;
    if (!tile.pixels.empty()) return tile;
    const int left = place.first * kSide;
    const int top = place.second * kSide;
    tile.width = std::min(kSide, m_width - left);
    tile.height = std::min(kSide, m_height - top);
    tile.pixels.resize(static_cast<size_t>(tile.width) * static_cast<size_t>(tile.height));
    const ScaledPart part = {static_cast<uint32_t>(m_width),    static_cast<uint32_t>(m_height),
                             static_cast<uint32_t>(left),       static_cast<uint32_t>(top),
                             static_cast<uint32_t>(tile.width), static_cast<uint32_t>(tile.height)};
    (m_smooth ? ScaleSmooth : ScaleNearest)(*m_source, part, tile.pixels.data());
    ++m_scaled;
    return tile;
}

void PageTiles::Draw(Surface& surface, int originX, int originY) {
    const PixelRect seen = Intersection(surface.Clip(), {originX, originY, originX + m_width, originY + m_height});
    if (!m_source || seen.Empty()) return;
    ++m_draws;
    for (int row = (seen.top - originY) / kSide; originY + row * kSide < seen.bottom; ++row) {
        for (int column = (seen.left - originX) / kSide; originX + column * kSide < seen.right; ++column) {
            const Tile& tile = Get({column, row});
            const int left = originX + column * kSide;
            const int top = originY + row * kSide;
            const PixelRect part = Intersection(seen, {left, top, left + tile.width, top + tile.height});
            for (int y = part.top; y < part.bottom; ++y) {
                const uint32_t* from = tile.pixels.data() + static_cast<ptrdiff_t>(y - top) * tile.width;
                std::copy(from + (part.left - left), from + (part.right - left), surface.At(part.left, y));
            }
        }
    }
    DropOld();
}

// Those that were not drawn for longest go first; those of this drawing stay.
void PageTiles::DropOld() {
    while (m_tiles.size() > kMostKept) {
        const auto oldest = std::min_element(
            m_tiles.begin(), m_tiles.end(), [](const auto& a, const auto& b) { return a.second.used < b.second.used; });
        if (oldest->second.used == m_draws) return;
        m_tiles.erase(oldest);
    }
}

}  // namespace folium
