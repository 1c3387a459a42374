#include <algorithm>
#include <charconv>

#include "refhost/settings/JsonString.h"
#include "refhost/settings/StoreError.h"
#include "refhost/settings/TreeText.h"
#include "refhost/settings/Unicode.h"

namespace settings {

namespace {

constexpr size_t kIndent = 2;
constexpr size_t kLongestLine = 120;

template <class... Visitors>
struct Overloaded : Visitors... {
    using Visitors::operator()...;
};
// Needed by clang, which does not derive it from the members.
template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

void AppendInteger(std::string& text, int64_t value) {
    char digits[24];
    auto* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    text.append(digits, end);
}

class TreeWriter {
public:
    std::string Write(const Node& root) {
        WriteNode(root, 0);
        m_text += '\n';
        CheckSize();
        return std::move(m_text);
    }

private:
    void WriteNode(const Node& node, size_t indent) {
        if (node.Members().empty()) {
            m_text += "{}";
        } else if (!WriteOneLine(node, indent)) {
            WriteLines(node, indent);
        }
    }

    // A node of a few numbers reads best in one line.
    bool WriteOneLine(const Node& node, size_t indent) {
        const bool numbersAlone = indent > 0 && std::ranges::all_of(node.Members(), [](const Member& member) {
                                      return std::holds_alternative<int64_t>(member.content);
                                  });
        if (!numbersAlone) return false;
        const size_t start = m_text.size();
        char separator = '{';
        for (const Member& member : node.Members()) {
            m_text += separator;
            if (separator == ',') m_text += ' ';
            separator = ',';
            WriteMember(member, indent);
            if (m_text.size() - start + indent > kLongestLine) {
                m_text.resize(start);
                return false;
            }
        }
        m_text += '}';
        return true;
    }

    void WriteLines(const Node& node, size_t indent) {
        char separator = '{';
        for (const Member& member : node.Members()) {
            m_text += separator;
            separator = ',';
            NewLine(indent + kIndent);
            WriteMember(member, indent + kIndent);
            CheckSize();
        }
        NewLine(indent);
        m_text += '}';
    }

    void WriteMember(const Member& member, size_t indent) {
        AppendJsonString(m_text, member.name);
        m_text += ": ";
        std::visit(Overloaded{[&](const std::u16string& value) { WriteString(value); },
                              [&](int64_t value) { AppendInteger(m_text, value); },
                              [&](bool value) { m_text += value ? "true" : "false"; },
                              [&](const RawJson& value) { m_text += value.text; },
                              [&](const NodePtr& node) { WriteNode(*node, indent); }},
                   member.content);
    }

    void WriteString(const std::u16string& value) {
        if (IsValidUtf16(value)) {
            AppendJsonString(m_text, value);
            return;
        }
        m_text += kUnitsMark;
        for (const char16_t unit : value) {
            m_text += ", ";
            AppendInteger(m_text, unit);
        }
        m_text += ']';
    }

    void NewLine(size_t indent) {
        m_text += '\n';
        m_text.append(indent, ' ');
    }

    void CheckSize() const {
        if (m_text.size() > kMaxFileSize) {
            throw StoreError(Failure::kTooLarge, "The settings take more than " + std::to_string(kMaxFileSize >> 20) +
                                                     " MiB. Remove area sets that are not needed.");
        }
    }

    std::string m_text;
};

}  // namespace

std::string WriteTree(const Node& root) {
    return TreeWriter().Write(root);
}

}  // namespace settings
