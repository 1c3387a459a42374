#pragma once
// An image file being written: beside its place first, moved there when it is complete.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "refhost/imaging/HostImaging.h"
#include "refhost/imaging/Wic.h"

namespace imaging {

class Output {
public:
    Output(const wchar_t* path, HostImageFormat format);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    const std::wstring& Name() const { return m_path; }
    void Append(const Image& image);
    void Commit();

private:
    void AppendEncoded(const Bitmap& image);
    void AppendBmp(const Image& image);
    void Close();

    std::wstring m_path;
    std::wstring m_partPath;
    HostImageFormat m_format;
    uint32_t m_images = 0;
    IWICImagingFactoryPtr m_factory;
    IWICStreamPtr m_stream;
    IWICBitmapEncoderPtr m_encoder;
};

}  // namespace imaging
