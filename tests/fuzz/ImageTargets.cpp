// Masking, and what is read from the bytes of image files.
#include <algorithm>
#include <cstring>

#include "fuzz/Targets.h"
#include "refhost/imaging/Image.h"
#include "refhost/imaging/Mask.h"
#include "refhost/reader/Page.h"
#include "refhost/reader/Tiff.h"
#include "support/FakeJpeg.h"

namespace fuzz {
namespace {

using imaging::Area;
using reader::Bitmap;

constexpr uint32_t kBits[] = {1, 8, 24, 32};

// Every pixel differs from the paper.
Bitmap MakeImage(Input& input) {
    const uint32_t bits = kBits[input.Byte() % 4];
    Bitmap image(1 + input.Byte() % 100, 1 + input.Byte() % 40, bits);
    image.resolution = {10.0 + input.Byte() * 3, 10.0 + input.Byte() * 3 + input.Byte() / 256.0, false};
    if (bits == 1) image.palette = reader::BlackWhitePalette();
    if (bits == 8) image.palette = reader::GreyPalette();
    std::memset(image.Data(), 0, image.Size());
    return image;
}

bool IsPaper(const Bitmap& image, const std::vector<uint8_t>& pixels, uint32_t x, uint32_t y) {
    const uint8_t* row = pixels.data() + image.RowOffset(y);
    if (image.Bits() == 1) return (row[x / 8] >> (7 - x % 8) & 1) != 0;
    return row[size_t{x} * image.Bits() / 8] == 0xFF;
}

std::vector<uint8_t> Masked(const Bitmap& image, bool keep, const std::vector<Area>& areas) {
    std::vector<uint8_t> pixels(image.Size(), 0xA5);
    imaging::CopyMasked(image, imaging::MakeMask(image, keep, areas), pixels.data());
    return pixels;
}

bool IsCovered(const Bitmap& image, const std::vector<Area>& areas, uint32_t x, uint32_t y) {
    for (const Area& area : areas) {
        const auto across = reader::PixelsTouched(area.left, area.right, image.resolution.x, image.Width());
        const auto down = reader::PixelsTouched(area.top, area.bottom, image.resolution.y, image.Height());
        if (across.begin <= x && x < across.end && down.begin <= y && y < down.end) return true;
    }
    return false;
}

void CheckFrame(std::span<const uint8_t> file, const reader::TiffDirectory& frame) {
    const std::vector<uint8_t> alone = reader::ExtractTiffFrame(file, frame);
    if (alone.empty()) return;
    Require(alone.size() <= 8 * file.size() + 64, "a frame taken out is not larger than its file by much");
    const auto again = reader::TiffFrame(alone, 0);
    Require(again && again->IsWhole() && again->Next() == 0, "a frame taken out is a file of its own");
    Require(again->DpiX() == frame.DpiX() && again->DpiY() == frame.DpiY(), "it keeps its resolution");
}

void CheckBmp(std::span<const uint8_t> file) {
    try {
        const auto bitmap = imaging::ReadBmp(file);
        const imaging::Image image(bitmap);
        std::vector<uint8_t> written(image.BmpSize());
        image.WriteBmp(written.data());
        const auto again = imaging::ReadBmp(written);
        Require(again->Width() == bitmap->Width() && again->Height() == bitmap->Height() &&
                    std::memcmp(again->Data(), bitmap->Data(), bitmap->Size()) == 0,
                "an image reads back from a BMP file");
    } catch (const reader::ImageError& error) {
        Require(!error.text.empty(), "a refused image says why");
    }
}

}  // namespace

void image_mask(Input input) {
    const Bitmap image = MakeImage(input);
    std::vector<Area> areas(input.Byte() % 8);
    for (Area& area : areas) area = {input.Coordinate(), input.Coordinate(), input.Coordinate(), input.Coordinate()};
    const auto kept = Masked(image, true, areas);
    const auto ignored = Masked(image, false, areas);
    for (uint32_t y = 0; y < image.Height(); ++y) {
        for (uint32_t x = 0; x < image.Width(); ++x) {
            const bool covered = IsCovered(image, areas, x, y);
            Require(IsPaper(image, ignored, x, y) == covered, "ignored areas are masked, and nothing else");
            Require(IsPaper(image, kept, x, y) == !covered, "kept areas are the complement");
        }
    }
}

void image_header(Input input) {
    const uint32_t frame = input.Byte() % 4;
    const std::string_view rest = input.Rest();
    const std::span file(reinterpret_cast<const uint8_t*>(rest.data()), rest.size());
    try {
        const std::vector<uint32_t> places = reader::FindPages(file);
        const reader::PageFacts facts = reader::OpenPage(file, places[frame % places.size()])->Facts();
        Require(facts.dpiX >= 0 && facts.dpiY >= 0, "a resolution is no negative number");
        const auto used = reader::ResolveResolution(facts.dpiX, facts.dpiY, 0, 0);
        Require(reader::IsPossibleDpi(used.x) && reader::IsPossibleDpi(used.y), "a resolution in use is possible");
    } catch (const reader::ImageError& error) {
        Require(!error.text.empty(), "a refused page says why");
    }

    const uint32_t frames = reader::CountTiffFrames([&](uint32_t offset, uint8_t* to, size_t size) {
        if (offset > file.size() || file.size() - offset < size) return false;
        std::memcpy(to, file.data() + offset, size);
        return true;
    });
    Require(frames == 0 || reader::IsTiff(file), "only a TIFF file has frames");
    if (const auto directory = reader::TiffFrame(file, frame)) CheckFrame(file, *directory);
    CheckBmp(file);
}

void page_file(Input input) {
    constexpr uint64_t kMostBytes = 1 << 20;
    const std::string_view rest = input.Rest();
    const std::span file(reinterpret_cast<const uint8_t*>(rest.data()), rest.size());
    test::FakeJpeg jpeg;
    try {
        const std::vector<uint32_t> places = reader::FindPages(file);
        for (size_t i = 0; i < std::min<size_t>(places.size(), 3); ++i) {
            const std::unique_ptr<reader::Page> page = reader::OpenPage(file, places[i]);
            const reader::PageMemory memory = reader::MemoryOf(*page, jpeg);
            if (memory.bitmap + memory.working > kMostBytes) return;
            const auto bitmap = reader::DecodeUpright(*page, jpeg, 0, 0);
            const auto again = reader::DecodeUpright(*page, jpeg, 0, 0);
            Require(bitmap->Size() == memory.bitmap, "a page takes what its header says");
            Require(bitmap->palette.empty() == (bitmap->Bits() > 8), "bitmaps of up to 8 bits have a palette");
            Require(std::memcmp(bitmap->Data(), again->Data(), bitmap->Size()) == 0, "every byte of a page is decoded");
        }
    } catch (const reader::ImageError& error) {
        Require(!error.text.empty(), "a refused page says why");
    }
}

}  // namespace fuzz
