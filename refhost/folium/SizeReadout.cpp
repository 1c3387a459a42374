#include "refhost/folium/SizeReadout.h"

#include <algorithm>

namespace folium {

namespace {

constexpr int kPadding = 3;

std::wstring Take(BSTR text) {
    const std::wstring result(text == nullptr ? L"" : text, SysStringLen(text));
    SysFreeString(text);
    return result;
}

std::wstring Millimetres(int32_t tenths) {
    const int64_t length = tenths;
    const int64_t positive = length < 0 ? -length : length;
    return (length < 0 ? L"-" : L"") + std::to_wstring(positive / 10) + L'.' + std::to_wstring(positive % 10);
}

}  // namespace

LengthTexts::LengthTexts() {
    IMeasureUnits* units = nullptr;
    if (FAILED(CoCreateInstance(host::kClsidMeasureUnits, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IMeasureUnits),
                                reinterpret_cast<void**>(&units)))) {
        return;
    }
    m_units.Attach(units);
    BSTR name = nullptr;
    if (SUCCEEDED(m_units->GetUnitName(&name))) m_unit = Take(name);
}

std::wstring LengthTexts::Length(int32_t tenths) const {
    BSTR text = nullptr;
    if (m_units != nullptr && SUCCEEDED(m_units->FormatValue(tenths, &text))) return Take(text);
    return Millimetres(tenths);
}

void SizeReadout::PrepareFont(int dpi) {
    if (m_font.Get() != nullptr && m_fontDpi == dpi) return;
    LOGFONTW font = {};
    font.lfHeight = -MulDiv(9, dpi, 72);
    font.lfCharSet = DEFAULT_CHARSET;
    wcscpy_s(font.lfFaceName, L"Tahoma");
    m_font = FontOwner(CreateFontIndirectW(&font));
    m_fontDpi = dpi;
}

void SizeReadout::Show(const Viewport& view, const Rect& rect, const PixelRect& box) {
    // Made for each text: the user's unit may change.
    const LengthTexts texts;
    m_text = texts.Length(Saturate(WidthOf(rect))) + L" \u00d7 " + texts.Length(Saturate(HeightOf(rect))) + L' ' +
             texts.Unit();
    PrepareFont(view.Dpi());
    const HDC dc = GetDC(nullptr);
    const HGDIOBJ before = SelectObject(dc, m_font.Get());
    SIZE size = {};
    GetTextExtentPoint32W(dc, m_text.c_str(), static_cast<int>(m_text.size()), &size);
    SelectObject(dc, before);
    ReleaseDC(nullptr, dc);

    const int padding = view.Scaled(kPadding);
    const int width = size.cx + 4 * padding;
    const int height = size.cy + 2 * padding;
    const int gap = 3 * HalfHandle(view);
    const auto fit = [](int at, int length, int room) { return std::max(std::min(at, room - length), 0); };
    int top = box.bottom + gap;
    if (top + height > view.ViewHeight() && box.top - gap - height >= 0) top = box.top - gap - height;
    m_place.left = fit(box.left, width, view.ViewWidth());
    m_place.top = fit(top, height, view.ViewHeight());
    m_place.right = m_place.left + width;
    m_place.bottom = m_place.top + height;
}

void SizeReadout::Paint(HDC dc) const {
    if (m_place.Empty()) return;
    RECT rect = {m_place.left, m_place.top, m_place.right, m_place.bottom};
    FillRect(dc, &rect, GetSysColorBrush(COLOR_INFOBK));
    FrameRect(dc, &rect, GetSysColorBrush(COLOR_INFOTEXT));
    const HGDIOBJ before = SelectObject(dc, m_font.Get());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_INFOTEXT));
    DrawTextW(dc, m_text.c_str(), static_cast<int>(m_text.size()), &rect,
              DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(dc, before);
}

}  // namespace folium
