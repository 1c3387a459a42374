// HostLanguage.dll: finds and maps the language modules.
#include "refhost/language/HostLanguage.h"

#include <algorithm>
#include <cwchar>
#include <string>
#include <vector>

#include "host/Language.h"
#include "refhost/language/LanguageName.h"

namespace {

constexpr wchar_t kEnvironment[] = L"HOST_LANGUAGE";

class Lock {
public:
    explicit Lock(SRWLOCK& lock) : m_lock(lock) { AcquireSRWLockExclusive(&m_lock); }
    ~Lock() { ReleaseSRWLockExclusive(&m_lock); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    SRWLOCK& m_lock;
};

// Where the resources of a module come from. The path tells a module from another one that was loaded at the same
// address later.
struct Mapped {
    HINSTANCE instance;
    std::wstring path;
    HMODULE resources;  // null: the module itself
};

struct State {
    SRWLOCK lock = SRWLOCK_INIT;
    std::wstring language;
    std::vector<Mapped> mapped;
};

State& Shared() {
    static State& state = *new State;
    return state;
}

std::wstring PathOf(HINSTANCE instance) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(instance, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

std::wstring Environment() {
    wchar_t value[LOCALE_NAME_MAX_LENGTH] = L"";
    const DWORD length = GetEnvironmentVariableW(kEnvironment, value, LOCALE_NAME_MAX_LENGTH);
    return length < LOCALE_NAME_MAX_LENGTH && language::IsLanguageName(value) ? value : L"";
}

std::wstring UserLanguage() {
    wchar_t name[LOCALE_NAME_MAX_LENGTH] = L"";
    const LCID locale = MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT);
    return LCIDToLocaleName(locale, name, LOCALE_NAME_MAX_LENGTH, 0) > 0 ? name : L"";
}

// Mapped as data: its entry point is not run, so it does not matter that a module asks while it is being loaded.
HMODULE Map(const std::wstring& module, const std::wstring& wanted) {
    for (const std::wstring& path : language::ModulePaths(module, wanted)) {
        if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) continue;
        const HMODULE resources =
            LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
        if (resources != nullptr) return resources;
    }
    return nullptr;
}

HINSTANCE ResourcesOf(HINSTANCE instance) {
    State& state = Shared();
    const std::wstring path = PathOf(instance);
    const Lock lock(state.lock);
    const auto known = std::ranges::find(state.mapped, instance, &Mapped::instance);
    if (known != state.mapped.end()) {
        if (known->path == path) return known->resources == nullptr ? instance : known->resources;
        if (known->resources != nullptr) FreeLibrary(known->resources);
        state.mapped.erase(known);
    }
    std::wstring wanted = state.language;
    if (wanted.empty()) wanted = Environment();
    if (wanted.empty()) wanted = UserLanguage();
    state.mapped.reserve(state.mapped.size() + 1);
    Mapped mapped{instance, path, nullptr};
    mapped.resources = Map(path, wanted);
    state.mapped.push_back(std::move(mapped));
    const HMODULE resources = state.mapped.back().resources;
    return resources == nullptr ? instance : resources;
}

}  // namespace

HINSTANCE CLang::GetResourceHandle(HINSTANCE instance) {
    if (instance == nullptr) return nullptr;
    try {
        return ResourcesOf(instance);
    } catch (...) {
        return instance;
    }
}

extern "C" {

BOOL HostLanguageSet(const wchar_t* name) {
    try {
        const std::wstring wanted = name == nullptr ? L"" : name;
        if (!wanted.empty() && !language::IsLanguageName(wanted)) return FALSE;
        const Lock lock(Shared().lock);
        Shared().language = wanted;
        return TRUE;
    } catch (...) {
        return FALSE;
    }
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    // Files that were mapped as data have no code, so letting go of them is safe even here. The end of the process
    // does it by itself.
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
        for (const Mapped& mapped : Shared().mapped) {
            if (mapped.resources != nullptr) FreeLibrary(mapped.resources);
        }
        delete &Shared();
    }
    return TRUE;
}
}
