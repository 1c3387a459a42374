// The two settings nodes of the module object.
#include "module/ZonwickApp.h"
#include "win32/ComPtr.h"

namespace {

using win32::CallHost;
using TransferPtr = win32::ComPtr<ISettingsTransfer>;

// The object that copied, for who has to keep it.
TransferPtr CopyOver(ISettingsNode* target, ISettingsNode* source) {
    auto transfer = win32::CreateHostObject<ISettingsTransfer>(host::kClsidSettingsTransfer);
    CallHost(transfer.GetInterfacePtr(), &ISettingsTransfer::ClearNode, target);
    CallHost(transfer.GetInterfacePtr(), &ISettingsTransfer::CopyNode, target, source);
    return transfer;
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
    TransferPtr transfer;  // a host may see it go: after the sets were read
    try {
        transfer = CopyOver(m_pWorkingNode, m_pHostNode);
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
