#include "refhost/app/WindowHost.h"

#include <algorithm>

#include "host/HostIds.h"
#include "refhost/app/Console.h"
#include "refhost/app/PagePlan.h"
#include "refhost/documents/HostDocuments.h"
#include "refhost/units/HostUnits.h"

namespace zonhost {

namespace {

// Dialogs open where their owner stands: so that one of the usual size comes to the middle of the screen.
POINT DialogPlace() {
    constexpr int kDialogWidth = 528;
    constexpr int kDialogHeight = 384;
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const HDC screen = GetDC(nullptr);
    const int dpi = screen != nullptr ? GetDeviceCaps(screen, LOGPIXELSX) : USER_DEFAULT_SCREEN_DPI;
    ReleaseDC(nullptr, screen);
    const auto centre = [dpi](LONG from, LONG to, int size) {
        return from + std::max<LONG>(0, (to - from - MulDiv(size, dpi, USER_DEFAULT_SCREEN_DPI)) / 2);
    };
    return {centre(work.left, work.right, kDialogWidth), centre(work.top, work.bottom, kDialogHeight)};
}

}  // namespace

FilesInUse FilesOfWindow(const CommonOptions& common, const WindowOptions& options) {
    FilesInUse files(common);
    if (common.log.empty()) return files;
    for (const std::filesystem::path& page : FindPages(options.pages).files) files.Add(page, "one of the pages");
    return files;
}

WindowHost::WindowHost(const WindowOptions& options)
    : m_documents(L"HostDocuments.dll", {host::kClsidPageImage}),
      m_units(L"HostUnits.dll", {host::kClsidMeasureUnits}),
      m_folium(L"Folium.dll", {host::kClsidFolium}) {
    if (options.units != "auto") {
        m_units.Dll().Export<decltype(HostSetMeasureSystem)>("HostSetMeasureSystem")(options.units == "mm" ? 1 : 2);
    }
    OpenPages(options.pages);
    const POINT place = DialogPlace();
    m_owner = CreateWindowExW(0, L"STATIC", L"zonhost", WS_OVERLAPPED, place.x, place.y, 0, 0, nullptr, nullptr,
                              GetModuleHandleW(nullptr), nullptr);
    if (m_owner == nullptr) {
        throw CommandError(ExitCode::kNothingDone, "no window can be made: " + SystemMessage(GetLastError()));
    }
    // Otherwise the first dialog of a program that was started by another one may open inactive.
    SetForegroundWindow(m_owner);
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
