#include "win32/Gdi.h"

namespace win32 {

BufferedDC::BufferedDC(HDC target, const RECT& rect) : m_target(target), m_rect(rect) {
    m_memory = CreateCompatibleDC(target);
    if (m_memory == nullptr) return;
    m_bitmap = CreateCompatibleBitmap(target, rect.right - rect.left, rect.bottom - rect.top);
    if (m_bitmap == nullptr) return;
    m_old = SelectObject(m_memory, m_bitmap);
    SetWindowOrgEx(m_memory, rect.left, rect.top, nullptr);
}

BufferedDC::~BufferedDC() {
    if (m_bitmap != nullptr) {
        BitBlt(m_target, m_rect.left, m_rect.top, m_rect.right - m_rect.left, m_rect.bottom - m_rect.top, m_memory,
               m_rect.left, m_rect.top, SRCCOPY);
        SelectObject(m_memory, m_old);
        DeleteObject(m_bitmap);
    }
    if (m_memory != nullptr) DeleteDC(m_memory);
}

}  // namespace win32
