#include "store/ComSettingsNode.h"

#include <memory>

namespace {

using win32::Bstr;
using win32::CallHost;
using win32::CheckHost;

struct DestroyArray {
    void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};
using ArrayPtr = std::unique_ptr<SAFEARRAY, DestroyArray>;

class ArrayLock {
public:
    explicit ArrayLock(SAFEARRAY* array) : m_array(array) {
        CheckHost(SafeArrayLock(m_array), __uuidof(ISettingsNode));
    }
    ~ArrayLock() { SafeArrayUnlock(m_array); }
    ArrayLock(const ArrayLock&) = delete;
    ArrayLock& operator=(const ArrayLock&) = delete;

private:
    SAFEARRAY* m_array;
};

SubNodeNames ReadNames(SAFEARRAY* array) {
    VARTYPE type = VT_EMPTY;
    if (array == nullptr || SafeArrayGetDim(array) != 1) throw _com_error(E_INVALIDARG);
    CheckHost(SafeArrayGetVartype(array, &type), __uuidof(ISettingsNode));
    if (type != VT_BSTR) throw _com_error(E_INVALIDARG);
    LONG lower = 0;
    LONG upper = 0;
    CheckHost(SafeArrayGetLBound(array, 1, &lower), __uuidof(ISettingsNode));
    CheckHost(SafeArrayGetUBound(array, 1, &upper), __uuidof(ISettingsNode));
    const int64_t count = int64_t{upper} - lower + 1;

    const ArrayLock lock(array);
    const auto* elements = static_cast<const BSTR*>(array->pvData);
    std::vector<std::wstring> names;
    if (lower <= 0 && upper >= 0) names.reserve(static_cast<size_t>(upper) + 1);
    for (int64_t i = 0; lower <= 0 && i <= upper; ++i) {
        const BSTR name = elements[i - lower];
        names.emplace_back(name == nullptr ? L"" : name, SysStringLen(name));
    }
    return {std::move(names), count};
}

}  // namespace

SubNodeNames ComSettingsNode::GetSubNodeNames() {
    SAFEARRAY* array = nullptr;
    CallHost(m_node.GetInterfacePtr(), &ISettingsNode::GetSubNodeNames, &array);
    const ArrayPtr owner(array);
    return ReadNames(array);
}

SettingsNodePtr ComSettingsNode::GetSubNode(const std::wstring& name) {
    ISettingsNode* node = nullptr;
    CallHost(m_node.GetInterfacePtr(), &ISettingsNode::GetSubNode, Bstr(name).Get(), &node);
    return std::make_unique<ComSettingsNode>(ISettingsNodePtr(node, false));
}

void ComSettingsNode::DeleteSubNode(const std::wstring& name) {
    CallHost(m_node.GetInterfacePtr(), &ISettingsNode::DeleteSubNode, Bstr(name).Get());
}

std::wstring ComSettingsNode::GetString(const wchar_t* name) {
    Bstr value;
    CallHost(m_node.GetInterfacePtr(), &ISettingsNode::GetString, Bstr(name).Get(), value.Out());
    return std::wstring(value.View());
}

int64_t ComSettingsNode::GetInt64(const wchar_t* name) {
    LONGLONG value = 0;
    CallHost(m_node.GetInterfacePtr(), &ISettingsNode::GetInt64, Bstr(name).Get(), &value);
    return value;
}

bool ComSettingsNode::GetBool(const wchar_t* name) {
    VARIANT_BOOL value = 0;
    CallHost(m_node.GetInterfacePtr(), &ISettingsNode::GetBool, Bstr(name).Get(), &value);
    return value != 0;
}

void ComSettingsNode::SetString(const wchar_t* name, const std::wstring& value) {
    CallHost(m_node.GetInterfacePtr(), &ISettingsNode::SetString, Bstr(name).Get(), Bstr(value).Get());
}

void ComSettingsNode::SetInt64(const wchar_t* name, int64_t value) {
    CallHost(m_node.GetInterfacePtr(), &ISettingsNode::SetInt64, Bstr(name).Get(), value);
}

void ComSettingsNode::SetBool(const wchar_t* name, bool value) {
    CallHost(m_node.GetInterfacePtr(), &ISettingsNode::SetBool, Bstr(name).Get(),
             static_cast<VARIANT_BOOL>(value ? 1 : 0));
}
