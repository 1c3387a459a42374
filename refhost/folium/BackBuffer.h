#pragma once
// A bitmap in memory as large as the window, that code and GDI both draw on. What is painted reaches the screen at
// once.

#include <windows.h>

#include "refhost/folium/Counts.h"
#include "refhost/folium/Surface.h"

namespace folium {

class BackBuffer {
public:
    BackBuffer() = default;
    ~BackBuffer();
    BackBuffer(const BackBuffer&) = delete;
    BackBuffer& operator=(const BackBuffer&) = delete;

    // False when there is no memory for it.
    bool Resize(int width, int height);
    Surface GetSurface();
    HDC Dc() const { return m_dc.Get(); }

private:
    void Clear();

    DcOwner m_dc;
    BitmapOwner m_bitmap;
    HGDIOBJ m_before = nullptr;
    uint32_t* m_pixels = nullptr;
    int m_width = 0, m_height = 0;
};

}  // namespace folium
