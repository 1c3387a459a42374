#pragma once
// An image file being written: beside its place first, moved there when it is complete.

#include <cstdint>
#include <span>
#include <string>

#include "refhost/files/PartFile.h"
#include "refhost/imaging/FileStream.h"
#include "refhost/imaging/HostImaging.h"
#include "refhost/imaging/Wic.h"

namespace imaging {

class Output {
public:
    // `format` is a HostImageFormat, maybe with kHostFormatNewFile.
    Output(const wchar_t* path, int format);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    const std::wstring& Name() const { return m_path; }
    void Append(const Image& image);
    // Of a BMP file in memory.
    void Append(std::span<const uint8_t> bmp);
    void Commit();

private:
    // Does `work`; when it fails, what went wrong with the file goes before what the encoder says of it.
    template <typename Work>
    void Try(Work work);
    void BeginImage();
    void Encode(const PixelView& image);
    void WriteBytes(std::span<const uint8_t> bytes);
    void Close();

    std::wstring m_path;
    int m_format;
    bool m_replace;
    uint32_t m_images = 0;
    files::PartFile m_file;
    FileStream* m_stream = nullptr;
    IWICImagingFactoryPtr m_factory;
    IWICBitmapEncoderPtr m_encoder;
};

}  // namespace imaging
