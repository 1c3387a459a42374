#pragma once
// What a control shows and how: page, rectangles, zoom, colours. It exists with and without a window.

#include <comdef.h>
#include <windows.h>

#include "host/PageDisplay.h"
#include "refhost/documents/PixelAccess.h"
#include "refhost/folium/Scene.h"

namespace folium {

template <class Interface>
using ComPtr = _com_ptr_t<_com_IIID<Interface, &__uuidof(Interface)>>;

class Display {
public:
    explicit Display(RectModel::Listener listener);

    // A failing page leaves the one before as it was.
    HRESULT ShowPage(IPageImage* page);
    bool HasPage() const { return m_page != nullptr; }

    const FoliumDisplayOptions& Options() const { return m_options; }
    void SetOptions(const FoliumDisplayOptions& options);
    // By the options, or by the system's colours when the user has asked for high contrast.
    void RefreshColors();

    Reach ReachNow() const;
    // Paints what the surface's clip holds.
    void Paint(Surface& surface, const std::vector<Shape>& shapes, bool focus);
    // The page and its rectangles as large as fits into a bitmap of this size, at any time and without a window.
    void PaintWhole(Surface& surface, int width, int height);

    RectModel model;
    RectEditor editor{model};
    Viewport view;

private:
    void RefreshSource();

    ComPtr<IPageImage> m_page;
    ComPtr<IPagePixels> m_pixels;  // null for a page of another maker
    PageSource m_source;
    PageTiles m_tiles;
    FoliumDisplayOptions m_options = {};
    SceneColors m_colors;
};

}  // namespace folium
