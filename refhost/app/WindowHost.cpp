#include "refhost/app/WindowHost.h"

#include "host/HostIds.h"
#include "refhost/app/Console.h"
#include "refhost/documents/HostDocuments.h"
#include "refhost/units/HostUnits.h"

namespace zonhost {

WindowHost::WindowHost(const WindowOptions& options)
    : m_documents(L"HostDocuments.dll", {host::kClsidPageImage}),
      m_units(L"HostUnits.dll", {host::kClsidMeasureUnits}),
      m_folium(L"Folium.dll", {host::kClsidFolium}) {
    if (options.units != "auto") {
        m_units.Dll().Export<decltype(HostSetMeasureSystem)>("HostSetMeasureSystem")(options.units == "mm" ? 1 : 2);
    }
    OpenPages(options.pages);
    m_owner = CreateWindowExW(0, L"STATIC", L"zonhost", WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr,
                              GetModuleHandleW(nullptr), nullptr);
    if (m_owner == nullptr) {
        throw CommandError(ExitCode::kNothingDone, "no window can be made: " + SystemMessage(GetLastError()));
    }
}

WindowHost::~WindowHost() {
    if (m_owner != nullptr) DestroyWindow(m_owner);
    if (m_quire != nullptr) m_quire->Release();
}

void WindowHost::OpenPages(const std::vector<std::filesystem::path>& pages) {
    const com::HostDll& dll = m_documents.Dll();
    dll.Export<decltype(HostDocumentsSetReporter)>("HostDocumentsSetReporter")(
        [](void*, const wchar_t* text) { PrintError("zonhost: " + Utf8FromWide(text) + "\n"); }, nullptr);
    std::vector<const wchar_t*> names;
    names.reserve(pages.size());
    for (const auto& page : pages) names.push_back(page.c_str());
    const auto open = dll.Export<decltype(HostOpenDocuments)>("HostOpenDocuments");
    if (FAILED(open(names.data(), static_cast<UINT>(names.size()), &m_quire)) || m_quire == nullptr) {
        throw CommandError(ExitCode::kNothingDone, "none of the pages is there");
    }
}

}  // namespace zonhost
