// "Configure Area Set": pages and documents, zoom and smoothing, and the view that is remembered.
#include "configdlg/ConfigFixture.h"

#include <commctrl.h>

namespace {

using namespace test;

const std::wstring kLetter = std::wstring(SAMPLES_DIR) + L"/letter.tif";
const std::wstring kFax = std::wstring(SAMPLES_DIR) + L"/fax-pages.tif";
constexpr UINT kButtons[] = {IDC_CONFIG_PREV_PAGE, IDC_CONFIG_NEXT_PAGE, IDC_CONFIG_PREV_DOC, IDC_CONFIG_NEXT_DOC};

// Which ways are open: "PNpn", upper case for pages, lower case for documents, "-" for a closed one.
std::string Ways(HWND dialog) {
    std::string ways;
    for (int i = 0; i < 4; ++i) ways += Enabled(dialog, kButtons[i]) ? "PNpn"[i] : '-';
    return ways;
}

void ExpectAreas(HWND dialog) {
    ASSERT_EQ(RowCount(dialog), 3);
    EXPECT_EQ(RectOfRow(dialog, 0), (RECT{100, 200, 300, 400}));
    EXPECT_EQ(RectOfRow(dialog, 1), (RECT{500, 600, 900, 1000}));
    EXPECT_EQ(RectOfRow(dialog, 2), (RECT{1200, 1500, 1800, 2200}));
}

// The popup menu that is open.
HMENU OpenMenu() {
    const HWND window = FindWindowW(L"#32768", nullptr);
    return window != nullptr ? reinterpret_cast<HMENU>(SendMessageW(window, 0x01E1 /* MN_GETHMENU */, 0, 0)) : nullptr;
}
std::string CheckedCommands(HMENU menu) {
    std::string text;
    for (UINT command = ID_SMOOTH_IMAGES; command <= ID_SCALE_LAST; ++command) {
        if (GetMenuState(menu, command, MF_BYCOMMAND) & MF_CHECKED) text += std::to_string(command) + " ";
    }
    return text;
}
void Command(HWND dialog, UINT command) {
    SendMessageW(dialog, WM_COMMAND, command, 0);
}

bool FitsItsText(HWND control) {
    wchar_t text[128] = {}, name[16] = {};
    GetWindowTextW(control, text, 128);
    GetClassNameW(control, name, 16);
    RECT client, needed;
    GetClientRect(control, &client);
    if (_wcsicmp(name, L"Button") == 0) {
        // The frame of a button, the circle of a choice.
        const LONG style = GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK;
        if (style == BS_GROUPBOX) return true;
        client.right -=
            style == BS_AUTORADIOBUTTON ? GetSystemMetrics(SM_CXMENUCHECK) : 2 * GetSystemMetrics(SM_CXEDGE);
    }
    const HDC dc = GetDC(control);
    const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    needed = client;
    DrawTextW(dc, text, -1, &needed, DT_CALCRECT | DT_WORDBREAK);
    SelectObject(dc, before);
    ReleaseDC(control, dc);
    return needed.right <= client.right && needed.bottom <= client.bottom;
}

// At every scaling of the screen, on every height of it.
void ExpectNothingCovered(HWND dialog) {
    constexpr UINT kParts[] = {IDC_CONFIG_FRAME,      IDC_CONFIG_NEXT_PAGE,  IDC_CONFIG_ADD,   IDC_CONFIG_IGNORED,
                               IDC_CONFIG_SIZE_LABEL, IDC_CONFIG_LIST_LABEL, IDC_CONFIG_LIST,  IDOK,
                               IDC_CONFIG_SIZE,       IDC_CONFIG_POSITION,   IDC_CONFIG_REMOVE};
    RECT window, screen;
    GetWindowRect(dialog, &window);
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
    EXPECT_TRUE(window.top >= screen.top && window.bottom <= screen.bottom && window.left >= screen.left &&
                window.right <= screen.right)
        << window << " on " << screen;
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        const int id = GetDlgCtrlID(child);
        const bool isText = id != IDC_CONFIG_PAGE && id != IDC_CONFIG_LIST && id != IDC_CONFIG_FRAME;
        EXPECT_TRUE(!isText || FitsItsText(child)) << id;
    }
    for (const UINT one : kParts) {
        RECT rect, other, both;
        GetWindowRect(GetDlgItem(dialog, static_cast<int>(one)), &rect);
        EXPECT_LE(rect.bottom, window.bottom) << one;
        for (const UINT another : kParts) {
            GetWindowRect(GetDlgItem(dialog, static_cast<int>(another)), &other);
            // Places in dialog units are rounded to pixels one by one.
            const bool touch = IntersectRect(&both, &rect, &other) && both.bottom - both.top > 1;
            EXPECT_FALSE(one < another && touch) << one << " and " << another;
        }
    }
}

class ConfigView : public ConfigDialog {
protected:
    void UseScannedPages() {
        m_tree->booleans[L"RadioPageSource"] = true;
        Init();
    }
};

TEST_F(ConfigView, WalkingThreeDocumentsKeepsTheAreas) {
    UseScannedPages();
    UsePages({kLetter, kFax, kLetter});
    KeepPages();
    std::wstring letter, fax;
    const auto push = [](UINT id) { return [=](HWND dialog) { Push(dialog, id); }; };
    const auto expect = [&](const char* ways, std::wstring& size) {
        return [ways, &size](HWND dialog) {
            EXPECT_EQ(Ways(dialog), ways);
            const std::wstring shown = TextOf(dialog, IDC_CONFIG_SIZE);
            if (size.empty()) size = shown;
            EXPECT_EQ(shown, size);
            ExpectAreas(dialog);
            // Keys still go somewhere when the button that was pressed is disabled now.
            EXPECT_TRUE(IsWindowEnabled(GetFocus()) && (GetFocus() == dialog || IsChild(dialog, GetFocus())));
        };
    };
    EXPECT_TRUE(PlaySet(5, {expect("---n", letter),
                            [](HWND dialog) {
                                SetFocus(GetDlgItem(dialog, IDC_CONFIG_NEXT_DOC));
                                PressKey(VK_SPACE);
                            },
                            expect("-Npn", fax), push(IDC_CONFIG_NEXT_PAGE),
                            [](HWND dialog) {
                                EXPECT_TRUE(Enabled(dialog, IDC_CONFIG_PREV_PAGE));
                                EXPECT_EQ(TextOf(dialog, IDC_CONFIG_POSITION), L"0, 0");
                                ExpectAreas(dialog);
                            },
                            push(IDC_CONFIG_PREV_PAGE), expect("-Npn", fax), push(IDC_CONFIG_NEXT_PAGE),
                            // The letter has fewer pages: its first one.
                            [](HWND dialog) { ClickOn(GetDlgItem(dialog, IDC_CONFIG_NEXT_DOC)); }, [](HWND) {},
                            expect("--p-", letter), push(IDC_CONFIG_PREV_DOC), expect("-Npn", fax), PressOk}));
    EXPECT_NE(letter, fax);
    EXPECT_EQ(StoredRects(5).size(), 3u);
    EXPECT_GT(WorkingSet(L"0x00000005").Child(L"DisplayRect")->integers[L"Position:right"], 0);
}

TEST_F(ConfigView, APageThatIsGoneIsTracedAndTheViewStays) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    const std::wstring gone = std::wstring(folder) + L"config-gone.tif";
    ASSERT_TRUE(CopyFileW(kLetter.c_str(), gone.c_str(), FALSE));
    UseScannedPages();
    UsePages({kFax, gone});
    KeepPages();
    std::wstring size;
    EXPECT_TRUE(PlaySet(
        5, {[&](HWND dialog) {
                size = TextOf(dialog, IDC_CONFIG_SIZE);
                DeleteFileW(gone.c_str());
                Push(dialog, IDC_CONFIG_NEXT_DOC);
            },
            [&](HWND dialog) {
                const std::wstring traces = TakeTraceTexts();
                EXPECT_TRUE(traces.ends_with(L"6 CSASetConfigDlg::OnNextDoc: page from Quire was not obtained.\n"))
                    << traces;
                EXPECT_EQ(TextOf(dialog, IDC_CONFIG_SIZE), size);
                EXPECT_EQ(Ways(dialog), "-N-n");
                ExpectAreas(dialog);
                Push(dialog, IDC_CONFIG_PREV_DOC);
            },
            [](HWND dialog) { EXPECT_EQ(Ways(dialog), "-N-n"); }, PressCancel}));
}

TEST_F(ConfigView, WithoutScannedPagesABlankOneOfThePaperSize) {
    m_tree->integers[L"RealWidth"] = 2159;
    m_tree->integers[L"RealHeight"] = 2794;
    UseScannedPages();
    std::vector<SAIndexField> fields = {Field(L"Total")};
    UsePages({});
    EXPECT_TRUE(PlayPage(fields, {[](HWND dialog) {
                                      EXPECT_EQ(TextOf(dialog, IDC_CONFIG_SIZE), L"215.9, 279.4");
                                      EXPECT_EQ(Ways(dialog), "----");
                                  },
                                  PressCancel}));
    TakeTraceTexts();
}

TEST_F(ConfigView, ZoomSmoothingAndColumnWidthsAreRemembered) {
    KeepPages();
    int width = 0;
    const auto columnWidth = [](HWND dialog) {
        return static_cast<int>(SendMessageW(ListOf(dialog), LVM_GETCOLUMNWIDTH, 1, 0));
    };
    Steps steps = {[](HWND dialog) {
                       ExpectNothingCovered(dialog);
                       EXPECT_TRUE(DisplayOptions(dialog).smooth);
                       Command(dialog, 27791);
                       MouseTo(OnPage(dialog, 500, 500));
                   },
                   [](HWND) {},
                   [](HWND) {
                       MouseButton(MOUSEEVENTF_RIGHTDOWN);
                       MouseButton(MOUSEEVENTF_RIGHTUP);
                   },
                   [](HWND) {},
                   [](HWND dialog) {
                       ASSERT_NE(OpenMenu(), nullptr);
                       EXPECT_EQ(CheckedCommands(OpenMenu()), "27785 27791 ");
                       Screenshot(dialog, L"config-menu");
                       PressKey(VK_UP);
                   },
                   [](HWND) { PressKey(VK_RETURN); },
                   [](HWND) {},
                   [&](HWND dialog) {
                       EXPECT_FALSE(DisplayOptions(dialog).smooth);
                       SendMessageW(ListOf(dialog), LVM_SETCOLUMNWIDTH, 1, 55);
                       width = columnWidth(dialog);
                   },
                   PressCancel};
    EXPECT_TRUE(PlaySet(5, steps));
    EXPECT_TRUE(PlaySet(5, {[&](HWND dialog) {
                                EXPECT_FALSE(DisplayOptions(dialog).smooth);
                                EXPECT_NEAR(columnWidth(dialog), width, 1);
                                MouseTo(OnPage(dialog, 400, 400));
                            },
                            [](HWND) {},
                            [](HWND) {
                                MouseButton(MOUSEEVENTF_RIGHTDOWN);
                                MouseButton(MOUSEEVENTF_RIGHTUP);
                            },
                            [](HWND) {},
                            [](HWND) {
                                EXPECT_EQ(CheckedCommands(OpenMenu()), "27791 ");
                                PressKey(VK_ESCAPE);
                            },
                            [](HWND) {}, PressCancel}));
}

// How many pixels of the page's window have a colour.
int PixelsOf(HWND dialog, COLORREF color) {
    const HWND page = PageOf(dialog);
    RECT rect = {};
    GetClientRect(page, &rect);
    const HDC window = GetDC(page);
    const HDC memory = CreateCompatibleDC(window);
    const HBITMAP bitmap = CreateCompatibleBitmap(window, rect.right, rect.bottom);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, rect.right, rect.bottom, window, 0, 0, SRCCOPY);
    int count = 0;
    for (int y = 0; y < rect.bottom; ++y) {
        for (int x = 0; x < rect.right; ++x) count += GetPixel(memory, x, y) == color ? 1 : 0;
    }
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(page, window);
    return count;
}

// Colours in which red and blue differ much, and which are told apart well enough that none is replaced.
TEST_F(ConfigView, AreasHaveTheColoursThatTheHostChose) {
    constexpr COLORREF kArea = RGB(200, 10, 30), kSelected = RGB(20, 180, 40), kSecond = RGB(250, 240, 20);
    const auto changeColors = reinterpret_cast<decltype(&::SAChangeColors)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"Zonwick.dll"), "SAChangeColors")));
    KeepPages();
    const auto look = [](HWND dialog, bool chosen, bool selected) {
        const FoliumDisplayOptions options = DisplayOptions(dialog);
        EXPECT_EQ(options.area1, chosen ? kArea : RGB(255, 255, 255));
        EXPECT_EQ(options.area2, chosen ? kSelected : RGB(255, 255, 255));
        EXPECT_EQ(options.area3, chosen ? kSecond : RGB(0, 0, 0));
        EXPECT_EQ(PixelsOf(dialog, kArea) > 50, chosen);
        EXPECT_EQ(PixelsOf(dialog, kSelected) > 50, selected);
        EXPECT_EQ(PixelsOf(dialog, kSecond) > 50, chosen);
        for (const COLORREF color : {kArea, kSelected, kSecond}) {
            EXPECT_EQ(PixelsOf(dialog, RGB(GetBValue(color), GetGValue(color), GetRValue(color))), 0) << color;
        }
    };
    EXPECT_TRUE(PlaySet(5, {[&](HWND dialog) {
                                changeColors(kArea, kSelected, kSecond);
                                SelectRow(dialog, 1);
                            },
                            [&](HWND dialog) { look(dialog, false, false); }, PressCancel}))
        << "a dialog that is open keeps its colours";
    EXPECT_TRUE(PlaySet(5, {[&](HWND dialog) { look(dialog, true, false); }, [](HWND dialog) { SelectRow(dialog, 1); },
                            [&](HWND dialog) { look(dialog, true, true); }, PressCancel}));
    std::vector<SAIndexField> fields = {Field(L"Total", {500, 500, 1500, 1000})};
    EXPECT_TRUE(PlayPage(fields, {[&](HWND dialog) { look(dialog, true, false); }, PressCancel}));
    changeColors(RGB(255, 255, 255), RGB(255, 255, 255), RGB(0, 0, 0));
    EXPECT_TRUE(PlaySet(5, {[&](HWND dialog) { look(dialog, false, false); }, PressCancel}));
}

TEST_F(ConfigView, AStoredViewThatMakesNoSenseIsLeftAside) {
    for (const int64_t scale : {int64_t{-1}, int64_t{0}, int64_t{27785}, int64_t{27796}, (int64_t{1} << 32) + 27791}) {
        m_tree->integers[L"LastScale"] = scale;
        m_tree->strings[L"ColumnsWidth"] = L"[%]-7,,x";
        Init();
        KeepPages();
        EXPECT_TRUE(PlaySet(5, {[](HWND dialog) {
                                    ExpectAreas(dialog);
                                    EXPECT_TRUE(DisplayOptions(dialog).smooth);
                                },
                                PressOk}));
        EXPECT_EQ(WorkingRoot().integers[L"LastScale"], 27793) << scale;
        EXPECT_EQ(WorkingRoot().strings[L"ColumnsWidth"], L"[%]250,250,250,250");
        EXPECT_TRUE(WorkingRoot().booleans[L"LastGrey"]);
    }
}

}  // namespace
