// What the header of a BMP file says. Fields beyond the header's own size count as 0.
#include <algorithm>
#include <bit>

#include "refhost/reader/BmpPage.h"
#include "refhost/reader/Bytes.h"

namespace reader {

namespace {

constexpr size_t kBmpFileHeader = 14;
constexpr uint32_t kCoreHeader = 12;
constexpr uint32_t kInfoHeader = 40;

enum Compression : uint32_t { kNoCompression, kRle8, kRle4, kMasks, kHoldsJpeg, kHoldsPng, kMasksWithAlpha };

[[noreturn]] void RefuseBmp(const std::wstring& kind) {
    throw ImageError{L"BMP files " + kind + L" are not read; save the page as PNG, or as BMP with 24 bits"};
}

[[noreturn]] void ThrowBadHeader(const wchar_t* what) {
    ThrowDamaged(std::wstring(L"the header of the file is damaged: ") + what);
}

// A mask's bits have to be neighbours, and of no other mask.
bool AreMasks(const std::array<uint32_t, 4>& masks, uint32_t bits) {
    uint32_t all = 0;
    for (const uint32_t mask : masks) {
        if ((all & mask) != 0) return false;
        all |= mask;
        if (mask != 0 && std::popcount(mask) + std::countl_zero(mask) + std::countr_zero(mask) != 32) return false;
    }
    return (masks[0] | masks[1] | masks[2]) != 0 && (bits == 32 || all >> bits == 0);
}

class HeaderReader {
public:
    explicit HeaderReader(std::span<const uint8_t> file) : m_file(file) {}

    BmpLayout Read() {
        if (m_file.size() < 2 || m_file[0] != 'B' || m_file[1] != 'M') ThrowBadHeader(L"it is not that of a BMP file");
        if (m_file.size() < kBmpFileHeader + 4) ThrowCutOff();
        m_size = Get32(m_file, kBmpFileHeader, false);
        // Sizes between those of the systems' own headers are of OS/2, which may leave out any of the last fields.
        const bool known = m_size == kCoreHeader || (m_size >= 16 && m_size <= 64) || m_size == 108 || m_size == 124;
        if (!known) RefuseBmp(L"with a header of " + std::to_wstring(m_size) + L" bytes");
        if (m_size > m_file.size() - kBmpFileHeader) ThrowCutOff();
        m_header = m_file.subspan(kBmpFileHeader, m_size);
        ReadSize();
        ReadCompression();
        Bitmap::Check(m_layout.width, m_layout.height, m_layout.ResultBits());
        ReadPalette();
        CheckPixels();
        return m_layout;
    }

private:
    bool IsCore() const { return m_size == kCoreHeader; }
    bool IsWindows() const { return m_size == kInfoHeader || m_size == 52 || m_size == 56 || m_size > 64; }
    uint32_t Field(size_t offset) const { return Get32(m_header, offset, false); }

    void ReadSize() {
        const size_t planes = IsCore() ? 8 : 12;
        // Some writers leave it 0.
        if (Get16(m_header, planes, false) > 1) RefuseBmp(L"with several planes");
        m_layout.bits = Get16(m_header, planes + 2, false);
        if (IsCore()) {
            m_layout.width = Get16(m_header, 4, false);
            m_layout.height = Get16(m_header, 6, false);
            return;
        }
        const auto height = static_cast<int64_t>(static_cast<int32_t>(Field(8)));
        m_layout.topDown = height < 0;
        m_layout.width = Field(4);
        m_layout.height = static_cast<uint32_t>(height < 0 ? -height : height);
        const auto dpi = [&](size_t offset) {
            const auto value = static_cast<int32_t>(Field(offset));
            return value > 0 ? DpiOfPixelsPerMetre(value) : 0;
        };
        m_layout.dpiX = dpi(24);
        m_layout.dpiY = dpi(28);
    }

    void ReadCompression() {
        const uint32_t compression = IsCore() ? uint32_t{kNoCompression} : Field(16);
        const uint32_t bits = m_layout.bits;
        m_headerEnd = kBmpFileHeader + m_size;
        if (!IsWindows() && compression == kMasks) RefuseBmp(L"with fax coding");
        if (!IsWindows() && compression == kHoldsJpeg) RefuseBmp(L"with run lengths of 24 bits");
        if (compression == kHoldsJpeg || compression == kHoldsPng) RefuseBmp(L"that hold a JPEG or PNG file");
        if (compression > kMasksWithAlpha) RefuseBmp(L"with compression " + std::to_wstring(compression));
        constexpr uint32_t kBits[] = {1, 2, 4, 8, 16, 24, 32};
        const bool masks = compression == kMasks || compression == kMasksWithAlpha;
        m_layout.runLengths = compression == kRle8 || compression == kRle4;
        const bool fits = masks ? bits == 16 || bits == 32
                          : m_layout.runLengths
                              ? bits == (compression == kRle8 ? 8U : 4U)
                              : std::find(std::begin(kBits), std::end(kBits), bits) != std::end(kBits);
        if (!fits)
            RefuseBmp(L"of " + std::to_wstring(bits) + L" bits with compression " + std::to_wstring(compression));
        if (m_layout.runLengths && m_layout.topDown) RefuseBmp(L"with run lengths from the top down");
        if (masks) return ReadMasks(compression == kMasksWithAlpha);
        if (bits == 16) m_layout.masks = {0x1F, 0x1F << 5, 0x1F << 10, 0};
        if (bits == 32) m_layout.masks = {0xFF, 0xFF00, 0xFF0000, 0};
    }

    // Short headers have them behind their end, longer ones inside; both in the same place.
    void ReadMasks(bool alpha) {
        constexpr size_t kRed = kBmpFileHeader + kInfoHeader;
        alpha = alpha || m_size >= 56;
        m_headerEnd = std::max<size_t>(m_headerEnd, kRed + (alpha ? 16 : 12));
        if (m_headerEnd > m_file.size()) ThrowCutOff();
        const auto mask = [&](size_t index) { return Get32(m_file, kRed + index * 4, false); };
        m_layout.masks = {mask(2), mask(1), mask(0), alpha ? mask(3) : 0};
        if (!AreMasks(m_layout.masks, m_layout.bits)) ThrowBadHeader(L"its colour masks do not fit the pixels");
    }

    // Where the number of colours is left out, there may be fewer than the pixels can name.
    void ReadPalette() {
        m_layout.pixels = Get32(m_file, 10, false);
        if (m_layout.pixels < m_headerEnd) ThrowBadHeader(L"the pixels would begin inside of it");
        if (m_layout.bits > 8) return;
        const size_t entry = IsCore() ? 3 : 4;
        const size_t most = size_t{1} << m_layout.bits;
        const size_t room = (std::min(m_layout.pixels, m_file.size()) - m_headerEnd) / entry;
        const size_t said = std::min<size_t>(Field(32), most);
        if (said > room) ThrowBadHeader(L"the pixels would begin inside of the colours");
        const size_t count = said != 0 ? said : std::min(most, room);
        if (count == 0) throw ImageError{L"the page's colours are missing; save it anew with 24 bits of colour"};
        m_layout.palette.assign(size_t{1} << m_layout.ResultBits(), 0xFFFFFF);
        for (size_t i = 0; i < count; ++i) {
            const uint8_t* blue = m_file.data() + m_headerEnd + i * entry;
            m_layout.palette[i] = uint32_t{blue[2]} << 16 | uint32_t{blue[1]} << 8 | blue[0];
        }
    }

    void CheckPixels() const {
        const uint64_t needed = m_layout.runLengths ? 1 : m_layout.RowBytes() * m_layout.height;
        if (m_layout.pixels + needed > m_file.size()) ThrowCutOff();
    }

    std::span<const uint8_t> m_file;
    std::span<const uint8_t> m_header;
    uint32_t m_size = 0;
    size_t m_headerEnd = 0;  // offset of the palette
    BmpLayout m_layout;
};

}  // namespace

BmpLayout ReadBmpLayout(std::span<const uint8_t> file) {
    return HeaderReader(file).Read();
}

}  // namespace reader
