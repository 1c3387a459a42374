#pragma once
// The host's hierarchical settings store: named string, 64-bit integer and boolean values, and named sub-nodes.
// COM interfaces of the host; used on the host's window thread only.

#include <oaidl.h>

#include "host/HostIds.h"

// One node. Positions count from 0 (QueryInterface); those that the module does not call are reserved so that the
// others stand at their places. Every operation returns a failing status when it cannot be done.
struct ISettingsNode : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Reserved3() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved5() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved6() = 0;
    // 7: names of all sub-nodes, in the node's order: one dimension of VT_BSTR, lower bound 0; an array also when there
    // are none. The caller destroys it.
    virtual HRESULT STDMETHODCALLTYPE GetSubNodeNames(SAFEARRAY** names) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    // 9: the named sub-node with a reference for the caller; a missing one is created.
    virtual HRESULT STDMETHODCALLTYPE GetSubNode(BSTR name, ISettingsNode** node) = 0;
    // 10: removes the named sub-node with everything under it.
    virtual HRESULT STDMETHODCALLTYPE DeleteSubNode(BSTR name) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    // 12, 13, 15: read a value; the caller frees the string.
    virtual HRESULT STDMETHODCALLTYPE GetString(BSTR name, BSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInt64(BSTR name, LONGLONG* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved14() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetBool(BSTR name, VARIANT_BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved16() = 0;
    // 17, 18, 20: create or replace a value. Nonzero booleans are true; the module passes 1 and 0.
    virtual HRESULT STDMETHODCALLTYPE SetString(BSTR name, BSTR value) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetInt64(BSTR name, LONGLONG value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved19() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetBool(BSTR name, VARIANT_BOOL value) = 0;
};
ZONWICK_UUID(ISettingsNode, ZONWICK_IID_SETTINGS_NODE)

// Copies whole trees between nodes, of the same store or of different ones. ClearNode and then CopyNode onto the host's
// node are one commit: what stood there is kept until CopyNode has succeeded, and is back when it fails.
struct ISettingsTransfer : IDispatch {
    // 7: the target receives the source's values and sub-nodes.
    virtual HRESULT STDMETHODCALLTYPE CopyNode(ISettingsNode* target, ISettingsNode* source) = 0;
    // 8: the target is emptied.
    virtual HRESULT STDMETHODCALLTYPE ClearNode(ISettingsNode* target) = 0;
};
ZONWICK_UUID(ISettingsTransfer, ZONWICK_IID_SETTINGS_TRANSFER)
