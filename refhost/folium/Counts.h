#pragma once
// The counters behind FoliumGetCounts.

#include <atomic>

#include "refhost/folium/FoliumCounts.h"

namespace folium {

struct Counts {
    std::atomic<LONG> windows{0};
    std::atomic<LONG> gdiObjects{0};
    std::atomic<LONG> paints{0};
    std::atomic<LONG> tilesScaled{0};
};
inline Counts g_counts;

// Counts a GDI object while it lives and deletes it at its end.
template <class Handle, BOOL(WINAPI* Delete)(Handle)>
class GdiOwner {
public:
    GdiOwner() = default;
    explicit GdiOwner(Handle handle) : m_handle(handle) {
        if (m_handle != nullptr) ++g_counts.gdiObjects;
    }
    GdiOwner(GdiOwner&& other) noexcept : m_handle(other.m_handle) { other.m_handle = nullptr; }
    GdiOwner& operator=(GdiOwner&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~GdiOwner() {
        if (m_handle == nullptr) return;
        Delete(m_handle);
        --g_counts.gdiObjects;
    }
    Handle Get() const { return m_handle; }

private:
    Handle m_handle = nullptr;
};

inline BOOL WINAPI DeleteFontObject(HFONT font) {
    return DeleteObject(font);
}
inline BOOL WINAPI DeleteBitmapObject(HBITMAP bitmap) {
    return DeleteObject(bitmap);
}
using DcOwner = GdiOwner<HDC, DeleteDC>;
using FontOwner = GdiOwner<HFONT, DeleteFontObject>;
using BitmapOwner = GdiOwner<HBITMAP, DeleteBitmapObject>;

}  // namespace folium
