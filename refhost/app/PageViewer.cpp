#include "refhost/app/PageViewer.h"

#include <comdef.h>

#include <iterator>
#include <string>

#include "host/HostIds.h"
#include "host/PageImage.h"
#include "refhost/app/Console.h"
#include "refhost/app/Text.h"

// The system's ActiveX container, which no header of the toolchain declares.
extern "C" {
BOOL WINAPI AtlAxWinInit(void);
HRESULT WINAPI AtlAxCreateControl(LPCOLESTR name, HWND window, IStream* stream, IUnknown** container);
HRESULT WINAPI AtlAxGetControl(HWND window, IUnknown** control);
}

namespace zonhost {

namespace {

template <class Interface>
using Pointer = _com_ptr_t<_com_IIID<Interface, &__uuidof(Interface)>>;

constexpr const wchar_t* kClassName = L"ZonhostPageViewer";
constexpr LONG kEditMode = 1;

enum Command : UINT { kWholePage = 100, kPageWidth, kPageHeight, kFullSize, kSmooth, kNextPage, kPreviousPage, kClose };

HMENU MakeMenu() {
    HMENU view = CreatePopupMenu();
    AppendMenuW(view, MF_STRING, kWholePage, L"Whole &page");
    AppendMenuW(view, MF_STRING, kPageWidth, L"Page &width");
    AppendMenuW(view, MF_STRING, kPageHeight, L"Page &height");
    AppendMenuW(view, MF_STRING, kFullSize, L"&100 %");
    AppendMenuW(view, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(view, MF_STRING, kSmooth, L"&Smooth images");
    AppendMenuW(view, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(view, MF_STRING, kNextPage, L"&Next page\tCtrl+PageDown");
    AppendMenuW(view, MF_STRING, kPreviousPage, L"P&revious page\tCtrl+PageUp");
    AppendMenuW(view, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(view, MF_STRING, kClose, L"&Close\tAlt+F4");
    HMENU bar = CreateMenu();
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(view), L"&View");
    return bar;
}

// The encoded image of a page in a page image; null when the page cannot be had.
Pointer<IPageImage> LoadImageOf(IQuirePage* page) {
    Pointer<IImageSource> source;
    Pointer<IUnknown> unknown;
    Pointer<IImageData> data;
    SAFEARRAY* bytes = nullptr;
    if (page == nullptr || FAILED(page->GetImageSource(&source)) || source == nullptr ||
        FAILED(source->GetData(&unknown)) || unknown == nullptr ||
        FAILED(unknown->QueryInterface(__uuidof(IImageData), reinterpret_cast<void**>(&data))) ||
        FAILED(data->GetBytes(&bytes)) || bytes == nullptr) {
        return nullptr;
    }
    Pointer<IPageImage> image;
    Pointer<IImageLoader> loader;
    void* content = nullptr;
    if (SUCCEEDED(SafeArrayAccessData(bytes, &content))) {
        const auto length = static_cast<LONG>(bytes->rgsabound[0].cElements);
        if (FAILED(CoCreateInstance(host::kClsidPageImage, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IPageImage),
                                    reinterpret_cast<void**>(&image))) ||
            FAILED(image->QueryInterface(__uuidof(IImageLoader), reinterpret_cast<void**>(&loader))) ||
            FAILED(loader->LoadFromMemory(static_cast<const BYTE*>(content), length))) {
            image = nullptr;
        }
        SafeArrayUnaccessData(bytes);
    }
    SafeArrayDestroy(bytes);
    return image;
}

}  // namespace

PageViewer::~PageViewer() {
    if (m_folium != nullptr) m_folium->Release();
    if (m_window != nullptr) DestroyWindow(m_window);
}

void PageViewer::Open() {
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = WindowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // the arrow
    windowClass.lpszClassName = kClassName;
    RegisterClassExW(&windowClass);
    m_window = CreateWindowExW(0, kClassName, L"zonhost", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT,
                               CW_USEDEFAULT, 900, 1000, nullptr, MakeMenu(), windowClass.hInstance, this);
    if (m_window == nullptr) {
        throw CommandError(ExitCode::kNothingDone, "no window can be made: " + SystemMessage(GetLastError()));
    }
    CreateControl();
    if (!ShowPage(0, 0)) throw CommandError(ExitCode::kNothingDone, "the first page cannot be shown");
    m_folium->UpdateView();
    ShowWindow(m_window, SW_SHOW);
    SetFocus(m_control);
}

void PageViewer::CreateControl() {
    RECT client;
    GetClientRect(m_window, &client);
    wchar_t classText[40];
    StringFromGUID2(host::kClsidFolium, classText, static_cast<int>(std::size(classText)));
    AtlAxWinInit();
    m_control = CreateWindowExW(0, L"AtlAxWin", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 0, client.right,
                                client.bottom, m_window, nullptr, GetModuleHandleW(nullptr), nullptr);
    Pointer<IUnknown> control;
    if (m_control == nullptr || FAILED(AtlAxCreateControl(classText, m_control, nullptr, nullptr)) ||
        FAILED(AtlAxGetControl(m_control, &control)) || control == nullptr ||
        FAILED(control->QueryInterface(__uuidof(IFolium), reinterpret_cast<void**>(&m_folium)))) {
        throw CommandError(ExitCode::kNothingDone, "the page display control Folium.dll cannot be opened");
    }
    FoliumDisplayOptions options = {};
    m_folium->GetDisplayOptions(&options);
    options.background = GetSysColor(COLOR_3DLIGHT);
    options.smooth = 1;
    m_folium->SetDisplayOptions(&options);
    m_folium->SetMode(kEditMode);
    OnCommand(kWholePage);
}

void PageViewer::Run() {
    MSG message;
    while (m_window != nullptr && GetMessageW(&message, nullptr, 0, 0) > 0) {
        const bool turn = message.message == WM_KEYDOWN && GetKeyState(VK_CONTROL) < 0 &&
                          (message.wParam == VK_NEXT || message.wParam == VK_PRIOR);
        if (turn) {
            Turn(message.wParam == VK_NEXT ? 1 : -1);
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

LRESULT CALLBACK PageViewer::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        SetWindowLongPtrW(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
    }
    auto* viewer = reinterpret_cast<PageViewer*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (viewer == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    switch (message) {
        case WM_SIZE:
            MoveWindow(viewer->m_control, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
            return 0;
        case WM_SETFOCUS:
            SetFocus(viewer->m_control);
            return 0;
        case WM_COMMAND:
            viewer->OnCommand(LOWORD(wParam));
            return 0;
        case WM_DESTROY:
            viewer->m_window = nullptr;
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcW(window, message, wParam, lParam);
    }
}

void PageViewer::OnCommand(UINT command) {
    const auto zoom = [this](int32_t mode, int32_t percent) {
        const FoliumZoom setting = {mode, percent};
        m_folium->SetZoom(&setting);
    };
    FoliumDisplayOptions options = {};
    switch (command) {
        case kWholePage:
            return zoom(kFoliumZoomWholePage, 0);
        case kPageWidth:
            return zoom(kFoliumZoomPageWidth, 0);
        case kPageHeight:
            return zoom(kFoliumZoomPageHeight, 0);
        case kFullSize:
            return zoom(kFoliumZoomPercent, 100);
        case kSmooth:
            m_folium->GetDisplayOptions(&options);
            options.smooth = options.smooth == 0 ? 1 : 0;
            m_folium->SetDisplayOptions(&options);
            return;
        case kNextPage:
            return Turn(1);
        case kPreviousPage:
            return Turn(-1);
        case kClose:
            SendMessageW(m_window, WM_CLOSE, 0, 0);
            return;
        default:
            return;
    }
}

// On through the pages of a document and on to the next document, back likewise.
void PageViewer::Turn(LONG step) {
    if (ShowPage(m_document, m_page + step)) return;
    if (step > 0) {
        ShowPage(m_document + 1, 0);
        return;
    }
    Pointer<IQuireDocument> previous;
    LONG pages = 0;
    if (m_document > 0 && SUCCEEDED(m_quire->GetItem(m_document - 1, &previous)) && previous != nullptr &&
        SUCCEEDED(previous->GetCount(&pages))) {
        ShowPage(m_document - 1, pages - 1);
    }
}

bool PageViewer::ShowPage(LONG document, LONG page) {
    Pointer<IQuireDocument> item;
    Pointer<IQuirePage> source;
    LONG documents = 0;
    LONG pages = 0;
    LONGLONG unused = 0;
    if (FAILED(m_quire->GetCount(&documents)) || document < 0 || document >= documents ||
        FAILED(m_quire->GetItem(document, &item)) || item == nullptr || FAILED(item->GetCount(&pages)) || page < 0 ||
        page >= pages || FAILED(item->GetItem(page, &source))) {
        return false;
    }
    const auto image = LoadImageOf(source);
    if (image == nullptr || FAILED(m_folium->ShowPage(image, &unused))) return false;
    m_document = document;
    m_page = page;
    ShowTitle(pages);
    return true;
}

void PageViewer::ShowTitle(LONG pages) {
    const std::wstring title = L"zonhost - document " + std::to_wstring(m_document + 1) + L", page " +
                               std::to_wstring(m_page + 1) + L" of " + std::to_wstring(pages);
    SetWindowTextW(m_window, title.c_str());
}

}  // namespace zonhost
