#pragma once
// Serves the COM classes of a DLL of the host to this process, without a word in the registry.
//
//     const com::ClassRegistration settings(L"HostSettings.dll",
//                                           {host::kClsidSettingsNode, host::kClsidSettingsTransfer});
//
// COM has to be initialised on the calling thread, before and for as long as the registration lives.

#include <windows.h>

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

namespace com {

// A part of the host that could not be loaded; the message (UTF-8) names the file and says what to do.
class PartError : public std::runtime_error {
public:
    PartError(const std::string& message, HRESULT status) : std::runtime_error(message), m_status(status) {}
    HRESULT Status() const noexcept { return m_status; }

private:
    HRESULT m_status;
};

// A DLL from the folder of the running program and from nowhere else: neither the current folder nor the search path
// can slip in another one.
class HostDll {
public:
    explicit HostDll(const wchar_t* fileName);
    // Lets go of the DLL, but for one that still has live objects: its code has to stay for them.
    ~HostDll();
    HostDll(const HostDll&) = delete;
    HostDll& operator=(const HostDll&) = delete;

    HMODULE Get() const noexcept { return m_module; }
    // An export by name, for a type of function; throws PartError when there is none.
    template <class Function>
    Function* Export(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(Find(name)));
    }

private:
    FARPROC Find(const char* name) const;

    std::wstring m_name;
    HMODULE m_module = nullptr;
};

class ClassRegistration {
public:
    ClassRegistration(const wchar_t* fileName, std::initializer_list<CLSID> classes);
    ~ClassRegistration();
    ClassRegistration(const ClassRegistration&) = delete;
    ClassRegistration& operator=(const ClassRegistration&) = delete;

    const HostDll& Dll() const noexcept { return m_dll; }
    // Whether the DLL has no live objects and no server locks.
    bool Idle() const;

private:
    HRESULT Register(REFCLSID classId);
    void Revoke() noexcept;

    HostDll m_dll;
    std::vector<DWORD> m_cookies;
};

// The folder of the running program, with a backslash at its end.
std::wstring ProgramFolder();

}  // namespace com
