#include "refhost/app/FieldSpec.h"

#include <limits>
#include <nlohmann/json.hpp>

#include "refhost/app/Text.h"

namespace zonhost {

std::optional<FieldSpec> ParseField(std::string_view text) {
    const size_t equals = text.rfind('=');
    FieldSpec field{std::string(text.substr(0, equals)), 0, 0, 0, 0};
    if (equals == std::string_view::npos) return field;

    std::string_view rest = text.substr(equals + 1);
    int32_t* const sides[] = {&field.left, &field.top, &field.right, &field.bottom};
    for (int32_t* side : sides) {
        const size_t comma = rest.find(',');
        const bool last = side == sides[3];
        if ((comma == std::string_view::npos) != last) return std::nullopt;
        const auto number = ParseNumber(rest.substr(0, comma));
        if (!number || *number < std::numeric_limits<int32_t>::min() || *number > std::numeric_limits<int32_t>::max()) {
            return std::nullopt;
        }
        *side = static_cast<int32_t>(*number);
        if (!last) rest.remove_prefix(comma + 1);
    }
    return field;
}

std::string FieldsAsText(const std::vector<FieldSpec>& fields) {
    std::string text;
    for (const FieldSpec& field : fields) {
        text += field.name + ": ";
        if ((field.left | field.top | field.right | field.bottom) == 0) {
            text += "not placed\n";
            continue;
        }
        text += std::to_string(field.left) + "," + std::to_string(field.top) + "," + std::to_string(field.right) + "," +
                std::to_string(field.bottom) + "\n";
    }
    return text;
}

std::string FieldsAsJson(const std::vector<FieldSpec>& fields) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const FieldSpec& field : fields) {
        list.push_back({{"name", field.name},
                        {"left", field.left},
                        {"top", field.top},
                        {"right", field.right},
                        {"bottom", field.bottom}});
    }
    return list.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace zonhost
