#pragma once
// TIFF files written by libtiff into memory.

#include <tiffio.h>

#include <cstring>
#include <vector>

namespace test {

using Bytes = std::vector<uint8_t>;

class TiffWriter {
public:
    // `mode`: "wl" or "wb", the byte order.
    explicit TiffWriter(const char* mode) {
        TIFFSetWarningHandler(nullptr);
        m_tiff = TIFFClientOpen("memory", mode, this, Read, Write, Seek, Close, Size, nullptr, nullptr);
    }
    TiffWriter(const TiffWriter&) = delete;
    TiffWriter& operator=(const TiffWriter&) = delete;

    TIFF* Tiff() const { return m_tiff; }
    Bytes Finish() {
        TIFFClose(m_tiff);
        return std::move(m_bytes);
    }

private:
    static TiffWriter& Self(thandle_t handle) { return *static_cast<TiffWriter*>(handle); }
    static tmsize_t Read(thandle_t, void*, tmsize_t) { return 0; }
    static tmsize_t Write(thandle_t handle, void* from, tmsize_t size) {
        TiffWriter& self = Self(handle);
        const auto count = static_cast<size_t>(size);
        if (self.m_bytes.size() < self.m_at + count) self.m_bytes.resize(self.m_at + count);
        std::memcpy(self.m_bytes.data() + self.m_at, from, count);
        self.m_at += count;
        return size;
    }
    static toff_t Seek(thandle_t handle, toff_t to, int from) {
        TiffWriter& self = Self(handle);
        return self.m_at = to + (from == SEEK_END ? self.m_bytes.size() : from == SEEK_CUR ? self.m_at : 0);
    }
    static int Close(thandle_t) { return 0; }
    static toff_t Size(thandle_t handle) { return Self(handle).m_bytes.size(); }

    TIFF* m_tiff;
    Bytes m_bytes;
    size_t m_at = 0;
};

}  // namespace test
