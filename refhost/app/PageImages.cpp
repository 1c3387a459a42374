#include "refhost/app/PageImages.h"

#include "refhost/app/Console.h"

namespace zonhost {

namespace {

struct DropOutput {
    void operator()(void* output) const noexcept { HostDropOutput(output); }
};

void Require(int result) {
    if (result != 1) throw CommandError(ExitCode::kSomePagesFailed, ImagingProblem());
}

}  // namespace

std::string ImagingProblem() {
    return Utf8FromWide(HostImagingErrorText());
}

std::shared_ptr<ImageFile> ImageFile::Open(const std::filesystem::path& path, std::string& problem) {
    void* file = nullptr;
    uint32_t frames = 0;
    if (HostOpenImageFile(path.c_str(), &file, &frames) != 1) {
        problem = ImagingProblem();
        return nullptr;
    }
    return std::shared_ptr<ImageFile>(new ImageFile(file, frames));
}

LoadedFrame ImageFile::Load(uint32_t frame, const std::optional<Resolution>& resolution) {
    const std::lock_guard lock(m_mutex);
    LoadedFrame loaded;
    void* image = nullptr;
    const Resolution wanted = resolution.value_or(Resolution{});
    const bool good = HostLoadFrame(m_file.get(), frame, wanted.x, wanted.y, &image) == 1;
    if (good) loaded.image.reset(image);
    if (!good || HostGetImageInfo(image, &loaded.info) != 1) loaded.problem = ImagingProblem();
    return loaded;
}

FrameSize ImageFile::Size(uint32_t frame) {
    const std::lock_guard lock(m_mutex);
    FrameSize size;
    if (HostGetFrameSize(m_file.get(), frame, &size.size) != 1) size.problem = ImagingProblem();
    return size;
}

void SaveBmpBlock(const void* block, size_t length, HostImageFormat format, const std::filesystem::path& path,
                  bool replace, const std::function<void()>& ready) {
    void* handle = nullptr;
    Require(HostCreateOutput(path.c_str(), format | (replace ? 0 : kHostFormatNewFile), &handle));
    std::unique_ptr<void, DropOutput> output(handle);
    Require(HostAppendBmp(output.get(), block, length));
    ready();
    Require(HostCommitOutput(output.release()));
}

}  // namespace zonhost
