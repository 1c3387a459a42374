#pragma once
// The label beside a rectangle that is being dragged: its size in the user's unit.

#include <windows.h>

#include <string>

#include "host/MeasureUnits.h"
#include "refhost/folium/Counts.h"
#include "refhost/folium/Display.h"

namespace folium {

// Lengths in the user's unit; in millimetres where the host has no unit object.
class LengthTexts {
public:
    LengthTexts();
    std::wstring Length(int32_t tenths) const;
    const std::wstring& Unit() const { return m_unit; }

private:
    ComPtr<IMeasureUnits> m_units;
    std::wstring m_unit = L"mm";
};

class SizeReadout {
public:
    // Sets the text and where it is shown, beside `box` and inside of the view; `rect` in page units.
    void Show(const Viewport& view, const Rect& rect, const PixelRect& box);
    void Hide() { m_place = {}; }
    const PixelRect& Place() const { return m_place; }
    void Paint(HDC dc) const;

private:
    void PrepareFont(int dpi);

    std::wstring m_text;
    PixelRect m_place;
    FontOwner m_font;
    int m_fontDpi = 0;
};

}  // namespace folium
