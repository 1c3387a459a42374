#include "refhost/folium/Viewport.h"

#include <algorithm>
#include <cmath>

namespace folium {

namespace {

// Sums and differences of a few such values still have room in 32 bits.
constexpr int32_t kFarthest = 1 << 28;

int32_t Rounded(double value) {
    return static_cast<int32_t>(std::lround(std::clamp(value, -double{kFarthest}, double{kFarthest})));
}

}  // namespace

void Viewport::SetPage(Size page) {
    m_page = {std::max(page.width, 0), std::max(page.height, 0)};
    // The same part of the next page is what an operator compares.
    Layout();
}

void Viewport::SetWindow(int width, int height, int verticalBar, int horizontalBar) {
    width = std::clamp(width, 0, 1 << 20);
    height = std::clamp(height, 0, 1 << 20);
    // Nothing new must not move the page by a rounding.
    if (width == m_x.window && height == m_y.window && verticalBar == m_x.bar && horizontalBar == m_y.bar) return;
    const double x = MiddleOf(m_x);
    const double y = MiddleOf(m_y);
    m_x.window = width;
    m_y.window = height;
    m_x.bar = verticalBar;
    m_y.bar = horizontalBar;
    Layout();
    KeepMiddle(x, y);
}

void Viewport::SetDpi(int dpi) {
    if (dpi == m_dpi) return;
    const double x = MiddleOf(m_x);
    const double y = MiddleOf(m_y);
    m_dpi = std::clamp(dpi, 24, 2400);
    Layout();
    KeepMiddle(x, y);
}

bool Viewport::SetZoom(ZoomMode mode, int32_t percent) {
    if (mode < ZoomMode::PageHeight || mode > ZoomMode::Percent) return false;
    if (mode == ZoomMode::Percent && (percent < kLeastPercent || percent > kMostPercent)) return false;
    const double x = MiddleOf(m_x);
    const double y = MiddleOf(m_y);
    m_mode = mode;
    if (mode == ZoomMode::Percent) m_percent = percent;
    Layout();
    KeepMiddle(x, y);
    return true;
}

void Viewport::ZoomAround(double factor, int x, int y) {
    const double pageX = (double(x) - OriginX()) / m_scale;
    const double pageY = (double(y) - OriginY()) / m_scale;
    m_percent = std::clamp(Percent() * factor, double{kLeastPercent}, double{kMostPercent});
    m_mode = ZoomMode::Percent;
    Layout();
    ScrollTo(int64_t{Margin()} + Rounded(pageX * m_scale) - x, int64_t{Margin()} + Rounded(pageY * m_scale) - y);
}

// The place of the page in the middle of the view, as a fraction of the page.
double Viewport::MiddleOf(const Axis& axis) const {
    if (axis.page == 0) return 0;
    return (axis.view / 2.0 - Origin(axis)) / axis.page;
}

void Viewport::KeepMiddle(double x, double y) {
    ScrollTo(int64_t{Margin()} + Rounded(x * m_x.page) - m_x.view / 2,
             int64_t{Margin()} + Rounded(y * m_y.page) - m_y.view / 2);
}

double Viewport::FitScale(int width, int height) const {
    const double across = std::max(width - 2 * Margin(), 1) / static_cast<double>(m_page.width);
    const double down = std::max(height - 2 * Margin(), 1) / static_cast<double>(m_page.height);
    switch (m_mode) {
        case ZoomMode::PageHeight:
            return down;
        case ZoomMode::PageWidth:
            return across;
        case ZoomMode::WholePage:
            return std::min(across, down);
        default:
            return m_percent * m_dpi / 25400.0;
    }
}

// A scroll bar takes room away, which may call for the other one and changes what fits.
void Viewport::Layout() {
    m_x.needed = m_y.needed = false;
    for (int pass = 0; pass < 3; ++pass) {
        m_x.view = std::max(m_x.window - (m_y.needed ? m_x.bar : 0), 0);
        m_y.view = std::max(m_y.window - (m_x.needed ? m_y.bar : 0), 0);
        if (!HasPage()) {
            m_x.page = m_y.page = m_x.scroll = m_y.scroll = 0;
            return;
        }
        const double longest = std::max(m_page.width, m_page.height);
        m_scale = std::min(FitScale(m_x.view, m_y.view), kFarthest / 2 / longest);
        LayoutAxis(m_x, m_page.width);
        LayoutAxis(m_y, m_page.height);
    }
    ScrollTo(m_x.scroll, m_y.scroll);
}

void Viewport::LayoutAxis(Axis& axis, int32_t length) {
    // A hair of rounding must not call for a scroll bar.
    axis.page = std::max(Rounded(length * m_scale - 1e-6), 1);
    const bool fits = axis.page + 2 * Margin() <= axis.view;
    const bool vertical = &axis == &m_y;
    const bool fitted =
        m_mode == ZoomMode::WholePage || m_mode == (vertical ? ZoomMode::PageHeight : ZoomMode::PageWidth);
    if (!fits && !fitted) axis.needed = true;
}

int32_t Viewport::LargestScroll(const Axis& axis) const {
    return axis.needed ? std::max(axis.page + 2 * Margin() - axis.view, 0) : 0;
}

bool Viewport::ScrollTo(int64_t x, int64_t y) {
    const auto newX = static_cast<int32_t>(std::clamp<int64_t>(x, 0, LargestScroll(m_x)));
    const auto newY = static_cast<int32_t>(std::clamp<int64_t>(y, 0, LargestScroll(m_y)));
    if (newX == m_x.scroll && newY == m_y.scroll) return false;
    m_x.scroll = newX;
    m_y.scroll = newY;
    return true;
}

bool Viewport::Reveal(const Rect& rect) {
    const PixelRect shown = Inflated(ToClient(rect), Margin());
    const auto way = [](int low, int high, int view) {
        if (low < 0 || high - low > view) return low;
        return high > view ? high - view : 0;
    };
    return ScrollBy(way(shown.left, shown.right, m_x.view), way(shown.top, shown.bottom, m_y.view));
}

int32_t Viewport::Origin(const Axis& axis) const {
    if (axis.needed) return Margin() - axis.scroll;
    return (axis.view - axis.page) / 2;
}

Viewport::Scroll Viewport::ScrollOf(const Axis& axis) const {
    return {axis.needed, axis.page + 2 * Margin(), axis.scroll, axis.view};
}

int Viewport::ToClient(const Axis& axis, int32_t value) const {
    return Rounded(Origin(axis) + value * m_scale);
}

PixelRect Viewport::ToClient(const Rect& rect) const {
    return {ToClientX(rect.left), ToClientY(rect.top), ToClientX(rect.right), ToClientY(rect.bottom)};
}

Point Viewport::ToPage(int x, int y) const {
    const auto convert = [this](double pixels) {
        constexpr double kLow = std::numeric_limits<int32_t>::min();
        constexpr double kHigh = std::numeric_limits<int32_t>::max();
        return static_cast<int32_t>(std::clamp(std::round(pixels / m_scale), kLow, kHigh));
    };
    return {convert(double(x) - OriginX()), convert(double(y) - OriginY())};
}

Rect Viewport::SeenPart() const {
    const Point from = ToPage(0, 0);
    const Point to = ToPage(m_x.view, m_y.view);
    return {std::clamp(from.x, 0, m_page.width), std::clamp(from.y, 0, m_page.height),
            std::clamp(to.x, 0, m_page.width), std::clamp(to.y, 0, m_page.height)};
}

}  // namespace folium
