// The control's own interface and its events.
#include "refhost/folium/FoliumControl.h"

#include "refhost/folium/FoliumModes.h"
#include "refhost/folium/TypeLibrary.h"

namespace folium {

namespace {

constexpr SIZEL kFirstExtent = {10000, 14000};

Rect ToRect(const FoliumRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

}  // namespace

FoliumControl::FoliumControl()
    : m_display([this](const Event& event) {
          // What the event is about is on the screen before the listener answers, with a menu or a box say.
          m_window.ShapesChanged();
          m_window.Notify(event);
          Fire(static_cast<DISPID>(event.kind), {event.id});
      }),
      m_extent(kFirstExtent) {}

FoliumControl::~FoliumControl() {
    // There are no references left that the window's last messages could add to.
    m_window.Disown();
    m_window.Destroy();
}

HRESULT FoliumControl::QueryOther(REFIID iid, void** object) {
    if (iid == IID_IOleWindow) {
        *object = static_cast<IOleWindow*>(static_cast<IOleInPlaceObject*>(this));
    } else if (iid == IID_IViewObject) {
        *object = static_cast<IViewObject*>(this);
    } else if (iid == IID_IPersist) {
        *object = static_cast<IPersist*>(this);
    } else if (iid == IID_IProvideClassInfo) {
        *object = static_cast<IProvideClassInfo*>(this);
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

template <class Body>
HRESULT FoliumControl::Operate(Body body) noexcept {
    const ComPtr<IFolium> keep(this);
    return com::Guard([&]() -> HRESULT {
        const HRESULT status = body();
        m_window.ShapesChanged();
        return status;
    });
}

void FoliumControl::Fire(DISPID event, std::initializer_list<LONG> arguments) noexcept {
    if (m_frozen == 0) m_events.Fire(event, arguments);
}

HRESULT FoliumControl::ShowPage(IPageImage* page, LONGLONG* unused) noexcept {
    if (unused != nullptr) *unused = 0;
    if (page == nullptr) return E_POINTER;
    return Operate([&] {
        const HRESULT status = m_display.ShowPage(page);
        if (SUCCEEDED(status)) m_window.ViewChanged();
        return status;
    });
}

HRESULT FoliumControl::SetZoom(const FoliumZoom* zoom) noexcept {
    if (zoom == nullptr) return E_POINTER;
    return Operate([&]() -> HRESULT {
        if (!m_display.view.SetZoom(static_cast<ZoomMode>(zoom->mode), zoom->percent)) return E_INVALIDARG;
        m_window.ViewChanged();
        return S_OK;
    });
}

HRESULT FoliumControl::GetDisplayOptions(FoliumDisplayOptions* options) noexcept {
    if (options == nullptr) return E_POINTER;
    *options = m_display.Options();
    return S_OK;
}

HRESULT FoliumControl::SetDisplayOptions(const FoliumDisplayOptions* options) noexcept {
    if (options == nullptr) return E_POINTER;
    return Operate([&] {
        m_display.SetOptions(*options);
        m_window.ViewChanged();
        return S_OK;
    });
}

// While a set is loaded nothing is selected; what is added later is what the user works on next.
HRESULT FoliumControl::InsertRect(const FoliumRect* rect, LONG* id) noexcept {
    if (id != nullptr) *id = 0;
    if (rect == nullptr || id == nullptr) return E_POINTER;
    return Operate([&]() -> HRESULT {
        *id = m_display.model.Insert(ToRect(*rect), m_display.model.HasHistory());
        return *id == 0 ? E_OUTOFMEMORY : S_OK;
    });
}

HRESULT FoliumControl::DeleteRect(LONG id) noexcept {
    return Operate([&] {
        m_display.editor.Forget(id);
        return m_display.model.Delete(id) ? S_OK : E_INVALIDARG;
    });
}

HRESULT FoliumControl::SelectRect(LONG id) noexcept {
    return Operate([&]() -> HRESULT {
        const Rect* rect = m_display.model.Find(id);
        if (rect == nullptr) return E_INVALIDARG;
        if (m_display.view.Reveal(*rect)) m_window.ViewChanged();
        m_display.model.Select(id);
        return S_OK;
    });
}

HRESULT FoliumControl::SetMode(LONG mode) noexcept {
    if ((mode & ~(kFoliumModeEdit | kFoliumModeSeveral)) != 0) return E_INVALIDARG;
    return Operate([&] {
        m_display.editor.SetMode((mode & kFoliumModeEdit) != 0, (mode & kFoliumModeSeveral) != 0);
        m_window.ViewChanged();
        return S_OK;
    });
}

HRESULT FoliumControl::QueryRect(LONG id, FoliumRect* rect) noexcept {
    if (rect == nullptr) return E_POINTER;
    *rect = {};
    const Rect* found = m_display.model.Find(id);
    if (found == nullptr) return E_INVALIDARG;
    *rect = {0, 0, found->left, found->top, found->right, found->bottom};
    return S_OK;
}

// Positions of the pointer are told from the page's corner already.
HRESULT FoliumControl::GetPositionOffset(POINT* offset) noexcept {
    if (offset == nullptr) return E_POINTER;
    *offset = {};
    return S_OK;
}

// The end of the set-up: what the user does from now on can be undone.
HRESULT FoliumControl::UpdateView() noexcept {
    return Operate([&] {
        m_display.model.StartHistory();
        m_window.ViewChanged();
        return S_OK;
    });
}

HRESULT FoliumControl::UpdateRect(LONG id, const FoliumRect* rect) noexcept {
    if (rect == nullptr) return E_POINTER;
    return Operate([&] {
        m_display.editor.Forget(id);
        return m_display.model.Update(id, ToRect(*rect)) ? S_OK : E_INVALIDARG;
    });
}

void FoliumControl::OnPointerMoved(Point position) noexcept {
    Fire(kFoliumPointerMoved, {position.x, position.y});
}

void FoliumControl::OnContextMenu(int32_t id, int x, int y) noexcept {
    Fire(kFoliumContextMenuRequested, {id, x, y});
}

HRESULT FoliumControl::FreezeEvents(BOOL freeze) noexcept {
    if (freeze) {
        ++m_frozen;
    } else if (m_frozen > 0) {
        --m_frozen;
    }
    return S_OK;
}

HRESULT FoliumControl::GetTypeInfoCount(UINT* count) noexcept {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
}

HRESULT FoliumControl::GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return DISP_E_BADINDEX;
}

HRESULT FoliumControl::GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID, DISPID* ids) noexcept {
    for (UINT i = 0; ids != nullptr && i < count; ++i) ids[i] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
}

HRESULT FoliumControl::GetClassInfo(ITypeInfo** info) noexcept {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return com::Guard([&] { return MakeClassInfo(info); });
}

HRESULT FoliumControl::GetGUID(DWORD kind, GUID* guid) noexcept {
    if (guid == nullptr) return E_POINTER;
    *guid = host::kDiidFoliumEvents;
    return kind == GUIDKIND_DEFAULT_SOURCE_DISP_IID ? S_OK : E_INVALIDARG;
}

HRESULT FoliumControl::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
    return MakePointEnumerator(&m_events, points);
}

HRESULT FoliumControl::FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept {
    if (point == nullptr) return E_POINTER;
    *point = nullptr;
    // Some containers listen to whatever dispatch interface there is.
    if (iid != host::kDiidFoliumEvents && iid != IID_IDispatch) return CONNECT_E_NOCONNECTION;
    *point = &m_events;
    m_events.AddRef();
    return S_OK;
}

}  // namespace folium
