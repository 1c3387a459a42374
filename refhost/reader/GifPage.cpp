#include "refhost/reader/GifPage.h"

#include <algorithm>
#include <cstring>

#include "refhost/reader/Bytes.h"
#include "refhost/reader/GifCodes.h"

namespace reader {

namespace {

constexpr size_t kScreenHeader = 13;  // signature, size, flags, background, proportions
constexpr size_t kImageHeader = 10;   // its mark, place, size, flags
constexpr size_t kMaxImages = 65535;

enum Mark : uint8_t { kImage = 0x2C, kExtension = 0x21, kTrailer = 0x3B };
enum Label : uint8_t { kText = 0x01, kControl = 0xF9 };

// Bytes of the palette that flags tell of.
size_t PaletteBytes(uint8_t flags) {
    return (flags & 0x80) != 0 ? size_t{3} << ((flags & 7) + 1) : 0;
}

// Behind the empty one of the blocks at `at`; 0 when the file ends before.
size_t SkipBlocks(std::span<const uint8_t> file, size_t at) {
    while (at < file.size()) {
        const size_t length = file[at++];
        if (length == 0) return at;
        at += length;
    }
    return 0;
}

// What stands in front of an image.
struct Front {
    enum End { kAtImage, kAtTrailer, kAtEndOfFile, kCutOff, kDamaged };
    End end;
    size_t at;
    int transparent;  // -1: none
    bool controlled;  // something tells how to show an image that has to follow
};

Front ReadFront(std::span<const uint8_t> file, size_t at) {
    Front front = {Front::kAtEndOfFile, at, -1, false};
    const auto ends = [&](Front::End end) {
        front.end = end;
        return front;
    };
    while (front.at < file.size()) {
        const uint8_t mark = file[front.at];
        if (mark == kImage) return ends(Front::kAtImage);
        if (mark == kTrailer) return ends(Front::kAtTrailer);
        if (mark != kExtension) return ends(Front::kDamaged);
        const size_t next = SkipBlocks(file, front.at + 2);
        if (next == 0) return ends(Front::kCutOff);
        const uint8_t* part = file.data() + front.at + 2;
        const uint8_t label = part[-1];
        if (label == kControl) {
            if (part[0] != 4) return ends(Front::kDamaged);
            front.transparent = (part[1] & 1) != 0 ? part[4] : -1;
        }
        // A text takes what is told of it, as an image does.
        if (label == kText) front.transparent = -1;
        if (label == kControl || label == kText) front.controlled = label == kControl;
        front.at = next;
    }
    return ends(front.controlled ? Front::kCutOff : Front::kAtEndOfFile);
}

size_t BehindImage(std::span<const uint8_t> file, size_t at) {
    if (file.size() - at < kImageHeader) return 0;
    return SkipBlocks(file, at + kImageHeader + PaletteBytes(file[at + 9]) + 1);
}

size_t FirstImage(std::span<const uint8_t> file) {
    if (file.size() < kScreenHeader) return file.size();
    return kScreenHeader + PaletteBytes(file[10]);
}

// Where row `index` of those stored stands in an interlaced image: every 8th, those in the middle between, and so on.
class Rows {
public:
    Rows(uint32_t height, bool interlaced) : m_height(height), m_step(interlaced ? 8 : 1) {}

    uint32_t Next() {
        const uint32_t y = m_y;
        m_y += m_step;
        while (m_y >= m_height && m_step > 1) {
            m_y = m_first ? 4 : m_step / 4;
            m_step = m_first ? 8 : m_step / 2;
            m_first = false;
        }
        return y;
    }

private:
    uint32_t m_height;
    uint32_t m_step;
    uint32_t m_y = 0;
    bool m_first = true;
};

}  // namespace

bool IsGif(std::span<const uint8_t> file) {
    return file.size() >= 6 &&
           (std::memcmp(file.data(), "GIF87a", 6) == 0 || std::memcmp(file.data(), "GIF89a", 6) == 0);
}

std::vector<uint32_t> GifImages(std::span<const uint8_t> file) {
    std::vector<uint32_t> places;
    size_t at = FirstImage(file);
    while (places.size() < kMaxImages) {
        const Front front = ReadFront(file, at);
        const bool whole = front.end == Front::kAtEndOfFile && !places.empty();
        if (whole || front.end == Front::kAtTrailer) break;
        places.push_back(static_cast<uint32_t>(std::min(at, file.size())));
        if (front.end != Front::kAtImage) break;
        at = BehindImage(file, front.at);
        if (at == 0) break;
    }
    return places;
}

GifPage::GifPage(Bytes file, uint32_t place) {
    if (FirstImage(file) >= file.size() || place >= file.size()) ThrowCutOff();
    const Front front = ReadFront(file, place);
    if (front.end == Front::kDamaged) ThrowDamaged(L"a part of the file is damaged");
    if (front.end != Front::kAtImage) ThrowCutOff();
    const size_t end = BehindImage(file, front.at);
    if (end == 0) ThrowCutOff();
    const Bytes header = file.subspan(front.at, kImageHeader);
    const uint8_t flags = header[9];
    m_width = Get16(header, 5, false);
    m_height = Get16(header, 7, false);
    Bitmap::Check(m_width, m_height, 8);
    const bool isWhole = Get16(header, 1, false) == 0 && Get16(header, 3, false) == 0 &&
                         m_width == Get16(file, 6, false) && m_height == Get16(file, 8, false);
    if (!isWhole) {
        throw ImageError{L"this image of the GIF file is only a part of its picture; save the picture as PNG"};
    }
    m_interlaced = (flags & 0x40) != 0;
    m_transparent = front.transparent;
    const size_t codes = front.at + kImageHeader + PaletteBytes(flags);
    m_colours = PaletteBytes(flags) != 0 ? file.subspan(front.at + kImageHeader, PaletteBytes(flags))
                                         : file.subspan(kScreenHeader, PaletteBytes(file[10]));
    if (m_colours.empty()) ThrowDamaged(L"the page's colours are missing");
    m_codeSize = file[codes];
    if (m_codeSize < 1 || m_codeSize > 8) ThrowDamaged(L"the page's data is damaged");
    m_blocks = file.subspan(codes + 1, end - codes - 1);
}

uint64_t GifPage::WorkingBytes(const JpegDecoder&) const {
    return sizeof(GifCodes) + 256 * sizeof(uint32_t);
}

std::shared_ptr<Bitmap> GifPage::Decode(JpegDecoder&) const {
    auto bitmap = std::make_shared<Bitmap>(m_width, m_height, 8);
    bitmap->palette.assign(256, 0xFFFFFF);
    for (size_t i = 0; i < m_colours.size() / 3; ++i) {
        const uint8_t* colour = m_colours.data() + i * 3;
        bitmap->palette[i] = uint32_t{colour[0]} << 16 | uint32_t{colour[1]} << 8 | colour[2];
    }
    if (m_transparent >= 0) bitmap->palette[static_cast<size_t>(m_transparent)] = 0xFFFFFF;
    try {
        const auto codes = std::make_unique<GifCodes>(m_blocks, m_codeSize);
        Rows rows(m_height, m_interlaced);
        for (uint32_t i = 0; i < m_height; ++i) {
            const uint32_t y = rows.Next();
            codes->Read(bitmap->Row(y), m_width);
            bitmap->ClearPadding(y);
        }
    } catch (const BadPiece& bad) {
        ThrowDamaged(std::wstring(L"the page's data ") + bad.what);
    }
    return bitmap;
}

}  // namespace reader
