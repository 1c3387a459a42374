#include "refhost/settings/Tree.h"

#include <algorithm>
#include <utility>

#include "refhost/settings/StoreError.h"
#include "refhost/settings/Unicode.h"

namespace settings {

namespace {

constexpr size_t kIndexFrom = 9;

std::string Quoted(std::u16string_view name) {
    constexpr size_t kShown = 80;
    return "\"" + Utf8From(name.substr(0, kShown)) + (name.size() > kShown ? "...\"" : "\"");
}

std::u16string_view NameOf(const Member& member) {
    return member.name;
}

void CheckNewName(std::u16string_view name) {
    if (name.empty()) throw StoreError(Failure::kBadName, "A setting cannot have an empty name.");
    if (name.size() > kMaxNameLength) {
        throw StoreError(Failure::kBadName, "The name " + Quoted(name) + " is longer than " +
                                                std::to_string(kMaxNameLength) + " characters.");
    }
    if (!IsValidUtf16(name)) {
        throw StoreError(Failure::kBadName, "The name " + Quoted(name) + " holds half of a character.");
    }
}

void CheckDepth(int depth) {
    if (depth > kMaxDepth) {
        throw StoreError(Failure::kTooDeep,
                         "Settings can be nested " + std::to_string(kMaxDepth) + " levels deep, not deeper.");
    }
}

}  // namespace

const Node* Member::SubNode() const {
    const auto* node = std::get_if<NodePtr>(&content);
    return node == nullptr ? nullptr : node->get();
}

int Node::Height() const {
    int height = 0;
    for (const Member& member : m_members) {
        if (const Node* node = member.SubNode()) height = std::max(height, node->Height());
    }
    return height + 1;
}

Node::Position Node::Locate(std::u16string_view name) const {
    auto& members = const_cast<Node*>(this)->m_members;
    if (m_index.empty()) return std::ranges::find(members, name, &NameOf);
    const auto found = m_index.find(name);
    return found == m_index.end() ? members.end() : found->second;
}

const Content* Node::Find(std::u16string_view name) const {
    const auto position = Locate(name);
    return position == m_members.end() ? nullptr : &position->content;
}

const Content& Node::Existing(std::u16string_view name) const {
    if (const Content* content = Find(name)) return *content;
    throw StoreError(Failure::kMissing, "There is no setting with the name " + Quoted(name) + ".");
}

void Node::ThrowWrongKind(std::u16string_view name) {
    throw StoreError(Failure::kWrongKind, "The setting " + Quoted(name) + " is of another kind.");
}

Node::Position Node::Add(std::u16string_view name, Content content) {
    const auto added = m_members.insert(m_members.end(), Member{MemberName(name), std::move(content)});
    try {
        if (!m_index.empty()) {
            m_index.emplace(added->name, added);
        } else if (m_members.size() >= kIndexFrom) {
            std::unordered_map<std::u16string_view, Position> index;
            for (auto i = m_members.begin(); i != m_members.end(); ++i) index.emplace(i->name, i);
            m_index = std::move(index);
        }
    } catch (...) {
        m_members.erase(added);
        throw;
    }
    return added;
}

void Node::Erase(Position position) {
    m_index.erase(position->name);
    m_members.erase(position);
}

void Node::SetValue(std::u16string_view name, Content value) {
    const auto position = Locate(name);
    if (position == m_members.end()) {
        CheckNewName(name);
        Add(name, std::move(value));
        return;
    }
    if (position->SubNode() != nullptr) ThrowWrongKind(name);
    position->content = std::move(value);
}

NodePtr Node::Child(std::u16string_view name) {
    const auto position = Locate(name);
    if (position != m_members.end()) {
        if (const auto* node = std::get_if<NodePtr>(&position->content)) return *node;
        ThrowWrongKind(name);
    }
    CheckNewName(name);
    CheckDepth(m_depth + 1);
    auto child = std::make_shared<Node>(m_depth + 1);
    Add(name, child);
    return child;
}

void Node::RemoveChild(std::u16string_view name) {
    const auto position = Locate(name);
    if (position == m_members.end() || position->SubNode() == nullptr) {
        throw StoreError(Failure::kMissing, "There is no group of settings with the name " + Quoted(name) + ".");
    }
    Erase(position);
}

bool Node::Append(std::u16string_view name, Content content) {
    if (Locate(name) != m_members.end()) return false;
    Add(name, std::move(content));
    return true;
}

void Node::Clear() {
    m_index.clear();
    m_members.clear();
}

void Node::SwapMembers(Node& other) noexcept {
    m_members.swap(other.m_members);
    m_index.swap(other.m_index);
}

NodePtr Node::Clone(int depth) const {
    auto copy = std::make_shared<Node>(depth);
    for (const Member& member : m_members) {
        const Node* node = member.SubNode();
        copy->Add(member.name, node == nullptr ? member.content : Content(node->Clone(depth + 1)));
    }
    return copy;
}

void Node::Merge(Node& source) {
    CheckDepth(m_depth + source.Height() - 1);
    MergeMembers(source);
}

void Node::MergeMembers(Node& source) {
    for (Member& member : source.m_members) {
        const auto* node = std::get_if<NodePtr>(&member.content);
        if (node != nullptr) (*node)->MoveTo(m_depth + 1);
        const auto position = Locate(member.name);
        if (position == m_members.end()) {
            Add(member.name, std::move(member.content));
        } else if (node != nullptr && position->SubNode() != nullptr) {
            std::get<NodePtr>(position->content)->MergeMembers(**node);
        } else {
            position->content = std::move(member.content);
        }
    }
    source.Clear();
}

void Node::MoveTo(int depth) {
    m_depth = depth;
    for (Member& member : m_members) {
        if (const auto* node = std::get_if<NodePtr>(&member.content)) (*node)->MoveTo(depth + 1);
    }
}

}  // namespace settings
