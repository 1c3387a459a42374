// Every language module against the module's own resources, and that the texts of each fit their controls.
#include <gtest/gtest.h>

#include <cwchar>
#include <cwctype>
#include <ostream>
#include <regex>

#include "language/ResourceReader.h"
#include "resource.h"

namespace {

using test::DialogTemplate;
using test::ResourceReader;

constexpr const wchar_t* kOwn = L"Zonwick.dll";

// The letters after "&", upper case.
std::wstring Mnemonic(const std::wstring& text) {
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != L'&') continue;
        if (text[i + 1] != L'&') return {static_cast<wchar_t>(std::towupper(text[i + 1]))};
        ++i;
    }
    return {};
}

// Those that stand more than once.
std::wstring Repeated(const std::vector<std::wstring>& texts) {
    std::wstring seen, repeated;
    for (const std::wstring& text : texts) {
        const std::wstring letter = Mnemonic(text);
        if (!letter.empty()) (seen.find(letter) != std::wstring::npos ? repeated : seen) += letter;
    }
    return repeated;
}

// Arguments of a format in their order; numbered ones ("%1") may stand in any.
std::vector<std::wstring> Placeholders(const std::wstring& text) {
    static const std::wregex pattern(
        L"%(\\d+(?!\\d|[a-zA-Z]|\\.\\d)|[-+ #0]*\\d*(\\.\\d+)?(hh|h|ll|l|I64|z)?[a-zA-Z])");
    std::vector<std::wstring> numbered, found;
    for (std::wsregex_iterator it(text.begin(), text.end(), pattern), end; it != end; ++it) {
        (std::iswdigit(it->str().back()) ? numbered : found).push_back(it->str());
    }
    std::sort(numbered.begin(), numbered.end());
    found.insert(found.end(), numbered.begin(), numbered.end());
    return found;
}

class LanguageModule : public testing::TestWithParam<const wchar_t*> {
protected:
    ResourceReader m_own{kOwn}, m_module{GetParam()};
    bool m_translated = std::wcscmp(GetParam(), kOwn) != 0;
};

TEST_P(LanguageModule, HasTheSameResources) {
    EXPECT_EQ(m_module.All(), m_own.All());
}

TEST_P(LanguageModule, DialogsDifferInTextsAndPlacesAlone) {
    for (const WORD id : m_own.IdsOf(RT_DIALOG)) {
        SCOPED_TRACE(id);
        const DialogTemplate own = m_own.Dialog(id), other = m_module.Dialog(id);
        EXPECT_EQ(other.style, own.style);
        EXPECT_EQ(other.extendedStyle, own.extendedStyle);
        EXPECT_EQ(other.menu + other.className, own.menu + own.className);
        EXPECT_EQ(other.font, own.font);
        EXPECT_EQ(other.pointSize, own.pointSize);
        EXPECT_FALSE(other.caption.empty());
        ASSERT_EQ(other.items.size(), own.items.size());
        for (size_t i = 0; i < own.items.size(); ++i) {
            SCOPED_TRACE(own.items[i].id);
            EXPECT_EQ(other.items[i].id, own.items[i].id);
            EXPECT_EQ(other.items[i].className, own.items[i].className);
            EXPECT_EQ(other.items[i].style, own.items[i].style);
            EXPECT_EQ(other.items[i].extendedStyle, own.items[i].extendedStyle);
            EXPECT_EQ(other.items[i].title.empty(), own.items[i].title.empty());
        }
    }
}

TEST_P(LanguageModule, MenusHaveTheSameCommands) {
    for (const WORD id : m_own.IdsOf(RT_MENU)) {
        SCOPED_TRACE(id);
        const auto own = m_own.Menu(id), other = m_module.Menu(id);
        ASSERT_EQ(other.size(), own.size());
        std::map<int, std::vector<std::wstring>> open;
        for (size_t i = 0; i < own.size(); ++i) {
            EXPECT_EQ(other[i].command, own[i].command) << i;
            EXPECT_EQ(other[i].depth, own[i].depth) << i;
            EXPECT_EQ(other[i].submenu, own[i].submenu) << i;
            EXPECT_FALSE(other[i].text.empty());
            open[other[i].depth].push_back(other[i].text);
            if (other[i].submenu) open[other[i].depth + 1].clear();
            EXPECT_EQ(Repeated(open[other[i].depth]), L"");
        }
    }
}

TEST_P(LanguageModule, StringsTakeTheSameArguments) {
    const auto own = m_own.Strings(), other = m_module.Strings();
    ASSERT_EQ(other.size(), own.size());
    for (const auto& [id, text] : own) {
        SCOPED_TRACE(id);
        ASSERT_EQ(other.count(id), 1u);
        EXPECT_EQ(Placeholders(other.at(id)), Placeholders(text));
        if (m_translated && text.size() > 20) {
            EXPECT_NE(other.at(id), text) << "not translated";
        }
    }
}

// The module's own texts have one key for two controls.
TEST_P(LanguageModule, NoTwoControlsOfADialogHaveTheSameKey) {
    for (const WORD id : m_own.IdsOf(RT_DIALOG)) {
        std::vector<std::wstring> titles;
        for (const auto& item : m_module.Dialog(id).items) titles.push_back(item.title);
        EXPECT_EQ(Repeated(titles), !m_translated && id == IDD_MANAGE ? L"S" : L"") << id;
    }
}

// What of a control's width is not for its text.
int Taken(HWND control, const std::wstring& className) {
    if (className != L"Button") return 0;
    switch (GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK) {
        case BS_GROUPBOX:
            return 18;
        case BS_AUTORADIOBUTTON:
            return 18;
        default:
            return 8;
    }
}

struct Placed {
    std::wstring text, className;
    RECT rect;
    SIZE needed, room;
    bool groupBox;
};

std::vector<Placed> Measure(HWND dialog) {
    std::vector<Placed> controls;
    const HDC dc = GetDC(dialog);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSX), 96);
    SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(dialog, WM_GETFONT, 0, 0)));
    for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr; control = GetWindow(control, GW_HWNDNEXT)) {
        wchar_t text[256] = {}, className[64] = {};
        GetWindowTextW(control, text, 256);
        const int id = GetDlgCtrlID(control);
        if (id == IDC_CONFIG_LIST_LABEL || id == IDC_CONFIG_SIZE_LABEL || id == IDC_CONFIG_POSITION_LABEL) {
            wcscat(text, L" [mm]:");  // as the dialog does
        }
        GetClassNameW(control, className, 64);
        RECT rect, client, needed = {};
        GetWindowRect(control, &rect);
        GetClientRect(control, &client);
        DrawTextW(dc, text, -1, &needed, DT_CALCRECT | DT_SINGLELINE);
        const bool groupBox =
            std::wcscmp(className, L"Button") == 0 && (GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
        controls.push_back({text,
                            className,
                            rect,
                            {needed.right, needed.bottom},
                            {client.right - Taken(control, className), client.bottom},
                            groupBox});
    }
    ReleaseDC(dialog, dc);
    return controls;
}

bool Inside(const RECT& inner, const RECT& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

// Classes that others bring into the process; here only their windows matter.
void RegisterStandIns() {
    for (const wchar_t* name : {L"AtlAxWin", L"HostListTable"}) {
        WNDCLASSW known = {};
        known.lpfnWndProc = DefWindowProcW;
        known.hInstance = GetModuleHandleW(nullptr);
        known.lpszClassName = name;
        RegisterClassW(&known);
    }
}

void ExpectNothingOverlaps(const std::vector<Placed>& controls) {
    for (size_t i = 0; i < controls.size(); ++i) {
        for (size_t k = i + 1; k < controls.size(); ++k) {
            const Placed &one = controls[i], &other = controls[k];
            RECT both;
            if (one.groupBox || other.groupBox || !IntersectRect(&both, &one.rect, &other.rect)) continue;
            EXPECT_TRUE(Inside(one.rect, other.rect) || Inside(other.rect, one.rect))
                << testing::PrintToString(one.text) << " and " << testing::PrintToString(other.text);
        }
    }
}

TEST_P(LanguageModule, TextsFitTheirControls) {
    RegisterStandIns();
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    const HFONT captionFont = CreateFontIndirectW(&metrics.lfCaptionFont);
    for (const WORD id : m_own.IdsOf(RT_DIALOG)) {
        SCOPED_TRACE(id);
        const auto* data = static_cast<const DLGTEMPLATE*>(m_module.Data(RT_DIALOG, id));
        const HWND dialog = CreateDialogIndirectParamW(
            GetModuleHandleW(nullptr), data, nullptr, [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
        ASSERT_NE(dialog, nullptr);
        const auto controls = Measure(dialog);
        for (const Placed& control : controls) {
            EXPECT_LE(control.needed.cx, control.room.cx) << testing::PrintToString(control.text);
            if (!control.text.empty()) {
                EXPECT_LE(control.needed.cy, control.room.cy);
            }
        }
        ExpectNothingOverlaps(controls);

        const std::wstring caption = m_module.Dialog(id).caption;
        RECT client, needed = {};
        GetClientRect(dialog, &client);
        const HDC dc = GetDC(dialog);
        SelectObject(dc, captionFont);
        DrawTextW(dc, caption.c_str(), -1, &needed, DT_CALCRECT | DT_SINGLELINE);
        ReleaseDC(dialog, dc);
        EXPECT_LE(needed.right, client.right - 2 * GetSystemMetrics(SM_CXSIZE));
        DestroyWindow(dialog);
    }
    DeleteObject(captionFont);
}

INSTANTIATE_TEST_SUITE_P(All, LanguageModule, testing::Values(kOwn, LANGUAGE_MODULES),
                         [](const testing::TestParamInfo<const wchar_t*>& module) {
                             std::string name;
                             for (const wchar_t* at = module.param; *at != L'\0'; ++at) {
                                 if (std::iswalnum(*at)) name += static_cast<char>(*at);
                             }
                             return name;
                         });

}  // namespace
