#include "refhost/reader/Page.h"

#include <algorithm>
#include <cstring>

#include "refhost/reader/BmpPage.h"
#include "refhost/reader/GifPage.h"
#include "refhost/reader/JpegPage.h"
#include "refhost/reader/Orientation.h"
#include "refhost/reader/PngPage.h"
#include "refhost/reader/TiffPage.h"

namespace reader {

namespace {

using Bytes = std::span<const uint8_t>;

template <size_t Size>
bool StartsWith(Bytes file, const char (&text)[Size]) {
    return file.size() >= Size - 1 && std::memcmp(file.data(), text, Size - 1) == 0;
}

enum class Kind { kUnknown, kPng, kJpeg, kBmp, kGif, kTiff };

Kind KindOf(Bytes file) {
    if (IsTiff(file)) return Kind::kTiff;
    if (IsGif(file)) return Kind::kGif;
    if (StartsWith(file, "\x89PNG\r\n\x1a\n")) return Kind::kPng;
    if (StartsWith(file, "\xFF\xD8")) return Kind::kJpeg;
    return StartsWith(file, "BM") ? Kind::kBmp : Kind::kUnknown;
}

bool TurnsAxes(uint32_t orientation) {
    return orientation >= 5;
}

}  // namespace

std::vector<uint32_t> FindPages(Bytes file) {
    if (file.empty()) throw ImageError{L"the file is empty; scan or export the page again"};
    const Kind kind = KindOf(file);
    if (kind == Kind::kUnknown) {
        throw ImageError{L"this is no image of a known format; use PNG, JPEG, BMP or TIFF"};
    }
    if (kind != Kind::kTiff && kind != Kind::kGif) return {0};
    std::vector<uint32_t> places = kind == Kind::kTiff ? TiffDirectories(file) : GifImages(file);
    if (places.empty()) throw ImageError{L"the file holds no image; scan or export the page again"};
    return places;
}

std::unique_ptr<Page> OpenPage(Bytes file, uint32_t place) {
    switch (KindOf(file)) {
        case Kind::kPng:
            return std::make_unique<PngPage>(file);
        case Kind::kJpeg:
            return std::make_unique<JpegPage>(file);
        case Kind::kBmp:
            return std::make_unique<BmpPage>(file);
        case Kind::kGif:
            return std::make_unique<GifPage>(file, place);
        default:
            break;
    }
    auto directory = TiffDirectory::Read(file, place, file[0] == 'M');
    if (!directory) {
        ThrowCutOff();
    }
    return std::make_unique<TiffPage>(file, *std::move(directory));
}

PageMemory MemoryOf(const Page& page, const JpegDecoder& jpeg) {
    const PageFacts facts = page.Facts();
    const uint64_t stored = Bitmap::Check(facts.width, facts.height, facts.bits);
    if (!TurnsAxes(facts.orientation)) return {stored, page.WorkingBytes(jpeg)};
    const uint64_t turned = Bitmap::Check(facts.height, facts.width, facts.bits);
    return {turned, std::max(page.WorkingBytes(jpeg), stored)};
}

std::shared_ptr<Bitmap> DecodeUpright(const Page& page, JpegDecoder& jpeg, double dpiX, double dpiY) {
    const PageFacts facts = page.Facts();
    std::shared_ptr<Bitmap> bitmap = page.Decode(jpeg);
    bitmap->resolution = ResolveResolution(facts.dpiX, facts.dpiY, dpiX, dpiY);
    bitmap = Upright(std::move(bitmap), facts.orientation);
    bitmap->orientation = facts.orientation;
    return bitmap;
}

}  // namespace reader
