#pragma once
// The tree of settings behind the nodes: ordered members, found by name in constant time, as the store of a host with
// many thousand area sets needs it.

#include <cstdint>
#include <iterator>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>

namespace settings {

// Levels of nodes, the root included. Keeps every walk through a tree within the stack.
inline constexpr int kMaxDepth = 100;
// UTF-16 units of a name that is made here; longer ones in a file are kept.
inline constexpr size_t kMaxNameLength = 1024;

class Node;
using NodePtr = std::shared_ptr<Node>;

// A JSON value of a kind that no interface reads: its text in one line.
struct RawJson {
    std::string text;
    bool operator==(const RawJson&) const = default;
};

using Content = std::variant<std::u16string, int64_t, bool, RawJson, NodePtr>;

// Names as long as those of coordinates are kept inside: there can be millions of them.
class MemberName {
public:
    explicit MemberName(std::u16string_view text) : m_size(text.size()) {
        if (m_size > std::size(m_short)) m_long = std::make_unique<char16_t[]>(m_size);
        text.copy(m_long ? m_long.get() : m_short, m_size);
    }
    operator std::u16string_view() const { return {m_long ? m_long.get() : m_short, m_size}; }
    size_t size() const { return m_size; }
    bool operator==(std::u16string_view text) const { return std::u16string_view(*this) == text; }

private:
    size_t m_size;
    std::unique_ptr<char16_t[]> m_long;
    char16_t m_short[16];
};

struct Member {
    MemberName name;
    Content content;
    // The sub-node of this name, or null for a value.
    const Node* SubNode() const;
};

class Node {
public:
    explicit Node(int depth = 1) : m_depth(depth) {}
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    const std::list<Member>& Members() const { return m_members; }
    int Depth() const { return m_depth; }
    // Levels of nodes from this one down, at least 1.
    int Height() const;

    // The content of a name, or null.
    const Content* Find(std::u16string_view name) const;
    // The value of a name; throws kMissing or kWrongKind.
    template <class Type>
    const Type& Value(std::u16string_view name) const {
        const Content& content = Existing(name);
        if (const auto* value = std::get_if<Type>(&content)) return *value;
        ThrowWrongKind(name);
    }
    // Sets a value over any other value; throws kWrongKind for the name of a sub-node.
    void SetValue(std::u16string_view name, Content value);
    // The sub-node of a name, made when it is missing; throws kWrongKind for the name of a value.
    NodePtr Child(std::u16string_view name);
    // Throws kMissing when there is no such sub-node.
    void RemoveChild(std::u16string_view name);

    // Puts a member last, as it is read from a file: any name, no check but for one that is there already (false).
    bool Append(std::u16string_view name, Content content);

    void Clear();
    // Exchanges the members with a node of the same depth.
    void SwapMembers(Node& other) noexcept;
    // A copy that shares nothing with this node.
    NodePtr Clone(int depth = 1) const;
    // Takes over the members of `source`, which nobody else may hold; same names are replaced, sub-nodes merged. Throws
    // kTooDeep before anything changes.
    void Merge(Node& source);

private:
    using Position = std::list<Member>::iterator;

    const Content& Existing(std::u16string_view name) const;
    [[noreturn]] static void ThrowWrongKind(std::u16string_view name);
    Position Locate(std::u16string_view name) const;
    Position Add(std::u16string_view name, Content content);
    void Erase(Position position);
    void MergeMembers(Node& source);
    void MoveTo(int depth);

    std::list<Member> m_members;
    // By name, once there are more than a few members.
    std::unordered_map<std::u16string_view, Position> m_index;
    int m_depth;
};

}  // namespace settings
