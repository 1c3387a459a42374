// What files tell before a page is decoded: resolutions, missing ends, single frames; with damaged files of all kinds.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>

#include "imaging/TestImage.h"
#include "refhost/imaging/Image.h"
#include "refhost/reader/Bytes.h"
#include "refhost/reader/Page.h"
#include "refhost/reader/Tiff.h"

using namespace imaging;

namespace {

std::vector<uint8_t> ReadTestFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

const std::string kData = TEST_DATA_DIR;
const std::string kFaxPages = std::string(SAMPLES_DIR) + "/fax-pages.tif";

std::vector<std::string> AllFiles() {
    std::vector<std::string> files = {kFaxPages};
    for (const char* name :
         {"alpha.png", "bits-g31d.tif", "bits-g4.tif", "bits-lzw.tif", "bits-none.tif", "bits-packbits.tif",
          "bits-zip.tif", "cmyk.jpg", "grey-packbits-cm.tif", "grey.jpg", "no-resolution.png", "palette16.png",
          "rgb-lzw.tif", "rgb-zip-bigendian.tif", "rgb.jpg", "rgb16.png"}) {
        files.push_back(kData + "/" + name);
    }
    return files;
}

PageFacts FactsOf(const std::vector<uint8_t>& file, uint32_t page = 0) {
    return OpenPage(file, FindPages(file).at(page))->Facts();
}

bool IsRefused(const std::vector<uint8_t>& file, uint32_t page = 0) {
    try {
        FactsOf(file, page);
        return false;
    } catch (const ImageError&) {
        return true;
    }
}

TEST(Resolution, RuleForMissingAndImpossible) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInf = std::numeric_limits<double>::infinity();
    struct Case {
        double fileX, fileY, callerX, callerY, x, y;
        bool assumed;
    };
    const Case cases[] = {
        {204, 196, 0, 0, 204, 196, false},    {0, 0, 0, 0, 200, 200, true},
        {1, 1, 0, 0, 200, 200, true},         {kNan, kInf, 0, 0, 200, 200, true},
        {300, 0, 0, 0, 300, 300, true},       {0, -5, 0, 150, 150, 150, true},
        {204, 196, 300, 0, 300, 196, false},  {0, 0, 300, 400, 300, 400, false},
        {96, 96, kNan, -1, 96, 96, false},    {9600, 9600, 0, 0, 9600, 9600, false},
        {1e9, 1e9, 1e9, 1e9, 200, 200, true}, {299.9994, 10000.02, 0, 0, 300, 10000, false},
    };
    for (const Case& item : cases) {
        const Resolution result = ResolveResolution(item.fileX, item.fileY, item.callerX, item.callerY);
        EXPECT_EQ(result.x, item.x) << item.fileX << "," << item.callerX;
        EXPECT_EQ(result.y, item.y) << item.fileY << "," << item.callerY;
        EXPECT_EQ(result.assumed, item.assumed) << item.fileX;
    }
}

TEST(Resolution, WholeDpiSurvivesDotsPerMetre) {
    for (int dpi = 10; dpi <= 10000; ++dpi) {
        ASSERT_EQ(DpiOfPixelsPerMetre(PixelsPerMetre(dpi)), dpi);
        ASSERT_EQ(DpiOfPixelsPerMetre(std::floor(dpi / 0.0254)), dpi) << "of a writer that cuts off";
    }
}

TEST(Resolution, PageSizes) {
    EXPECT_EQ(TenthsOfPixels(2480, 300), 2100);
    EXPECT_EQ(TenthsOfPixels(1, 9600), 1);
    EXPECT_EQ(TenthsOfPixels(std::numeric_limits<uint32_t>::max(), 10), std::numeric_limits<int32_t>::max());
}

TEST(PageFacts, ResolutionOfEveryFormat) {
    const std::pair<std::string, std::pair<double, double>> cases[] = {
        {kFaxPages, {204, 196}},
        {kData + "/bits-g4.tif", {204, 196}},
        {kData + "/grey-packbits-cm.tif", {300, 300}},
        {kData + "/rgb-zip-bigendian.tif", {300, 300}},
        {kData + "/rgb.jpg", {300, 300}},
        {kData + "/palette16.png", {300, 300}},
        {kData + "/no-resolution.png", {0, 0}},
    };
    for (const auto& [path, dpi] : cases) {
        const PageFacts facts = FactsOf(ReadTestFile(path));
        EXPECT_NEAR(facts.dpiX, dpi.first, 0.01) << path;
        EXPECT_NEAR(facts.dpiY, dpi.second, 0.01) << path;
    }
}

TEST(PageFacts, EveryMissingEndIsSeen) {
    for (const std::string& path : AllFiles()) {
        const std::vector<uint8_t> file = ReadTestFile(path);
        const bool tiff = IsTiff(file);
        for (size_t length = 0; length < file.size(); ++length) {
            // A copy of that length: the sanitizer sees a read past its end.
            const std::vector<uint8_t> part(file.begin(), file.begin() + static_cast<ptrdiff_t>(length));
            // A TIFF may end in bytes that its first page does not need.
            ASSERT_TRUE(IsRefused(part) || tiff) << path << " at " << length;
        }
    }
}

TEST(Tiff, FrameTakenOutHasItsOwnPiecesOnly) {
    const std::vector<uint8_t> file = ReadTestFile(kFaxPages);
    for (uint32_t frame = 0; frame < 3; ++frame) {
        const auto directory = TiffFrame(file, frame);
        ASSERT_TRUE(directory);
        const std::vector<uint8_t> single = ExtractTiffFrame(file, *directory);
        ASSERT_FALSE(single.empty());
        EXPECT_LT(single.size(), file.size());
        EXPECT_FALSE(TiffFrame(single, 1));
        const auto copy = TiffFrame(single, 0);
        ASSERT_TRUE(copy);
        EXPECT_TRUE(copy->IsWhole());
        EXPECT_EQ(copy->DpiY(), 196);
        EXPECT_EQ(copy->Entries().size(), directory->Entries().size());
        EXPECT_EQ(copy->Number(*copy->Find(257), 0), 1100u);
        // The same strips, byte for byte.
        const auto strip = [](const std::vector<uint8_t>& bytes, const TiffDirectory& of, uint32_t index) {
            const auto* begin = bytes.data() + of.Number(*of.Find(273), index);
            return std::vector<uint8_t>(begin, begin + of.Number(*of.Find(279), index));
        };
        for (uint32_t i = 0; i < directory->Find(273)->count; ++i) {
            EXPECT_EQ(strip(file, *directory, i), strip(single, *copy, i)) << frame << "," << i;
        }
    }
    EXPECT_FALSE(TiffFrame(file, 3));
}

ReadAt ReaderOf(const std::vector<uint8_t>& file) {
    return [&file](uint32_t offset, uint8_t* to, size_t size) {
        if (offset > file.size() || file.size() - offset < size) return false;
        std::copy_n(file.begin() + static_cast<ptrdiff_t>(offset), size, to);
        return true;
    };
}

TEST(Tiff, FramesAreCountedWithoutReadingTheFile) {
    EXPECT_EQ(CountTiffFrames(ReaderOf(ReadTestFile(kFaxPages))), 3u);
    EXPECT_EQ(CountTiffFrames(ReaderOf(ReadTestFile(kData + "/rgb-zip-bigendian.tif"))), 1u);
    EXPECT_EQ(CountTiffFrames(ReaderOf(ReadTestFile(kData + "/rgb.jpg"))), 0u);
    EXPECT_EQ(CountTiffFrames(ReaderOf({})), 0u);
}

TEST(Tiff, DirectoriesInACircleEnd) {
    std::vector<uint8_t> file = ReadTestFile(kData + "/bits-none.tif");
    const size_t directory = file[4] | file[5] << 8;
    const size_t next = directory + 2 + size_t{12} * file[directory];
    std::copy_n(file.begin() + 4, 4, file.begin() + static_cast<ptrdiff_t>(next));
    EXPECT_TRUE(TiffFrame(file, 0));
    EXPECT_FALSE(TiffFrame(file, 1));
    EXPECT_EQ(CountTiffFrames(ReaderOf(file)), 1u);
}

TEST(Tiff, WhatCannotBeTakenOutIsLeft) {
    std::vector<uint8_t> file = ReadTestFile(kData + "/bits-none.tif");
    const auto entryOf = [&](uint32_t tag) {
        size_t at = Get32(file, 4, false) + 2;
        while (Get16(file, at, false) != tag) at += 12;
        return file.begin() + static_cast<ptrdiff_t>(at);
    };
    const auto extracted = [&] { return ExtractTiffFrame(file, *TiffFrame(file, 0)); };
    ASSERT_FALSE(extracted().empty());
    auto compression = entryOf(259);
    compression[8] = 6;  // JPEG of the old kind: its tables stand elsewhere in the file
    EXPECT_TRUE(extracted().empty());
    compression[0] = 1;
    EXPECT_FALSE(extracted().empty()) << "none is named: bytes as they are";
    entryOf(273)[0] = 0;
    EXPECT_TRUE(extracted().empty()) << "no place of its rows";
}

TEST(Tiff, NoFramesWhereADirectoryCannotBe) {
    std::vector<uint8_t> file = {'I', 'I', 42, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(CountTiffFrames(ReaderOf(file)), 0u) << "a directory without entries";
    const ReadAt endless = [&](uint32_t offset, uint8_t* to, size_t size) {
        std::fill_n(to, size, uint8_t{0xF0});
        if (offset == 0) std::copy_n(file.begin(), size, to);
        return true;
    };
    std::fill_n(file.begin() + 4, 4, uint8_t{0xFF});
    EXPECT_EQ(CountTiffFrames(endless), 0u) << "one that would end beyond 4 GiB";
}

// A file of several pages that was cut off: the page behind the link that leads nowhere is there to be told as missing.
TEST(Tiff, ALinkOutOfTheFileCountsThePageThatIsMissing) {
    std::vector<uint8_t> file = ReadTestFile(kFaxPages);
    const size_t first = file[4] | file[5] << 8;
    const size_t next = first + 2 + size_t{12} * file[first];
    file[next + 3] = 0x7F;
    EXPECT_EQ(CountTiffFrames(ReaderOf(file)), 2u);
    EXPECT_TRUE(TiffFrame(file, 0));
    EXPECT_FALSE(TiffFrame(file, 1));
    EXPECT_TRUE(IsRefused(file, 1));
}

TEST(Damage, ChangedBytesNeverLeadOutsideTheFile) {
    std::mt19937 random(3);
    for (const std::string& path : AllFiles()) {
        const std::vector<uint8_t> file = ReadTestFile(path);
        for (int round = 0; round < 3000; ++round) {
            std::vector<uint8_t> damaged(file.begin(), file.end() - (round % 3 == 0 ? random() % file.size() : 0));
            for (int change = 0; change < 4 && !damaged.empty(); ++change) {
                damaged[random() % damaged.size()] = static_cast<uint8_t>(random() % 3 == 0 ? 0xFF : random());
            }
            IsRefused(damaged);
            CountTiffFrames(ReaderOf(damaged));
            if (const auto frame = TiffFrame(damaged, 0)) {
                ASSERT_LE(ExtractTiffFrame(damaged, *frame).size(), 4 * file.size() + 4096);
            }
        }
    }
}

TEST(PageFacts, UnitsOfAJpeg) {
    std::vector<uint8_t> file = ReadTestFile(kData + "/rgb.jpg");
    ASSERT_TRUE(std::equal(file.begin() + 6, file.begin() + 10, "JFIF"));
    for (const auto& [unit, dpi] : {std::pair{1, 118.0}, std::pair{2, 118 * 2.54}, std::pair{0, 0.0}}) {
        file[13] = static_cast<uint8_t>(unit);
        file[15] = file[17] = 118;
        file[14] = file[16] = 0;
        const PageFacts facts = FactsOf(file);
        EXPECT_NEAR(facts.dpiX, dpi, 0.01) << unit;
        EXPECT_NEAR(facts.dpiY, dpi, 0.01) << unit;
    }
}

TEST(Bytes, NothingIsReadBehindTheEnd) {
    const std::vector<uint8_t> bytes = {1, 2, 3, 4};
    for (const size_t offset : {size_t{1}, size_t{3}, size_t{4}, size_t{5}, SIZE_MAX - 1, SIZE_MAX}) {
        EXPECT_EQ(Get32(bytes, offset, true), 0u) << offset;
        EXPECT_EQ(Get16(bytes, offset, true), offset == 1 ? 0x0203u : 0u) << offset;
    }
    EXPECT_EQ(Get32(bytes, 0, false), 0x04030201u);
    EXPECT_EQ(Get16(bytes, 2, false), 0x0403u);
}

// Half transparent ink on white paper is what a reader of the page sees.
TEST(Colours, TransparentOnesLieOnPaper) {
    for (const auto& [argb, seen] : {std::pair{0xFF123456u, 0x123456u}, std::pair{0x00123456u, 0xFFFFFFu},
                                     std::pair{0x80000000u, 0x7F7F7Fu}, std::pair{0x80FF0000u, 0xFF7F7Fu}}) {
        EXPECT_EQ(OnPaper(argb), seen) << std::hex << argb;
    }
}

TEST(Bmp, DamagedBlocksAreRefused) {
    const auto image = MakeTestImage(33, 9, 8, 204, 196);
    const Image source(image);
    std::vector<uint8_t> block(source.BmpSize());
    source.WriteBmp(block.data());
    EXPECT_EQ(ReadBmp(block)->resolution.x, 204);
    EXPECT_EQ(ReadBmp(block)->resolution.y, 196);
    for (size_t length = 0; length < block.size(); ++length) {
        EXPECT_THROW(ReadBmp(std::vector<uint8_t>(block.begin(), block.begin() + static_cast<ptrdiff_t>(length))),
                     ImageError);
    }
    // No count of colours stands for all that the depth allows.
    std::vector<uint8_t> uncounted = block;
    std::fill_n(uncounted.begin() + 46, 4, uint8_t{0});
    EXPECT_EQ(ReadBmp(uncounted)->palette, ReadBmp(block)->palette);
    // Field, bytes: each makes the header contradict the rest.
    for (const size_t offset : {10, 14, 18, 22, 28, 30, 46}) {
        std::vector<uint8_t> damaged = block;
        std::fill_n(damaged.begin() + static_cast<ptrdiff_t>(offset), 4, uint8_t{0xFE});
        EXPECT_THROW(ReadBmp(damaged), ImageError) << offset;
    }
}

TEST(Bitmaps, SizesBeyondTheLimitsAreRefused) {
    EXPECT_THROW(Bitmap(0, 5, 24), ImageError);
    EXPECT_THROW(Bitmap(5, 0, 24), ImageError);
    EXPECT_THROW(Bitmap(65536, 1, 1), ImageError);
    EXPECT_THROW(Bitmap(1, 65536, 1), ImageError);
    EXPECT_THROW(Bitmap(65535, 65535, 24), ImageError);
    EXPECT_EQ(Bitmap(30000, 30000, 1).Size(), size_t{3752} * 30000);
}

}  // namespace
