#pragma once
// A tree as the text of its file, UTF-8 JSON.

#include <string>
#include <string_view>

#include "refhost/settings/Tree.h"

namespace settings {

inline constexpr size_t kMaxFileSize = size_t{64} << 20;

// Throws DamageError for a text that is no tree.
NodePtr ReadTree(std::string_view text);
// One member per line; a node of numbers alone, such as a rectangle, is one line. Throws kTooLarge for a text that
// could not be read back.
std::string WriteTree(const Node& root);

}  // namespace settings
