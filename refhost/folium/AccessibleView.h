#pragma once
// The window for screen readers: the page, and each rectangle as a child with its name and place.

#include <oleacc.h>

#include "refhost/com/ComObject.h"
#include "refhost/folium/Display.h"

namespace folium {

// Screen readers may keep it beyond the window: it answers that it is not connected then.
class AccessibleView final : public com::Object<IAccessible> {
public:
    AccessibleView(HWND window, Display& display) noexcept : m_window(window), m_display(&display) {}
    // Gives up the maker's reference.
    void Disconnect() noexcept;
    // The number of a rectangle among the children, 1 for the first; 0 when there is no such rectangle.
    static LONG ChildOf(const RectModel& model, int32_t id) noexcept;

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) noexcept override {
        return E_NOTIMPL;
    }

    HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** parent) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* count) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accChild(VARIANT child, IDispatch** object) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* name) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accValue(VARIANT child, BSTR* value) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT child, BSTR* text) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* role) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* state) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT child, BSTR* text) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT child, BSTR* key) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* child) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* children) noexcept override;
    HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* action) noexcept override;
    HRESULT STDMETHODCALLTYPE accSelect(LONG flags, VARIANT child) noexcept override;
    HRESULT STDMETHODCALLTYPE accLocation(LONG* left, LONG* top, LONG* width, LONG* height,
                                          VARIANT child) noexcept override;
    HRESULT STDMETHODCALLTYPE accNavigate(LONG direction, VARIANT start, VARIANT* end) noexcept override;
    HRESULT STDMETHODCALLTYPE accHitTest(LONG x, LONG y, VARIANT* child) noexcept override;
    HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) noexcept override;
    HRESULT STDMETHODCALLTYPE put_accName(VARIANT, BSTR) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_accValue(VARIANT, BSTR) noexcept override { return E_NOTIMPL; }

private:
    // Runs `body` with the rectangle, or with null for the page itself, once all is there that it needs.
    template <class Body>
    HRESULT With(const void* out, const VARIANT& child, Body body) const noexcept;

    HWND m_window;
    Display* m_display;  // null once the window is gone
};

}  // namespace folium
