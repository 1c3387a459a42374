#pragma once
#include <tiffio.h>
#include <unistd.h>

#include <cstdio>

#include "refhost/reader/Page.h"
#include "support/FakeJpeg.h"

using Bytes = std::vector<uint8_t>;

// The first page; null when it is refused.
inline std::shared_ptr<reader::Bitmap> ReadPage(const Bytes& file) {
    try {
        test::FakeJpeg jpeg;
        return reader::OpenPage(file, reader::FindPages(file).at(0))->Decode(jpeg);
    } catch (const reader::ImageError& error) {
        EXPECT_FALSE(error.text.empty());
        return nullptr;
    }
}

// Numbers of tags, each with its value behind it.
inline void SetTags(TIFF* tiff, std::initializer_list<uint32_t> tags) {
    for (auto at = tags.begin(); at < tags.end(); at += 2) EXPECT_EQ(TIFFSetField(tiff, at[0], at[1]), 1) << at[0];
}

// A TIFF file by libtiff; `mode`: "wl" or "wb", its byte order.
template <class Fill>
Bytes WriteTiff(const char* mode, Fill fill) {
    TIFFSetWarningHandler(nullptr);
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
