// The page view: scaling, repainting, dragging, turning to a page.
#include <windows.h>

#include <wincodec.h>

#include <cmath>
#include <cstdio>
#include <cstring>

#include "bench/Bench.h"
#include "bench/Library.h"
#include "folium/ControlHarness.h"
#include "host/PageImage.h"
#include "refhost/folium/PageSource.h"
#include "refhost/imaging/HostImaging.h"
#include "refhost/imaging/Image.h"

namespace bench {

namespace {

using win32::ComPtr;

// Lines of "text" with soft edges over a slightly uneven paper, as scanned.
std::shared_ptr<reader::Bitmap> TextPage(uint32_t dpi) {
    auto page = std::make_shared<reader::Bitmap>(dpi * 827 / 100, dpi * 1169 / 100, 24);
    page->resolution = {static_cast<double>(dpi), static_cast<double>(dpi)};
    for (uint32_t y = 0; y < page->Height(); ++y) {
        uint8_t* row = page->Row(y);
        const bool line = y * 25 / dpi % 4 != 0;
        for (uint32_t x = 0; x < page->Width(); ++x) {
            const uint32_t hash = (x * 40 / dpi) * 2654435761U ^ (y * 60 / dpi) * 40503U;
            const int ink = line && (hash >> 13) % 3 == 0 ? 40 : 245;
            const int grain = static_cast<int>((x * 7 + y * 13) % 8);
            row[3 * x] = static_cast<uint8_t>(ink + grain);
            row[3 * x + 1] = static_cast<uint8_t>(ink + grain / 2);
            row[3 * x + 2] = static_cast<uint8_t>(ink);
        }
        page->ClearPadding(y);
    }
    return page;
}

folium::PageSource SourceOf(const reader::Bitmap& page) {
    return {page.Width(), page.Height(), page.Bits(), nullptr, page.Row(0), -static_cast<ptrdiff_t>(page.Stride())};
}

// The average of what lies under each pixel, in double precision: blue, green and red.
std::vector<double> Reference(const reader::Bitmap& page, uint32_t width, uint32_t height) {
    std::vector<double> result(size_t{width} * height * 3);
    const double across = double(page.Width()) / width, down = double(page.Height()) / height;
    for (uint32_t y = 0; y < height; ++y) {
        const double top = y * down, bottom = (y + 1) * down;
        for (uint32_t x = 0; x < width; ++x) {
            const double left = x * across, right = (x + 1) * across;
            double sum[3] = {};
            for (auto r = static_cast<uint32_t>(top); r < bottom && r < page.Height(); ++r) {
                const double tall = std::min(r + 1.0, bottom) - std::max(double(r), top);
                const uint8_t* row = page.Row(r);
                for (auto c = static_cast<uint32_t>(left); c < right && c < page.Width(); ++c) {
                    const double weight = tall * (std::min(c + 1.0, right) - std::max(double(c), left));
                    for (int i = 0; i < 3; ++i) sum[i] += weight * row[3 * c + static_cast<uint32_t>(i)];
                }
            }
            for (size_t i = 0; i < 3; ++i) result[(size_t{y} * width + x) * 3 + i] = sum[i] / (across * down);
        }
    }
    return result;
}

double Psnr(const std::vector<double>& reference, const uint32_t* pixels) {
    double squares = 0;
    for (size_t i = 0; i < reference.size(); ++i) {
        const double error = reference[i] - (pixels[i / 3] >> (8 * (i % 3)) & 0xff);
        squares += error * error;
    }
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(reference.size()) / std::max(squares, 1e-9));
}

// A picture in memory that GDI draws on.
class Canvas {
public:
    Canvas(LONG width, LONG height) : m_dc(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        m_bitmap = CreateDIBSection(m_dc, &info, DIB_RGB_COLORS, &m_pixels, nullptr, 0);
        Require(m_bitmap != nullptr, "no bitmap");
        m_before = SelectObject(m_dc, m_bitmap);
        SetStretchBltMode(m_dc, HALFTONE);
        SetBrushOrgEx(m_dc, 0, 0, nullptr);
    }
    ~Canvas() {
        SelectObject(m_dc, m_before);
        DeleteObject(m_bitmap);
        DeleteDC(m_dc);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    HDC Dc() const { return m_dc; }
    const uint32_t* Pixels() const { return static_cast<const uint32_t*>(m_pixels); }

private:
    HDC m_dc;
    HBITMAP m_bitmap;
    HGDIOBJ m_before;
    void* m_pixels = nullptr;
};

}  // namespace

void PageScaling() {
    const auto page = TextPage(600);
    const uint32_t width = 700, height = 990;
    std::vector<uint32_t> scaled(size_t{width} * height);
    const Canvas canvas(width, height);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader,
                      static_cast<LONG>(page->Width()),
                      static_cast<LONG>(page->Height()),
                      1,
                      24,
                      BI_RGB,
                      0,
                      0,
                      0,
                      0,
                      0};
    const auto ours = [&] { ScaleSmooth(SourceOf(*page), {width, height, 0, 0, width, height}, scaled.data()); };
    const auto gdi = [&] {
        StretchDIBits(canvas.Dc(), 0, 0, width, height, 0, 0, static_cast<int>(page->Width()),
                      static_cast<int>(page->Height()), page->Data(), &info, DIB_RGB_COLORS, SRCCOPY);
        GdiFlush();
    };
    Compare("scale", "600 dpi RGB to 700 x 990", Timed(ours), Timed(gdi), 7);
    const auto reference = Reference(*page, width, height);
    const double ourQuality = Psnr(reference, scaled.data());
    const double gdiQuality = Psnr(reference, canvas.Pixels());
    char detail[64];
    std::snprintf(detail, sizeof detail, "%.1f dB, HALFTONE %.1f dB", ourQuality, gdiQuality);
    Tell("scale-quality", detail, ourQuality - gdiQuality);
}

void Repaint() {
    const test::FoliumLibrary library;
    test::ControlHarness control;
    control.SetUp();
    const auto repaint = [&] {
        RedrawWindow(control.Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        GdiFlush();
    };
    int placed = 0;
    LONG last = 0;
    for (const int areas : {0, 1000, 2000, 5000}) {
        for (; placed < areas; ++placed) {
            const int left = placed * 37 % 1200, top = placed * 53 % 1400;
            last = control.Insert(test::MakeRect(left, top, left + 60, top + 40));
        }
        control.folium->UpdateView();
        test::Wait();
        for (int run = 0; run < 7; ++run) {
            const double time = TimeOf(repaint, 3);
            std::printf("pair\tsize-shapes\t%d\t%.0f\t1\n", areas, time);
            if (areas == 5000) std::printf("pair\trepaint\tall of the window, 5,000 areas\t%.0f\t1000000\n", time);
        }
    }
    control.folium->SelectRect(last);
    control.folium->UpdateView();
    test::Wait();
    const FoliumRect before = control.At(last);
    POINT at = control.OnScreen({(before.left + before.right) / 2, (before.top + before.bottom) / 2});
    ScreenToClient(control.Window(), &at);
    const auto send = [&](UINT message, WPARAM keys) {
        SendMessageW(control.Window(), message, keys, MAKELPARAM(at.x, at.y));
    };
    const RECT client = [&] {
        RECT rect = {};
        GetClientRect(control.Window(), &rect);
        return rect;
    }();
    send(WM_LBUTTONDOWN, MK_LBUTTON);
    double touched = 0;
    for (int step = 0; step < 60; ++step) {
        at.x += step % 20 < 10 ? 3 : -3;
        at.y += step % 30 < 15 ? 2 : -2;
        RECT changed = {};
        const double time = TimeOf([&] {
            send(WM_MOUSEMOVE, MK_LBUTTON);
            GetUpdateRect(control.Window(), &changed, FALSE);
            UpdateWindow(control.Window());
            GdiFlush();
        });
        const double part = double(changed.right - changed.left) * (changed.bottom - changed.top);
        touched = std::max(touched, part / (double(client.right) * client.bottom));
        std::printf("pair\trepaint\ta step of dragging among 5,000\t%.0f\t1000000\n", time);
    }
    at.x += 20;
    send(WM_MOUSEMOVE, MK_LBUTTON);
    send(WM_LBUTTONUP, 0);
    test::Wait();
    const FoliumRect after = control.At(last);
    Require(after.left != before.left || after.top != before.top, "the area was not dragged");
    Tell("repaint-part", "largest part of the window that a step touches", touched);
}

namespace {

std::vector<uint8_t> PngOf(std::shared_ptr<const reader::Bitmap> page) {
    const imaging::Image image(std::move(page));
    std::vector<uint8_t> bmp(image.BmpSize());
    image.WriteBmp(bmp.data());
    wchar_t path[MAX_PATH];
    GetTempPathW(MAX_PATH, path);
    const std::wstring name = std::wstring(path) + L"bench" + std::to_wstring(GetCurrentProcessId()) + L".png";
    void* handle = nullptr;
    void* output = nullptr;
    Require(HostImageFromBmp(bmp.data(), bmp.size(), &handle) &&
                HostCreateOutput(name.c_str(), kHostFormatPng, &output) && HostAppendImage(output, handle) &&
                HostCommitOutput(output),
            "no page can be written");
    HostReleaseImage(handle);
    std::vector<uint8_t> bytes;
    FILE* file = _wfopen(name.c_str(), L"rb");
    Require(file != nullptr, "no page can be read");
    std::fseek(file, 0, SEEK_END);
    bytes.resize(static_cast<size_t>(std::ftell(file)));
    std::rewind(file);
    Require(std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size(), "no page can be read");
    std::fclose(file);
    DeleteFileW(name.c_str());
    return bytes;
}

void Check(HRESULT status) {
    if (FAILED(status)) throw std::runtime_error("a call of the system failed");
}

// The whole picture as the codec gives it.
std::vector<uint8_t> WicDecode(IWICImagingFactory* factory, std::vector<uint8_t>& bytes, UINT& width, UINT& height) {
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapDecoder> decoder;
    ComPtr<IWICBitmapFrameDecode> frame;
    Check(factory->CreateStream(&stream));
    Check(stream->InitializeFromMemory(bytes.data(), static_cast<DWORD>(bytes.size())));
    Check(factory->CreateDecoderFromStream(stream, nullptr, WICDecodeMetadataCacheOnDemand, &decoder));
    Check(decoder->GetFrame(0, &frame));
    Check(frame->GetSize(&width, &height));
    std::vector<uint8_t> pixels(size_t{width} * 3 * height);
    Check(frame->CopyPixels(nullptr, width * 3, static_cast<UINT>(pixels.size()), pixels.data()));
    return pixels;
}

}  // namespace

void PageTurn() {
    std::vector<uint8_t> bytes = PngOf(TextPage(300));
    const com::ClassRegistration documents(L"HostDocuments.dll", {host::kClsidPageImage});
    const test::FoliumLibrary library;
    test::ControlHarness control;
    control.SetUp();
    control.SetZoom(kFoliumZoomWholePage);
    RECT client = {};
    GetClientRect(control.Window(), &client);
    const auto ours = [&] {
        ComPtr<IPageImage> image;
        ComPtr<IImageLoader> loader;
        Check(CoCreateInstance(host::kClsidPageImage, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IPageImage),
                               reinterpret_cast<void**>(&image)));
        Check(image->QueryInterface(__uuidof(IImageLoader), reinterpret_cast<void**>(&loader)));
        Check(loader->LoadFromMemory(bytes.data(), static_cast<LONG>(bytes.size())));
        LONGLONG unused = 0;
        Check(control.folium->ShowPage(image, &unused));
        Check(control.folium->UpdateView());
        UpdateWindow(control.Window());
        GdiFlush();
    };
    ComPtr<IWICImagingFactory> factory;
    Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                           reinterpret_cast<void**>(&factory)));
    // As large as the page is in the window.
    const auto width = static_cast<uint32_t>(std::min(double(client.right), client.bottom * 210 / 297.0));
    const uint32_t height = width * 297 / 210;
    std::vector<uint32_t> scaled(size_t{width} * height);
    const auto limit = [&] {
        UINT w = 0, h = 0;
        const auto pixels = WicDecode(factory, bytes, w, h);
        const folium::PageSource source = {w, h, 24, nullptr, pixels.data(), static_cast<ptrdiff_t>(w) * 3};
        ScaleSmooth(source, {width, height, 0, 0, width, height}, scaled.data());
    };
    Compare("turn", "300 dpi RGB from PNG", Timed(ours), Timed(limit), 9);
}

}  // namespace bench
