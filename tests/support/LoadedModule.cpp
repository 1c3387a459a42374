#include "support/LoadedModule.h"

#include <cstdlib>
#include <utility>

namespace test {

namespace {

std::wstring FakeFolder() {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring file(path);
    return file.substr(0, file.find_last_of(L'\\')) + L"\\fakehost\\";
}

template <class Function>
void Resolve(HMODULE library, Function& function, WORD ordinal, const char* name) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, MAKEINTRESOURCEA(ordinal))));
    if (function == nullptr ||
        reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function)) != GetProcAddress(library, name)) {
        std::abort();
    }
}

template <class Function>
Function FromLibrary(const wchar_t* library, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name)));
}

}  // namespace

LoadedModule::LoadedModule()
    : m_module(LoadLibraryExW((FakeFolder() + L"Zonwick.dll").c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    if (m_module == nullptr) std::abort();
    Resolve(m_module, Init, 6, "SAInit");
    Resolve(m_module, GetAreaInfo, 3, "SAGetAreaInfo");
    Resolve(m_module, GetAreaRects, 4, "SAGetAreaRects");
    Resolve(m_module, MapID2Index, 5, "SAMapID2Index");
    Resolve(m_module, MapIndex2ID, 8, "SAMapIndex2ID");
    Resolve(m_module, ChangeColors, 9, "SAChangeColors");
    Resolve(m_module, CreateImage, 11, "CreateAreaSetImage");
    Resolve(m_module, FreeImage, 12, "FreeAreaSetImage");
    m_imaging = FromLibrary<FakeImagingFunction>(L"HostImaging.dll", "FakeImagingState")();
    *m_imaging = {};
    FromLibrary<FakeSetSinksFunction>(L"HostSupport.dll", "FakeSetSinks")(
        this,
        [](void* self, int severity, HINSTANCE instance, const char* source, int, const wchar_t* text) {
            auto* module = static_cast<LoadedModule*>(self);
            if (instance != module->m_module) std::abort();
            module->m_traces.push_back({severity, source, text});
        },
        [](void* self, HWND, const wchar_t*, UINT, HINSTANCE) { ++static_cast<LoadedModule*>(self)->m_boxes; });
}

LoadedModule::~LoadedModule() {
    FreeLibrary(m_module);
    if (GetModuleHandleW(L"Zonwick.dll") != nullptr) std::abort();
}

std::vector<ModuleTrace> LoadedModule::TakeTraces() {
    return std::exchange(m_traces, {});
}

std::vector<std::wstring> LoadedModule::TakeTexts() {
    std::vector<std::wstring> texts;
    for (auto& trace : TakeTraces()) {
        if (trace.text != L"CAreaSetManager::GetAreaSet: wrong dwID was specified.")
            texts.push_back(std::move(trace.text));
    }
    return texts;
}

}  // namespace test
