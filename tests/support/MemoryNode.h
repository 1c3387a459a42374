#pragma once
// A settings node in memory for the platform-neutral part, which can fail at its n-th call and lists what was called.

#include <functional>
#include <map>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "store/SettingsNode.h"

namespace test {

// What all nodes of one tree share.
struct NodeControl {
    int failAt = 0;  // 1 is the next call; 0 never
    int calls = 0;
    bool keepFailing = false;
    bool noMemory = false;         // the failure is one of memory
    bool lost = false;             // or tells nothing about the value
    std::function<void()> during;  // called in each call that does not come from it
    std::vector<std::wstring> log;

    void Count(std::wstring call) {
        ++calls;
        log.push_back(std::move(call));
        if (const auto nested = std::exchange(during, nullptr)) {
            nested();
            during = nested;
        }
        if (failAt == 0 || (calls != failAt && !(keepFailing && calls > failAt))) return;
        struct Lost : std::runtime_error, SettingsLost {
            using runtime_error::runtime_error;
        };
        if (noMemory) throw std::bad_alloc();
        if (lost) throw Lost("call");
        throw std::runtime_error("call");
    }
};

// The content of a node, shared by all node objects that stand for it.
struct NodeData {
    std::map<std::wstring, std::wstring> strings;
    std::map<std::wstring, int64_t> integers;
    std::vector<std::pair<std::wstring, std::shared_ptr<NodeData>>> children;
    int64_t claimedExtra = 0;  // sub-nodes that the list of names claims but cannot show

    std::shared_ptr<NodeData> Child(const std::wstring& name, bool create = true) {
        for (auto& child : children) {
            if (child.first == name) return child.second;
        }
        if (!create) return nullptr;
        return children.emplace_back(name, std::make_shared<NodeData>()).second;
    }

    // The whole content as text, for comparing trees.
    std::wstring Dump() const {
        std::wstring text = L"{";
        for (const auto& [name, value] : strings) text += name + L"='" + value + L"' ";
        for (const auto& [name, value] : integers) text += name + L"=" + std::to_wstring(value) + L" ";
        for (const auto& [name, child] : children) text += name + child->Dump();
        return text + L"}";
    }
};

class MemoryNode final : public SettingsNode {
public:
    MemoryNode(std::shared_ptr<NodeData> data, NodeControl& control) : m_data(std::move(data)), m_control(control) {}

    SubNodeNames GetSubNodeNames() override {
        m_control.Count(L"GetSubNodeNames");
        std::vector<std::wstring> names;
        for (const auto& child : m_data->children) names.push_back(child.first);
        const auto count = static_cast<int64_t>(names.size()) + m_data->claimedExtra;
        return {std::move(names), count};
    }
    SettingsNodePtr GetSubNode(const std::wstring& name) override {
        m_control.Count(L"GetSubNode " + name);
        return std::make_unique<MemoryNode>(m_data->Child(name), m_control);
    }
    void DeleteSubNode(const std::wstring& name) override {
        m_control.Count(L"DeleteSubNode " + name);
        std::erase_if(m_data->children, [&](const auto& child) { return child.first == name; });
    }
    std::wstring GetString(const wchar_t* name) override {
        m_control.Count(std::wstring(L"GetString ") + name);
        return m_data->strings.at(name);
    }
    int64_t GetInt64(const wchar_t* name) override {
        m_control.Count(std::wstring(L"GetInt64 ") + name);
        return m_data->integers.at(name);
    }
    void SetString(const wchar_t* name, const std::wstring& value) override {
        m_control.Count(std::wstring(L"SetString ") + name);
        m_data->strings[name] = value;
    }
    void SetInt64(const wchar_t* name, int64_t value) override {
        m_control.Count(std::wstring(L"SetInt64 ") + name);
        m_data->integers[name] = value;
    }

private:
    std::shared_ptr<NodeData> m_data;
    NodeControl& m_control;
};

}  // namespace test
