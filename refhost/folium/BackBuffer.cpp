#include "refhost/folium/BackBuffer.h"

namespace folium {

BackBuffer::~BackBuffer() {
    Clear();
}

void BackBuffer::Clear() {
    if (m_before != nullptr) SelectObject(m_dc.Get(), m_before);
    m_before = nullptr;
    m_pixels = nullptr;
    m_width = m_height = 0;
    m_bitmap = BitmapOwner();
    m_dc = DcOwner();
}

bool BackBuffer::Resize(int width, int height) {
    if (m_pixels != nullptr && width == m_width && height == m_height) return true;
    Clear();
    if (width <= 0 || height <= 0) return false;
    m_dc = DcOwner(CreateCompatibleDC(nullptr));
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* pixels = nullptr;
    m_bitmap = BitmapOwner(CreateDIBSection(m_dc.Get(), &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    if (m_dc.Get() == nullptr || m_bitmap.Get() == nullptr) {
        Clear();
        return false;
    }
    m_before = SelectObject(m_dc.Get(), m_bitmap.Get());
    m_pixels = static_cast<uint32_t*>(pixels);
    m_width = width;
    m_height = height;
    return true;
}

Surface BackBuffer::GetSurface() {
    // GDI may still have something to draw.
    GdiFlush();
    return {m_pixels, m_width, m_height};
}

}  // namespace folium
