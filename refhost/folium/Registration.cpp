#include "refhost/folium/Registration.h"

#include <objbase.h>
#include <olectl.h>

#include <string>

#include "refhost/com/ComObject.h"
#include "refhost/folium/FoliumControl.h"
#include "refhost/folium/Module.h"

namespace folium {

namespace {

std::wstring ClassIdText() {
    wchar_t text[40] = {};
    StringFromGUID2(host::kClsidFolium, text, static_cast<int>(std::size(text)));
    return text;
}

std::wstring ModulePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(ModuleInstance(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return path.substr(0, length);
        path.resize(path.size() * 2);
    }
}

LSTATUS Write(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
    return RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, value.c_str(),
                           static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

LSTATUS WriteAll() {
    const std::wstring key = L"CLSID\\" + ClassIdText();
    struct {
        std::wstring subkey;
        const wchar_t* name;
        std::wstring value;
    } const values[] = {
        {L"", nullptr, L"Folium page display"},
        {L"\\InprocServer32", nullptr, ModulePath()},
        {L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {L"\\Control", nullptr, L""},
        {L"\\MiscStatus", nullptr, L"0"},
        {L"\\MiscStatus\\1", nullptr, std::to_wstring(kMiscStatus)},
        {L"\\Version", nullptr, L"1.0"},
    };
    for (const auto& value : values) {
        const LSTATUS status = Write(key + value.subkey, value.name, value.value);
        if (status != ERROR_SUCCESS) return status;
    }
    return ERROR_SUCCESS;
}

}  // namespace

HRESULT RegisterControl() noexcept {
    return com::Guard([]() -> HRESULT {
        if (WriteAll() == ERROR_SUCCESS) return S_OK;
        UnregisterControl();
        return SELFREG_E_CLASS;
    });
}

HRESULT UnregisterControl() noexcept {
    return com::Guard([]() -> HRESULT {
        const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, (L"CLSID\\" + ClassIdText()).c_str());
        return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND ? S_OK : SELFREG_E_CLASS;
    });
}

}  // namespace folium
