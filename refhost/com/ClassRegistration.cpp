#include "refhost/com/ClassRegistration.h"

#include <objbase.h>

#include <cstdio>

namespace com {

namespace {

std::string Utf8(const std::wstring& text) {
    const int size = static_cast<int>(text.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, result.data(), length, nullptr, nullptr);
    return result;
}

[[noreturn]] void ThrowPartError(const std::wstring& name, const char* what, HRESULT status) {
    char code[32];
    std::snprintf(code, sizeof code, " (0x%08lx). ", static_cast<unsigned long>(status));
    throw PartError(Utf8(name) + " " + what + code + "Put the program's files back together in one folder.", status);
}

HRESULT LastStatus() {
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? E_FAIL : HRESULT_FROM_WIN32(error);
}

}  // namespace

std::wstring ProgramFolder() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) ThrowPartError(L"The program's folder", "cannot be found", LastStatus());
        if (length < path.size()) {
            path.resize(length);
            break;
        }
        path.resize(path.size() * 2);
    }
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

HostDll::HostDll(const wchar_t* fileName) : m_name(fileName) {
    const std::wstring path = ProgramFolder() + m_name;
    m_module = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (m_module == nullptr) ThrowPartError(path, "cannot be loaded", LastStatus());
}

HostDll::~HostDll() {
    using CanUnload = HRESULT STDAPICALLTYPE();
    const auto canUnload =
        reinterpret_cast<CanUnload*>(reinterpret_cast<void*>(GetProcAddress(m_module, "DllCanUnloadNow")));
    if (canUnload == nullptr || canUnload() == S_OK) FreeLibrary(m_module);
}

FARPROC HostDll::Find(const char* name) const {
    const FARPROC function = GetProcAddress(m_module, name);
    if (function == nullptr) ThrowPartError(m_name, (std::string("lacks ") + name).c_str(), LastStatus());
    return function;
}

ClassRegistration::ClassRegistration(const wchar_t* fileName, std::initializer_list<CLSID> classes) : m_dll(fileName) {
    m_cookies.reserve(classes.size());
    for (const CLSID& classId : classes) {
        const HRESULT status = Register(classId);
        if (SUCCEEDED(status)) continue;
        Revoke();
        ThrowPartError(fileName, "cannot serve its classes", status);
    }
}

ClassRegistration::~ClassRegistration() {
    Revoke();
}

HRESULT ClassRegistration::Register(REFCLSID classId) {
    using GetClass = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);
    IUnknown* factory = nullptr;
    HRESULT status = m_dll.Export<GetClass>("DllGetClassObject")(classId, __uuidof(IClassFactory),
                                                                 reinterpret_cast<void**>(&factory));
    if (FAILED(status)) return status;
    DWORD cookie = 0;
    status = CoRegisterClassObject(classId, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
    factory->Release();
    if (SUCCEEDED(status)) m_cookies.push_back(cookie);
    return status;
}

void ClassRegistration::Revoke() noexcept {
    for (const DWORD cookie : m_cookies) CoRevokeClassObject(cookie);
    m_cookies.clear();
}

bool ClassRegistration::Idle() const {
    using CanUnload = HRESULT STDAPICALLTYPE();
    return m_dll.Export<CanUnload>("DllCanUnloadNow")() == S_OK;
}

}  // namespace com
