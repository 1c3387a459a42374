#include "hostile/HostileFiles.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "refhost/imaging/HostImaging.h"

namespace hostile {
namespace {

namespace fs = std::filesystem;

struct CloseFile {
    void operator()(void* file) const { HostCloseImageFile(file); }
};
struct ReleaseImage {
    void operator()(void* image) const { HostReleaseImage(image); }
};

std::string ErrorText() {
    const fs::path text(HostImagingErrorText());
    const std::u8string utf8 = text.u8string();
    return {utf8.begin(), utf8.end()};
}

// False with the problem in `outcome`.
bool AppendFrame(void* file, uint32_t frame, Outcome& outcome) {
    constexpr uint32_t kLargest = 1 << 20;  // pixels that are worth looking at
    void* raw = nullptr;
    HostImageInfo info = {};
    HostImagePixels pixels = {};
    if (!HostLoadFrame(file, frame, 0, 0, &raw)) return false;
    const std::unique_ptr<void, ReleaseImage> image(raw);
    if (!HostGetImageInfo(raw, &info) || !HostGetImagePixels(raw, &pixels)) return false;
    if (uint64_t{info.width} * info.height > kLargest) return true;
    const size_t used = (size_t{info.width} * info.bitsPerPixel + 7) / 8;
    for (uint32_t y = 0; y < info.height; ++y) {
        const uint8_t* row = pixels.topRow + static_cast<ptrdiff_t>(y) * pixels.stride;
        outcome.pixels.insert(outcome.pixels.end(), row, row + used);
    }
    return true;
}

// A file that the library writes itself, with the image in it so many times.
Bytes Rewrite(const Bytes& from, HostImageFormat format, int count) {
    void* raw = nullptr;
    uint32_t frames = 0;
    if (!HostOpenImageMemory(from.data(), from.size(), &raw, &frames)) throw std::runtime_error(ErrorText());
    const std::unique_ptr<void, CloseFile> file(raw);
    if (!HostLoadFrame(raw, 0, 0, 0, &raw)) throw std::runtime_error(ErrorText());
    const std::unique_ptr<void, ReleaseImage> image(raw);
    const fs::path path = fs::temp_directory_path() / ("hostile-sample-" + std::to_string(GetCurrentProcessId()));
    void* output = nullptr;
    bool written = HostCreateOutput(path.c_str(), format, &output) == 1;
    for (; count > 0; --count) written = written && HostAppendImage(output, raw);
    if (!HostCommitOutput(output) || !written) throw std::runtime_error(ErrorText());
    Bytes bytes = ReadBytes(path);
    fs::remove(path);
    return bytes;
}

std::vector<Sample> ReadSamples() {
    std::vector<Sample> samples;
    for (const char* name : {"no-resolution.png", "grey.jpg", "bits-none.tif", "bits-lzw.tif", "bits-zip.tif",
                             "bits-packbits.tif", "bits-g31d.tif", "bits-g4.tif", "rgb-zip-bigendian.tif"}) {
        samples.push_back({name, ReadBytes(fs::path(TEST_DATA_DIR) / name)});
    }
    const Bytes bits = ReadBytes(fs::path(TEST_DATA_DIR) / "bits-none.tif");
    samples.push_back({"bits.bmp", Rewrite(bits, kHostFormatBmp, 1)});
    samples.push_back({"frames.tif", Rewrite(bits, kHostFormatTiff, 3)});
    return samples;
}

std::vector<Sample> ReadCollection() {
    std::vector<Sample> files;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(COLLECTION_DIR, error)) {
        const std::string extension = entry.path().extension().string();
        if (extension == ".tif" || extension == ".tiff") {
            files.push_back({entry.path().filename().string(), ReadBytes(entry.path())});
        }
    }
    return files;
}

}  // namespace

Bytes ReadBytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const fs::path& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

const std::vector<Sample>& Samples() {
    static const std::vector<Sample> samples = ReadSamples();
    return samples;
}

const std::vector<Sample>& Collection() {
    static const std::vector<Sample> files = ReadCollection();
    return files;
}

Outcome LoadAll(const Bytes& bytes) {
    constexpr uint32_t kMostFrames = 20;
    Outcome outcome;
    void* raw = nullptr;
    uint32_t frames = 0;
    const uint8_t none = 0;
    if (!HostOpenImageMemory(bytes.empty() ? &none : bytes.data(), bytes.size(), &raw, &frames)) {
        return {{}, ErrorText()};
    }
    const std::unique_ptr<void, CloseFile> file(raw);
    for (uint32_t frame = 0; frame < std::min(frames, kMostFrames); ++frame) {
        if (!AppendFrame(raw, frame, outcome) && outcome.problem.empty()) outcome.problem = ErrorText();
        void* block = nullptr;
        size_t length = 0;
        if (HostCopyFrameBytes(raw, frame, &block, &length)) HostFreeBlock(block);
    }
    return outcome;
}

}  // namespace hostile
