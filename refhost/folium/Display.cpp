#include "refhost/folium/Display.h"

#include <cstdlib>

#include "refhost/folium/Counts.h"

namespace folium {

namespace {

uint32_t ToRgb(COLORREF color) {
    return static_cast<uint32_t>(GetRValue(color)) << 16 | static_cast<uint32_t>(GetGValue(color)) << 8 |
           static_cast<uint32_t>(GetBValue(color));
}

uint32_t SystemRgb(int index) {
    return ToRgb(GetSysColor(index));
}

bool HighContrast() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

// An unusable record gives an unusable source, which shows as an empty page.
PageSource SourceOf(const PagePixels& pixels) {
    if (pixels.bitsPerPixel <= 8 && pixels.colors < (pixels.bitsPerPixel == 1 ? 2u : 256u)) return {};
    const uint64_t rowBytes = (uint64_t{pixels.width} * pixels.bitsPerPixel + 7) / 8;
    const auto stride = static_cast<uint64_t>(std::abs(static_cast<int64_t>(pixels.stride)));
    if (pixels.stride != 0 && stride < rowBytes) return {};
    return {pixels.width, pixels.height, pixels.bitsPerPixel, pixels.palette, pixels.topRow, pixels.stride};
}

}  // namespace

Display::Display(RectModel::Listener listener) : model(std::move(listener)) {
    m_options.background = GetSysColor(COLOR_3DLIGHT);
    m_options.area1 = m_options.area2 = RGB(255, 255, 255);
    m_options.smooth = 1;
    RefreshColors();
}

HRESULT Display::ShowPage(IPageImage* page) {
    SIZE size = {};
    HRESULT status = page->GetSize(&size);
    if (FAILED(status)) return status;
    if (size.cx <= 0 || size.cy <= 0) return E_INVALIDARG;
    ComPtr<IPagePixels> access;
    PagePixels pixels = {};
    if (SUCCEEDED(page->QueryInterface(&access))) {
        status = access->GetPixels(&pixels);
        if (FAILED(status)) return status;
    }
    m_tiles.SetSource(std::nullopt);
    m_source = access != nullptr ? SourceOf(pixels) : PageSource();
    m_page = page;
    m_pixels = access;
    m_tiles.SetSource(m_source);
    view.SetPage({size.cx, size.cy});
    editor.SetPage(view.Page());
    return S_OK;
}

// The page may have been loaded anew by its owner, and its old pixels are gone then.
void Display::RefreshSource() {
    if (m_pixels == nullptr) return;
    PagePixels pixels = {};
    const HRESULT status = m_pixels->GetPixels(&pixels);
    const PageSource source = SUCCEEDED(status) ? SourceOf(pixels) : PageSource();
    if (source == m_source) return;
    m_source = source;
    m_tiles.SetSource(source);
}

void Display::SetOptions(const FoliumDisplayOptions& options) {
    m_options = options;
    RefreshColors();
}

void Display::RefreshColors() {
    m_colors = {};
    if (HighContrast()) {
        m_colors.background = SystemRgb(COLOR_WINDOW);
        m_colors.border = SystemRgb(COLOR_WINDOWTEXT);
        m_colors.area = SystemRgb(COLOR_WINDOWTEXT);
        m_colors.selected = SystemRgb(COLOR_HIGHLIGHT);
        m_colors.second = SystemRgb(COLOR_WINDOW);
        return;
    }
    m_colors.background = ToRgb(m_options.background);
    // A quiet line, lighter or darker than what lies around the page.
    m_colors.border = SecondColor(m_colors.background, 0) == 0 ? 0x707070 : 0xA0A0A0;
    m_colors.area = ToRgb(m_options.area1);
    m_colors.selected = ToRgb(m_options.area2);
    m_colors.second = ToRgb(m_options.area3);
}

Reach Display::ReachNow() const {
    const double unit = view.UnitsPerPixel();
    return {unit * HalfHandle(view), unit * view.Scaled(3), unit * view.Scaled(4), unit * view.Scaled(6)};
}

void Display::Paint(Surface& surface, const std::vector<Shape>& shapes, bool focus) {
    RefreshSource();
    m_tiles.SetView(view.PageWidth(), view.PageHeight(), m_options.smooth != 0);
    const uint64_t before = m_tiles.TilesScaled();
    PaintScene(surface, {view, m_tiles, shapes, m_colors, editor.CanEdit(), focus});
    g_counts.tilesScaled += static_cast<LONG>(m_tiles.TilesScaled() - before);
}

void Display::PaintWhole(Surface& surface, int width, int height) {
    RefreshSource();
    Viewport whole = view;
    whole.SetZoom(ZoomMode::WholePage, 0);
    whole.SetWindow(width, height, 0, 0);
    PageTiles tiles;
    if (m_tiles.HasSource()) tiles.SetSource(m_source);
    tiles.SetView(whole.PageWidth(), whole.PageHeight(), m_options.smooth != 0);
    const std::vector<Shape> shapes = CollectShapes(model, editor, whole);
    PaintScene(surface, {whole, tiles, shapes, m_colors, false, false});
}

}  // namespace folium
