#include "refhost/settings/JsonString.h"

#include "refhost/settings/Unicode.h"

namespace settings {

namespace {

void AppendEscape(std::string& text, char value) {
    constexpr std::string_view kHex = "0123456789abcdef";
    text += '\\';
    switch (value) {
        case '"':
        case '\\':
            text += value;
            break;
        case '\n':
            text += 'n';
            break;
        case '\r':
            text += 'r';
            break;
        case '\t':
            text += 't';
            break;
        default:
            text += "u00";
            text += kHex[static_cast<unsigned char>(value) >> 4];
            text += kHex[static_cast<unsigned char>(value) & 15];
    }
}

}  // namespace

void AppendJsonString(std::string& text, std::string_view utf8) {
    text += '"';
    for (const char value : utf8) {
        if (value == '"' || value == '\\' || static_cast<unsigned char>(value) < 0x20 || value == 0x7F) {
            AppendEscape(text, value);
        } else {
            text += value;
        }
    }
    text += '"';
}

void AppendJsonString(std::string& text, std::u16string_view value) {
    AppendJsonString(text, Utf8From(value));
}

}  // namespace settings
