#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "refhost/settings/JsonString.h"
#include "refhost/settings/StoreError.h"
#include "refhost/settings/TreeText.h"
#include "refhost/settings/Unicode.h"

namespace settings {

namespace {

// Walks the text for the parser and counts the lines, so that every complaint can name one.
class LineCounter {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    LineCounter(const char* at, size_t& lines) : m_at(at), m_lines(&lines) {}
    reference operator*() const { return *m_at; }
    LineCounter& operator++() {
        if (*m_at == '\n') ++*m_lines;
        ++m_at;
        return *this;
    }
    LineCounter operator++(int) {
        LineCounter before = *this;
        ++*this;
        return before;
    }
    bool operator==(const LineCounter& other) const { return m_at == other.m_at; }

private:
    const char* m_at;
    size_t* m_lines;
};

// The string that a list of UTF-16 units stands for, or the list as it is. Only strings that JSON cannot hold are
// written so; any other list is somebody else's.
Content StringFromUnits(std::string text) {
    if (!std::string_view(text).starts_with(kUnitsMark)) return RawJson{std::move(text)};
    std::u16string units;
    const char* at = text.data() + kUnitsMark.size();
    const char* const end = text.data() + text.size() - 1;
    while (at != end) {
        uint16_t unit = 0;
        if (end - at < 3 || at[0] != ',') return RawJson{std::move(text)};
        const auto [next, error] = std::from_chars(at + 2, end, unit);
        if (error != std::errc()) return RawJson{std::move(text)};
        units.push_back(static_cast<char16_t>(unit));
        at = next;
    }
    if (IsValidUtf16(units)) return RawJson{std::move(text)};
    return units;
}

// Receives the events of the JSON parser. Inside of a list everything is kept as text.
class TreeBuilder {
public:
    using number_integer_t = nlohmann::json::number_integer_t;
    using number_unsigned_t = nlohmann::json::number_unsigned_t;
    using number_float_t = nlohmann::json::number_float_t;
    using string_t = nlohmann::json::string_t;
    using binary_t = nlohmann::json::binary_t;

    explicit TreeBuilder(const size_t& lines) : m_lines(lines) {}
    NodePtr Take() { return std::move(m_root); }

    bool null() { return Raw("null"); }
    bool boolean(bool value) { return m_listDepth > 0 ? Raw(value ? "true" : "false") : Put(value); }
    bool number_integer(number_integer_t value) {
        return m_listDepth > 0 ? Raw(std::to_string(value)) : Put(int64_t{value});
    }
    bool number_unsigned(number_unsigned_t value) {
        if (m_listDepth > 0 || value > number_unsigned_t{INT64_MAX}) return Raw(std::to_string(value));
        return Put(static_cast<int64_t>(value));
    }
    bool number_float(number_float_t, const string_t& digits) {
        // The parser writes the decimal point of the process's locale into the digits.
        std::string text = digits;
        for (char& digit : text) {
            if (std::strchr("0123456789+-eE", digit) == nullptr) digit = '.';
        }
        return Raw(text);
    }
    bool string(const string_t& value) {
        if (m_listDepth == 0) return Put(Utf16From(value));
        std::string text;
        AppendJsonString(text, value);
        return Raw(text);
    }
    bool binary(binary_t&) { return false; }
    bool key(const string_t& name) {
        if (m_listDepth == 0) {
            m_name = Utf16From(name);
            return true;
        }
        Separate();
        AppendJsonString(m_list, name);
        m_list += ": ";
        return true;
    }
    bool start_object(size_t) {
        if (m_listDepth > 0) return OpenInList('{');
        CheckDepth(m_nodes.size() + 1);
        if (m_nodes.empty()) {
            m_root = std::make_shared<Node>();
            m_nodes.push_back(m_root.get());
            return true;
        }
        auto node = std::make_shared<Node>(m_nodes.back()->Depth() + 1);
        Node* const inner = node.get();
        Put(std::move(node));
        m_nodes.push_back(inner);
        return true;
    }
    bool end_object() {
        if (m_listDepth > 0) return CloseInList('}');
        m_nodes.pop_back();
        return true;
    }
    bool start_array(size_t) {
        RequireRoot();
        return OpenInList('[');
    }
    bool end_array() { return CloseInList(']'); }

    bool parse_error(size_t, const std::string&, const nlohmann::json::exception& error) {
        throw DamageError(LineOf(error), ReasonOf(error));
    }

private:
    [[noreturn]] void Damaged(const std::string& reason) const { throw DamageError(m_lines + 1, reason); }

    // The parser's own count where it has one: it knows when a line end was only looked at.
    size_t LineOf(const nlohmann::json::exception& error) const {
        constexpr std::string_view kMark = "at line ";
        const std::string_view message = error.what();
        size_t line = m_lines + 1;
        const size_t found = message.find(kMark);
        if (found != std::string_view::npos) {
            std::from_chars(message.data() + found + kMark.size(), message.data() + message.size(), line);
            if (message.ends_with("<U+000A>'")) --line;
        }
        return line;
    }
    static std::string ReasonOf(const nlohmann::json::exception& error) {
        constexpr size_t kLongest = 300;
        std::string_view message = error.what();
        const size_t column = message.find(", column ");
        const size_t start =
            message.find(column == std::string_view::npos ? "] " : ": ", column == std::string_view::npos ? 0 : column);
        if (start != std::string_view::npos) message.remove_prefix(start + 2);
        return std::string(message.substr(0, kLongest)) + (message.size() > kLongest ? "..." : "");
    }

    void RequireRoot() const {
        if (m_nodes.empty()) Damaged("the file holds no settings: an object, \"{\", has to come first");
    }
    void CheckDepth(size_t depth) const {
        if (depth > size_t{kMaxDepth}) {
            Damaged("settings are nested more than " + std::to_string(kMaxDepth) + " levels deep");
        }
    }

    bool Put(Content content) {
        RequireRoot();
        if (!m_nodes.back()->Append(m_name, std::move(content))) {
            Damaged("the name \"" + Utf8From(m_name) + "\" stands twice in one group of settings");
        }
        return true;
    }
    bool Raw(std::string_view text) {
        if (m_listDepth == 0) return Put(RawJson{std::string(text)});
        Separate();
        m_list += text;
        return true;
    }
    void Separate() {
        if (std::strchr("[{ ", m_list.back()) == nullptr) m_list += ", ";
    }
    bool OpenInList(char bracket) {
        CheckDepth(m_nodes.size() + ++m_listDepth);
        if (!m_list.empty()) Separate();
        m_list += bracket;
        return true;
    }
    bool CloseInList(char bracket) {
        m_list += bracket;
        if (--m_listDepth == 0) Put(StringFromUnits(std::exchange(m_list, {})));
        return true;
    }

    const size_t& m_lines;
    NodePtr m_root;
    std::vector<Node*> m_nodes;  // from the root to the one being read
    std::u16string m_name;
    std::string m_list;
    size_t m_listDepth = 0;
};

}  // namespace

NodePtr ReadTree(std::string_view text) {
    if (text.size() > kMaxFileSize) {
        throw DamageError(1, "the file is larger than " + std::to_string(kMaxFileSize >> 20) + " MiB");
    }
    // The parser takes it for the end of the text and would pass over what follows.
    if (const size_t nul = text.find('\0'); nul != std::string_view::npos) {
        const auto line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(nul), '\n') + 1;
        throw DamageError(static_cast<size_t>(line), "there is a byte of value 0, as after an interrupted write");
    }
    size_t lines = 0;
    TreeBuilder builder(lines);
    nlohmann::json::sax_parse(LineCounter(text.data(), lines), LineCounter(text.data() + text.size(), lines), &builder);
    return builder.Take();
}

}  // namespace settings
