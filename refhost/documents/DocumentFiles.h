#pragma once
// A document's files on disk: how many pages they hold now, and the encoded bytes of one page.

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "refhost/imaging/HostImaging.h"

namespace documents {

// What tells that a file or folder changed.
struct Stamp {
    uint64_t written = 0;
    uint64_t size = 0;
    bool folder = false;
    bool operator==(const Stamp&) const = default;
};
std::optional<Stamp> StampOf(const std::wstring& path);

template <void (*Release)(void*)>
struct HandleRelease {
    void operator()(void* handle) const { Release(handle); }
};
using FileHandle = std::unique_ptr<void, HandleRelease<HostCloseImageFile>>;
using ImageHandle = std::unique_ptr<void, HandleRelease<HostReleaseImage>>;

class DocumentFiles {
public:
    explicit DocumentFiles(std::wstring path) : m_path(std::move(path)) {}

    // Looks whether the files changed. A folder is listed anew when files came or went; a file that is gone keeps its
    // pages, so that the positions of the others stay.
    LONG PageCount();
    // The page's encoded image; empty, and reported, when it cannot be had.
    std::vector<uint8_t> PageBytes(LONG index);

private:
    struct PageFile {
        std::wstring path;
        std::optional<Stamp> stamp;
        uint32_t frames = 1;
    };
    // A file of several pages stays open for the next page.
    struct OpenFile {
        std::wstring path;
        Stamp stamp;
        FileHandle file;
        uint32_t frames = 0;
    };

    void Refresh();
    void List();
    void Recount(PageFile& file) const;
    std::vector<uint8_t> FrameBytes(const PageFile& file, uint32_t frame);
    void* Open(const PageFile& file);
    std::vector<uint8_t> CopyFrame(void* file, uint32_t frame) const;
    void ReportOnce(const std::wstring& text);

    std::wstring m_path;
    std::optional<Stamp> m_stamp;
    bool m_listed = false;
    std::vector<PageFile> m_files;
    OpenFile m_open;
    std::wstring m_lastReport;
};

}  // namespace documents
