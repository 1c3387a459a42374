#include "refhost/imaging/Output.h"

#include <algorithm>

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

FileFormat FileFormatOf(const PixelView& image) {
    switch (image.bits) {
        case 1:
            if (image.palette == BlackWhitePalette()) return {GUID_WICPixelFormatBlackWhite, 1, Copy1, false};
            return {GUID_WICPixelFormat1bppIndexed, 1, Copy1, true};
        case 8:
            if (image.palette == GreyPalette()) return {GUID_WICPixelFormat8bppGray, 8, Copy8, false};
            return {GUID_WICPixelFormat8bppIndexed, 8, Copy8, true};
        case 24:
            return {GUID_WICPixelFormat24bppBGR, 24, Copy24, false};
        default:
            return {GUID_WICPixelFormat24bppBGR, 24, BgrxToBgr, false};
    }
}

IWICPalettePtr MakePalette(IWICImagingFactory* factory, const PixelView& image) {
    constexpr uint32_t kOpaque = 0xFF000000;
    std::vector<WICColor> colours;
    for (const uint32_t colour : image.palette) colours.push_back(colour | kOpaque);
    IWICPalettePtr palette;
    Check(factory->CreatePalette(&palette));
    Check(palette->InitializeCustom(colours.data(), static_cast<UINT>(colours.size())));
    return palette;
}

// In strips, since an encoder takes rows top-down and the bitmap has them bottom-up.
void EncodeRows(IWICBitmapFrameEncode* frame, const PixelView& image, const FileFormat& format) {
    const size_t stride = (size_t{image.width} * format.bits + 31) / 32 * 4;
    const auto rows = RowsOfStrip(stride, image.height);
    std::vector<uint8_t> strip(stride * rows);
    for (uint32_t top = 0; top < image.height; top += rows) {
        const uint32_t count = std::min(rows, image.height - top);
        for (uint32_t y = 0; y < count; ++y) {
            format.convert(image.Row(top + y), strip.data() + y * stride, image.width);
        }
        Check(frame->WritePixels(count, static_cast<UINT>(stride), static_cast<UINT>(stride * count), strip.data()));
    }
}

void CheckFile(DWORD error) {
    if (error != 0) throw _com_error(HRESULT_FROM_WIN32(error));
}

}  // namespace

Output::Output(const wchar_t* path, int format)
    : m_path(path), m_format(format & ~kHostFormatNewFile), m_replace((format & kHostFormatNewFile) == 0) {
    if (m_format != kHostFormatPng && m_format != kHostFormatTiff && m_format != kHostFormatBmp) {
        throw ImageError{L"unknown output format; use PNG, TIFF or BMP"};
    }
    CheckFile(m_file.Open(m_path));
    if (m_format == kHostFormatBmp) return;
    try {
        m_factory = CreateFactory();
        m_stream = new FileStream(m_file);
        // The system's own; the factory would look through all that are registered.
        const CLSID& encoder = m_format == kHostFormatPng ? CLSID_WICPngEncoder : CLSID_WICTiffEncoder;
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
    if (m_stream != nullptr) {
        m_stream->Detach();
        m_stream->Release();
        m_stream = nullptr;
    }
    m_file.Drop();
}

template <typename Work>
void Output::Try(Work work) {
    try {
        work();
    } catch (...) {
        CheckFile(m_file.Problem());
        throw;
    }
    CheckFile(m_file.Problem());
}

void Output::BeginImage() {
    if (m_images > 0 && m_format != kHostFormatTiff) {
        throw ImageError{L"a PNG or BMP file holds one page; write several pages to a TIFF"};
    }
    ++m_images;
}

void Output::Append(const Image& image) {
    BeginImage();
    if (m_format != kHostFormatBmp) {
        const std::shared_ptr<const Bitmap> pixels = image.Pixels();
        return Encode(ViewOf(*pixels));
    }
    std::vector<uint8_t> block(image.BmpSize());
    image.WriteBmp(block.data());
    WriteBytes(block);
}

void Output::Append(std::span<const uint8_t> bmp) {
    const PixelView view = ViewBmp(bmp);
    BeginImage();
    if (m_format != kHostFormatBmp) return Encode(view);
    WriteBytes(bmp);
}

void Output::WriteBytes(std::span<const uint8_t> bytes) {
    CheckFile(m_file.Write(bytes.data(), bytes.size()));
}

void Output::Encode(const PixelView& image) {
    Try([&] {
        const FileFormat format = FileFormatOf(image);
        IWICBitmapFrameEncodePtr frame;
        Check(m_encoder->CreateNewFrame(&frame, nullptr));
        Check(frame->Initialize(nullptr));
        Check(frame->SetSize(image.width, image.height));
        Check(frame->SetResolution(image.resolution.x, image.resolution.y));
        GUID accepted = format.wic;
        Check(frame->SetPixelFormat(&accepted));
        if (accepted != format.wic) {
            throw ImageError{L"the encoder of this system does not take pages of this kind; write them as BMP"};
        }
        if (format.palette) Check(frame->SetPalette(MakePalette(m_factory, image)));
        EncodeRows(frame, image, format);
        Check(frame->Commit());
    });
}

void Output::Commit() {
    if (m_images == 0) throw ImageError{L"no page was written to the file"};
    if (m_encoder != nullptr) {
        Try([&] { Check(m_encoder->Commit()); });
        // Whatever it still holds back is written when it goes.
        m_encoder = nullptr;
    }
    CheckFile(m_file.Commit(m_replace));
}

}  // namespace imaging
