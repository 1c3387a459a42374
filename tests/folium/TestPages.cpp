#include <vector>

#include "folium/ControlHarness.h"

namespace test {

namespace {

int g_pages = 0;

class Page final : public com::Object<IPageImage, IPagePixels> {
public:
    Page(SIZE size, uint32_t width, uint32_t height, uint32_t bits) : m_size(size) {
        ++g_pages;
        m_pixels = {width, height, bits, bits > 8 ? 0u : bits == 8 ? 256u : 2u, m_palette, nullptr, 0, 200, 200, size};
        for (uint32_t i = 0; i < 256; ++i) m_palette[i] = i * 0x010101;
        if (width == 0) return;
        m_row.assign((size_t{width} * bits + 7) / 8, 0xc0);
        m_pixels.topRow = m_row.data();
    }
    ~Page() override { --g_pages; }
    HRESULT STDMETHODCALLTYPE GetSize(SIZE* size) noexcept override {
        *size = m_size;
        return sizeStatus;
    }
    HRESULT STDMETHODCALLTYPE GetPixels(PagePixels* pixels) noexcept override {
        *pixels = m_pixels;
        return pixelStatus;
    }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        // A page of another maker shows no way to its pixels.
        if (m_pixels.topRow == nullptr && iid == __uuidof(IPagePixels)) return E_NOINTERFACE;
        return Object::QueryInterface(iid, object);
    }
    HRESULT sizeStatus = S_OK, pixelStatus = S_OK;

private:
    SIZE m_size;
    uint32_t m_palette[256];
    std::vector<uint8_t> m_row;
    PagePixels m_pixels;
};

}  // namespace

ComPtr<IPageImage> MakePage(SIZE size, uint32_t width, uint32_t height, uint32_t bits) {
    return {new Page(size, width, height, bits), false};
}

ComPtr<IPageImage> MakeBadPage(HRESULT sizeStatus, SIZE size, HRESULT pixelStatus) {
    auto* page = new Page(size, 10, 10, 24);
    page->sizeStatus = sizeStatus;
    page->pixelStatus = pixelStatus;
    return {page, false};
}

int LivePages() {
    return g_pages;
}

}  // namespace test
