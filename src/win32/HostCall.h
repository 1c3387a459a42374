#pragma once
// Calls into the host's COM objects: a failing status becomes a thrown _com_error that carries the status and the
// interface's identifier; a null pointer is thrown as E_POINTER.

#include <comdef.h>
#include <comip.h>

#include <new>
#include <string_view>

namespace win32 {

[[noreturn]] void ThrowHostError(HRESULT status, REFIID iid);

inline void CheckHost(HRESULT status, REFIID iid) {
    if (FAILED(status)) ThrowHostError(status, iid);
}

// Calls an operation of an interface: CallHost(node, &ISettingsNode::DeleteSubNode, name).
template <class Interface, class... Parameters, class... Arguments>
void CallHost(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*operation)(Parameters...),
              Arguments&&... arguments) {
    if (object == nullptr) ThrowHostError(E_POINTER, __uuidof(Interface));
    CheckHost((object->*operation)(std::forward<Arguments>(arguments)...), __uuidof(Interface));
}

// For a value that has a default: the fallback when the host cannot give it.
template <class Value, class Read>
Value ReadOr(Value fallback, Read read) {
    try {
        return static_cast<Value>(read());
    } catch (const _com_error&) {
        return fallback;
    } catch (const std::bad_alloc&) {
        return fallback;
    }
}

// Creates an object of a host class and asks it for an interface, the way the host's out-of-process classes need it:
// create as IUnknown, OleRun, query. Any failure is handed back; *object is null then.
HRESULT CreateRunningObject(REFCLSID classId, REFIID iid, void** object) noexcept;

// The same, thrown: a failure as it is, a missing interface (E_NOINTERFACE, from whichever step) as null, which throws
// E_POINTER on first use through CallHost.
template <class Interface>
_com_ptr_t<_com_IIID<Interface, &__uuidof(Interface)>> CreateHostObject(REFCLSID classId) {
    Interface* object = nullptr;
    const HRESULT status = CreateRunningObject(classId, __uuidof(Interface), reinterpret_cast<void**>(&object));
    if (FAILED(status) && status != E_NOINTERFACE) ThrowHostError(status, __uuidof(Interface));
    return {object, false};
}

// A string for one call, or one that a call handed out; freed with the object. Unlike _bstr_t it takes no block of its
// own, so nothing can fail between the host's call and the ownership of its string.
class Bstr {
public:
    Bstr() = default;
    // A copy, NULs included; throws std::bad_alloc.
    explicit Bstr(std::wstring_view text);
    ~Bstr() { SysFreeString(m_text); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;

    BSTR Get() const { return m_text; }
    // For a call that hands out a string; only while it is empty.
    BSTR* Out() { return &m_text; }
    std::wstring_view View() const { return {m_text == nullptr ? L"" : m_text, SysStringLen(m_text)}; }

private:
    BSTR m_text = nullptr;
};

}  // namespace win32
