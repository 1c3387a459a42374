#pragma once
// Area sets as JSON, for export, import and other programs. All lengths are whole tenths of a millimetre:
//
//     { "unit": "0.1 mm",
//       "sets": [ { "name": "Letter body", "mode": "required", "page": { "width": 2100, "height": 2970 },
//                   "areas": [ { "left": 200, "top": 900, "right": 1900, "bottom": 2700 } ] } ] }
//
// "mode" is "required" (keep the areas) or "ignored" (leave them out). Optional: "page" (A4 when missing), "id"
// (written for information, not read), "flags" (the whole flag word, when a host stored more in it than the mode).

#include <string>
#include <string_view>
#include <vector>

#include "refhost/app/AreaSetRecord.h"

namespace zonhost {

// Whether the text is that of a host's settings file, whose sets stand under their identifiers.
bool IsSettings(std::string_view text);

// Throws CommandError (kNothingDone) with file, place and reason. Nothing is taken from a file with an error in it.
std::vector<AreaSetRecord> ParseAreaSets(std::string_view text, const std::string& fileName);

std::string FormatAreaSets(const std::vector<AreaSetRecord>& sets);

}  // namespace zonhost
