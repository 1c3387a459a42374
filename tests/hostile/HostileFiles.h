#pragma once
// Damaged page files: small images of every format cut off or with changed bytes, and a collection of malformed TIFFs.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace hostile {

using Bytes = std::vector<uint8_t>;

struct Sample {
    std::string name;
    Bytes bytes;
};

Bytes ReadBytes(const std::filesystem::path& path);
void WriteBytes(const std::filesystem::path& path, const Bytes& bytes);

// One small file of each format that scanners write.
const std::vector<Sample>& Samples();
// Malformed TIFF files that others collected.
const std::vector<Sample>& Collection();

// What became of a file: the pixels of all its pages, one after the other, or a text that says what is wrong.
struct Outcome {
    Bytes pixels;
    std::string problem;
};
Outcome LoadAll(const Bytes& file);

}  // namespace hostile
