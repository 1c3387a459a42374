#include "module/ZonwickApp.h"

#include "host/Controls.h"
#include "host/Language.h"
#include "host/Support.h"
#include "module/TraceHost.h"
#include "win32/Resources.h"

namespace {

SettingsNodePtr GetWorkingNode() {
    ISettingsNodePtr node = GetApp().GetSettingsNode();
    return node ? std::make_unique<ComSettingsNode>(std::move(node)) : nullptr;
}

// Destroys the manager when the module is unloaded, but not when the process ends with the module loaded: another
// process may hold the lock for long, and a thread that was ended may have left the sets half changed.
union ManagerStorage {
    ManagerStorage() : manager(GetWorkingNode) {}
    ~ManagerStorage() {
        if (!abandoned) manager.~CAreaSetManager();
    }

    CAreaSetManager manager;
    static inline bool abandoned = false;
};

// In this order: the manager outlives the module object.
ManagerStorage g_storage;
CZonwickApp g_app;
AreaColors g_colors;

}  // namespace

CZonwickApp& GetApp() {
    return g_app;
}
CAreaSetManager* GetAreaSetManager() {
    return &g_storage.manager;
}
AreaColors& GetAreaColors() {
    return g_colors;
}

CZonwickApp::~CZonwickApp() {
    m_pQuire = nullptr;
    m_pHostNode = nullptr;
    m_pWorkingNode = nullptr;
}

void CZonwickApp::InitInstance(HINSTANCE instance) {
    trace::SetTraceInstance(instance);
    const HINSTANCE resources = CLang::GetResourceHandle(instance);
    CLogBase::InitImpl(L"", instance, resources);
    win32::SetInstances(instance, resources);
    if (const wchar_t* name = HostApplicationName()) m_applicationName = name;
}

void CZonwickApp::Abandon() noexcept {
    ManagerStorage::abandoned = true;
    m_pQuire.Detach();
    m_pHostNode.Detach();
    m_pWorkingNode.Detach();
}
