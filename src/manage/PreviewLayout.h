#pragma once
// Where the miniature of a page and its areas stands in a control, in client pixels.

#include <cstdint>
#include <vector>

#include "model/PageRect.h"

enum class PreviewColor { kFace, kWindow, kHighlight };

// One filled rectangle.
struct PreviewShape {
    PageRect rect;
    PreviewColor color;
    bool operator==(const PreviewShape&) const = default;
};

// Page and areas are in one unit of the caller's; the page is scaled to fit the client area and centred in it.
class PreviewLayout {
public:
    // The client area. The page fills it until its size is set.
    void SetClient(const PageRect& client);
    void SetPageSize(int32_t width, int32_t height);
    void SetAreasIgnored(bool ignored) { m_ignored = ignored; }
    // Normalised; the area's position in the list. Throws std::bad_alloc with the list unchanged.
    int32_t AddRect(PageRect area);
    void RemoveAllRects() { m_areas.clear(); }

    // What to fill, in this order: the background, the page, and each area as far as it lies on the page.
    std::vector<PreviewShape> GetShapes() const;

private:
    PageRect m_client;
    PageRect m_page;  // as drawn
    std::vector<PageRect> m_areas;
    double m_scale = 1.0;  // pixels for each unit of the page
    bool m_ignored = false;
};
