// The two settings nodes of the module object.
#include "module/ZonwickApp.h"

namespace {

using win32::CallHost;

void CopyOver(ISettingsNode* target, ISettingsNode* source) {
    const auto transfer = win32::CreateHostObject<ISettingsTransfer>(host::kClsidSettingsTransfer);
    CallHost(transfer.GetInterfacePtr(), &ISettingsTransfer::ClearNode, target);
    CallHost(transfer.GetInterfacePtr(), &ISettingsTransfer::CopyNode, target, source);
}

}  // namespace

void CZonwickApp::SetHostSettings(ISettingsNode* node) {
    const CAreaSetManager::Exclusive exclusive(*GetAreaSetManager());
    if (m_pHostNode.GetInterfacePtr() != node) m_pHostNode = node;
    m_pWorkingNode = nullptr;
    // Without a working node every later load fails and says so; the sets of an earlier host's node do not stand in.
    void* working = nullptr;
    if (SUCCEEDED(win32::CreateRunningObject(host::kClsidSettingsNode, __uuidof(ISettingsNode), &working))) {
        m_pWorkingNode.Attach(static_cast<ISettingsNode*>(working));
    } else if (m_pHostNode) {
        GetAreaSetManager()->Forget();
    }
    RefreshFromHost();
}

void CZonwickApp::RefreshFromHost() {
    if (!m_pHostNode || !m_pWorkingNode) return;
    const CAreaSetManager::Exclusive exclusive(*GetAreaSetManager());
    try {
        CopyOver(m_pWorkingNode, m_pHostNode);
    } catch (...) {
        m_pWorkingNode = nullptr;
        GetAreaSetManager()->Forget();
        throw;
    }
    GetAreaSetManager()->ReloadSettings();
}

void CZonwickApp::CommitToHost() {
    if (!m_pHostNode || !m_pWorkingNode) return;
    const CAreaSetManager::Exclusive exclusive(*GetAreaSetManager());
    CopyOver(m_pHostNode, m_pWorkingNode);
}
