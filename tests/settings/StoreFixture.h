#pragma once
// Nodes of HostSettings.dll in a folder of the test's own.

#include <comdef.h>
#include <comip.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "refhost/com/ClassRegistration.h"
#include "refhost/settings/HostSettings.h"
#include "refhost/support/HostSupport.h"

namespace test {

// Names what a process started by the tests is to do.
inline constexpr wchar_t kJobVariable[] = L"STORE_TEST_JOB";

using NodePtr = _com_ptr_t<_com_IIID<ISettingsNode, &__uuidof(ISettingsNode)>>;
using TransferPtr = _com_ptr_t<_com_IIID<ISettingsTransfer, &__uuidof(ISettingsTransfer)>>;
using ListPtr = _com_ptr_t<_com_IIID<IHostSettingsList, &__uuidof(IHostSettingsList)>>;

inline std::wstring LastMessage() {
    BSTR text = nullptr;
    EXPECT_EQ(S_OK, HostSettingsLastMessage(&text));
    return std::wstring(_bstr_t(text, false));
}

inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline NodePtr Child(const NodePtr& node, const wchar_t* name) {
    NodePtr child;
    EXPECT_EQ(S_OK, node->GetSubNode(_bstr_t(name), &child));
    return child;
}

inline LONGLONG Number(const NodePtr& node, const wchar_t* name) {
    LONGLONG value = 0;
    return SUCCEEDED(node->GetInt64(_bstr_t(name), &value)) ? value : -1;
}

// The names that a call lists, with a blank behind each.
template <class Interface>
std::wstring List(Interface* node, HRESULT (STDMETHODCALLTYPE Interface::*list)(SAFEARRAY**)) {
    SAFEARRAY* array = nullptr;
    EXPECT_EQ(S_OK, (node->*list)(&array));
    std::wstring text;
    for (ULONG i = 0; i < array->rgsabound[0].cElements; ++i) {
        text += static_cast<const BSTR*>(array->pvData)[i];
        text += L' ';
    }
    SafeArrayDestroy(array);
    return text;
}

inline std::wstring SubNodes(const NodePtr& node) {
    return List(node.GetInterfacePtr(), &ISettingsNode::GetSubNodeNames);
}

// Stores `node` as the module does: one ClearNode, one CopyNode.
inline HRESULT CommitOver(const NodePtr& root, const NodePtr& node) {
    TransferPtr transfer;
    EXPECT_EQ(S_OK, transfer.CreateInstance(host::kClsidSettingsTransfer, nullptr, CLSCTX_ALL));
    const HRESULT status = transfer->ClearNode(root);
    return FAILED(status) ? status : transfer->CopyNode(root, node);
}

class StoreTest : public testing::Test {
protected:
    StoreTest() {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        m_classes = std::make_unique<com::ClassRegistration>(
            L"HostSettings.dll", std::initializer_list<CLSID>{host::kClsidSettingsNode, host::kClsidSettingsTransfer});
        // A process that works on another one's file has no folder of its own to leave behind when it is ended.
        if (GetEnvironmentVariableW(kJobVariable, nullptr, 0) != 0) return;
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
    }
    ~StoreTest() override {
        HostSettingsSetStep(nullptr, nullptr);
        EXPECT_EQ(0, HostSettingsLiveObjects());
        EXPECT_TRUE(m_classes->Idle());
        m_classes = nullptr;
        CoUninitialize();
        std::filesystem::remove_all(m_folder);
    }

    NodePtr Open() {
        NodePtr root;
        EXPECT_EQ(S_OK, HostSettingsOpenFile(m_file.c_str(), &root)) << LastMessage();
        return root;
    }
    static NodePtr NewNode() {
        NodePtr node;
        EXPECT_EQ(S_OK, node.CreateInstance(host::kClsidSettingsNode, nullptr, CLSCTX_ALL));
        return node;
    }
    // A node with the value "n".
    static NodePtr NewNode(LONGLONG number) {
        const NodePtr node = NewNode();
        EXPECT_EQ(S_OK, node->SetInt64(_bstr_t(L"n"), number));
        return node;
    }
    std::set<std::string> FilesInFolder() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / (L"store-tests-" + std::to_wstring(GetCurrentProcessId()));
    const std::filesystem::path m_file = m_folder / L"sets.json";

private:
    std::unique_ptr<com::ClassRegistration> m_classes;
};

}  // namespace test
