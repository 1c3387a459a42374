#include "store/ComSettingsNode.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace {

using win32::Bstr;
using win32::CallHost;
using win32::CheckHost;

// A name for the length of one call. Names are short and there are several for each rectangle, so that they stand here
// and not in blocks of their own: the length in bytes in front of the text, as strings of the system have it.
class Name {
public:
    explicit Name(std::wstring_view text) : m_short(text.size() < std::size(m_buffer.text)), m_long(Rest(text)) {
        if (!m_short) return;
        m_buffer.length = static_cast<uint32_t>(text.size() * sizeof(wchar_t));
        *std::copy(text.begin(), text.end(), m_buffer.text) = L'\0';
    }
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;
    BSTR Get() { return m_short ? m_buffer.text : m_long->Get(); }

private:
    std::unique_ptr<Bstr> Rest(std::wstring_view text) const {
        return m_short ? nullptr : std::make_unique<Bstr>(text);
    }

    bool m_short;
    struct {
        alignas(8) uint32_t unused;
        uint32_t length;
        wchar_t text[40];
    } m_buffer;
    std::unique_ptr<Bstr> m_long;
};

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

// As an exception of the two kinds.
class LostError : public _com_error, public SettingsLost {
public:
    explicit LostError(const _com_error& error) : _com_error(error) {}
};

bool IsLost(HRESULT status) {
    constexpr HRESULT kLost[] = {E_OUTOFMEMORY,
                                 RPC_E_DISCONNECTED,
                                 RPC_E_SERVER_DIED,
                                 RPC_E_SERVER_DIED_DNE,
                                 CO_E_OBJNOTCONNECTED,
                                 MAKE_HRESULT(1, FACILITY_WIN32, 1722),   // RPC_S_SERVER_UNAVAILABLE
                                 MAKE_HRESULT(1, FACILITY_WIN32, 1726),   // RPC_S_CALL_FAILED
                                 MAKE_HRESULT(1, FACILITY_WIN32, 1727)};  // RPC_S_CALL_FAILED_DNE
    return std::find(std::begin(kLost), std::end(kLost), status) != std::end(kLost);
}

template <class Body>
auto Telling(Body body) {
    try {
        return body();
    } catch (const _com_error& error) {
        if (IsLost(error.Error())) throw LostError(error);
        throw;
    }
}

template <class... Parameters, class... Arguments>
void CallNode(ISettingsNode* node, HRESULT (STDMETHODCALLTYPE ISettingsNode::*operation)(Parameters...),
              Arguments&&... arguments) {
    Telling([&] { CallHost(node, operation, std::forward<Arguments>(arguments)...); });
}

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
    CallNode(m_node.GetInterfacePtr(), &ISettingsNode::GetSubNodeNames, &array);
    const ArrayPtr owner(array);
    return Telling([&] { return ReadNames(array); });
}

SettingsNodePtr ComSettingsNode::GetSubNode(const std::wstring& name) {
    ISettingsNode* node = nullptr;
    CallNode(m_node.GetInterfacePtr(), &ISettingsNode::GetSubNode, Name(name).Get(), &node);
    return std::make_unique<ComSettingsNode>(ISettingsNodePtr(node, false));
}

void ComSettingsNode::DeleteSubNode(const std::wstring& name) {
    CallNode(m_node.GetInterfacePtr(), &ISettingsNode::DeleteSubNode, Name(name).Get());
}

std::wstring ComSettingsNode::GetString(const wchar_t* name) {
    Bstr value;
    CallNode(m_node.GetInterfacePtr(), &ISettingsNode::GetString, Name(name).Get(), value.Out());
    return std::wstring(value.View());
}

int64_t ComSettingsNode::GetInt64(const wchar_t* name) {
    LONGLONG value = 0;
    CallNode(m_node.GetInterfacePtr(), &ISettingsNode::GetInt64, Name(name).Get(), &value);
    return value;
}

bool ComSettingsNode::GetBool(const wchar_t* name) {
    VARIANT_BOOL value = 0;
    CallNode(m_node.GetInterfacePtr(), &ISettingsNode::GetBool, Name(name).Get(), &value);
    return value != 0;
}

void ComSettingsNode::SetString(const wchar_t* name, const std::wstring& value) {
    CallNode(m_node.GetInterfacePtr(), &ISettingsNode::SetString, Name(name).Get(), Bstr(value).Get());
}

void ComSettingsNode::SetInt64(const wchar_t* name, int64_t value) {
    CallNode(m_node.GetInterfacePtr(), &ISettingsNode::SetInt64, Name(name).Get(), value);
}

void ComSettingsNode::SetBool(const wchar_t* name, bool value) {
    CallNode(m_node.GetInterfacePtr(), &ISettingsNode::SetBool, Name(name).Get(),
             static_cast<VARIANT_BOOL>(value ? 1 : 0));
}
