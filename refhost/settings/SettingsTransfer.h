#pragma once
// The class that copies and clears nodes.

#include "refhost/com/ComObject.h"
#include "refhost/settings/HostSettings.h"

namespace settings {

class SettingsTransfer final : public com::Object<com::NoDispatch<ISettingsTransfer>> {
public:
    HRESULT STDMETHODCALLTYPE CopyNode(ISettingsNode* target, ISettingsNode* source) override;
    HRESULT STDMETHODCALLTYPE ClearNode(ISettingsNode* target) override;
};

}  // namespace settings
