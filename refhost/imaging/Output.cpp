#include "refhost/imaging/Output.h"

#include <algorithm>
#include <atomic>

#include "refhost/imaging/RowConvert.h"

namespace imaging {

namespace {

// How a bitmap goes into a file: 32-bit images have nothing in their fourth byte, so 24 bits hold them.
struct FileFormat {
    GUID wic;
    uint32_t bits;
    RowConverter convert;
    bool palette;
};

FileFormat FileFormatOf(const Bitmap& image) {
    switch (image.Bits()) {
        case 1:
            if (image.palette == BlackWhitePalette()) return {GUID_WICPixelFormatBlackWhite, 1, Copy1, false};
            return {GUID_WICPixelFormat1bppIndexed, 1, Copy1, true};
        case 8:
            if (image.HasGreyPalette()) return {GUID_WICPixelFormat8bppGray, 8, Copy8, false};
            return {GUID_WICPixelFormat8bppIndexed, 8, Copy8, true};
        case 24:
            return {GUID_WICPixelFormat24bppBGR, 24, Copy24, false};
        default:
            return {GUID_WICPixelFormat24bppBGR, 24, BgrxToBgr, false};
    }
}

IWICPalettePtr MakePalette(IWICImagingFactory* factory, const Bitmap& image) {
    constexpr uint32_t kOpaque = 0xFF000000;
    std::vector<WICColor> colours;
    for (const uint32_t colour : image.palette) colours.push_back(colour | kOpaque);
    IWICPalettePtr palette;
    Check(factory->CreatePalette(&palette));
    Check(palette->InitializeCustom(colours.data(), static_cast<UINT>(colours.size())));
    return palette;
}

// In strips, since an encoder takes rows top-down and the bitmap has them bottom-up.
void EncodeRows(IWICBitmapFrameEncode* frame, const Bitmap& image, const FileFormat& format) {
    const size_t stride = (size_t{image.Width()} * format.bits + 31) / 32 * 4;
    const auto rows = RowsOfStrip(stride, image.Height());
    std::vector<uint8_t> strip(stride * rows);
    for (uint32_t top = 0; top < image.Height(); top += rows) {
        const uint32_t count = std::min(rows, image.Height() - top);
        for (uint32_t y = 0; y < count; ++y) {
            format.convert(image.Row(top + y), strip.data() + y * stride, image.Width());
        }
        Check(frame->WritePixels(count, static_cast<UINT>(stride), static_cast<UINT>(stride * count), strip.data()));
    }
}

std::wstring PartPath(const std::wstring& path) {
    static std::atomic<uint32_t> number{0};
    return path + L"." + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number) + L".part";
}

}  // namespace

Output::Output(const wchar_t* path, HostImageFormat format)
    : m_path(path), m_partPath(PartPath(m_path)), m_format(format) {
    if (format != kHostFormatPng && format != kHostFormatTiff && format != kHostFormatBmp) {
        throw ImageError{L"unknown output format; use PNG, TIFF or BMP"};
    }
    m_factory = CreateFactory();
    Check(m_factory->CreateStream(&m_stream));
    Check(m_stream->InitializeFromFilename(m_partPath.c_str(), GENERIC_WRITE));
    if (format == kHostFormatBmp) return;
    try {
        // The system's own; the factory would look through all that are registered.
        const CLSID& encoder = format == kHostFormatPng ? CLSID_WICPngEncoder : CLSID_WICTiffEncoder;
        Check(m_encoder.CreateInstance(encoder, nullptr, CLSCTX_INPROC_SERVER));
        Check(m_encoder->Initialize(m_stream, WICBitmapEncoderNoCache));
    } catch (...) {
        Close();
        throw;
    }
}

Output::~Output() {
    Close();
}

void Output::Close() {
    m_encoder = nullptr;
    m_stream = nullptr;
    if (!m_partPath.empty()) DeleteFileW(m_partPath.c_str());
    m_partPath.clear();
}

void Output::Append(const Image& image) {
    if (m_images > 0 && m_format != kHostFormatTiff) {
        throw ImageError{L"a PNG or BMP file holds one page; write several pages to a TIFF"};
    }
    if (m_format == kHostFormatBmp) {
        AppendBmp(image);
    } else {
        AppendEncoded(*image.Pixels());
    }
    ++m_images;
}

void Output::AppendEncoded(const Bitmap& image) {
    const FileFormat format = FileFormatOf(image);
    IWICBitmapFrameEncodePtr frame;
    Check(m_encoder->CreateNewFrame(&frame, nullptr));
    Check(frame->Initialize(nullptr));
    Check(frame->SetSize(image.Width(), image.Height()));
    Check(frame->SetResolution(image.resolution.x, image.resolution.y));
    GUID accepted = format.wic;
    Check(frame->SetPixelFormat(&accepted));
    if (accepted != format.wic) {
        throw ImageError{L"the encoder of this system does not take pages of this kind; write them as BMP"};
    }
    if (format.palette) Check(frame->SetPalette(MakePalette(m_factory, image)));
    EncodeRows(frame, image, format);
    Check(frame->Commit());
}

void Output::AppendBmp(const Image& image) {
    std::vector<uint8_t> block(image.BmpSize());
    image.WriteBmp(block.data());
    ULONG written = 0;
    Check(m_stream->Write(block.data(), static_cast<ULONG>(block.size()), &written));
    if (written != block.size()) throw _com_error(HRESULT_FROM_WIN32(ERROR_DISK_FULL));
}

void Output::Commit() {
    if (m_images == 0) throw ImageError{L"no page was written to the file"};
    if (m_encoder != nullptr) Check(m_encoder->Commit());
    m_encoder = nullptr;
    m_stream = nullptr;
    if (!MoveFileExW(m_partPath.c_str(), m_path.c_str(), MOVEFILE_REPLACE_EXISTING)) {
        throw _com_error(HRESULT_FROM_WIN32(GetLastError()));
    }
    m_partPath.clear();
}

}  // namespace imaging
