#pragma once
// Files of tests: whole ones, and a folder that goes with its test.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace test {

using Bytes = std::vector<uint8_t>;

inline std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
inline Bytes ReadBytes(const std::filesystem::path& path) {
    const std::string text = ReadAll(path);
    return {text.begin(), text.end()};
}

inline void WriteAll(const std::filesystem::path& path, std::string_view text) {
    std::ofstream(path, std::ios::binary) << text;
}
inline void WriteAll(const std::filesystem::path& path, std::span<const uint8_t> bytes) {
    WriteAll(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

// A name outside every code page.
struct TempFolder {
    TempFolder() { std::filesystem::create_directories(path); }
    ~TempFolder() {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    size_t Files() const { return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(path), {})); }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / (u8"test \u00E9\u4E2D " + Number(std::random_device{}()));

private:
    static std::u8string Number(uint64_t number) {
        const std::string digits = std::to_string(number);
        return {digits.begin(), digits.end()};
    }
};

}  // namespace test
