#pragma once
#include <tiffio.h>
#include <unistd.h>

#include <cstdio>
#include <vector>

namespace test {

using Bytes = std::vector<uint8_t>;

// A TIFF file by libtiff; `mode`: "wl" or "wb", its byte order.
template <class Fill>
Bytes WriteTiff(const char* mode, Fill fill) {
    FILE* const file = std::tmpfile();
    TIFF* const tiff = TIFFFdOpen(dup(fileno(file)), "page", mode);
    fill(tiff);
    TIFFClose(tiff);
    Bytes bytes(static_cast<size_t>(lseek(fileno(file), 0, SEEK_END)));
    std::rewind(file);
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), file), bytes.size());
    std::fclose(file);
    return bytes;
}

inline void SetTags(TIFF* tiff, std::initializer_list<std::pair<uint32_t, uint32_t>> tags) {
    for (const auto& [tag, value] : tags) EXPECT_EQ(TIFFSetField(tiff, tag, value), 1) << tag;
}

}  // namespace test
