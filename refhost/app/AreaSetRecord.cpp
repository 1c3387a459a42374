#include "refhost/app/AreaSetRecord.h"

#include <algorithm>

#include "refhost/app/Text.h"

namespace zonhost {

Rect DefaultPage(const std::vector<Rect>& areas) {
    Rect page{0, 0, 2100, 2970};
    for (const Rect& area : areas) {
        page.right = std::max(page.right, area.right);
        page.bottom = std::max(page.bottom, area.bottom);
    }
    return page;
}

std::string NameProblem(const std::string& name) {
    if (name.empty()) return "must not be empty";
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    if (std::any_of(name.begin(), name.end(), isControl)) return "must not hold control characters";
    if (Utf16Length(name) > kLongestName) return "longer than " + std::to_string(kLongestName) + " characters";
    return {};
}

}  // namespace zonhost
