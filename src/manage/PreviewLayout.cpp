#include "manage/PreviewLayout.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

// Coordinates at the ends of 32 bits stay at the ends.
int32_t Saturate(int64_t value) {
    using Limits = std::numeric_limits<int32_t>;
    return static_cast<int32_t>(std::clamp<int64_t>(value, Limits::min(), Limits::max()));
}

int64_t Truncate(double value) {
    constexpr double kFarAway = 1e12;
    return std::isnan(value) ? 0 : static_cast<int64_t>(std::clamp(value, -kFarAway, kFarAway));
}

int64_t Middle(int32_t from, int32_t to) {
    return (int64_t{from} + to) / 2;
}

bool IsEmpty(const PageRect& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

PageRect Intersect(const PageRect& a, const PageRect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

}  // namespace

void PreviewLayout::SetClient(const PageRect& client) {
    m_client = client;
    m_page = client;
}

void PreviewLayout::SetPageSize(int32_t width, int32_t height) {
    const double clientWidth = static_cast<double>(m_client.right) - m_client.left;
    const double clientHeight = static_cast<double>(m_client.bottom) - m_client.top;
    int64_t right = 0;
    int64_t bottom = 0;
    // A page without height has an infinite aspect, or none when it has no width either: then the comparison is false.
    if (static_cast<double>(width) / height > clientWidth / clientHeight) {
        m_scale = clientWidth / width;
        right = Truncate(clientWidth);
        bottom = Truncate(height * m_scale);
    } else {
        m_scale = height > 0 ? clientHeight / height : 1.0;
        right = Truncate(width * m_scale);
        bottom = Truncate(clientHeight);
    }
    const int64_t dx = Middle(m_client.left, m_client.right) - right / 2;
    const int64_t dy = Middle(m_client.top, m_client.bottom) - bottom / 2;
    m_page = {Saturate(dx), Saturate(dy), Saturate(right + dx), Saturate(bottom + dy)};
}

int32_t PreviewLayout::AddRect(PageRect area) {
    if (area.left > area.right) std::swap(area.left, area.right);
    if (area.top > area.bottom) std::swap(area.top, area.bottom);
    m_areas.push_back(area);
    return static_cast<int32_t>(m_areas.size()) - 1;
}

std::vector<PreviewShape> PreviewLayout::GetShapes() const {
    const auto page = m_ignored ? PreviewColor::kHighlight : PreviewColor::kWindow;
    const auto areas = m_ignored ? PreviewColor::kWindow : PreviewColor::kHighlight;
    std::vector<PreviewShape> shapes = {{m_client, PreviewColor::kFace}, {m_page, page}};
    for (const PageRect& area : m_areas) {
        const PageRect drawn = {Saturate(Truncate(area.left * m_scale) + m_page.left),
                                Saturate(Truncate(area.top * m_scale) + m_page.top),
                                Saturate(Truncate(area.right * m_scale) + m_page.left),
                                Saturate(Truncate(area.bottom * m_scale) + m_page.top)};
        const PageRect visible = Intersect(drawn, m_page);
        if (!IsEmpty(drawn) && !IsEmpty(visible)) shapes.push_back({visible, areas});
    }
    return shapes;
}
