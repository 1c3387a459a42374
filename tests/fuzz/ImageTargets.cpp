// Masking, and what is read from the bytes of image files.
#include <algorithm>
#include <cstring>

#include "fuzz/Targets.h"
#include "imaging/TestImage.h"
#include "refhost/reader/Page.h"
#include "support/FakeJpeg.h"

namespace fuzz {
namespace {

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
        const auto again = imaging::ReadBmp(BmpOf(imaging::Image(bitmap)));
        Require(again->Width() == bitmap->Width() && again->Height() == bitmap->Height() &&
                    std::memcmp(again->Data(), bitmap->Data(), bitmap->Size()) == 0,
                "an image reads back from a BMP file");
    } catch (const reader::ImageError& error) {
        Require(!error.text.empty(), "a refused image says why");
    }
}

}  // namespace

void image_mask(Input input) {
    constexpr uint32_t kBits[] = {1, 8, 24, 32};
    const uint32_t bits = kBits[input.Byte() % 4];
    const uint32_t width = 1 + input.Byte() % 100, height = 1 + input.Byte() % 40;
    const double dpiX = 10.0 + input.Byte() * 3, dpiY = 10.0 + input.Byte() * 3;
    const auto image = MakeTestImage(width, height, bits, dpiX, dpiY + input.Byte() / 256.0);
    std::vector<imaging::Area> areas(input.Byte() % 40);
    for (auto& area : areas) area = {input.Coordinate(), input.Coordinate(), input.Coordinate(), input.Coordinate()};
    for (const bool keep : {true, false}) {
        const imaging::Image masked(imaging::Image(image), keep, areas);
        Require(WrongPixels(*image, keep, areas, *masked.Pixels()) == 0, "areas are kept or masked, and nothing else");
    }
}

void page_file(Input input) {
    constexpr uint64_t kMostBytes = 1 << 20;
    constexpr size_t kMostPages = 4;
    const std::string_view rest = input.Rest();
    const std::span file(reinterpret_cast<const uint8_t*>(rest.data()), rest.size());
    test::FakeJpeg jpeg;
    try {
        const std::vector<uint32_t> places = reader::FindPages(file);
        for (size_t i = 0; i < std::min(places.size(), kMostPages); ++i) {
            const std::unique_ptr<reader::Page> page = reader::OpenPage(file, places[i]);
            const reader::PageFacts facts = page->Facts();
            Require(facts.dpiX >= 0 && facts.dpiY >= 0, "a resolution is no negative number");
            const auto used = reader::ResolveResolution(facts.dpiX, facts.dpiY, 0, 0);
            Require(reader::IsPossibleDpi(used.x) && reader::IsPossibleDpi(used.y), "a resolution in use is possible");
            const reader::PageMemory memory = reader::MemoryOf(*page, jpeg);
            if (memory.bitmap + memory.working > kMostBytes) continue;
            const auto bitmap = reader::DecodeUpright(*page, jpeg, 0, 0);
            const auto again = reader::DecodeUpright(*page, jpeg, 0, 0);
            Require(bitmap->Size() == memory.bitmap, "a page takes what its header says");
            Require(bitmap->palette.empty() == (bitmap->Bits() > 8), "bitmaps of up to 8 bits have a palette");
            Require(std::memcmp(bitmap->Data(), again->Data(), bitmap->Size()) == 0, "every byte of a page is decoded");
        }
    } catch (const reader::ImageError& error) {
        Require(!error.text.empty(), "a refused page says why");
    }

    const uint32_t frames = reader::CountTiffFrames(ReaderOf(file));
    Require(frames == 0 || reader::IsTiff(file), "only a TIFF file has frames");
    for (uint32_t frame = 0; frame < kMostPages; ++frame) {
        if (const auto directory = reader::TiffFrame(file, frame)) CheckFrame(file, *directory);
    }
    CheckBmp(file);
}

}  // namespace fuzz
