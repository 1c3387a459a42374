#include "refhost/reader/FileFacts.h"

#include <algorithm>
#include <cstring>

#include "refhost/reader/Bytes.h"
#include "refhost/reader/Resolution.h"
#include "refhost/reader/Tiff.h"

namespace reader {

namespace {

using Bytes = std::span<const uint8_t>;

bool StartsWith(Bytes bytes, const char* text, size_t length) {
    return bytes.size() >= length && std::memcmp(bytes.data(), text, length) == 0;
}

void ReadPng(Bytes file, FileFacts& facts) {
    constexpr size_t kChunkFrame = 12;  // length, name and checksum
    facts.truncated = true;
    size_t at = 8;
    while (file.size() - at >= kChunkFrame) {
        const size_t length = Get32(file, at, true);
        if (length > file.size() - at - kChunkFrame) return;
        const Bytes name = file.subspan(at + 4, 4);
        const Bytes data = file.subspan(at + 8, length);
        if (StartsWith(name, "IEND", 4)) {
            facts.truncated = false;
            return;
        }
        if (StartsWith(name, "pHYs", 4) && length == 9 && data[8] == 1) {
            facts.dpiX = DpiOfPixelsPerMetre(Get32(data, 0, true));
            facts.dpiY = DpiOfPixelsPerMetre(Get32(data, 4, true));
        }
        at += kChunkFrame + length;
    }
}

void ReadJfif(Bytes data, FileFacts& facts) {
    if (!StartsWith(data, "JFIF\0", 5) || data.size() < 12) return;
    const double scale = data[7] == 1 ? 1 : data[7] == 2 ? 2.54 : 0;
    if (scale == 0) return;
    facts.dpiX = Get16(data, 8, true) * scale;
    facts.dpiY = Get16(data, 10, true) * scale;
}

void ReadExif(Bytes data, FileFacts& facts) {
    if (!StartsWith(data, "Exif\0\0", 6) || facts.dpiX != 0) return;
    const auto directory = TiffFrame(data.subspan(6), 0);
    if (!directory) return;
    facts.dpiX = directory->DpiX();
    facts.dpiY = directory->DpiY();
}

// Whether an end marker stands after `from`; in coded data the byte pair occurs as nothing else.
bool HasJpegEnd(Bytes file, size_t from) {
    static constexpr uint8_t kEnd[] = {0xFF, 0xD9};
    const auto found =
        std::search(file.rbegin(), file.rend() - static_cast<ptrdiff_t>(from), std::rbegin(kEnd), std::rend(kEnd));
    return found != file.rend() - static_cast<ptrdiff_t>(from);
}

void ReadJpeg(Bytes file, FileFacts& facts) {
    constexpr uint8_t kApp0 = 0xE0;
    constexpr uint8_t kApp1 = 0xE1;
    constexpr uint8_t kScan = 0xDA;
    facts.truncated = true;
    size_t at = 2;
    while (file.size() - at >= 4) {
        if (file[at] != 0xFF) return;
        const uint8_t marker = file[at + 1];
        if (marker == 0xFF) {  // padding before a marker
            ++at;
            continue;
        }
        const size_t length = Get16(file, at + 2, true);
        if (length < 2 || length > file.size() - at - 2) return;
        const Bytes data = file.subspan(at + 4, length - 2);
        if (marker == kApp0) ReadJfif(data, facts);
        if (marker == kApp1) ReadExif(data, facts);
        at += 2 + length;
        if (marker == kScan) {
            facts.truncated = !HasJpegEnd(file, at);
            return;
        }
    }
}

void ReadBmpFacts(Bytes file, FileFacts& facts) {
    constexpr size_t kOldHeader = 12;
    const uint32_t header = Get32(file, 14, false);
    if (file.size() < 14 + size_t{header} || header < kOldHeader) {
        facts.truncated = true;
        return;
    }
    if (header == kOldHeader) return;
    const auto dpi = [&](size_t offset) {
        const auto value = static_cast<int32_t>(Get32(file, offset, false));
        return value > 0 ? DpiOfPixelsPerMetre(value) : 0;
    };
    facts.dpiX = dpi(38);
    facts.dpiY = dpi(42);
    const uint64_t width = Get32(file, 18, false);
    const auto height = static_cast<int64_t>(static_cast<int32_t>(Get32(file, 22, false)));
    const uint64_t stride = (width * Get16(file, 28, false) + 31) / 32 * 4;
    const uint32_t compression = Get32(file, 30, false);
    const auto rows = static_cast<uint64_t>(height < 0 ? -height : height);
    if (compression == 0 && width <= 65535 && stride * rows + Get32(file, 10, false) > file.size()) {
        facts.truncated = true;
    }
}

}  // namespace

FileKind KindOfFile(Bytes file) {
    if (StartsWith(file, "\x89PNG\r\n\x1a\n", 8)) return FileKind::kPng;
    if (StartsWith(file, "\xFF\xD8", 2)) return FileKind::kJpeg;
    if (StartsWith(file, "BM", 2) && file.size() >= 26) return FileKind::kBmp;
    return IsTiff(file) ? FileKind::kTiff : FileKind::kUnknown;
}

FileFacts ReadFileFacts(Bytes file, uint32_t frame) {
    FileFacts facts;
    facts.kind = KindOfFile(file);
    switch (facts.kind) {
        case FileKind::kPng:
            ReadPng(file, facts);
            break;
        case FileKind::kJpeg:
            ReadJpeg(file, facts);
            break;
        case FileKind::kBmp:
            ReadBmpFacts(file, facts);
            break;
        case FileKind::kTiff: {
            const auto directory = TiffFrame(file, frame);
            facts.truncated = !directory || !directory->IsWhole();
            if (directory) {
                facts.dpiX = directory->DpiX();
                facts.dpiY = directory->DpiY();
            }
            break;
        }
        case FileKind::kUnknown:
            break;
    }
    return facts;
}

}  // namespace reader
