#pragma once
// Indexing fields on the command line: NAME or NAME=left,top,right,bottom, in tenths of a millimetre.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zonhost {

struct FieldSpec {
    std::string name;
    int32_t left = 0, top = 0, right = 0, bottom = 0;  // all 0: not placed
};

// The last "=" counts, so names may hold others. Nothing when what stands behind it is no four whole numbers of 32
// bits.
std::optional<FieldSpec> ParseField(std::string_view text);

// "name: left,top,right,bottom", or "name: not placed", a line each.
std::string FieldsAsText(const std::vector<FieldSpec>& fields);
// A list of objects with "name", "left", "top", "right", "bottom".
std::string FieldsAsJson(const std::vector<FieldSpec>& fields);

}  // namespace zonhost
