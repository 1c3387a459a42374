#include "refhost/imaging/WicFile.h"

#include <algorithm>

#include "refhost/imaging/HostImaging.h"
#include "refhost/imaging/RowConvert.h"
#include "refhost/imaging/WicJpeg.h"
#include "refhost/reader/FileFacts.h"
#include "refhost/reader/TiffPage.h"

namespace imaging {

namespace {

struct CloseHandleOf {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using FileHandle = std::unique_ptr<void, CloseHandleOf>;

enum class Palette { kNone, kBlackWhite, kGrey, kOwn };

struct Format {
    const GUID& wic;
    uint32_t sourceBits;
    uint32_t bits;
    RowConverter convert;
    Palette palette;
};

const Format kFormats[] = {
    {GUID_WICPixelFormatBlackWhite, 1, 1, Copy1, Palette::kBlackWhite},
    {GUID_WICPixelFormat1bppIndexed, 1, 1, Copy1, Palette::kOwn},
    {GUID_WICPixelFormat2bppIndexed, 2, 8, Index2To8, Palette::kOwn},
    {GUID_WICPixelFormat4bppIndexed, 4, 8, Index4To8, Palette::kOwn},
    {GUID_WICPixelFormat8bppIndexed, 8, 8, Copy8, Palette::kOwn},
    {GUID_WICPixelFormat2bppGray, 2, 8, Grey2To8, Palette::kGrey},
    {GUID_WICPixelFormat4bppGray, 4, 8, Grey4To8, Palette::kGrey},
    {GUID_WICPixelFormat8bppGray, 8, 8, Copy8, Palette::kGrey},
    {GUID_WICPixelFormat16bppGray, 16, 8, Grey16To8, Palette::kGrey},
    {GUID_WICPixelFormat24bppBGR, 24, 24, Copy24, Palette::kNone},
    {GUID_WICPixelFormat24bppRGB, 24, 24, RgbToBgr, Palette::kNone},
    {GUID_WICPixelFormat32bppBGR, 32, 32, BgrxToBgrx, Palette::kNone},
    {GUID_WICPixelFormat32bppBGRA, 32, 32, BgraToBgrx, Palette::kNone},
    {GUID_WICPixelFormat32bppPBGRA, 32, 32, PbgraToBgrx, Palette::kNone},
};
// For whatever else the codecs know and can convert.
const Format kOtherFormat = {GUID_WICPixelFormat32bppBGRA, 32, 24, BgraToBgr, Palette::kNone};

const Format& FormatOf(const GUID& wic) {
    const auto* const found = std::ranges::find_if(kFormats, [&](const Format& format) { return format.wic == wic; });
    return found == std::end(kFormats) ? kOtherFormat : *found;
}

std::vector<uint32_t> ReadPalette(IWICImagingFactory* factory, IWICBitmapFrameDecode* frame, size_t size) {
    IWICPalettePtr palette;
    Check(factory->CreatePalette(&palette));
    Check(frame->CopyPalette(palette));
    UINT count = 0;
    Check(palette->GetColorCount(&count));
    std::vector<WICColor> colours(count);
    Check(palette->GetColors(count, colours.data(), &count));
    // Entries that the file does not have are paper white.
    std::vector<uint32_t> result(size, 0xFFFFFF);
    for (size_t i = 0; i < std::min<size_t>(size, count); ++i) result[i] = OnPaper(colours[i]);
    return result;
}

std::vector<uint32_t> PaletteFor(const Format& format, IWICImagingFactory* factory, IWICBitmapFrameDecode* frame) {
    switch (format.palette) {
        case Palette::kBlackWhite:
            return BlackWhitePalette();
        case Palette::kGrey:
            return GreyPalette();
        case Palette::kOwn:
            return ReadPalette(factory, frame, size_t{1} << format.bits);
        default:
            return {};
    }
}

// In strips, since a decoder gives rows top-down and the bitmap has them bottom-up.
void DecodeRows(IWICBitmapSource* source, const Format& format, Bitmap& bitmap) {
    const size_t stride = ((size_t{bitmap.Width()} * format.sourceBits + 31) / 32) * 4;
    const auto rows = RowsOfStrip(stride, bitmap.Height());
    std::vector<uint8_t> strip(stride * rows);
    for (uint32_t top = 0; top < bitmap.Height(); top += rows) {
        const uint32_t count = std::min(rows, bitmap.Height() - top);
        const WICRect rect = {0, static_cast<INT>(top), static_cast<INT>(bitmap.Width()), static_cast<INT>(count)};
        Check(source->CopyPixels(&rect, static_cast<UINT>(stride), static_cast<UINT>(stride * count), strip.data()));
        for (uint32_t y = 0; y < count; ++y) {
            format.convert(strip.data() + y * stride, bitmap.Row(top + y), bitmap.Width());
            bitmap.ClearPadding(top + y);
        }
    }
}

Resolution FrameResolution(IWICBitmapFrameDecode* frame, const FileFacts& facts, double dpiX, double dpiY) {
    constexpr double kDecoderDefault = 96;
    double fileX = facts.dpiX;
    double fileY = facts.dpiY;
    if (facts.kind == FileKind::kUnknown) {
        Check(frame->GetResolution(&fileX, &fileY));
        if (fileX == kDecoderDefault && fileY == kDecoderDefault) fileX = fileY = 0;
    }
    return ResolveResolution(fileX, fileY, dpiX, dpiY);
}

// The system's own decoder of a kind. The factory looks through all that are registered, at every page, which takes as
// long as decoding a small one.
IWICBitmapDecoderPtr OwnDecoder(FileKind kind, IWICStream* stream) {
    const CLSID* decoders[] = {nullptr, &CLSID_WICPngDecoder, &CLSID_WICJpegDecoder, &CLSID_WICBmpDecoder,
                               &CLSID_WICTiffDecoder};
    const CLSID* id = decoders[static_cast<size_t>(kind)];
    IWICBitmapDecoderPtr decoder;
    if (id == nullptr || FAILED(decoder.CreateInstance(*id, nullptr, CLSCTX_INPROC_SERVER))) return {};
    if (FAILED(decoder->Initialize(stream, WICDecodeMetadataCacheOnDemand))) return {};
    return decoder;
}

std::vector<uint8_t> ReadWholeFile(const wchar_t* path) {
    // Others may write or delete it meanwhile; what is read here is what counts.
    const HANDLE raw = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                   OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (raw == INVALID_HANDLE_VALUE) throw _com_error(HRESULT_FROM_WIN32(GetLastError()));
    const FileHandle file(raw);
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(raw, &size)) throw _com_error(HRESULT_FROM_WIN32(GetLastError()));
    if (static_cast<uint64_t>(size.QuadPart) > kHostMaxFileBytes) {
        throw ImageError{L"the file is larger than 1 GiB; split it into smaller ones"};
    }
    std::vector<uint8_t> bytes(static_cast<size_t>(size.QuadPart));
    size_t done = 0;
    while (done < bytes.size()) {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(bytes.size() - done);
        if (!ReadFile(raw, bytes.data() + done, wanted, &count, nullptr)) {
            throw _com_error(HRESULT_FROM_WIN32(GetLastError()));
        }
        if (count == 0) break;  // it became shorter meanwhile
        done += count;
    }
    bytes.resize(done);
    return bytes;
}

}  // namespace

void Check(HRESULT status) {
    if (FAILED(status)) throw _com_error(status);
}

IWICImagingFactoryPtr CreateFactory() {
    IWICImagingFactoryPtr factory;
    const HRESULT status = factory.CreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER);
    if (status == CO_E_NOTINITIALIZED) {
        throw ImageError{L"COM is not initialised on this thread; call CoInitializeEx before using images"};
    }
    Check(status);
    return factory;
}

std::unique_ptr<ImageFile> ImageFile::Open(const wchar_t* path) {
    return std::make_unique<ImageFile>(path, ReadWholeFile(path));
}

ImageFile::ImageFile(std::wstring name, std::vector<uint8_t> bytes)
    : m_name(std::move(name)), m_bytes(std::move(bytes)) {
    if (m_bytes.empty()) throw ImageError{L"the file is empty; scan or export the page again"};
    if (IsTiff(m_bytes)) {
        m_directories = TiffDirectories(m_bytes);
        m_frames = static_cast<uint32_t>(m_directories.size());
        if (m_frames == 0) throw ImageError{L"the file holds no image; scan or export the page again"};
        return;
    }
    m_factory = CreateFactory();
    Check(m_factory->CreateStream(&m_stream));
    Check(m_stream->InitializeFromMemory(m_bytes.data(), static_cast<DWORD>(m_bytes.size())));
    m_decoder = OwnDecoder(KindOfFile(m_bytes), m_stream);
    if (m_decoder == nullptr) {
        Check(m_stream->Seek({}, STREAM_SEEK_SET, nullptr));
        Check(m_factory->CreateDecoderFromStream(m_stream, nullptr, WICDecodeMetadataCacheOnDemand, &m_decoder));
    }
    Check(m_decoder->GetFrameCount(&m_frames));
    if (m_frames == 0) throw ImageError{L"the file holds no image; scan or export the page again"};
}

void ImageFile::CheckFrame(uint32_t frame) const {
    if (frame < m_frames) return;
    throw ImageError{L"there is no page " + std::to_wstring(frame + uint64_t{1}) + L"; the file has " +
                     std::to_wstring(m_frames)};
}

TiffDirectory ImageFile::Directory(uint32_t frame) const {
    auto directory = TiffDirectory::Read(m_bytes, m_directories[frame], m_bytes[0] == 'M');
    if (!directory) {
        throw ImageError{L"the end of the file is missing; copy it anew from its source or scan the page again"};
    }
    return *std::move(directory);
}

HostFrameSize ImageFile::Size(uint32_t frame) const {
    CheckFrame(frame);
    HostFrameSize size = {};
    if (!m_directories.empty()) {
        const TiffPage page(m_bytes, Directory(frame));
        const TiffLayout& layout = page.Layout();
        size = {layout.width, layout.height, layout.ResultBits(), 0, page.WorkingBytes(WicJpeg())};
        size.imageBytes = Bitmap::Check(size.width, size.height, size.bitsPerPixel);
        return size;
    }
    IWICBitmapFrameDecodePtr decoded;
    Check(m_decoder->GetFrame(frame, &decoded));
    Check(decoded->GetSize(&size.width, &size.height));
    GUID wic = {};
    Check(decoded->GetPixelFormat(&wic));
    size.bitsPerPixel = FormatOf(wic).bits;
    size.imageBytes = (uint64_t{size.width} * size.bitsPerPixel + 31) / 32 * 4 * size.height;
    size.workingBytes = 2 * size.imageBytes;
    return size;
}

std::shared_ptr<const Bitmap> ImageFile::Decode(uint32_t frame, double dpiX, double dpiY) const {
    CheckFrame(frame);
    if (!m_directories.empty()) {
        const TiffDirectory directory = Directory(frame);
        const std::shared_ptr<Bitmap> bitmap = TiffPage(m_bytes, directory).Decode(*std::make_unique<WicJpeg>());
        bitmap->resolution = ResolveResolution(directory.DpiX(), directory.DpiY(), dpiX, dpiY);
        return bitmap;
    }
    const FileFacts facts = ReadFileFacts(m_bytes, frame);
    if (facts.truncated) {
        throw ImageError{L"the end of the file is missing; copy it anew from its source or scan the page again"};
    }
    IWICBitmapFrameDecodePtr decoded;
    Check(m_decoder->GetFrame(frame, &decoded));
    UINT width = 0;
    UINT height = 0;
    Check(decoded->GetSize(&width, &height));
    GUID wic = {};
    Check(decoded->GetPixelFormat(&wic));
    const Format& format = FormatOf(wic);
    IWICBitmapSourcePtr source = decoded;
    if (&format == &kOtherFormat) {
        IWICBitmapSource* converted = nullptr;
        Check(WICConvertBitmapSource(format.wic, decoded, &converted));
        source.Attach(converted);
    }

    auto bitmap = std::make_shared<Bitmap>(width, height, format.bits);
    bitmap->resolution = FrameResolution(decoded, facts, dpiX, dpiY);
    bitmap->palette = PaletteFor(format, m_factory, decoded);
    DecodeRows(source, format, *bitmap);
    return bitmap;
}

std::vector<uint8_t> ImageFile::ExtractFrame(uint32_t frame) const {
    CheckFrame(frame);
    if (m_frames == 1) return {};
    return ExtractTiffFrame(m_bytes, Directory(frame));
}

}  // namespace imaging
