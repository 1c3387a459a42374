#pragma once
// What the bytes of an image file tell without decoding: the format, the frame's own resolution (decoders report 96 dpi
// where there is none) and whether the end is missing (decoders fill what is missing with grey or white).

#include <cstddef>
#include <cstdint>
#include <span>

namespace reader {

enum class FileKind { kUnknown, kPng, kJpeg, kBmp, kTiff };

struct FileFacts {
    FileKind kind = FileKind::kUnknown;
    bool truncated = false;
    double dpiX = 0;  // 0: none
    double dpiY = 0;
};

FileKind KindOfFile(std::span<const uint8_t> file);
FileFacts ReadFileFacts(std::span<const uint8_t> file, uint32_t frame);

}  // namespace reader
