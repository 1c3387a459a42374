#include "win32/HostCall.h"

#include <limits>
#include <new>

namespace win32 {

void ThrowHostError(HRESULT status, REFIID iid) {
    // The interface's identifier travels in the error object; without memory for one the status has to do.
    IErrorInfo* info = nullptr;
    ICreateErrorInfo* creator = nullptr;
    if (SUCCEEDED(CreateErrorInfo(&creator))) {
        creator->SetGUID(iid);
        if (FAILED(creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)))) info = nullptr;
        creator->Release();
    }
    throw _com_error(status, info, false);
}

HRESULT CreateRunningObject(REFCLSID classId, REFIID iid, void** object) noexcept {
    *object = nullptr;
    IUnknown* unknown = nullptr;
    HRESULT status = CoCreateInstance(classId, nullptr, CLSCTX_ALL, IID_IUnknown, reinterpret_cast<void**>(&unknown));
    if (FAILED(status)) return status;
    if (unknown == nullptr) return E_POINTER;
    status = OleRun(unknown);
    if (SUCCEEDED(status)) status = unknown->QueryInterface(iid, object);
    unknown->Release();
    return status;
}

Bstr::Bstr(std::wstring_view text) {
    if (text.size() > std::numeric_limits<INT>::max() / sizeof(wchar_t)) throw std::bad_alloc();
    m_text = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (m_text == nullptr) throw std::bad_alloc();
}

}  // namespace win32
