#include "refhost/documents/DocumentFiles.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

#include "refhost/documents/PageFiles.h"
#include "refhost/documents/Report.h"
#include "refhost/reader/Tiff.h"

namespace documents {

namespace {

uint64_t Joined(DWORD high, DWORD low) {
    return uint64_t{high} << 32 | low;
}

struct CloseSearch {
    void operator()(void* handle) const { FindClose(handle); }
};
struct CloseFile {
    void operator()(void* handle) const { CloseHandle(handle); }
};

std::vector<std::wstring> PageNamesIn(const std::wstring& folder) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found;
    const HANDLE raw = FindFirstFileW((folder + L"\\*").c_str(), &found);
    if (raw == INVALID_HANDLE_VALUE) return names;
    const std::unique_ptr<void, CloseSearch> search(raw);
    do {
        const bool folderOrHidden = found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN);
        if (!folderOrHidden && IsPageFile(found.cFileName)) names.emplace_back(found.cFileName);
    } while (FindNextFileW(raw, &found));
    std::ranges::sort(names, ComesBefore);
    return names;
}

// Frames of a TIFF; 1 for whatever else, also for what cannot be read: a page that says why when it is asked for.
uint32_t CountFrames(const std::wstring& path) {
    const HANDLE raw = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                   nullptr, OPEN_EXISTING, FILE_FLAG_RANDOM_ACCESS, nullptr);
    if (raw == INVALID_HANDLE_VALUE) return 1;
    const std::unique_ptr<void, CloseFile> file(raw);
    const uint32_t frames = reader::CountTiffFrames([&](uint32_t offset, uint8_t* to, size_t size) {
        OVERLAPPED at = {};
        at.Offset = offset;
        DWORD read = 0;
        return ReadFile(raw, to, static_cast<DWORD>(size), &read, &at) && read == size;
    });
    return std::max(frames, 1u);
}

}  // namespace

std::optional<Stamp> StampOf(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return {};
    const bool folder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return Stamp{Joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime),
                 folder ? 0 : Joined(data.nFileSizeHigh, data.nFileSizeLow), folder};
}

void DocumentFiles::ReportOnce(const std::wstring& text) {
    if (text == m_lastReport) return;
    m_lastReport = text;
    Report(text);
}

void DocumentFiles::Recount(PageFile& file) const {
    const std::optional<Stamp> stamp = StampOf(file.path);
    if (!stamp || stamp == file.stamp) return;
    file.stamp = stamp;
    // A file that was named by itself may be a TIFF under any name.
    const bool several = !m_stamp || !m_stamp->folder || MayHoldSeveralPages(file.path);
    file.frames = several ? CountFrames(file.path) : 1;
}

void DocumentFiles::List() {
    std::unordered_map<std::wstring, PageFile> known;
    for (const PageFile& file : m_files) known.emplace(file.path, file);
    std::vector<PageFile> files;
    for (const std::wstring& name : PageNamesIn(m_path)) {
        PageFile file = {m_path + L"\\" + name, {}, 1};
        if (const auto found = known.find(file.path); found != known.end()) file = found->second;
        Recount(file);
        files.push_back(std::move(file));
    }
    m_files = std::move(files);
    if (m_files.empty()) {
        ReportOnce(m_path + L": the folder holds no pages; put PNG, JPEG, BMP or TIFF files into it");
    }
}

void DocumentFiles::Refresh() {
    const std::optional<Stamp> stamp = StampOf(m_path);
    if (!stamp) {
        ReportOnce(m_path + L": the document is gone; put it back or open another one");
        return;
    }
    if (!stamp->folder) {
        m_stamp = stamp;
        if (m_files.size() != 1 || m_files[0].path != m_path) m_files = {{m_path, {}, 1}};
        Recount(m_files[0]);
    } else if (!m_listed || stamp != m_stamp) {
        m_stamp = stamp;
        m_listed = true;
        List();
    }
}

LONG DocumentFiles::PageCount() {
    Refresh();
    uint64_t count = 0;
    for (const PageFile& file : m_files) count += file.frames;
    return static_cast<LONG>(std::min<uint64_t>(count, std::numeric_limits<LONG>::max()));
}

std::vector<uint8_t> DocumentFiles::PageBytes(LONG index) {
    Refresh();
    if (index < 0) return {};
    auto left = static_cast<uint32_t>(index);
    for (PageFile& file : m_files) {
        if (left < file.frames) return FrameBytes(file, left);
        left -= file.frames;
    }
    return {};
}

std::vector<uint8_t> DocumentFiles::FrameBytes(const PageFile& file, uint32_t frame) {
    void* open = Open(file);
    if (open == nullptr) {
        ReportOnce(HostImagingErrorText());
        return {};
    }
    std::vector<uint8_t> bytes = CopyFrame(open, frame);
    if (bytes.empty()) {
        ReportOnce(HostImagingErrorText());
    } else {
        m_lastReport.clear();
    }
    if (m_open.frames <= 1) m_open = {};
    return bytes;
}

void* DocumentFiles::Open(const PageFile& file) {
    const std::optional<Stamp> stamp = StampOf(file.path);
    if (m_open.file != nullptr && m_open.path == file.path && stamp == m_open.stamp) return m_open.file.get();
    m_open = {};
    void* opened = nullptr;
    if (!HostOpenImageFile(file.path.c_str(), &opened, &m_open.frames)) return nullptr;
    m_open.file.reset(opened);
    m_open.path = file.path;
    m_open.stamp = stamp.value_or(Stamp{});
    return opened;
}

std::vector<uint8_t> DocumentFiles::CopyFrame(void* file, uint32_t frame) const {
    struct FreeBlock {
        void operator()(void* block) const { HostFreeBlock(block); }
    };
    void* block = nullptr;
    size_t length = 0;
    if (HostCopyFrameBytes(file, frame, &block, &length)) {
        const std::unique_ptr<void, FreeBlock> owner(block);
        const auto* bytes = static_cast<const uint8_t*>(block);
        return {bytes, bytes + length};
    }
    // A frame that cannot be taken out as it is can still be decoded and written anew.
    void* image = nullptr;
    DWORD size = 0;
    if (!HostLoadFrame(file, frame, 0, 0, &image)) return {};
    const ImageHandle decoded(image);
    if (!HostCopyImage(image, 4, &block, &size, 0)) return {};
    const std::unique_ptr<void, FreeBlock> owner(block);
    const auto* bytes = static_cast<const uint8_t*>(block);
    return {bytes, bytes + size};
}

}  // namespace documents
