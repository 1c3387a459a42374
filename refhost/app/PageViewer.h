#pragma once
// A plain window with the page display control and the pages of a document stack.

#include <windows.h>

#include "host/DocumentStack.h"
#include "host/PageDisplay.h"

namespace zonhost {

class PageViewer {
public:
    explicit PageViewer(IQuire* quire) : m_quire(quire) {}
    ~PageViewer();
    PageViewer(const PageViewer&) = delete;
    PageViewer& operator=(const PageViewer&) = delete;

    // Opens the window; throws CommandError when it or the control cannot be made.
    void Open();
    // Until the window is closed.
    void Run();

private:
    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    void CreateControl();
    void OnCommand(UINT command);
    void Turn(LONG step);
    bool ShowPage(LONG document, LONG page);
    void ShowTitle(LONG pages);

    IQuire* m_quire;
    HWND m_window = nullptr;
    HWND m_control = nullptr;
    IFolium* m_folium = nullptr;
    LONG m_document = 0;
    LONG m_page = 0;
};

}  // namespace zonhost
