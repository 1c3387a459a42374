// The exports: handles, failures and their texts. The work is done by ImageFile, Image and Output.
#include "refhost/imaging/HostImaging.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <new>
#include <unordered_map>

#include "refhost/imaging/Output.h"
#include "refhost/imaging/WicFile.h"

namespace {

using imaging::Image;
using imaging::ImageError;
using imaging::ImageFile;
using imaging::Output;
using ImagePtr = std::shared_ptr<const Image>;

static_assert(sizeof(imaging::Area) == sizeof(RECT) && kHostMaxImageSide == imaging::kMaxSide &&
              kHostMaxImageBytes == imaging::kMaxPixelBytes);

constexpr int kCopyBmp = 4;

thread_local std::array<wchar_t, 1024> t_errorText;

void SetErrorText(std::wstring_view subject, std::wstring_view text) {
    std::wstring whole(subject);
    if (!whole.empty()) whole += L": ";
    whole += text;
    const size_t length = std::min(whole.size(), t_errorText.size() - 1);
    whole.copy(t_errorText.data(), length);
    t_errorText[length] = L'\0';
}

// What the user can do about a status that files and codecs give.
const wchar_t* TextOf(HRESULT status) {
    switch (status) {
        case HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND):
        case HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND):
            return L"there is no such file; check its name and folder";
        case HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED):
            return L"access is denied; check the permissions, and that it is a file";
        case HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION):
            return L"another program uses the file; close it there";
        case HRESULT_FROM_WIN32(ERROR_DISK_FULL):
            return L"the disk is full; free some space";
        case WINCODEC_ERR_COMPONENTNOTFOUND:
        case WINCODEC_ERR_UNKNOWNIMAGEFORMAT:
            return L"this is no image of a known format; use PNG, JPEG, BMP or TIFF";
        case WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT:
        case WINCODEC_ERR_UNSUPPORTEDOPERATION:
        case E_NOTIMPL:
            return L"the image's colour format is not supported; save it with 24 bits of colour";
        case E_OUTOFMEMORY:
            return L"not enough memory; close other programs or use a lower resolution";
        default:
            return nullptr;
    }
}

void SetErrorStatus(std::wstring_view subject, const _com_error& error) {
    if (const wchar_t* text = TextOf(error.Error())) return SetErrorText(subject, text);
    wchar_t text[128];
    std::swprintf(text, std::size(text),
                  L"the image is damaged or cannot be read (status %08lX); scan or export the page again",
                  static_cast<unsigned long>(error.Error()));
    SetErrorText(subject, text);
}

// Runs the body of an export: 1 when it comes to its end, else 0 with the failure's text.
template <class Body>
int Guard(std::wstring_view subject, Body body) noexcept {
    try {
        try {
            body();
            return 1;
        } catch (const ImageError& error) {
            SetErrorText(subject, error.text);
        } catch (const _com_error& error) {
            SetErrorStatus(subject, error);
        } catch (const std::bad_alloc&) {
            SetErrorText(subject, TextOf(E_OUTOFMEMORY));
        }
    } catch (...) {
        std::wcsncpy(t_errorText.data(), L"not enough memory", t_errorText.size() - 1);
    }
    return 0;
}

void Require(bool condition, const wchar_t* text) {
    if (!condition) throw ImageError{text};
}

// The live images. Handles are numbers that are never used again, so that a stale one is known as such.
class Images {
public:
    void* Add(ImagePtr image) {
        const std::lock_guard lock(m_mutex);
        m_last += 16;
        m_images.emplace(m_last, std::move(image));
        return reinterpret_cast<void*>(m_last);
    }
    ImagePtr Find(void* handle) {
        const std::lock_guard lock(m_mutex);
        const auto found = m_images.find(reinterpret_cast<uintptr_t>(handle));
        if (found == m_images.end()) throw ImageError{L"this is no image of the imaging library, or it was released"};
        return found->second;
    }
    void Remove(void* handle) {
        ImagePtr last;  // freed outside the lock
        const std::lock_guard lock(m_mutex);
        const auto found = m_images.find(reinterpret_cast<uintptr_t>(handle));
        if (found == m_images.end()) return;
        last = std::move(found->second);
        m_images.erase(found);
    }

private:
    std::mutex m_mutex;
    std::unordered_map<uintptr_t, ImagePtr> m_images;
    uintptr_t m_last = 0;
};

Images& LiveImages() {
    static Images images;
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
        const ImagePtr image = LiveImages().Find(source);
        *masked = LiveImages().Add(
            std::make_shared<Image>(*image, mask->dwKeep != 0, std::span<const imaging::Area>(areas, mask->count)));
    });
}

int HostCopyImage(void* image, int format, void** block, DWORD* length, int) {
    return Guard(L"", [&] {
        Require(block != nullptr && length != nullptr, kNullArgument);
        Require(format == kCopyBmp, L"images are copied in format 4 (BMP) only");
        const ImagePtr source = LiveImages().Find(image);
        Block copy = Allocate(source->BmpSize());
        source->WriteBmp(static_cast<uint8_t*>(copy.get()));
        *length = static_cast<DWORD>(source->BmpSize());
        *block = copy.release();
    });
}

void HostReleaseImage(void* image) {
    LiveImages().Remove(image);
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
        *image = LiveImages().Add(std::make_shared<Image>(opened->Decode(frame, dpiX, dpiY)));
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
        *image =
            LiveImages().Add(std::make_shared<Image>(imaging::ReadBmp({static_cast<const uint8_t*>(bytes), length})));
    });
}

int HostGetImageInfo(void* image, HostImageInfo* info) {
    return Guard(L"", [&] {
        Require(info != nullptr, kNullArgument);
        const ImagePtr found = LiveImages().Find(image);
        const imaging::Bitmap& bitmap = found->Geometry();
        *info = {bitmap.Width(),      bitmap.Height(),    bitmap.Bits(), bitmap.resolution.assumed ? 1u : 0u,
                 bitmap.resolution.x, bitmap.resolution.y};
    });
}

int HostGetImagePixels(void* image, HostImagePixels* pixels) {
    return Guard(L"", [&] {
        Require(pixels != nullptr, kNullArgument);
        const std::shared_ptr<const imaging::Bitmap> bitmap = LiveImages().Find(image)->Pixels();
        *pixels = {bitmap->Row(0), -static_cast<ptrdiff_t>(bitmap->Stride()),
                   bitmap->palette.empty() ? nullptr : bitmap->palette.data(),
                   static_cast<uint32_t>(bitmap->palette.size())};
    });
}

int HostCreateOutput(const wchar_t* path, int format, void** output) {
    return Guard(path == nullptr ? L"" : path, [&] {
        Require(path != nullptr && output != nullptr, kNullArgument);
        *output = std::make_unique<Output>(path, static_cast<HostImageFormat>(format)).release();
    });
}

int HostAppendImage(void* output, void* image) {
    auto* open = static_cast<Output*>(output);
    return Guard(open == nullptr ? L"" : open->Name(), [&] {
        Require(open != nullptr, kNullArgument);
        open->Append(*LiveImages().Find(image));
    });
}

int HostCommitOutput(void* output) {
    const std::unique_ptr<Output> closed(static_cast<Output*>(output));
    return Guard(closed == nullptr ? L"" : closed->Name(), [&] {
        Require(closed != nullptr, kNullArgument);
        closed->Commit();
    });
}

void HostDropOutput(void* output) {
    const std::unique_ptr<Output> dropped(static_cast<Output*>(output));
}

const wchar_t* HostImagingErrorText(void) {
    return t_errorText.data();
}

}  // extern "C"
