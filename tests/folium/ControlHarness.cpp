#include "folium/ControlHarness.h"

#include <ole2.h>
#include <oleacc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
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
                m_harness.m_menuId = argument(0);
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
    return frame;
}

ControlHarness::ControlHarness() : m_frame(SharedFrame()) {
    SetWindowLongPtrW(m_frame, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_host = win32::CreateControl(host::kClsidFolium, L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP,
                                  {0, 0, Scaled(500), Scaled(600)}, m_frame, 100);
    m_button = CreateWindowExW(0, L"BUTTON", L"Button", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, Scaled(600), Scaled(100),
                               Scaled(30), m_frame, nullptr, nullptr, nullptr);
    const ComPtr<IUnknown> control = win32::GetControlUnknown(m_host);
    if (control == nullptr) {
        std::fprintf(stderr, "the container has no control\n");
        std::abort();
    }
    control.GetInterfacePtr()->QueryInterface(&folium);
    EnumChildWindows(m_host, FindControl, reinterpret_cast<LPARAM>(&m_window));
    ComPtr<IConnectionPointContainer> container;
    control.GetInterfacePtr()->QueryInterface(&container);
    container->FindConnectionPoint(host::kDiidFoliumEvents, &m_point);
    const ComPtr<IDispatch> sink(new Sink(*this), false);
    EXPECT_EQ(m_point->Advise(sink, &m_cookie), S_OK);
    SetForegroundWindow(m_frame);
    Focus();
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
    const FoliumZoom zoom = {kFoliumZoomPercent, 100};
    folium->SetDisplayOptions(&options);
    folium->SetZoom(&zoom);
    folium->SetMode(mode);
    LONGLONG unused = 0;
    EXPECT_EQ(folium->ShowPage(MakePage({2100, 2970}, 827, 1169), &unused), S_OK);
    folium->UpdateView();
    Pump();
    Told();
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

RECT ControlHarness::Location(LONG child) const {
    IAccessible* accessible = nullptr;
    const HRESULT status = AccessibleObjectFromWindow(m_window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                                      reinterpret_cast<void**>(&accessible));
    EXPECT_EQ(status, S_OK);
    if (FAILED(status)) return {};
    VARIANT number = {};
    V_VT(&number) = VT_I4;
    V_I4(&number) = child;
    LONG left = 0, top = 0, width = 0, height = 0;
    EXPECT_EQ(accessible->accLocation(&left, &top, &width, &height, number), S_OK);
    accessible->Release();
    return {left, top, left + width, top + height};
}

void ControlHarness::Resize(int width, int height) {
    SetWindowPos(m_host, nullptr, 0, 0, Scaled(width), Scaled(height), SWP_NOMOVE | SWP_NOZORDER);
    Pump();
}

void ControlHarness::Focus() {
    SetFocus(m_window);
    Pump();
}

std::vector<uint32_t> ControlHarness::Pixels(SIZE& size) {
    Pump();
    RECT rect = {};
    GetClientRect(m_window, &rect);
    size = {rect.right, rect.bottom};
    std::vector<uint32_t> pixels(static_cast<size_t>(rect.right) * static_cast<size_t>(rect.bottom));
    const HDC window = GetDC(m_window), memory = CreateCompatibleDC(window);
    const HBITMAP bitmap = CreateCompatibleBitmap(window, rect.right, rect.bottom);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, rect.right, rect.bottom, window, 0, 0, SRCCOPY);
    SelectObject(memory, before);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, rect.right, -rect.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    GetDIBits(memory, bitmap, 0, static_cast<UINT>(rect.bottom), pixels.data(), &info, DIB_RGB_COLORS);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(m_window, window);
    for (uint32_t& pixel : pixels) pixel &= 0xffffff;
    return pixels;
}

int ControlHarness::PixelsOf(COLORREF color) {
    const uint32_t wanted = static_cast<uint32_t>(GetRValue(color)) << 16 |
                            static_cast<uint32_t>(GetGValue(color)) << 8 | static_cast<uint32_t>(GetBValue(color));
    SIZE size = {};
    const std::vector<uint32_t> pixels = Pixels(size);
    return static_cast<int>(std::count(pixels.begin(), pixels.end(), wanted));
}

}  // namespace test
