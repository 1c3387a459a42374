#pragma once
// The page scaled to the zoom in force, kept in squares: what was scaled once is not scaled again while page, zoom and
// smoothing stay, and of a page that is far larger than the window only what is seen is scaled at all.

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "refhost/folium/PageSource.h"
#include "refhost/folium/Surface.h"

namespace folium {

class PageTiles {
public:
    static constexpr int kSide = 512;
    // 64 MiB; more only as long as one window shows more.
    static constexpr size_t kMostKept = 64;

    // The pixels have to stay until another source, or none, is set.
    void SetSource(const std::optional<PageSource>& source);
    bool HasSource() const { return m_source.has_value(); }
    void SetView(int32_t width, int32_t height, bool smooth);
    // Draws the page with its top-left corner at a place of the surface, as far as the surface's clip reaches.
    void Draw(Surface& surface, int originX, int originY);

    uint64_t TilesScaled() const { return m_scaled; }
    size_t TilesKept() const { return m_tiles.size(); }

private:
    struct Tile {
        std::vector<uint32_t> pixels;
        int width = 0, height = 0;
        uint64_t used = 0;
    };
    using Place = std::pair<int, int>;  // column and row

    Tile& Get(Place place);
    void DropOld();

    std::optional<PageSource> m_source;
    int32_t m_width = 0, m_height = 0;
    bool m_smooth = false;
    std::map<Place, Tile> m_tiles;
    uint64_t m_draws = 0;
    uint64_t m_scaled = 0;
};

}  // namespace folium
