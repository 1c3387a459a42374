#include "refhost/imaging/Image.h"

#include <array>
#include <cstring>

#include "refhost/reader/Bytes.h"

namespace imaging {

namespace {

constexpr size_t kFileHeader = 14;
constexpr size_t kInfoHeader = 40;

uint32_t PixelOffset(const Bitmap& image) {
    return static_cast<uint32_t>(kFileHeader + kInfoHeader + image.palette.size() * 4);
}

[[noreturn]] void ThrowBadBmp() {
    throw ImageError{
        L"the bytes are not a whole BMP file of 1, 8, 24 or 32 bits; pass on those of the masked image as "
        L"they came"};
}

// Which of the two values a 1-bit row has among its pixels; what is behind the last one does not count.
void MarkBits(const uint8_t* row, uint32_t width, std::array<bool, 256>& used) {
    const uint32_t whole = width / 8;
    uint8_t ones = 0;
    uint8_t zeros = 0;
    for (uint32_t i = 0; i < whole; ++i) {
        ones = static_cast<uint8_t>(ones | row[i]);
        zeros = static_cast<uint8_t>(zeros | ~row[i]);
    }
    if (width % 8 != 0) {
        const auto bits = static_cast<uint8_t>(0xFF00 >> (width % 8));
        ones = static_cast<uint8_t>(ones | (row[whole] & bits));
        zeros = static_cast<uint8_t>(zeros | (~row[whole] & bits));
    }
    used[0] = used[0] || zeros != 0;
    used[1] = used[1] || ones != 0;
}

double DpiField(std::span<const uint8_t> bytes, size_t offset) {
    const auto value = static_cast<int32_t>(Get32(bytes, offset, false));
    return value > 0 ? DpiOfPixelsPerMetre(value) : 0;
}

}  // namespace

Image::Image(const Image& source, bool keep, std::span<const Area> areas)
    : m_bitmap(source.m_masked ? source.Pixels() : source.m_bitmap),
      m_mask(MakeMask(*m_bitmap, keep, areas)),
      m_masked(true) {}

void Image::Render(uint8_t* target) const {
    {
        const std::lock_guard lock(m_mutex);
        if (!m_masked || m_rendered != nullptr) {
            const Bitmap& whole = m_masked ? *m_rendered : *m_bitmap;
            std::memcpy(target, whole.Data(), whole.Size());
            return;
        }
    }
    CopyMasked(*m_bitmap, m_mask, target);
}

std::shared_ptr<const Bitmap> Image::Pixels() const {
    if (!m_masked) return m_bitmap;
    const std::lock_guard lock(m_mutex);
    if (m_rendered == nullptr) {
        auto rendered = std::make_shared<Bitmap>(m_bitmap->Width(), m_bitmap->Height(), m_bitmap->Bits());
        rendered->resolution = m_bitmap->resolution;
        rendered->orientation = m_bitmap->orientation;
        CopyMasked(*m_bitmap, m_mask, rendered->Data());
        rendered->palette = m_bitmap->palette;
        rendered->palette = UsedPalette(*rendered, rendered->Data());
        m_rendered = std::move(rendered);
    }
    return m_rendered;
}

std::vector<uint32_t> UsedPalette(const Bitmap& image, const uint8_t* rows) {
    std::vector<uint32_t> palette = image.palette;
    if (palette.empty() || palette == BlackWhitePalette() || image.HasGreyPalette()) return palette;
    std::array<bool, 256> used = {};
    for (uint32_t y = 0; y < image.Height(); ++y) {
        const uint8_t* row = rows + y * image.Stride();
        if (image.Bits() == 1) {
            MarkBits(row, image.Width(), used);
        } else {
            for (uint32_t x = 0; x < image.Width(); ++x) used[row[x]] = true;
        }
    }
    const uint32_t paper = palette[image.PaperByte() % palette.size()];
    for (size_t i = 0; i < palette.size(); ++i) {
        if (!used[i]) palette[i] = paper;
    }
    return palette;
}

size_t Image::BmpSize() const {
    return PixelOffset(*m_bitmap) + m_bitmap->Size();
}

void Image::WriteBmp(uint8_t* block) const {
    const Bitmap& image = *m_bitmap;
    const uint32_t offset = PixelOffset(image);
    Render(block + offset);

    std::memset(block, 0, offset);
    block[0] = 'B';
    block[1] = 'M';
    Put32(block + 2, static_cast<uint32_t>(BmpSize()));
    Put32(block + 10, offset);
    uint8_t* info = block + kFileHeader;
    Put32(info, kInfoHeader);
    Put32(info + 4, image.Width());
    Put32(info + 8, image.Height());
    info[12] = 1;  // planes
    info[14] = static_cast<uint8_t>(image.Bits());
    Put32(info + 20, static_cast<uint32_t>(image.Size()));
    Put32(info + 24, PixelsPerMetre(image.resolution.x));
    Put32(info + 28, PixelsPerMetre(image.resolution.y));
    Put32(info + 32, static_cast<uint32_t>(image.palette.size()));
    const std::vector<uint32_t> palette = UsedPalette(image, block + offset);
    for (size_t i = 0; i < palette.size(); ++i) Put32(info + kInfoHeader + i * 4, palette[i]);
}

PixelView ViewOf(const Bitmap& image) {
    return {image.Width(), image.Height(), image.Bits(), image.Stride(), image.Data(), image.palette, image.resolution};
}

PixelView ViewBmp(std::span<const uint8_t> bytes) {
    if (bytes.size() < kFileHeader + kInfoHeader || bytes[0] != 'B' || bytes[1] != 'M') ThrowBadBmp();
    const size_t info = kFileHeader;
    const auto field = [&](size_t offset) { return Get32(bytes, info + offset, false); };
    const uint32_t bits = Get16(bytes, info + 14, false);
    const auto height = static_cast<int32_t>(field(8));
    if (field(0) != kInfoHeader || field(16) != 0 || height <= 0 || field(4) == 0 || field(4) > kMaxSide) ThrowBadBmp();
    if (bits != 1 && bits != 8 && bits != 24 && bits != 32) ThrowBadBmp();

    const size_t most = bits <= 8 ? size_t{1} << bits : 0;
    const size_t colors = most == 0 ? 0 : field(32) == 0 ? most : field(32);
    const size_t offset = Get32(bytes, 10, false);
    if (colors > most || offset < kFileHeader + kInfoHeader + colors * 4 || offset > bytes.size()) ThrowBadBmp();
    const uint64_t stride = (uint64_t{field(4)} * bits + 31) / 32 * 4;
    if (stride * static_cast<uint64_t>(height) > bytes.size() - offset) ThrowBadBmp();

    std::vector<uint32_t> palette(most, 0xFFFFFF);
    for (size_t i = 0; i < colors; ++i) {
        palette[i] = Get32(bytes, kFileHeader + kInfoHeader + i * 4, false) & 0xFFFFFF;
    }
    return {field(4),
            static_cast<uint32_t>(height),
            bits,
            static_cast<size_t>(stride),
            bytes.data() + offset,
            std::move(palette),
            ResolveResolution(DpiField(bytes, info + 24), DpiField(bytes, info + 28), 0, 0)};
}

std::shared_ptr<const Bitmap> ReadBmp(std::span<const uint8_t> bytes) {
    PixelView view = ViewBmp(bytes);
    auto image = std::make_shared<Bitmap>(view.width, view.height, view.bits);
    image->palette = std::move(view.palette);
    image->resolution = view.resolution;
    std::memcpy(image->Data(), view.lowest, image->Size());
    for (size_t i = 3; view.bits == 32 && i < image->Size(); i += 4) image->Data()[i] = 0xFF;
    return image;
}

}  // namespace imaging
