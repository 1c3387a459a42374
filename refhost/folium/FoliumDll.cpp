#include "refhost/com/ComObject.h"
#include "refhost/folium/Counts.h"
#include "refhost/folium/FoliumControl.h"
#include "refhost/folium/Module.h"
#include "refhost/folium/Registration.h"

namespace {

HINSTANCE g_instance = nullptr;

}  // namespace

namespace folium {

HINSTANCE ModuleInstance() noexcept {
    return g_instance;
}

}  // namespace folium

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* reserved) {
    if (reason == DLL_PROCESS_ATTACH) g_instance = instance;
    // The class's procedure goes with the DLL.
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr) UnregisterClassW(folium::kWindowClass, instance);
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
    return com::GetClassObject<folium::FoliumControl>(host::kClsidFolium, classId, iid, object);
}

STDAPI DllCanUnloadNow() {
    return com::CanUnloadNow();
}

STDAPI DllRegisterServer() {
    return folium::RegisterControl();
}

STDAPI DllUnregisterServer() {
    return folium::UnregisterControl();
}

void WINAPI FoliumGetCounts(FoliumCounts* counts) {
    if (counts == nullptr) return;
    using folium::g_counts;
    *counts = {com::LiveObjects(), g_counts.windows, g_counts.gdiObjects, g_counts.paints, g_counts.tilesScaled};
}
