#include "folium/ControlHarness.h"

#include <ole2.h>

#include <algorithm>
#include <utility>

#include "win32/ControlHost.h"

std::ostream& operator<<(std::ostream& out, const FoliumRect& rect) {
    return out << rect.left << ',' << rect.top << ',' << rect.right << ',' << rect.bottom;
}

namespace test {

namespace {

constexpr wchar_t kFrameClass[] = L"FoliumTestFrame";

// COM for the thread of all tests.
class Environment final : public testing::Environment {
    void SetUp() override {
        SetProcessDPIAware();
        OleInitialize(nullptr);
    }
    void TearDown() override { OleUninitialize(); }
};
const auto* const g_environment = testing::AddGlobalTestEnvironment(new Environment);

BOOL CALLBACK FindControl(HWND window, LPARAM found) {
    wchar_t name[32] = {};
    GetClassNameW(window, name, 32);
    if (wcscmp(name, L"FoliumPage") == 0) *reinterpret_cast<HWND*>(found) = window;
    return TRUE;
}

}  // namespace

FoliumCounts FoliumLibrary::Counts() const {
    FoliumCounts counts = {};
    m_classes.Dll().Export<void WINAPI(FoliumCounts*)>("FoliumGetCounts")(&counts);
    return counts;
}

MemoryPicture::MemoryPicture(LONG width, LONG height)
    : m_dc(CreateCompatibleDC(nullptr)), m_count(static_cast<size_t>(width) * static_cast<size_t>(height)) {
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    m_before = SelectObject(m_dc, CreateDIBSection(m_dc, &info, DIB_RGB_COLORS, &m_bits, nullptr, 0));
}

MemoryPicture::~MemoryPicture() {
    DeleteObject(SelectObject(m_dc, m_before));
    DeleteDC(m_dc);
}

std::vector<uint32_t> MemoryPicture::Pixels() const {
    GdiFlush();
    const auto* const bits = static_cast<const uint32_t*>(m_bits);
    std::vector<uint32_t> pixels(bits, bits + m_count);
    for (uint32_t& pixel : pixels) pixel &= 0xffffff;
    return pixels;
}

int ControlHarness::Scaled(int pixels) {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return MulDiv(pixels, dpi, 96);
}

// Writes down what it is told.
class ControlHarness::Sink final : public com::Object<com::NoDispatch<IDispatch>> {
public:
    explicit Sink(ControlHarness& harness) : m_harness(harness) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (iid != IID_IUnknown && iid != IID_IDispatch && iid != host::kDiidFoliumEvents) return E_NOINTERFACE;
        *object = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                                     UINT*) noexcept override {
        const auto argument = [&](UINT i) { return V_I4(&parameters->rgvarg[parameters->cArgs - 1 - i]); };
        switch (event) {
            case kFoliumPointerMoved:
                m_harness.m_pointer = {argument(0), argument(1)};
                break;
            case kFoliumContextMenuRequested:
                m_harness.m_menuPlace = {argument(1), argument(2)};
                Tell("menu", argument(0));
                break;
            default: {
                const char* const names[] = {"selected", "changed", "added", "deleted"};
                Tell(names[event - kFoliumRectSelected], argument(0));
            }
        }
        if (m_harness.onEvent) m_harness.onEvent(event, argument(0));
        return S_OK;
    }

private:
    void Tell(const char* name, LONG id) {
        m_harness.m_told += std::string(m_harness.m_told.empty() ? "" : " ") + name + std::to_string(id);
    }
    ControlHarness& m_harness;
};

// One window for all tests: the end of a top-level window can take seconds where there is no window manager.
HWND ControlHarness::SharedFrame() {
    static HWND frame = [] {
        WNDCLASSW description = {};
        description.lpfnWndProc = FrameProc;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = kFrameClass;
        RegisterClassW(&description);
        return CreateWindowExW(WS_EX_CONTROLPARENT | WS_EX_TOPMOST, kFrameClass, L"Folium test", WS_POPUP | WS_VISIBLE,
                               40, 40, Scaled(500), Scaled(640), nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    }();
    SetFrame(frame);
    return frame;
}

ControlHarness::ControlHarness() : m_frame(SharedFrame()) {
    SetWindowLongPtrW(m_frame, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_host = win32::CreateControl(host::kClsidFolium, L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP,
                                  {0, 0, Scaled(500), Scaled(600)}, m_frame, 100);
    m_button = CreateWindowExW(0, L"BUTTON", L"Button", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, Scaled(600), Scaled(100),
                               Scaled(30), m_frame, nullptr, nullptr, nullptr);
    const ComPtr<IUnknown> control = win32::GetControlUnknown(m_host);
    control.GetInterfacePtr()->QueryInterface(&folium);
    EnumChildWindows(m_host, FindControl, reinterpret_cast<LPARAM>(&m_window));
    ComPtr<IConnectionPointContainer> container;
    control.GetInterfacePtr()->QueryInterface(&container);
    container->FindConnectionPoint(host::kDiidFoliumEvents, &m_point);
    const ComPtr<IDispatch> sink(new Sink(*this), false);
    EXPECT_EQ(m_point->Advise(sink, &m_cookie), S_OK);
    SetForegroundWindow(m_frame);
    SetFocus(m_window);
    Wait();
}

ControlHarness::~ControlHarness() {
    onEvent = nullptr;
    if (m_point != nullptr) m_point->Unadvise(m_cookie);
    DestroyWindows();
    SetWindowLongPtrW(m_frame, GWLP_USERDATA, 0);
}

void ControlHarness::DestroyWindows() {
    if (m_host != nullptr) DestroyWindow(m_host);
    if (m_button != nullptr) DestroyWindow(m_button);
    m_host = m_button = nullptr;
}

LRESULT CALLBACK ControlHarness::FrameProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<ControlHarness*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr && message == WM_COMMAND && HIWORD(wParam) == 0) self->m_commands.push_back(LOWORD(wParam));
    if (self != nullptr && message == WM_SYSCOMMAND && (wParam & 0xFFF0) == SC_KEYMENU) {
        self->m_commands.push_back(SC_KEYMENU);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void ControlHarness::SetUp(LONG mode) {
    const FoliumDisplayOptions options = {RGB(224, 224, 224), RGB(255, 0, 0), RGB(255, 200, 0), 0, 0, 0, 0, 1};
    folium->SetDisplayOptions(&options);
    SetZoom(kFoliumZoomPercent, 100);
    folium->SetMode(mode);
    LONGLONG unused = 0;
    EXPECT_EQ(folium->ShowPage(MakePage({2100, 2970}, 827, 1169), &unused), S_OK);
    folium->UpdateView();
    Wait();
    Told();
}

void ControlHarness::SetZoom(LONG mode, LONG percent) {
    const FoliumZoom zoom = {mode, percent};
    EXPECT_EQ(folium->SetZoom(&zoom), S_OK);
}

LONG ControlHarness::Insert(const FoliumRect& rect) {
    LONG id = 0;
    EXPECT_EQ(folium->InsertRect(&rect, &id), S_OK);
    Told();
    return id;
}

FoliumRect ControlHarness::At(LONG id) {
    FoliumRect rect = {};
    if (FAILED(folium->QueryRect(id, &rect))) rect = MakeRect(-1, -1, -1, -1);
    return rect;
}

// At 100 % and not scrolled: the page has a margin of 8 pixels.
POINT ControlHarness::OnScreen(POINT page) const {
    const auto convert = [](LONG units) { return Scaled(8) + static_cast<LONG>(units * Scaled(96) / 254.0 + 0.5); };
    POINT point = {convert(page.x), convert(page.y)};
    ClientToScreen(m_window, &point);
    return point;
}

ComPtr<IAccessible> ControlHarness::Accessible() const {
    ComPtr<IAccessible> accessible;
    EXPECT_EQ(AccessibleObjectFromWindow(m_window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                         reinterpret_cast<void**>(&accessible)),
              S_OK);
    return accessible;
}

RECT ControlHarness::Location(LONG child) const {
    LONG left = 0, top = 0, width = 0, height = 0;
    EXPECT_EQ(Accessible()->accLocation(&left, &top, &width, &height, _variant_t(child)), S_OK);
    return {left, top, left + width, top + height};
}

void ControlHarness::Resize(int width, int height) {
    SetWindowPos(m_host, nullptr, 0, 0, Scaled(width), Scaled(height), SWP_NOMOVE | SWP_NOZORDER);
    Wait();
}

std::vector<uint32_t> ControlHarness::Pixels() const {
    Wait();
    RECT rect = {};
    GetClientRect(m_window, &rect);
    const MemoryPicture picture(rect.right, rect.bottom);
    const HDC window = GetDC(m_window);
    BitBlt(picture.Dc(), 0, 0, rect.right, rect.bottom, window, 0, 0, SRCCOPY);
    ReleaseDC(m_window, window);
    return picture.Pixels();
}

int ControlHarness::PixelsOf(COLORREF color) {
    const uint32_t wanted = static_cast<uint32_t>(GetRValue(color)) << 16 |
                            static_cast<uint32_t>(GetGValue(color)) << 8 | static_cast<uint32_t>(GetBValue(color));
    const std::vector<uint32_t> pixels = Pixels();
    return static_cast<int>(std::count(pixels.begin(), pixels.end(), wanted));
}

}  // namespace test
