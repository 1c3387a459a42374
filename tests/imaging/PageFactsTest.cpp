// What files tell before a page is decoded: resolutions, missing ends, single frames.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "imaging/TestImage.h"
#include "refhost/reader/Bytes.h"
#include "refhost/reader/Page.h"
#include "support/FakeJpeg.h"
#include "support/Files.h"

using namespace imaging;

namespace {

using test::Bytes;

const std::string kData = TEST_DATA_DIR "/";
const std::string kFaxPages = SAMPLES_DIR "/fax-pages.tif";

PageFacts FactsOf(const Bytes& file, uint32_t page = 0) {
    return OpenPage(file, FindPages(file).at(page))->Facts();
}

bool IsRefused(const Bytes& file, uint32_t page = 0) {
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
        {kData + "bits-g4.tif", {204, 196}},
        {kData + "grey-packbits-cm.tif", {300, 300}},
        {kData + "rgb-zip-bigendian.tif", {300, 300}},
        {kData + "rgb.jpg", {300, 300}},
        {kData + "palette16.png", {300, 300}},
        {kData + "no-resolution.png", {0, 0}},
    };
    for (const auto& [path, dpi] : cases) {
        const PageFacts facts = FactsOf(test::ReadBytes(path));
        EXPECT_NEAR(facts.dpiX, dpi.first, 0.01) << path;
        EXPECT_NEAR(facts.dpiY, dpi.second, 0.01) << path;
    }
}

// A TIFF may end in bytes that its first page does not need; the other kinds may not.
TEST(PageFacts, EveryMissingEndIsSeen) {
    for (const char* name : {"alpha.png", "cmyk.jpg", "grey.jpg", "palette16.png", "bits-g4.tif"}) {
        const Bytes file = test::ReadBytes(kData + name);
        for (size_t length = 0; length < file.size(); ++length) {
            // A copy of that length: the sanitizer sees a read past its end.
            const Bytes part(file.begin(), file.begin() + static_cast<ptrdiff_t>(length));
            ASSERT_TRUE(IsRefused(part) || IsTiff(file)) << name << " at " << length;
        }
    }
}

TEST(Tiff, FrameTakenOutHasItsOwnPiecesOnly) {
    const Bytes file = test::ReadBytes(kFaxPages);
    test::FakeJpeg jpeg;
    for (uint32_t frame = 0; frame < 3; ++frame) {
        const Bytes single = ExtractTiffFrame(file, *TiffFrame(file, frame));
        EXPECT_LT(single.size(), file.size());
        EXPECT_FALSE(TiffFrame(single, 1));
        const auto copy = TiffFrame(single, 0);
        ASSERT_TRUE(copy);
        EXPECT_TRUE(copy->IsWhole());
        EXPECT_EQ(copy->DpiY(), 196);
        EXPECT_EQ(copy->Entries().size(), TiffFrame(file, frame)->Entries().size());
        const auto whole = OpenPage(file, FindPages(file).at(frame))->Decode(jpeg);
        const auto alone = OpenPage(single, FindPages(single).at(0))->Decode(jpeg);
        EXPECT_TRUE(std::equal(whole->Data(), whole->Data() + whole->Size(), alone->Data())) << frame;
    }
    EXPECT_FALSE(TiffFrame(file, 3));
}

// Where the first directory says where the next one is.
uint8_t* LinkOf(Bytes& file) {
    const uint32_t directory = Get32(file, 4, false);
    return &file[directory + 2 + size_t{12} * Get16(file, directory, false)];
}

TEST(Tiff, FramesAreCountedWithoutReadingTheFile) {
    EXPECT_EQ(CountTiffFrames(ReaderOf(test::ReadBytes(kFaxPages))), 3u);
    EXPECT_EQ(CountTiffFrames(ReaderOf(test::ReadBytes(kData + "rgb-zip-bigendian.tif"))), 1u);
    EXPECT_EQ(CountTiffFrames(ReaderOf(test::ReadBytes(kData + "rgb.jpg"))), 0u);
    EXPECT_EQ(CountTiffFrames(ReaderOf({})), 0u);
}

TEST(Tiff, WhatCannotBeTakenOutIsLeft) {
    Bytes file = test::ReadBytes(kData + "bits-none.tif");
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
    Bytes file = {'I', 'I', 42, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(CountTiffFrames(ReaderOf(file)), 0u) << "a directory without entries";
    const ReadAt endless = [&](uint32_t offset, uint8_t* to, size_t size) {
        std::fill_n(to, size, uint8_t{0xF0});
        if (offset == 0) std::copy_n(file.begin(), size, to);
        return true;
    };
    std::fill_n(file.begin() + 4, 4, uint8_t{0xFF});
    EXPECT_EQ(CountTiffFrames(endless), 0u) << "one that would end beyond 4 GiB";
}

// A circle ends. Of a file that was cut off the page behind the link is there to be told as missing.
TEST(Tiff, LinksThatLeadNowhere) {
    Bytes file = test::ReadBytes(kFaxPages);
    for (const auto& [link, frames] : {std::pair{Get32(file, 4, false), 1u}, {0x7F000000u, 2u}}) {
        Put32(LinkOf(file), link);
        EXPECT_EQ(CountTiffFrames(ReaderOf(file)), frames);
        EXPECT_TRUE(TiffFrame(file, 0));
        EXPECT_FALSE(TiffFrame(file, 1));
    }
    EXPECT_TRUE(IsRefused(file, 1));
}

TEST(PageFacts, UnitsOfAJpeg) {
    Bytes file = test::ReadBytes(kData + "rgb.jpg");
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
    const Bytes bytes = {1, 2, 3, 4};
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
    const Bytes block = BmpOf(Image(MakeTestImage(33, 9, 8, 204, 196)));
    EXPECT_EQ(ReadBmp(block)->resolution.x, 204);
    EXPECT_EQ(ReadBmp(block)->resolution.y, 196);
    for (size_t length = 0; length < block.size(); ++length) {
        EXPECT_THROW(ReadBmp(Bytes(block.begin(), block.begin() + static_cast<ptrdiff_t>(length))), ImageError);
    }
    // No count of colours stands for all that the depth allows.
    Bytes uncounted = block;
    std::fill_n(uncounted.begin() + 46, 4, uint8_t{0});
    EXPECT_EQ(ReadBmp(uncounted)->palette, ReadBmp(block)->palette);
    // Field, bytes: each makes the header contradict the rest.
    for (const size_t offset : {10, 14, 18, 22, 28, 30, 46}) {
        Bytes damaged = block;
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
