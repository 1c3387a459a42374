// The exports of HostSettings.dll.
#include "refhost/settings/HostSettings.h"

#include "refhost/settings/SettingsNode.h"
#include "refhost/settings/SettingsTransfer.h"
#include "refhost/settings/Status.h"
#include "refhost/settings/TreeText.h"

using namespace settings;

static_assert(kSettingsMaxDepth == kMaxDepth && kSettingsMaxFileSize == kMaxFileSize);

extern "C" {

HRESULT HostSettingsOpenFile(const wchar_t* path, ISettingsNode** root) {
    if (root == nullptr) return E_POINTER;
    *root = nullptr;
    try {
        *root = new SettingsNode(std::make_unique<FileStore>(path));
        return S_OK;
    } catch (...) {
        return ReportToUser(CurrentError());
    }
}

HRESULT HostSettingsCreateNode(ISettingsNode** node) {
    return com::Create<SettingsNode>(__uuidof(ISettingsNode), reinterpret_cast<void**>(node));
}

HRESULT HostSettingsCommit(ISettingsNode* root) {
    try {
        IOwnNode* own = nullptr;
        if (root != nullptr) root->QueryInterface(__uuidof(IOwnNode), reinterpret_cast<void**>(&own));
        FileStore* const store = own == nullptr ? nullptr : own->Store();
        // The caller's reference keeps the node.
        if (own != nullptr) own->Release();
        if (store == nullptr) throw StatusError(E_INVALIDARG, L"Only the root node of a settings file can be stored.");
        store->Commit();
        return S_OK;
    } catch (...) {
        return ReportToUser(CurrentError());
    }
}

HRESULT HostSettingsLastMessage(BSTR* text) {
    return LastMessage(text);
}

void HostSettingsSetStep(HostSettingsStep step, void* context) {
    SetStep(step, context);
}

LONG HostSettingsLiveObjects(void) {
    return com::LiveObjects();
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
    const HRESULT status = com::GetClassObject<SettingsNode>(clsid, host::kClsidSettingsNode, iid, object);
    if (status != CLASS_E_CLASSNOTAVAILABLE) return status;
    return com::GetClassObject<SettingsTransfer>(clsid, host::kClsidSettingsTransfer, iid, object);
}

STDAPI DllCanUnloadNow() {
    return com::CanUnloadNow();
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    // At the end of the process others may still report failures, and the system takes everything back.
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) ForgetMessage();
    return TRUE;
}
}
