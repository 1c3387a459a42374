#pragma once
// Zone files (.uzn): one zone a line, "left top width height label" in pixels, the label optional.

#include <string>
#include <string_view>
#include <vector>

#include "refhost/app/AreaSetRecord.h"
#include "refhost/app/Text.h"

namespace zonhost {

// The zones in tenths of a millimetre, each edge rounded to the nearest. Throws CommandError (kNothingDone) that names
// every bad line (the first ten) with its number and reason.
std::vector<Rect> ParseZones(std::string_view text, const std::string& fileName, const Resolution& resolution);

// The page of an image of that size.
Rect PageOfPixels(uint32_t width, uint32_t height, const Resolution& resolution);

}  // namespace zonhost
