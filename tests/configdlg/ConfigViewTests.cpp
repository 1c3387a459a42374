// "Configure Area Set": pages and documents, zoom and smoothing, colours, and the view that is remembered.
#include "configdlg/ConfigFixture.h"

#include <commctrl.h>

#include <algorithm>

namespace {

using namespace test;

const std::wstring kLetter = std::wstring(SAMPLES_DIR) + L"/letter.tif";
const std::wstring kFax = std::wstring(SAMPLES_DIR) + L"/fax-pages.tif";

// Which ways are open: "PNpn", upper case for pages, lower case for documents, "-" for a closed one.
std::string Ways(HWND dialog) {
    std::string ways = "PNpn";
    constexpr UINT kButtons[] = {IDC_CONFIG_PREV_PAGE, IDC_CONFIG_NEXT_PAGE, IDC_CONFIG_PREV_DOC, IDC_CONFIG_NEXT_DOC};
    for (size_t i = 0; i < 4; ++i) {
        if (!Enabled(dialog, kButtons[i])) ways[i] = '-';
    }
    return ways;
}

FoliumDisplayOptions DisplayOptions(HWND dialog) {
    FoliumDisplayOptions options = {};
    FoliumOf(dialog)->GetDisplayOptions(&options);
    return options;
}

using ConfigView = ConfigDialog;

TEST_F(ConfigView, WalkingDocumentsKeepsTheAreas) {
    const struct {
        UINT button;
        const char* ways;
        bool fax;
    } turns[] = {{IDC_CONFIG_NEXT_DOC, "-Npn", true},  {IDC_CONFIG_NEXT_PAGE, "PNpn", true},
                 {IDC_CONFIG_PREV_PAGE, "-Npn", true}, {IDC_CONFIG_NEXT_PAGE, "PNpn", true},
                 {IDC_CONFIG_NEXT_PAGE, "P-pn", true}, {IDC_CONFIG_PREV_DOC, "---n", false},
                 {IDC_CONFIG_NEXT_DOC, "-Npn", true}};
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    const std::wstring gone = std::wstring(folder) + L"config-gone.tif";
    ASSERT_TRUE(CopyFileW(kLetter.c_str(), gone.c_str(), FALSE));
    m_tree->booleans[L"RadioPageSource"] = true;
    Init();
    UsePages({kLetter, kFax, gone});
    KeepPages();
    EXPECT_TRUE(PlaySet(5, [&](HWND dialog) {
        EXPECT_EQ(Ways(dialog), "---n");
        const std::wstring letter = TextOf(dialog, IDC_CONFIG_SIZE);
        const auto turn = [&](UINT button, const char* ways, bool fax) {
            SetFocus(GetDlgItem(dialog, static_cast<int>(button)));
            Key(VK_SPACE);
            EXPECT_EQ(Ways(dialog), ways);
            EXPECT_EQ(TextOf(dialog, IDC_CONFIG_SIZE) != letter, fax) << ways;
            EXPECT_EQ(TextOf(dialog, IDC_CONFIG_POSITION), L"0, 0");
            for (int row = 0; row < 3; ++row)
                EXPECT_EQ(RectOfRow(dialog, row), kInvoiceAreas[static_cast<size_t>(row)]);
            // Keys still go somewhere when the button that was pressed is disabled now.
            EXPECT_TRUE(IsWindowEnabled(GetFocus()) && (GetFocus() == dialog || IsChild(dialog, GetFocus())));
        };
        MoveTo(OnPage(dialog, 500, 500));
        for (const auto& [button, ways, fax] : turns) turn(button, ways, fax);
        ExpectNothingReported();
        DeleteFileW(gone.c_str());
        turn(IDC_CONFIG_NEXT_DOC, "-Npn", true);
        const std::wstring traces = TakeTraceTexts();
        EXPECT_TRUE(traces.ends_with(L"6 CSASetConfigDlg::OnNextDoc: page from Quire was not obtained.\n")) << traces;
        PressOk(dialog);
    }));
    EXPECT_EQ(StoredRects(5), kInvoiceAreas);
    EXPECT_GT(WorkingSet(L"0x00000005").Child(L"DisplayRect")->integers[L"Position:right"], 0);
}

// No error; such a host may hand over its settings in its own calls.
TEST_F(ConfigView, WithoutScannedPagesABlankOneOfThePaperSize) {
    m_tree->integers = {{L"RealWidth", 2159}, {L"RealHeight", 2794}};
    m_tree->booleans[L"RadioPageSource"] = true;
    Init();
    UsePages({});
    m_host->instead = [this] {
        Init();
        return std::nullopt;
    };
    for (const bool stack : {true, false}) {
        if (!stack) m_host->quire = nullptr;
        std::vector<SAIndexField> fields = {Field(L"Total")};
        EXPECT_TRUE(PlayPage(fields, [](HWND dialog) {
            EXPECT_EQ(TextOf(dialog, IDC_CONFIG_SIZE), L"215.9, 279.4");
            EXPECT_EQ(Ways(dialog), "----");
            PressCancel(dialog);
        }));
        const std::wstring traces = TakeTraceTexts();
        EXPECT_TRUE(stack || traces.empty()) << traces;
    }
}

// The commands that are checked in the popup menu that is open.
std::string CheckedCommands() {
    const HWND window = FindWindowW(L"#32768", nullptr);
    const auto menu = reinterpret_cast<HMENU>(SendMessageW(window, 0x01E1 /* MN_GETHMENU */, 0, 0));
    std::string text;
    for (UINT command = ID_SMOOTH_IMAGES; command <= ID_SCALE_LAST; ++command) {
        if ((GetMenuState(menu, command, MF_BYCOMMAND) & MF_CHECKED) != 0) text += std::to_string(command) + " ";
    }
    return text;
}

TEST_F(ConfigView, ZoomSmoothingAndColumnWidthsAreRemembered) {
    const auto openMenu = [](HWND dialog) {
        Click(OnPage(dialog, 500, 500), MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
    };
    const auto columnWidth = [](HWND dialog) {
        return static_cast<int>(SendMessageW(ListOf(dialog), LVM_GETCOLUMNWIDTH, 1, 0));
    };
    // What makes no sense counts as nothing stored.
    m_tree->integers[L"LastScale"] = (int64_t{1} << 32) + 27791;
    m_tree->strings[L"ColumnsWidth"] = L"[%]-7,,x";
    Init();
    KeepPages();
    EXPECT_TRUE(PlaySet(5, [&](HWND dialog) {
        EXPECT_TRUE(DisplayOptions(dialog).smooth);
        RECT list;
        GetClientRect(ListOf(dialog), &list);
        EXPECT_NEAR(columnWidth(dialog), list.right / 4, 2);
        openMenu(dialog);
        EXPECT_EQ(CheckedCommands(), "27785 27793 ");
        Key(VK_ESCAPE);
        PressOk(dialog);
    }));
    EXPECT_EQ(WorkingRoot().integers[L"LastScale"], 27793);
    EXPECT_EQ(WorkingRoot().strings[L"ColumnsWidth"], L"[%]250,250,250,250");
    int width = 0;
    EXPECT_TRUE(PlaySet(5, [&](HWND dialog) {
        SendMessageW(dialog, WM_COMMAND, 27791, 0);
        openMenu(dialog);
        EXPECT_EQ(CheckedCommands(), "27785 27791 ");
        Key(VK_UP);
        Key(VK_RETURN);
        EXPECT_FALSE(DisplayOptions(dialog).smooth);
        SendMessageW(ListOf(dialog), LVM_SETCOLUMNWIDTH, 1, 55);
        width = columnWidth(dialog);
        PressCancel(dialog);
    }));
    EXPECT_TRUE(PlaySet(5, [&](HWND dialog) {
        EXPECT_FALSE(DisplayOptions(dialog).smooth);
        EXPECT_NEAR(columnWidth(dialog), width, 1);
        openMenu(dialog);
        EXPECT_EQ(CheckedCommands(), "27791 ");
        Key(VK_ESCAPE);
        PressCancel(dialog);
    }));
}

// A page on a white background would have no edge.
TEST_F(ConfigView, ColoursAreThoseOfTheHostAndTheSystem) {
    constexpr COLORREF kWhite = RGB(255, 255, 255), kBlack = RGB(0, 0, 0);
    const struct {
        COLORREF areas[3], system, background;
    } cases[] = {{{kWhite, kWhite, kBlack}, RGB(250, 240, 230), RGB(250, 240, 230)},
                 {{RGB(200, 10, 30), RGB(20, 180, 40), RGB(250, 240, 20)}, kWhite, RGB(0xE0, 0xE0, 0xE0)}};
    const auto changeColors = m_module->Export<decltype(::SAChangeColors)>("SAChangeColors");
    const int element = COLOR_3DLIGHT;
    const COLORREF before = GetSysColor(element);
    KeepPages();
    for (const auto& [areas, system, background] : cases) {
        SetSysColors(1, &element, &system);
        changeColors(areas[0], areas[1], areas[2]);
        const auto look = [&](HWND dialog) {
            changeColors(kBlack, kBlack, kBlack);  // an open dialog keeps its colours
            const FoliumDisplayOptions options = DisplayOptions(dialog);
            EXPECT_EQ(options.background, background);
            EXPECT_EQ(options.area1, areas[0]);
            EXPECT_EQ(options.area2, areas[1]);
            EXPECT_EQ(options.area3, areas[2]);
            changeColors(areas[0], areas[1], areas[2]);
            PressCancel(dialog);
        };
        EXPECT_TRUE(PlaySet(5, look));
        std::vector<SAIndexField> fields = {Field(L"Total")};
        EXPECT_TRUE(PlayPage(fields, look));
    }
    SetSysColors(1, &element, &before);
}

TEST_F(ConfigView, OpensInTheMiddleOfWhatIsSeenOfItsOwner) {
    RECT screen;
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
    const POINT centre = {(screen.left + screen.right) / 2, (screen.top + screen.bottom) / 2};
    const struct {
        POINT owner;  // of its middle
        bool shown;
        POINT dialog;  // within the screen
    } cases[] = {{{centre.x + 100, centre.y + 50}, true, {centre.x + 100, centre.y + 50}},
                 {{centre.x + 100, centre.y + 50}, false, centre},
                 {{screen.right, screen.bottom}, true, {screen.right, screen.bottom}},
                 {{0, 0}, true, {0, 0}}};
    KeepPages();
    for (const auto& [owner, shown, dialogAt] : cases) {
        SetWindowPos(m_owner, nullptr, owner.x - 50, owner.y - 50, 100, 100, SWP_NOACTIVATE | SWP_NOZORDER);
        ShowWindow(m_owner, shown ? SW_SHOWNA : SW_HIDE);
        EXPECT_TRUE(PlaySet(5, [&, middle = dialogAt](HWND dialog) {
            RECT rect;
            GetWindowRect(dialog, &rect);
            const LONG x = (rect.right - rect.left) / 2, y = (rect.bottom - rect.top) / 2;
            EXPECT_NEAR(rect.left + x, std::clamp(middle.x, screen.left + x, screen.right - x), 1);
            EXPECT_NEAR(rect.top + y, std::clamp(middle.y, screen.top + y, screen.bottom - y), 1);
            PressCancel(dialog);
        }));
    }
}

}  // namespace
