#pragma once
// Texts of zonhost are UTF-8; paths stay paths, so that every file name of the system can be used.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zonhost {

// What a process ends with; told by --help.
enum class ExitCode : int {
    kDone = 0,
    kSomePagesFailed = 1,
    kUsage = 2,
    kSettings = 3,
    kNothingDone = 4,
    kInterrupted = 5,
    kCrashed = 6,
};

// Ends a command with a message for the user.
class CommandError : public std::runtime_error {
public:
    CommandError(ExitCode code, const std::string& message) : std::runtime_error(message), m_code(code) {}
    ExitCode Code() const noexcept { return m_code; }

private:
    ExitCode m_code;
};

std::string Utf8FromPath(const std::filesystem::path& path);
std::filesystem::path PathFromUtf8(std::string_view text);
// Length of a valid UTF-8 text in UTF-16 units, the measure of the exported records.
size_t Utf16Length(std::string_view text);
// Lower case for comparing file names as Windows does, near enough to keep two names apart.
std::string FoldCase(std::string_view text);

// The text without anything that a terminal would obey: control characters and those that turn the direction of writing
// stand as \uXXXX, as in JSON. Line ends stay when `lines` is set.
std::string Printable(std::string_view text, bool lines = false);

// A whole number that takes up the whole text, decimal or hexadecimal with "0x"; nothing for any other text.
std::optional<int64_t> ParseNumber(std::string_view text);

// Dots per inch along the two axes.
struct Resolution {
    double x = 0;
    double y = 0;
};

// "300" or "204x196"; nothing when it is neither or no resolution that a page can have (1 to 20000).
std::optional<Resolution> ParseResolution(std::string_view text);

// Reads a whole file; throws CommandError (kNothingDone) when it cannot be read or is longer than `limit`.
std::string ReadTextFile(const std::filesystem::path& path, uintmax_t limit);

// The parts joined with the separator.
std::string Join(const std::vector<std::string>& parts, std::string_view separator);

}  // namespace zonhost
