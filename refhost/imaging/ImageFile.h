#pragma once
// Image files: their bytes, and the pages in them decoded to bitmaps.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "refhost/imaging/HostImaging.h"
#include "refhost/imaging/Image.h"
#include "refhost/reader/Page.h"

namespace imaging {

// An open image file. Failures are thrown as ImageError or _com_error.
class ImageFile {
public:
    // Reads the file and closes it again.
    static std::unique_ptr<ImageFile> Open(const wchar_t* path);
    ImageFile(std::wstring name, std::vector<uint8_t> bytes);

    // The file's path, or a word for bytes from memory.
    const std::wstring& Name() const { return m_name; }
    uint32_t Frames() const { return static_cast<uint32_t>(m_places.size()); }
    HostFrameSize Size(uint32_t frame) const;
    std::shared_ptr<const Bitmap> Decode(uint32_t frame, double dpiX, double dpiY) const;

    std::span<const uint8_t> Bytes() const { return m_bytes; }
    // A file with one frame of several; empty when the file is of one frame, or the frame cannot be taken out.
    std::vector<uint8_t> ExtractFrame(uint32_t frame) const;

private:
    uint32_t Place(uint32_t frame) const;

    std::wstring m_name;
    std::vector<uint8_t> m_bytes;
    std::vector<uint32_t> m_places;
};

}  // namespace imaging
