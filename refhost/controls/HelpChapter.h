#pragma once
// Which chapter of the operator's guide belongs to a help context. Platform-neutral.

#include <cstdint>
#include <string>

namespace controls {

// The anchor of the chapter; empty, the start of the guide, for a context without one.
std::wstring ChapterOf(uint32_t context);

// "C:\My files\guide.html" and "paper-size" give "file:///C:/My%20files/guide.html#paper-size".
std::wstring FileUrl(const std::wstring& path, const std::wstring& chapter);

}  // namespace controls
