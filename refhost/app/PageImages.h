#pragma once
// Page images of the host imaging library, owned. Callable from any thread that has COM.

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "refhost/app/Text.h"
#include "refhost/imaging/HostImaging.h"

namespace zonhost {

struct ImageRelease {
    void operator()(void* image) const noexcept { HostReleaseImage(image); }
};
using Image = std::unique_ptr<void, ImageRelease>;

// A decoded frame, or why there is none.
struct LoadedFrame {
    Image image;
    HostImageInfo info{};
    std::string problem;
};

// What a frame needs, or why that is not known.
struct FrameSize {
    HostFrameSize size{};
    std::string problem;
};

// An open image file. Its frames can be loaded from several threads.
class ImageFile {
public:
    // Null with the reason in `problem` when it cannot be opened.
    static std::shared_ptr<ImageFile> Open(const std::filesystem::path& path, std::string& problem);
    uint32_t FrameCount() const { return m_frames; }
    // `resolution` goes before the file's own.
    LoadedFrame Load(uint32_t frame, const std::optional<Resolution>& resolution);
    // Without decoding it.
    FrameSize Size(uint32_t frame);

private:
    struct Close {
        void operator()(void* file) const noexcept { HostCloseImageFile(file); }
    };
    ImageFile(void* file, uint32_t frames) : m_file(file), m_frames(frames) {}
    std::unique_ptr<void, Close> m_file;
    uint32_t m_frames;
    std::mutex m_mutex;
};

// Writes a masked image as a file, as a whole or not at all; `ready` is called before the file takes its place, and may
// throw. Throws CommandError (kSomePagesFailed).
void SaveBmpBlock(const void* block, size_t length, HostImageFormat format, const std::filesystem::path& path,
                  bool replace, const std::function<void()>& ready);

// What the last failing call of the imaging library on this thread found wrong.
std::string ImagingProblem();

}  // namespace zonhost
