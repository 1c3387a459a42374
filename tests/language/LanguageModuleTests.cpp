// What a language's texts have to keep: the places of a message's arguments, keys of their own, the room of their
// controls. The module's own texts have to as well.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <cwctype>

#include "resource.h"

namespace {

using Texts = std::vector<std::wstring>;

constexpr const wchar_t* kOwn = L"Zonwick.dll";

// The characters behind each `mark` of the texts, upper case and sorted.
std::wstring Behind(wchar_t mark, const Texts& texts) {
    std::wstring marked;
    for (const std::wstring& text : texts) {
        for (size_t i = 1; i < text.size(); ++i) {
            if (text[i - 1] == mark) marked += static_cast<wchar_t>(std::towupper(text[i]));
        }
    }
    std::ranges::sort(marked);
    return marked;
}

// Keys that stand more than once.
std::wstring Repeated(const Texts& texts) {
    const std::wstring keys = Behind(L'&', texts);
    const size_t twice = static_cast<size_t>(std::ranges::adjacent_find(keys) - keys.begin());
    return keys.substr(twice, 1);
}

struct Module {
    explicit Module(const wchar_t* name)
        : handle(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE)) {}
    ~Module() { FreeLibrary(handle); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    std::wstring Text(UINT id) const {
        wchar_t text[1024] = {};
        LoadStringW(handle, id, text, 1024);
        return text;
    }
    const HMODULE handle;
};

class LanguageModule : public testing::TestWithParam<const wchar_t*> {
protected:
    Module m_own{kOwn}, m_module{GetParam()};
    bool m_translated = std::wcscmp(GetParam(), kOwn) != 0;
};

TEST_P(LanguageModule, MessagesAreTranslatedWithTheirArguments) {
    int sentences = 0;
    for (UINT id = IDS_WIDTH; id <= IDS_MANAGE_NOT_CREATED; ++id) {
        SCOPED_TRACE(id);
        const std::wstring own = m_own.Text(id), other = m_module.Text(id);
        EXPECT_EQ(other.empty(), own.empty());
        EXPECT_EQ(Behind(L'%', {other}), Behind(L'%', {own}));
        if (own.size() <= 20) continue;
        EXPECT_EQ(other != own, m_translated);
        ++sentences;
    }
    EXPECT_GT(sentences, 10);
}

void ExpectKeysOfTheirOwn(HMENU menu) {
    Texts texts;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        wchar_t text[256] = {};
        GetMenuStringW(menu, static_cast<UINT>(i), text, 256, MF_BYPOSITION);
        texts.emplace_back(text);
        if (const HMENU below = GetSubMenu(menu, i)) ExpectKeysOfTheirOwn(below);
    }
    EXPECT_FALSE(texts.empty());
    EXPECT_EQ(Repeated(texts), L"");
}

TEST_P(LanguageModule, EntriesOfAMenuHaveKeysOfTheirOwn) {
    const HMENU menu = LoadMenuW(m_module.handle, MAKEINTRESOURCEW(IDR_CONFIG_MENU));
    ExpectKeysOfTheirOwn(menu);
    DestroyMenu(menu);
}

struct Control {
    std::wstring text;
    RECT place;
    SIZE needed, room;
    bool groupBox;
};

SIZE SizeOfText(HDC dc, const std::wstring& text) {
    RECT needed = {};
    DrawTextW(dc, text.c_str(), -1, &needed, DT_CALCRECT | DT_SINGLELINE);
    return {needed.right, needed.bottom};
}

std::vector<Control> Measure(HWND dialog, HDC dc) {
    std::vector<Control> controls;
    SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(dialog, WM_GETFONT, 0, 0)));
    for (HWND window = GetWindow(dialog, GW_CHILD); window != nullptr; window = GetWindow(window, GW_HWNDNEXT)) {
        wchar_t text[256] = {}, className[64] = {};
        GetWindowTextW(window, text, 256);
        const int id = GetDlgCtrlID(window);
        if (id == IDC_CONFIG_LIST_LABEL || id == IDC_CONFIG_SIZE_LABEL || id == IDC_CONFIG_POSITION_LABEL) {
            std::wcscat(text, L" [mm]:");  // as the dialog does
        }
        GetClassNameW(window, className, 64);
        RECT place, client;
        GetWindowRect(window, &place);
        GetClientRect(window, &client);
        // What of a button's width is not for its text.
        const bool button = std::wcscmp(className, L"Button") == 0;
        const LONG kind = GetWindowLongW(window, GWL_STYLE) & BS_TYPEMASK;
        const int taken = !button ? 0 : kind == BS_GROUPBOX || kind == BS_AUTORADIOBUTTON ? 18 : 8;
        controls.push_back(
            {text, place, SizeOfText(dc, text), {client.right - taken, client.bottom}, button && kind == BS_GROUPBOX});
    }
    return controls;
}

void ExpectNoOverlap(const Control& one, const Control& other) {
    RECT both;
    if (one.groupBox || other.groupBox || !IntersectRect(&both, &one.place, &other.place)) return;
    EXPECT_TRUE(EqualRect(&both, &one.place) || EqualRect(&both, &other.place))
        << testing::PrintToString(one.text) << " and " << testing::PrintToString(other.text);
}

TEST_P(LanguageModule, TextsFitTheirControlsAndHaveKeysOfTheirOwn) {
    // Classes that others bring into the process; here only their windows matter.
    for (const wchar_t* name : {L"AtlAxWin", L"HostListTable"}) {
        WNDCLASSW known = {};
        known.lpfnWndProc = DefWindowProcW;
        known.hInstance = GetModuleHandleW(nullptr);
        known.lpszClassName = name;
        RegisterClassW(&known);
    }
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    const HFONT captionFont = CreateFontIndirectW(&metrics.lfCaptionFont);
    for (const int id : {IDD_PAPER_SIZE, IDD_SET_CONFIG, IDD_MANAGE}) {
        SCOPED_TRACE(id);
        const HRSRC found = FindResourceW(m_module.handle, MAKEINTRESOURCEW(id), RT_DIALOG);
        const HWND dialog = CreateDialogIndirectParamW(
            GetModuleHandleW(nullptr), static_cast<DLGTEMPLATE*>(LockResource(LoadResource(m_module.handle, found))),
            nullptr, [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
        ASSERT_NE(dialog, nullptr);
        const HDC dc = GetDC(dialog);
        EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSX), 96);
        Texts texts;
        const std::vector<Control> controls = Measure(dialog, dc);
        for (const Control& control : controls) {
            texts.push_back(control.text);
            EXPECT_LE(control.needed.cx, control.room.cx) << testing::PrintToString(control.text);
            EXPECT_TRUE(control.text.empty() || control.needed.cy <= control.room.cy);
            for (const Control* other = controls.data(); other != &control; ++other) ExpectNoOverlap(*other, control);
        }
        // The module's own texts have one key for two controls.
        EXPECT_EQ(Repeated(texts), !m_translated && id == IDD_MANAGE ? L"S" : L"");

        wchar_t caption[256] = {};
        GetWindowTextW(dialog, caption, 256);
        RECT client;
        GetClientRect(dialog, &client);
        SelectObject(dc, captionFont);
        EXPECT_LE(SizeOfText(dc, caption).cx, client.right - 2 * GetSystemMetrics(SM_CXSIZE));
        ReleaseDC(dialog, dc);
        DestroyWindow(dialog);
    }
    DeleteObject(captionFont);
}

INSTANTIATE_TEST_SUITE_P(All, LanguageModule, testing::Values(kOwn, LANGUAGE_MODULES));

}  // namespace
