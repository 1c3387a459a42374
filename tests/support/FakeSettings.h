#pragma once
// The host's settings classes for tests: in memory, with an exact order of calls, failures at the n-th call, and counts
// of everything alive.

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/SettingsStore.h"
#include "support/FakeObject.h"

namespace test {

// The tree behind fake nodes.
struct FakeTree {
    std::map<std::wstring, std::wstring> strings;
    std::map<std::wstring, int64_t> integers;
    std::map<std::wstring, bool> booleans;
    std::vector<std::pair<std::wstring, std::shared_ptr<FakeTree>>> children;

    FakeTree* Child(const std::wstring& name);
    std::shared_ptr<FakeTree> Share(const std::wstring& name);
    void AddSet(const wchar_t* key, const wchar_t* name, int64_t flags, const std::vector<RECT>& rects);
    std::wstring Dump() const;
    std::shared_ptr<FakeTree> Clone() const;
};

// A node over a tree, with one reference for the caller. A node of another kind answers queries with `queryStatus`.
ISettingsNode* MakeFakeNode(std::shared_ptr<FakeTree> tree, HRESULT queryStatus = S_OK);
// The tree of a fake node.
std::shared_ptr<FakeTree> TreeOf(ISettingsNode* node);

// Registers the settings classes in this process while it lives.
class FakeSettingsClasses {
public:
    FakeSettingsClasses();

private:
    FakeClass m_nodes, m_transfers;
};

}  // namespace test
