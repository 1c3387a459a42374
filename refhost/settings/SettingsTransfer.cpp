#include "refhost/settings/SettingsTransfer.h"

#include <comip.h>

#include "refhost/settings/OtherNode.h"
#include "refhost/settings/SettingsNode.h"
#include "refhost/settings/Status.h"

namespace settings {

namespace {

using OwnReference = _com_ptr_t<_com_IIID<IOwnNode, &__uuidof(IOwnNode)>>;

void CheckNode(const ISettingsNode* node) {
    if (node == nullptr) throw StatusError(E_POINTER, L"There is no settings node to copy or clear.");
}

OwnReference AsOwn(ISettingsNode* node) {
    OwnReference own;
    node->QueryInterface(__uuidof(IOwnNode), reinterpret_cast<void**>(&own));
    return own;
}

// A copy of its own of everything under a node, so that source and target may lie in each other.
NodePtr Snapshot(ISettingsNode* source) {
    const OwnReference own = AsOwn(source);
    return own == nullptr ? ReadOtherNode(source) : own->Tree()->Clone();
}

// Ends a replacement that was begun with ClearNode and came to nothing.
class PendingReplace {
public:
    explicit PendingReplace(FileStore* store) : m_store(store) {}
    ~PendingReplace() {
        if (m_store != nullptr) m_store->CancelReplace();
    }
    PendingReplace(const PendingReplace&) = delete;
    PendingReplace& operator=(const PendingReplace&) = delete;
    void Done() { m_store = nullptr; }

private:
    FileStore* m_store;
};

void CopyToOwn(IOwnNode& target, ISettingsNode* source) {
    FileStore* const store = target.Store();
    PendingReplace pending(store);
    CheckNode(source);
    const NodePtr content = Snapshot(source);
    if (store != nullptr) {
        store->Replace(*content);
    } else {
        target.Tree()->Merge(*content);
    }
    pending.Done();
}

}  // namespace

HRESULT SettingsTransfer::CopyNode(ISettingsNode* target, ISettingsNode* source) {
    bool toFile = false;
    try {
        CheckNode(target);
        if (const OwnReference own = AsOwn(target)) {
            toFile = own->Store() != nullptr;
            CopyToOwn(*own, source);
        } else {
            CheckNode(source);
            WriteOtherNode(target, *Snapshot(source));
        }
        return S_OK;
    } catch (...) {
        return toFile ? ReportToUser(CurrentError()) : Report(CurrentError());
    }
}

HRESULT SettingsTransfer::ClearNode(ISettingsNode* target) {
    return Edge([&] {
        CheckNode(target);
        const OwnReference own = AsOwn(target);
        if (own == nullptr) {
            ClearOtherNode(target);
        } else if (own->Store() != nullptr) {
            own->Store()->BeginReplace();
        } else {
            own->Tree()->Clear();
        }
    });
}

}  // namespace settings
