// Each command of "Configure Area Set" with a fault at every chance: for a stored set, and for fields.
#include <algorithm>

#include "faults/DialogFaults.h"
#include "host/ListTable.h"
#include "refhost/controls/HostControls.h"

namespace {

using namespace test;

constexpr int kFieldColumn = 4;
const RECT kRects[] = {{0, 0, 1050, 1485}, {1050, 1485, 2100, 2970}};
const wchar_t* const kFields[] = {L"The total of the invoice", L"The date of the invoice", L"Sender"};

// A key with Ctrl held, for what asks for the state of keys.
void SendControlKey(HWND window, WPARAM key) {
    BYTE before[256] = {};
    GetKeyboardState(before);
    BYTE held[256] = {};
    held[VK_CONTROL] = 0x80;
    SetKeyboardState(held);
    SendMessageW(window, WM_KEYDOWN, key, 0);
    SetKeyboardState(before);
}

std::wstring Tenths(LONG length) {
    return std::to_wstring(length / 10) + L"." + std::to_wstring(length % 10);
}

class ConfigureFaults : public DialogFaults {
protected:
    static LONG IdOf(HWND dialog, int row) {
        LVITEMW item = {};
        item.mask = LVIF_PARAM;
        item.iItem = row;
        SendMessageW(ListOf(dialog), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        return static_cast<LONG>(item.lParam);
    }
    // Identifiers of all rectangles on the page; they are given once each, in order.
    std::vector<LONG> IdsOnPage(HWND dialog) {
        const auto folium = FoliumOf(dialog);
        std::vector<LONG> ids;
        for (LONG id = 1; id < m_lastId + 20; ++id) {
            FoliumRect rect = {};
            if (SUCCEEDED(folium.GetInterfacePtr()->QueryRect(id, &rect))) ids.push_back(id);
        }
        if (!ids.empty()) m_lastId = std::max(m_lastId, ids.back());
        return ids;
    }
    // Each rectangle on the page has its row, and the row shows what OK will store. While the page control itself
    // fails, an area may have no row, and a row may show what it was.
    void ExpectRowsAreThePage(HWND dialog) {
        std::vector<LONG> rows;
        for (int row = 0; row < RowCount(dialog); ++row) {
            rows.push_back(IdOf(dialog, row));
            const RECT rect = RectOfRow(dialog, row);
            EXPECT_GE(rect.left, 0) << "row " << row << " has no area";
            const std::wstring text = Tenths(rect.left) + L" " + Tenths(rect.top) + L" " +
                                      Tenths(rect.right - rect.left) + L" " + Tenths(rect.bottom - rect.top);
            const std::wstring shown = RowText(dialog, row);
            const bool unknown = m_kind != Fault::kCount && shown.starts_with(L"? ? ? ?");
            EXPECT_TRUE(m_kind == Fault::kPart || unknown || shown.starts_with(text)) << shown << ", not " << text;
        }
        std::ranges::sort(rows);
        const std::vector<LONG> ids = IdsOnPage(dialog);
        EXPECT_TRUE(rows == ids || (m_kind == Fault::kPart && rows.size() < ids.size()))
            << rows.size() << " rows, " << ids.size() << " areas";
    }
    // No field has two places.
    void ExpectFieldsAreSingle(HWND dialog) {
        for (const wchar_t* field : kFields) {
            int rows = 0;
            for (int row = 0; row < RowCount(dialog); ++row) rows += CellText(dialog, row, kFieldColumn) == field;
            EXPECT_LE(rows, 1) << field;
        }
    }
    void SetField(HWND dialog, int row, const wchar_t* field) {
        LVITEMW item = {};
        item.iSubItem = kFieldColumn;
        item.pszText = const_cast<wchar_t*>(field);
        SendMessageW(ListOf(dialog), LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    }
    // The two areas that were there, with their fields, on the first document's page.
    void Restore(HWND dialog, int selected) {
        const auto folium = FoliumOf(dialog);
        SendMessageW(ListOf(dialog), listtable::kEndEdit, FALSE, 0);
        // A page that could not be had counts as gone to.
        for (int i = 0; (i < 2 || TextOf(dialog, IDC_CONFIG_SIZE) != m_firstPage) && i < 5; ++i) {
            Send(dialog, IDC_CONFIG_PREV_DOC);
        }
        const auto hasRow = [&](LONG id) {
            for (int row = 0; row < std::min(RowCount(dialog), 2); ++row) {
                if (IdOf(dialog, row) == id) return true;
            }
            return false;
        };
        for (const LONG id : IdsOnPage(dialog)) {
            if (!hasRow(id)) folium.GetInterfacePtr()->DeleteRect(id);
        }
        for (int i = RowCount(dialog); i < 2; ++i) Send(dialog, IDC_CONFIG_ADD);
        for (int row = 0; row < 2; ++row) {
            const RECT& rect = kRects[row];
            const FoliumRect bounds = {0, 0, rect.left, rect.top, rect.right, rect.bottom};
            folium.GetInterfacePtr()->UpdateRect(IdOf(dialog, row), &bounds);
            if (m_indexing) SetField(dialog, row, kFields[row]);
        }
        SelectRow(dialog, 1 - selected);
        SelectRow(dialog, selected);
        m_kind = Fault::kCount;
        ExpectRowsAreThePage(dialog);
    }
    Command Make(const char* name, HWND dialog, const std::function<void()>& run, const std::function<bool()>& done,
                 int selected = 0) {
        // The names live as long as the program.
        static std::vector<std::unique_ptr<std::string>> names;
        names.push_back(std::make_unique<std::string>((m_indexing ? "Fields: " : "Configure: ") + std::string(name)));
        return {names.back()->c_str(), run, [=, this] { Restore(dialog, selected); }, done,
                [=, this] {
                    SendMessageW(ListOf(dialog), listtable::kEndEdit, FALSE, 0);
                    ExpectRowsAreThePage(dialog);
                    if (m_indexing) ExpectFieldsAreSingle(dialog);
                }};
    }
    void RunNotice(HWND dialog, Command command) {
        command.notice = true;
        RunCommand(dialog, command, kDialogKinds);
    }
    void RunButtons(HWND dialog);
    void RunViews(HWND dialog);
    void RunList(HWND dialog);
    void RunPage(HWND dialog);
    void RunAll(HWND dialog) {
        m_lastId = 2;
        m_firstPage = TextOf(dialog, IDC_CONFIG_SIZE);
        RunButtons(dialog);
        if (!m_indexing) RunViews(dialog);
        RunList(dialog);
        RunPage(dialog);
    }

    bool m_indexing = false;
    LONG m_lastId = 0;
    std::wstring m_firstPage;
};

void ConfigureFaults::RunButtons(HWND dialog) {
    RunCommand(dialog,
               Make(
                   "Add", dialog, [=] { Send(dialog, IDC_CONFIG_ADD); },
                   [=] { return RowCount(dialog) == 3 && RectOfRow(dialog, 2).left > 0; }),
               kDialogKinds);
    RunCommand(
        dialog,
        Make(
            "Remove", dialog, [=] { Send(dialog, IDC_CONFIG_REMOVE); }, [=] { return RowCount(dialog) == 1; }, 1),
        kDialogKinds);
}

void ConfigureFaults::RunViews(HWND dialog) {
    const auto always = [] { return true; };
    Command command = Make(
        "Next document", dialog, [=] { Send(dialog, IDC_CONFIG_NEXT_DOC); },
        [=, this] { return TextOf(dialog, IDC_CONFIG_SIZE) != m_firstPage; });
    // A page that cannot be had is traced alone.
    command.told.push_back(L"6 CSASetConfigDlg::OnNextDoc: page from Quire was not obtained.");
    command.box = false;
    RunCommand(dialog, command, kDialogKinds);
    const struct {
        const char* name;
        UINT id;
    } views[] = {{"Next page", IDC_CONFIG_NEXT_PAGE},
                 {"Previous page", IDC_CONFIG_PREV_PAGE},
                 {"Previous document", IDC_CONFIG_PREV_DOC},
                 {"Scale", ID_SCALE_LAST},
                 {"Smooth", ID_SMOOTH_IMAGES}};
    // What the page control answers to these is not looked at.
    for (const auto& [name, id] : views) {
        RunCommand(dialog,
                   Make(
                       name, dialog, [=, id = id] { Send(dialog, id); }, always),
                   kDialogKinds);
    }
}

void ConfigureFaults::RunList(HWND dialog) {
    const HWND list = ListOf(dialog);
    const auto edit = [=](int row, int column) {
        SetFocus(list);
        SendMessageW(list, listtable::kEditCell, static_cast<WPARAM>(row), column);
        listtable::Cell cell = {};
        SendMessageW(list, listtable::kGetEditedCell, 0, reinterpret_cast<LPARAM>(&cell));
        return GetFocus();
    };
    RunNotice(dialog, Make(
                          "Select", dialog, [=] { SelectRow(dialog, 1); }, [=] { return SelectedRow(dialog) == 1; }));
    RunNotice(dialog, Make(
                          "Number", dialog,
                          [=] {
                              SetWindowTextW(edit(0, 2), L"55");
                              SendMessageW(list, listtable::kEndEdit, TRUE, 0);
                          },
                          [=] { return RectOfRow(dialog, 0).right == 550; }));
    RunNotice(dialog, Make(
                          "Move rows", dialog, [=] { SendMessageW(list, WM_SYSKEYDOWN, VK_DOWN, 1 << 29); },
                          [=] { return RectOfRow(dialog, 1) == kRects[0]; }));
    if (!m_indexing) return;
    RunNotice(dialog, Make(
                          "Choice", dialog,
                          [=] {
                              SendMessageW(edit(0, kFieldColumn), CB_SETCURSEL, 2, 0);
                              SendMessageW(list, listtable::kEndEdit, TRUE, 0);
                          },
                          [=] {
                              return CellText(dialog, 0, kFieldColumn) == kFields[1] &&
                                     CellText(dialog, 1, kFieldColumn).empty();
                          }));
}

void ConfigureFaults::RunPage(HWND dialog) {
    const HWND page = PageOf(dialog);
    const auto press = [=](WPARAM key) { SendMessageW(page, WM_KEYDOWN, key, 0); };
    RunNotice(dialog, Make(
                          "Page: draw", dialog,
                          [=] {
                              press(VK_RETURN);
                              press(VK_RETURN);
                          },
                          [=] { return RowCount(dialog) == 3; }));
    RunNotice(dialog, Make(
                          "Page: move", dialog, [=] { press(VK_RIGHT); },
                          [=] { return RowText(dialog, 0).starts_with(Tenths(RectOfRow(dialog, 0).left)); }));
    RunNotice(dialog, Make(
                          "Page: remove", dialog, [=] { press(VK_DELETE); }, [=] { return RowCount(dialog) == 1; }));
    RunNotice(dialog, Make(
                          "Page: undo", dialog,
                          [=] {
                              FaultHooks::Hold(true);
                              press(VK_DELETE);
                              FaultHooks::Hold(false);
                              SendControlKey(page, 'Z');
                          },
                          [=, this] {
                              return RowCount(dialog) == 2 && RectOfRow(dialog, 1) == kRects[0] &&
                                     (!m_indexing || CellText(dialog, 1, kFieldColumn) == kFields[0]);
                          }));
}

// A list that has no memory for another row.
LRESULT CALLBACK RefuseRows(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    return message == LVM_INSERTITEMW ? -1 : DefSubclassProc(list, message, wParam, lParam);
}

TEST_F(ConfigureFaults, ADrawnAreaWithoutARowDoesNotStayOnThePage) {
    Press(IDCANCEL, [this] { return Open(); });
    const auto draw = [this](HWND dialog) {
        SetWindowSubclass(ListOf(dialog), RefuseRows, 1, 0);
        for (int i = 0; i < 2; ++i) SendMessageW(PageOf(dialog), WM_KEYDOWN, VK_RETURN, 0);
        RemoveWindowSubclass(ListOf(dialog), RefuseRows, 1);
        EXPECT_EQ(TakeHostBoxes().size(), 1u);
        EXPECT_EQ(RowCount(dialog), 2);
        ExpectRowsAreThePage(dialog);
        TakeTraces();
        Send(dialog, IDCANCEL);
    };
    EXPECT_NE(Pilot(
                  draw, [this] { EndFaults(); }, [this] { m_configureSet(m_owner, 1); }),
              Flight::kNone);
}

TEST_F(ConfigureFaults, Commands) {
    Press(IDCANCEL, [this] { return Open(); });
    EXPECT_NE(
        Pilot([this](HWND dialog) { RunAll(dialog); }, [this] { EndFaults(); }, [this] { m_configureSet(m_owner, 1); }),
        Flight::kNone);
}

TEST_F(ConfigureFaults, CommandsWithFields) {
    m_indexing = true;
    m_remembers = true;  // the fields of removed areas, for undo
    const auto field = [](int i) { return Field(kFields[i], kRects[i]); };
    std::vector<SAIndexField> fields = {field(0), field(1), Field(kFields[2])};
    EXPECT_NE(Pilot([this](HWND dialog) { RunAll(dialog); }, [this] { EndFaults(); }, [&] { OpenPage(fields); }),
              Flight::kNone);
}

}  // namespace
