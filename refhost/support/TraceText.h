#pragma once
// The text of a trace: formatting that never fails, and the line of the log file. Platform-neutral.

#include <cstdarg>
#include <string>
#include <string_view>

namespace support {

// Formats like vswprintf. A format that cannot be formatted, or arguments that are null, give the format as it stands.
std::wstring FormatText(const wchar_t* format, va_list arguments);

// One line of text: line breaks and other control characters become spaces.
std::wstring OneLine(std::wstring text);

// What the user reads about a failure.
struct UserText {
    const wchar_t* what;    // null: the trace's own text
    const wchar_t* remedy;  // never null
};
UserText UserTextOf(unsigned int stringId);

}  // namespace support
