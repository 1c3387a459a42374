#pragma once
// Image files on the system's codecs: frames decoded to bitmaps, images encoded to files.

#include <windows.h>

#include <comdef.h>
#include <wincodec.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "refhost/imaging/HostImaging.h"
#include "refhost/imaging/Image.h"
#include "refhost/reader/Tiff.h"

namespace imaging {

_COM_SMARTPTR_TYPEDEF(IWICImagingFactory, __uuidof(IWICImagingFactory));
_COM_SMARTPTR_TYPEDEF(IWICStream, __uuidof(IWICStream));
_COM_SMARTPTR_TYPEDEF(IWICPalette, __uuidof(IWICPalette));
_COM_SMARTPTR_TYPEDEF(IWICBitmapSource, __uuidof(IWICBitmapSource));
_COM_SMARTPTR_TYPEDEF(IWICBitmapDecoder, __uuidof(IWICBitmapDecoder));
_COM_SMARTPTR_TYPEDEF(IWICBitmapFrameDecode, __uuidof(IWICBitmapFrameDecode));
_COM_SMARTPTR_TYPEDEF(IWICBitmapEncoder, __uuidof(IWICBitmapEncoder));
_COM_SMARTPTR_TYPEDEF(IWICBitmapFrameEncode, __uuidof(IWICBitmapFrameEncode));

// Throws a failing status as _com_error.
void Check(HRESULT status);
IWICImagingFactoryPtr CreateFactory();

// An open image file: its bytes and the decoder over them. Failures are thrown as ImageError or _com_error.
class ImageFile {
public:
    // Reads the file and closes it again.
    static std::unique_ptr<ImageFile> Open(const wchar_t* path);
    ImageFile(std::wstring name, std::vector<uint8_t> bytes);

    // The file's path, or a word for bytes from memory.
    const std::wstring& Name() const { return m_name; }
    uint32_t Frames() const { return m_frames; }
    HostFrameSize Size(uint32_t frame) const;
    std::shared_ptr<const Bitmap> Decode(uint32_t frame, double dpiX, double dpiY) const;

    std::span<const uint8_t> Bytes() const { return m_bytes; }
    // A file with one frame of several; empty when the file is of one frame, or the frame cannot be taken out.
    std::vector<uint8_t> ExtractFrame(uint32_t frame) const;

private:
    void CheckFrame(uint32_t frame) const;
    TiffDirectory Directory(uint32_t frame) const;

    std::wstring m_name;
    std::vector<uint8_t> m_bytes;
    IWICImagingFactoryPtr m_factory;
    IWICStreamPtr m_stream;
    IWICBitmapDecoderPtr m_decoder;
    uint32_t m_frames = 0;
    std::vector<uint32_t> m_directories;  // places of a TIFF's pages; empty for other files
};

}  // namespace imaging
