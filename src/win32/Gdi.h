#pragma once
// Device contexts of a paint.

#include <windows.h>

namespace win32 {

// BeginPaint to EndPaint.
class PaintDC {
public:
    explicit PaintDC(HWND window) : m_window(window) { BeginPaint(window, &m_paint); }
    ~PaintDC() { EndPaint(m_window, &m_paint); }
    PaintDC(const PaintDC&) = delete;
    PaintDC& operator=(const PaintDC&) = delete;

    HDC Get() const { return m_paint.hdc; }

private:
    HWND m_window;
    PAINTSTRUCT m_paint = {};
};

// What is drawn here appears at once when it goes, without flicker. Without memory for it, drawing goes straight to the
// target.
class BufferedDC {
public:
    BufferedDC(HDC target, const RECT& rect);
    ~BufferedDC();
    BufferedDC(const BufferedDC&) = delete;
    BufferedDC& operator=(const BufferedDC&) = delete;

    HDC Get() const { return m_bitmap == nullptr ? m_target : m_memory; }

private:
    HDC m_target;
    RECT m_rect;
    HDC m_memory = nullptr;
    HBITMAP m_bitmap = nullptr;
    HGDIOBJ m_old = nullptr;
};

}  // namespace win32
