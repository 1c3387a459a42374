#pragma once
// The host's settings classes for tests: in memory, with an exact order of calls, failures at the n-th call, and counts
// of everything alive.

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/SettingsStore.h"

namespace test {

// Shared by all fake host objects of a test.
struct HostControl {
    int calls = 0;
    int failAt = 0;  // 1 is the next call; 0 never
    bool keepFailing = false;
    bool giveNull = false;  // the failing call succeeds but hands out null where it can
    int liveObjects = 0;
    HRESULT createSettingsNode = S_OK;  // results of the class factories
    HRESULT createTransfer = S_OK;

    void Reset() {
        calls = 0;
        failAt = 0;
        keepFailing = giveNull = false;
    }
    // True when this call is to fail.
    bool Fails() {
        ++calls;
        return failAt != 0 && (calls == failAt || (keepFailing && calls > failAt));
    }
};
HostControl& Host();

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
    ~FakeSettingsClasses();
    FakeSettingsClasses(const FakeSettingsClasses&) = delete;
    FakeSettingsClasses& operator=(const FakeSettingsClasses&) = delete;

private:
    DWORD m_cookies[2] = {};
};

}  // namespace test
