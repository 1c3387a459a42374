#include "refhost/imaging/ImageFile.h"

#include <algorithm>

#include "refhost/imaging/WicJpeg.h"
#include "refhost/reader/Tiff.h"

namespace imaging {

namespace {

struct CloseHandleOf {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using FileHandle = std::unique_ptr<void, CloseHandleOf>;

std::vector<uint8_t> ReadWholeFile(const wchar_t* path) {
    // Others may write or delete it meanwhile; what is read here is what counts.
    const HANDLE raw = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                   OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (raw == INVALID_HANDLE_VALUE) throw _com_error(HRESULT_FROM_WIN32(GetLastError()));
    const FileHandle file(raw);
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(raw, &size)) throw _com_error(HRESULT_FROM_WIN32(GetLastError()));
    if (static_cast<uint64_t>(size.QuadPart) > kHostMaxFileBytes) {
        throw ImageError{L"the file is larger than 1 GiB; split it into smaller ones"};
    }
    std::vector<uint8_t> bytes(static_cast<size_t>(size.QuadPart));
    size_t done = 0;
    while (done < bytes.size()) {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(bytes.size() - done);
        if (!ReadFile(raw, bytes.data() + done, wanted, &count, nullptr)) {
            throw _com_error(HRESULT_FROM_WIN32(GetLastError()));
        }
        if (count == 0) break;  // it became shorter meanwhile
        done += count;
    }
    bytes.resize(done);
    return bytes;
}

}  // namespace

std::unique_ptr<ImageFile> ImageFile::Open(const wchar_t* path) {
    return std::make_unique<ImageFile>(path, ReadWholeFile(path));
}

ImageFile::ImageFile(std::wstring name, std::vector<uint8_t> bytes)
    : m_name(std::move(name)), m_bytes(std::move(bytes)), m_places(FindPages(m_bytes)) {}

uint32_t ImageFile::Place(uint32_t frame) const {
    if (frame < Frames()) return m_places[frame];
    throw ImageError{L"there is no page " + std::to_wstring(frame + uint64_t{1}) + L"; the file has " +
                     std::to_wstring(Frames())};
}

HostFrameSize ImageFile::Size(uint32_t frame) const {
    const std::unique_ptr<Page> page = OpenPage(m_bytes, Place(frame));
    const PageFacts facts = page->Facts();
    const PageMemory memory = MemoryOf(*page, WicJpeg());
    const bool turned = facts.orientation >= 5;
    return {turned ? facts.height : facts.width,
            turned ? facts.width : facts.height,
            facts.bits,
            facts.orientation,
            memory.bitmap,
            memory.working};
}

std::shared_ptr<const Bitmap> ImageFile::Decode(uint32_t frame, double dpiX, double dpiY) const {
    WicJpeg jpeg;
    return DecodeUpright(*OpenPage(m_bytes, Place(frame)), jpeg, dpiX, dpiY);
}

std::vector<uint8_t> ImageFile::ExtractFrame(uint32_t frame) const {
    const uint32_t place = Place(frame);
    if (Frames() == 1 || !IsTiff(m_bytes)) return {};
    const auto directory = TiffDirectory::Read(m_bytes, place, m_bytes[0] == 'M');
    return directory ? ExtractTiffFrame(m_bytes, *directory) : std::vector<uint8_t>();
}

}  // namespace imaging
