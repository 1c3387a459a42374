// The exports: handles, failures and their texts. The work is done by ImageFile, Image and Output.
#include "refhost/imaging/HostImaging.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "refhost/imaging/ErrorText.h"
#include "refhost/imaging/ImageFile.h"
#include "refhost/imaging/LiveImages.h"
#include "refhost/imaging/Output.h"

namespace {

using imaging::Doing;
using imaging::Guard;
using imaging::Image;
using imaging::ImageFile;
using imaging::LiveImages;
using imaging::Output;
using reader::ImageError;
using ImagePtr = std::shared_ptr<const Image>;

static_assert(sizeof(imaging::Area) == sizeof(RECT) && kHostMaxImageSide == reader::kMaxSide &&
              kHostMaxImageBytes == reader::kMaxPixelBytes);

constexpr int kCopyBmp = 4;

void Require(bool condition, const wchar_t* text) {
    if (!condition) throw ImageError{text};
}

LiveImages& Live() {
    static LiveImages images;
    return images;
}

struct Free {
    void operator()(void* block) const { std::free(block); }
};
using Block = std::unique_ptr<void, Free>;

Block Allocate(size_t size) {
    Block block(std::malloc(size == 0 ? 1 : size));
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

constexpr const wchar_t* kNullArgument = L"a required argument is null";

void OpenFile(std::unique_ptr<ImageFile> opened, void** file, uint32_t* frames) {
    *frames = opened->Frames();
    *file = opened.release();
}

}  // namespace

extern "C" {

int HostCreateMaskedImage(void* source, void** masked, const AreaMask* mask, int) {
    return Guard(L"", [&] {
        Require(masked != nullptr && mask != nullptr, kNullArgument);
        const auto* areas = reinterpret_cast<const imaging::Area*>(mask->rects);
        const ImagePtr image = Live().Find(source);
        *masked = Live().Add(
            std::make_shared<Image>(*image, mask->dwKeep != 0, std::span<const imaging::Area>(areas, mask->count)));
    });
}

int HostCopyImage(void* image, int format, void** block, DWORD* length, int) {
    return Guard(L"", [&] {
        Require(block != nullptr && length != nullptr, kNullArgument);
        Require(format == kCopyBmp, L"images are copied in format 4 (BMP) only");
        const ImagePtr source = Live().Find(image);
        Block copy = Allocate(source->BmpSize());
        source->WriteBmp(static_cast<uint8_t*>(copy.get()));
        *length = static_cast<DWORD>(source->BmpSize());
        *block = copy.release();
    });
}

void HostReleaseImage(void* image) {
    Live().Remove(image);
}

int HostOpenImageFile(const wchar_t* path, void** file, uint32_t* frames) {
    return Guard(path == nullptr ? L"" : path, [&] {
        Require(path != nullptr && file != nullptr && frames != nullptr, kNullArgument);
        OpenFile(ImageFile::Open(path), file, frames);
    });
}

int HostOpenImageMemory(const void* bytes, size_t length, void** file, uint32_t* frames) {
    return Guard(L"image in memory", [&] {
        Require(bytes != nullptr && file != nullptr && frames != nullptr, kNullArgument);
        Require(length <= kHostMaxFileBytes, L"the image is larger than 1 GiB");
        const auto* first = static_cast<const uint8_t*>(bytes);
        OpenFile(std::make_unique<ImageFile>(L"image in memory", std::vector<uint8_t>(first, first + length)), file,
                 frames);
    });
}

void HostCloseImageFile(void* file) {
    const std::unique_ptr<ImageFile> closed(static_cast<ImageFile*>(file));
}

int HostLoadFrame(void* file, uint32_t frame, double dpiX, double dpiY, void** image) {
    const auto* opened = static_cast<const ImageFile*>(file);
    return Guard(opened == nullptr ? L"" : opened->Name(), [&] {
        Require(opened != nullptr && image != nullptr, kNullArgument);
        *image = Live().Add(std::make_shared<Image>(opened->Decode(frame, dpiX, dpiY)));
    });
}

int HostGetFrameSize(void* file, uint32_t frame, HostFrameSize* size) {
    const auto* opened = static_cast<const ImageFile*>(file);
    return Guard(opened == nullptr ? L"" : opened->Name(), [&] {
        Require(opened != nullptr && size != nullptr, kNullArgument);
        *size = opened->Size(frame);
    });
}

int HostCopyFrameBytes(void* file, uint32_t frame, void** block, size_t* length) {
    const auto* opened = static_cast<const ImageFile*>(file);
    return Guard(opened == nullptr ? L"" : opened->Name(), [&] {
        Require(opened != nullptr && block != nullptr && length != nullptr, kNullArgument);
        const std::vector<uint8_t> extracted = opened->ExtractFrame(frame);
        Require(!extracted.empty() || opened->Frames() == 1,
                L"the page cannot be taken out of its file; save each page as a file of its own");
        const std::span<const uint8_t> bytes = extracted.empty() ? opened->Bytes() : extracted;
        Block copy = Allocate(bytes.size());
        std::memcpy(copy.get(), bytes.data(), bytes.size());
        *length = bytes.size();
        *block = copy.release();
    });
}

void HostFreeBlock(void* block) {
    std::free(block);
}

int HostImageFromBmp(const void* bytes, size_t length, void** image) {
    return Guard(L"", [&] {
        Require(bytes != nullptr && image != nullptr, kNullArgument);
        *image = Live().Add(std::make_shared<Image>(imaging::ReadBmp({static_cast<const uint8_t*>(bytes), length})));
    });
}

int HostGetImageInfo(void* image, HostImageInfo* info) {
    return Guard(L"", [&] {
        Require(info != nullptr, kNullArgument);
        const ImagePtr found = Live().Find(image);
        const reader::Bitmap& bitmap = found->Geometry();
        *info = {bitmap.Width(),      bitmap.Height(),     bitmap.Bits(),     bitmap.resolution.assumed ? 1u : 0u,
                 bitmap.resolution.x, bitmap.resolution.y, bitmap.orientation};
    });
}

int HostGetImagePixels(void* image, HostImagePixels* pixels) {
    return Guard(L"", [&] {
        Require(pixels != nullptr, kNullArgument);
        const std::shared_ptr<const reader::Bitmap> bitmap = Live().Find(image)->Pixels();
        *pixels = {bitmap->Row(0), -static_cast<ptrdiff_t>(bitmap->Stride()),
                   bitmap->palette.empty() ? nullptr : bitmap->palette.data(),
                   static_cast<uint32_t>(bitmap->palette.size())};
    });
}

int HostCreateOutput(const wchar_t* path, int format, void** output) {
    return Guard(
        path == nullptr ? L"" : path,
        [&] {
            Require(path != nullptr && output != nullptr, kNullArgument);
            *output = std::make_unique<Output>(path, format).release();
        },
        Doing::kWriting);
}

int HostAppendImage(void* output, void* image) {
    auto* open = static_cast<Output*>(output);
    return Guard(
        open == nullptr ? L"" : open->Name(),
        [&] {
            Require(open != nullptr, kNullArgument);
            open->Append(*Live().Find(image));
        },
        Doing::kWriting);
}

int HostAppendBmp(void* output, const void* bytes, size_t length) {
    auto* open = static_cast<Output*>(output);
    return Guard(
        open == nullptr ? L"" : open->Name(),
        [&] {
            Require(open != nullptr && bytes != nullptr, kNullArgument);
            open->Append(std::span<const uint8_t>(static_cast<const uint8_t*>(bytes), length));
        },
        Doing::kWriting);
}

int HostCommitOutput(void* output) {
    const std::unique_ptr<Output> closed(static_cast<Output*>(output));
    return Guard(
        closed == nullptr ? L"" : closed->Name(),
        [&] {
            Require(closed != nullptr, kNullArgument);
            closed->Commit();
        },
        Doing::kWriting);
}

void HostDropOutput(void* output) {
    const std::unique_ptr<Output> dropped(static_cast<Output*>(output));
}

const wchar_t* HostImagingErrorText(void) {
    return imaging::ErrorText();
}

}  // extern "C"
