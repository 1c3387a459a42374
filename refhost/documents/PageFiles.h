#pragma once
// Which files of a folder are pages, and in what order.

#include <string_view>

namespace documents {

// By its ending: the formats that the host reads. Hidden files (".name") are none.
bool IsPageFile(std::wstring_view name);
// A TIFF may hold several pages.
bool MayHoldSeveralPages(std::wstring_view name);

// The order in which a person numbers pages: runs of digits by their value, letters whatever their case; names that are
// equal so far in the order of their characters.
bool ComesBefore(std::wstring_view left, std::wstring_view right);

}  // namespace documents
