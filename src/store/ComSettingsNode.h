#pragma once

#include "host/SettingsStore.h"
#include "store/SettingsNode.h"
#include "win32/HostCall.h"

_COM_SMARTPTR_TYPEDEF(ISettingsNode, __uuidof(ISettingsNode));
_COM_SMARTPTR_TYPEDEF(ISettingsTransfer, __uuidof(ISettingsTransfer));

// The host's node; a failing call throws _com_error, one that says nothing about the value a _com_error that is a
// SettingsLost too.
class ComSettingsNode final : public SettingsNode {
public:
    // A null node throws E_POINTER on first use.
    explicit ComSettingsNode(const ISettingsNodePtr& node) : m_node(node) {}

    SubNodeNames GetSubNodeNames() override;
    SettingsNodePtr GetSubNode(const std::wstring& name) override;
    void DeleteSubNode(const std::wstring& name) override;
    std::wstring GetString(const wchar_t* name) override;
    int64_t GetInt64(const wchar_t* name) override;
    void SetString(const wchar_t* name, const std::wstring& value) override;
    void SetInt64(const wchar_t* name, int64_t value) override;

    // Plain values of the dialogs.
    bool GetBool(const wchar_t* name);
    void SetBool(const wchar_t* name, bool value);

private:
    ISettingsNodePtr m_node;
};
