#pragma once
// Which part of the page the window shows: zoom, scroll position and the way between page units and client pixels.

#include <cstdint>

#include "refhost/folium/Geometry.h"

namespace folium {

enum class ZoomMode : int32_t { PageHeight = 0, PageWidth = 1, WholePage = 2, Percent = 3 };

class Viewport {
public:
    static constexpr int32_t kLeastPercent = 1;
    static constexpr int32_t kMostPercent = 6400;

    // All setters keep the place of the page that is in the middle of the window, as far as there is something to
    // scroll. The window's size is without scroll bars, theirs what they take away where they are needed.
    void SetPage(Size page);
    void SetWindow(int width, int height, int verticalBar, int horizontalBar);
    void SetDpi(int dpi);
    // False for a mode or a percentage that there is not; 100 % is the page at its own size on this device.
    bool SetZoom(ZoomMode mode, int32_t percent);
    // Multiplies the zoom; the place of the page under the position stays there.
    void ZoomAround(double factor, int x, int y);

    bool HasPage() const { return m_page.width > 0 && m_page.height > 0; }
    Size Page() const { return m_page; }
    double Percent() const { return m_scale * 25400.0 / m_dpi; }
    int Dpi() const { return m_dpi; }
    // A length given for 96 dots per inch.
    int Scaled(int pixels) const { return (pixels * m_dpi + 48) / 96; }

    // The window without its scroll bars.
    int ViewWidth() const { return m_x.view; }
    int ViewHeight() const { return m_y.view; }
    // The page on the screen.
    int32_t PageWidth() const { return m_x.page; }
    int32_t PageHeight() const { return m_y.page; }
    int32_t OriginX() const { return Origin(m_x); }
    int32_t OriginY() const { return Origin(m_y); }

    struct Scroll {
        bool needed;
        int32_t range;     // pixels that can be shown by scrolling, the page and its margin
        int32_t position;  // the first one shown
        int32_t view;      // how many are shown
    };
    Scroll Horizontal() const { return ScrollOf(m_x); }
    Scroll Vertical() const { return ScrollOf(m_y); }
    // False when it was there already or is as far as it goes.
    bool ScrollTo(int64_t x, int64_t y);
    bool ScrollBy(int64_t dx, int64_t dy) { return ScrollTo(m_x.scroll + dx, m_y.scroll + dy); }
    // Scrolls as little as makes the rectangle seen, or its top-left corner when it is too large.
    bool Reveal(const Rect& rect);

    double UnitsPerPixel() const { return 1 / m_scale; }
    // Saturates far beyond any screen, at a place that pixel arithmetic can go on from.
    int ToClientX(int32_t x) const { return ToClient(m_x, x); }
    int ToClientY(int32_t y) const { return ToClient(m_y, y); }
    PixelRect ToClient(const Rect& rect) const;
    Point ToPage(int x, int y) const;
    Rect SeenPart() const;

private:
    struct Axis {
        int window = 0;    // without a scroll bar
        int bar = 0;       // what the scroll bar across takes away
        int view = 0;      // what is left
        int32_t page = 0;  // the page on the screen
        int32_t scroll = 0;
        bool needed = false;
    };

    void Layout();
    double FitScale(int width, int height) const;
    void LayoutAxis(Axis& axis, int32_t length);
    void KeepMiddle(double x, double y);
    int Margin() const { return Scaled(8); }
    int32_t Origin(const Axis& axis) const;
    Scroll ScrollOf(const Axis& axis) const;
    int32_t LargestScroll(const Axis& axis) const;
    int ToClient(const Axis& axis, int32_t value) const;
    double MiddleOf(const Axis& axis) const;

    Size m_page;
    ZoomMode m_mode = ZoomMode::WholePage;
    double m_percent = 100;
    int m_dpi = 96;
    double m_scale = 96 / 254.0;  // pixels per unit
    Axis m_x, m_y;
};

}  // namespace folium
