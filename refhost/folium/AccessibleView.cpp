#include "refhost/folium/AccessibleView.h"

#include "refhost/folium/SizeReadout.h"

namespace folium {

namespace {

HRESULT Give(const std::wstring& text, BSTR* out) {
    *out = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.size()));
    return *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

void SetInteger(VARIANT* out, LONG value) {
    VariantInit(out);
    V_VT(out) = VT_I4;
    V_I4(out) = value;
}

RECT OnScreen(HWND window, RECT rect) {
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

}  // namespace

void AccessibleView::Disconnect() noexcept {
    m_display = nullptr;
    m_window = nullptr;
    Release();
}

LONG AccessibleView::ChildOf(const RectModel& model, int32_t id) noexcept {
    LONG number = 0;
    for (const Item& item : model.Items()) {
        ++number;
        if (item.id == id) return number;
    }
    return 0;
}

template <class Body>
HRESULT AccessibleView::With(const void* out, const VARIANT& child, Body body) const noexcept {
    if (out == nullptr) return E_POINTER;
    if (m_display == nullptr) return CO_E_OBJNOTCONNECTED;
    if (V_VT(&child) != VT_I4) return E_INVALIDARG;
    const auto& items = m_display->model.Items();
    if (V_I4(&child) < 0 || static_cast<size_t>(V_I4(&child)) > items.size()) return E_INVALIDARG;
    const Item* item = V_I4(&child) == CHILDID_SELF ? nullptr : &items[static_cast<size_t>(V_I4(&child) - 1)];
    return com::Guard([&] { return body(item); });
}

HRESULT AccessibleView::GetTypeInfoCount(UINT* count) noexcept {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
}

HRESULT AccessibleView::get_accParent(IDispatch** parent) noexcept {
    if (parent == nullptr) return E_POINTER;
    *parent = nullptr;
    if (m_display == nullptr) return CO_E_OBJNOTCONNECTED;
    return AccessibleObjectFromWindow(m_window, static_cast<DWORD>(OBJID_WINDOW), __uuidof(IDispatch),
                                      reinterpret_cast<void**>(parent));
}

HRESULT AccessibleView::get_accChildCount(LONG* count) noexcept {
    if (count == nullptr) return E_POINTER;
    if (m_display == nullptr) return CO_E_OBJNOTCONNECTED;
    *count = static_cast<LONG>(m_display->model.Items().size());
    return S_OK;
}

// Rectangles are simple elements: they have no objects of their own.
HRESULT AccessibleView::get_accChild(VARIANT child, IDispatch** object) noexcept {
    if (object != nullptr) *object = nullptr;
    return With(object, child, [](const Item*) { return S_FALSE; });
}

HRESULT AccessibleView::get_accName(VARIANT child, BSTR* name) noexcept {
    return With(name, child, [&](const Item* item) {
        return Give(item == nullptr ? L"Page" : L"Area " + std::to_wstring(item->id), name);
    });
}

HRESULT AccessibleView::get_accValue(VARIANT child, BSTR* value) noexcept {
    return With(value, child, [&](const Item* item) -> HRESULT {
        *value = nullptr;
        if (item == nullptr) return S_FALSE;
        const LengthTexts texts;
        const Rect& rect = item->rect;
        return Give(L"left " + texts.Length(rect.left) + L", top " + texts.Length(rect.top) + L", width " +
                        texts.Length(Saturate(WidthOf(rect))) + L", height " + texts.Length(Saturate(HeightOf(rect))) +
                        L' ' + texts.Unit(),
                    value);
    });
}

HRESULT AccessibleView::get_accDescription(VARIANT child, BSTR* text) noexcept {
    return get_accValue(child, text);
}

HRESULT AccessibleView::get_accRole(VARIANT child, VARIANT* role) noexcept {
    return With(role, child, [&](const Item* item) {
        SetInteger(role, item == nullptr ? ROLE_SYSTEM_LIST : ROLE_SYSTEM_LISTITEM);
        return S_OK;
    });
}

HRESULT AccessibleView::get_accState(VARIANT child, VARIANT* state) noexcept {
    return With(state, child, [&](const Item* item) {
        const bool focus = GetFocus() == m_window;
        LONG flags = STATE_SYSTEM_FOCUSABLE;
        if (item == nullptr) {
            if (focus && m_display->model.Primary() == 0) flags |= STATE_SYSTEM_FOCUSED;
        } else {
            flags |= STATE_SYSTEM_SELECTABLE;
            if (m_display->model.IsSelected(item->id)) flags |= STATE_SYSTEM_SELECTED;
            if (focus && m_display->model.Primary() == item->id) flags |= STATE_SYSTEM_FOCUSED;
            const PixelRect window = {0, 0, m_display->view.ViewWidth(), m_display->view.ViewHeight()};
            if (Intersection(m_display->view.ToClient(item->rect), window).Empty()) flags |= STATE_SYSTEM_OFFSCREEN;
        }
        SetInteger(state, flags);
        return S_OK;
    });
}

HRESULT AccessibleView::get_accHelp(VARIANT, BSTR* text) noexcept {
    if (text != nullptr) *text = nullptr;
    return S_FALSE;
}

HRESULT AccessibleView::get_accHelpTopic(BSTR* file, VARIANT, LONG*) noexcept {
    if (file != nullptr) *file = nullptr;
    return S_FALSE;
}

HRESULT AccessibleView::get_accKeyboardShortcut(VARIANT, BSTR* key) noexcept {
    if (key != nullptr) *key = nullptr;
    return S_FALSE;
}

HRESULT AccessibleView::get_accFocus(VARIANT* child) noexcept {
    if (child == nullptr) return E_POINTER;
    VariantInit(child);
    if (m_display == nullptr) return CO_E_OBJNOTCONNECTED;
    if (GetFocus() != m_window) return S_FALSE;
    SetInteger(child, ChildOf(m_display->model, m_display->model.Primary()));
    return S_OK;
}

// One child: the one selected last. Readers that want all ask each child's state.
HRESULT AccessibleView::get_accSelection(VARIANT* children) noexcept {
    if (children == nullptr) return E_POINTER;
    VariantInit(children);
    if (m_display == nullptr) return CO_E_OBJNOTCONNECTED;
    const LONG child = ChildOf(m_display->model, m_display->model.Primary());
    if (child == 0) return S_FALSE;
    SetInteger(children, child);
    return S_OK;
}

HRESULT AccessibleView::get_accDefaultAction(VARIANT child, BSTR* action) noexcept {
    return With(action, child, [&](const Item* item) -> HRESULT {
        *action = nullptr;
        return item == nullptr ? S_FALSE : Give(L"Select", action);
    });
}

HRESULT AccessibleView::accSelect(LONG flags, VARIANT child) noexcept {
    return With(this, child, [&](const Item* item) -> HRESULT {
        // The window may end in what follows.
        const ComPtr<IAccessible> keep(this);
        const int32_t id = item == nullptr ? 0 : item->id;
        if ((flags & SELFLAG_TAKEFOCUS) != 0) SetFocus(m_window);
        if (id == 0 || m_display == nullptr) return S_OK;
        if ((flags & (SELFLAG_TAKESELECTION | SELFLAG_TAKEFOCUS)) != 0) m_display->model.Select(id);
        return S_OK;
    });
}

HRESULT AccessibleView::accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) noexcept {
    if (left == nullptr || top == nullptr || width == nullptr) return E_POINTER;
    return With(height, child, [&](const Item* item) {
        RECT rect = {};
        GetClientRect(m_window, &rect);
        if (item != nullptr) {
            const PixelRect box = m_display->view.ToClient(item->rect);
            rect = {box.left, box.top, box.right, box.bottom};
        }
        rect = OnScreen(m_window, rect);
        *left = rect.left;
        *top = rect.top;
        *width = rect.right - rect.left;
        *height = rect.bottom - rect.top;
        return S_OK;
    });
}

HRESULT AccessibleView::accNavigate(LONG direction, VARIANT start, VARIANT* end) noexcept {
    return With(end, start, [&](const Item*) -> HRESULT {
        VariantInit(end);
        const auto count = static_cast<LONG>(m_display->model.Items().size());
        LONG target = 0;
        if (direction == NAVDIR_FIRSTCHILD && V_I4(&start) == CHILDID_SELF) target = 1;
        if (direction == NAVDIR_LASTCHILD && V_I4(&start) == CHILDID_SELF) target = count;
        if (direction == NAVDIR_NEXT && V_I4(&start) != CHILDID_SELF) target = V_I4(&start) + 1;
        if (direction == NAVDIR_PREVIOUS && V_I4(&start) != CHILDID_SELF) target = V_I4(&start) - 1;
        if (target < 1 || target > count) return S_FALSE;
        SetInteger(end, target);
        return S_OK;
    });
}

HRESULT AccessibleView::accHitTest(LONG x, LONG y, VARIANT* child) noexcept {
    if (child == nullptr) return E_POINTER;
    VariantInit(child);
    if (m_display == nullptr) return CO_E_OBJNOTCONNECTED;
    POINT point = {x, y};
    RECT client = {};
    ScreenToClient(m_window, &point);
    GetClientRect(m_window, &client);
    if (!PtInRect(&client, point)) return S_FALSE;
    const Hit hit = HitTest(m_display->model, m_display->view.ToPage(point.x, point.y), -1, 0);
    SetInteger(child, ChildOf(m_display->model, hit.id));
    return S_OK;
}

HRESULT AccessibleView::accDoDefaultAction(VARIANT child) noexcept {
    return accSelect(SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION, child);
}

}  // namespace folium
