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
    LONG IdOf(int row) const {
        LVITEMW item = {};
        item.mask = LVIF_PARAM;
        item.iItem = row;
        SendMessageW(ListOf(m_dialog), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        return static_cast<LONG>(item.lParam);
    }
    // Identifiers of all rectangles on the page; they are given once each, in order.
    std::vector<LONG> IdsOnPage() {
        const auto folium = FoliumOf(m_dialog);
        std::vector<LONG> ids;
        for (LONG id = 1; id < m_lastId + 20; ++id) {
            FoliumRect rect = {};
            if (SUCCEEDED(folium.GetInterfacePtr()->QueryRect(id, &rect))) ids.push_back(id);
        }
        if (!ids.empty()) m_lastId = std::max(m_lastId, ids.back());
        return ids;
    }
    // Each rectangle on the page has its row, and the row shows what OK will store. While the page control itself
    // fails, an area may have no row, and a row may show what it was. No field has two places.
    void Check() override {
        SendMessageW(ListOf(m_dialog), listtable::kEndEdit, FALSE, 0);
        std::vector<LONG> rows;
        std::vector<std::wstring> fields;
        for (int row = 0; row < RowCount(m_dialog); ++row) {
            rows.push_back(IdOf(row));
            const RECT rect = RectOfRow(m_dialog, row);
            EXPECT_GE(rect.left, 0) << "row " << row << " has no area";
            const std::wstring text = Tenths(rect.left) + L" " + Tenths(rect.top) + L" " +
                                      Tenths(rect.right - rect.left) + L" " + Tenths(rect.bottom - rect.top);
            const std::wstring shown = RowText(m_dialog, row);
            const bool unknown = m_kind != Fault::kCount && shown.starts_with(L"? ? ? ?");
            EXPECT_TRUE(m_kind == Fault::kPart || unknown || shown.starts_with(text)) << shown << ", not " << text;
            const std::wstring field = CellText(m_dialog, row, kFieldColumn);
            EXPECT_TRUE(field.empty() || std::ranges::count(fields, field) == 0) << field;
            fields.push_back(field);
        }
        std::ranges::sort(rows);
        const std::vector<LONG> ids = IdsOnPage();
        EXPECT_TRUE(rows == ids || (m_kind == Fault::kPart && rows.size() < ids.size()))
            << rows.size() << " rows, " << ids.size() << " areas";
    }
    void SetField(int row, const wchar_t* field) {
        LVITEMW item = {};
        item.iSubItem = kFieldColumn;
        item.pszText = const_cast<wchar_t*>(field);
        SendMessageW(ListOf(m_dialog), LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    }
    // The two areas that were there, with their fields, on the first document's page.
    void Restore(int selected) override {
        const auto folium = FoliumOf(m_dialog);
        SendMessageW(ListOf(m_dialog), listtable::kEndEdit, FALSE, 0);
        // A page that could not be had counts as gone to.
        for (int i = 0; (i < 2 || TextOf(m_dialog, IDC_CONFIG_SIZE) != m_firstPage) && i < 5; ++i) {
            Send(m_dialog, IDC_CONFIG_PREV_DOC);
        }
        const auto hasRow = [&](LONG id) {
            for (int row = 0; row < std::min(RowCount(m_dialog), 2); ++row) {
                if (IdOf(row) == id) return true;
            }
            return false;
        };
        for (const LONG id : IdsOnPage()) {
            if (!hasRow(id)) folium.GetInterfacePtr()->DeleteRect(id);
        }
        for (int i = RowCount(m_dialog); i < 2; ++i) Send(m_dialog, IDC_CONFIG_ADD);
        for (int row = 0; row < 2; ++row) {
            const RECT& rect = kRects[row];
            const FoliumRect bounds = {0, 0, rect.left, rect.top, rect.right, rect.bottom};
            folium.GetInterfacePtr()->UpdateRect(IdOf(row), &bounds);
            if (m_indexing) SetField(row, kFields[row]);
        }
        SelectRow(m_dialog, 1 - selected);
        SelectRow(m_dialog, selected);
        m_kind = Fault::kCount;
        Check();
    }
    // Starts the editing of a cell; its window.
    static HWND Edit(HWND dialog, int row, int column) {
        SetFocus(ListOf(dialog));
        SendMessageW(ListOf(dialog), listtable::kEditCell, static_cast<WPARAM>(row), column);
        listtable::Cell cell = {};
        SendMessageW(ListOf(dialog), listtable::kGetEditedCell, 0, reinterpret_cast<LPARAM>(&cell));
        return GetFocus();
    }
    void OpenSet() { m_configureSet(m_owner, 1); }
    std::vector<Command> Commands(HWND dialog);

    bool m_indexing = false;
    LONG m_lastId = 2;
    std::wstring m_firstPage;
};

std::vector<Command> ConfigureFaults::Commands(HWND dialog) {
    m_firstPage = TextOf(dialog, IDC_CONFIG_SIZE);
    const HWND list = ListOf(dialog);
    const HWND page = PageOf(dialog);
    const auto send = [=](UINT id) { return [=] { Send(dialog, id); }; };
    const auto press = [=](WPARAM key) { return [=] { SendMessageW(page, WM_KEYDOWN, key, 0); }; };
    const auto rows = [=](int count) { return [=] { return RowCount(dialog) == count; }; };
    const auto right = [=] {
        SetWindowTextW(Edit(dialog, 0, 2), L"55");
        SendMessageW(list, listtable::kEndEdit, TRUE, 0);
    };
    const auto draw = [=] {
        for (int i = 0; i < 2; ++i) press(VK_RETURN)();
    };
    const auto undo = [=] {
        FaultHooks::Hold(true);
        press(VK_DELETE)();
        FaultHooks::Hold(false);
        SendControlKey(page, 'Z');
    };
    const auto undone = [=, this] {
        return RowCount(dialog) == 2 && RectOfRow(dialog, 1) == kRects[0] &&
               (!m_indexing || CellText(dialog, 1, kFieldColumn) == kFields[0]);
    };
    std::vector<Command> commands = {
        {.name = "Add",
         .run = send(IDC_CONFIG_ADD),
         .done = [=] { return RowCount(dialog) == 3 && RectOfRow(dialog, 2).left > 0; }},
        {.name = "Remove", .run = send(IDC_CONFIG_REMOVE), .done = rows(1), .selected = 1},
        {.name = "Select",
         .run = [=] { SelectRow(dialog, 1); },
         .done = [=] { return SelectedRow(dialog) == 1; },
         .notice = true},
        {.name = "Number", .run = right, .done = [=] { return RectOfRow(dialog, 0).right == 550; }, .notice = true},
        {.name = "Move rows",
         .run = [=] { SendMessageW(list, WM_SYSKEYDOWN, VK_DOWN, 1 << 29); },
         .done = [=] { return RectOfRow(dialog, 1) == kRects[0]; },
         .notice = true},
        {.name = "Page: draw", .run = draw, .done = rows(3), .notice = true},
        {.name = "Page: move",
         .run = press(VK_RIGHT),
         .done = [=] { return RowText(dialog, 0).starts_with(Tenths(RectOfRow(dialog, 0).left)); },
         .notice = true},
        {.name = "Page: remove", .run = press(VK_DELETE), .done = rows(1), .notice = true},
        {.name = "Page: undo", .run = undo, .done = undone, .notice = true},
    };
    if (m_indexing) {
        const auto choose = [=] {
            SendMessageW(Edit(dialog, 0, kFieldColumn), CB_SETCURSEL, 2, 0);
            SendMessageW(list, listtable::kEndEdit, TRUE, 0);
        };
        const auto chosen = [=] {
            return CellText(dialog, 0, kFieldColumn) == kFields[1] && CellText(dialog, 1, kFieldColumn).empty();
        };
        commands.push_back({.name = "Choice", .run = choose, .done = chosen, .notice = true});
        return commands;
    }
    // A page that cannot be had is traced alone.
    commands.push_back({.name = "Next document",
                        .run = send(IDC_CONFIG_NEXT_DOC),
                        .done = [=, this] { return TextOf(dialog, IDC_CONFIG_SIZE) != m_firstPage; },
                        .told = L"6 CSASetConfigDlg::OnNextDoc: page from Quire was not obtained.",
                        .box = false});
    constexpr std::pair<const char*, UINT> kViews[] = {{"Next page", IDC_CONFIG_NEXT_PAGE},
                                                       {"Previous page", IDC_CONFIG_PREV_PAGE},
                                                       {"Previous document", IDC_CONFIG_PREV_DOC},
                                                       {"Scale", ID_SCALE_LAST},
                                                       {"Smooth", ID_SMOOTH_IMAGES}};
    // What the page control answers to these is not looked at.
    for (const auto& [name, id] : kViews) {
        commands.push_back({.name = name, .run = send(id), .done = [] { return true; }});
    }
    return commands;
}

// A list that has no memory for another row.
LRESULT CALLBACK RefuseRows(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    return message == LVM_INSERTITEMW ? -1 : DefSubclassProc(list, message, wParam, lParam);
}

TEST_F(ConfigureFaults, ADrawnAreaWithoutARowDoesNotStayOnThePage) {
    Press(IDCANCEL, [this] { return Open(); });
    const auto draw = [this](HWND dialog) {
        m_dialog = dialog;
        SetWindowSubclass(ListOf(dialog), RefuseRows, 1, 0);
        for (int i = 0; i < 2; ++i) SendMessageW(PageOf(dialog), WM_KEYDOWN, VK_RETURN, 0);
        RemoveWindowSubclass(ListOf(dialog), RefuseRows, 1);
        EXPECT_EQ(TakeHostBoxes().size(), 1u);
        EXPECT_EQ(RowCount(dialog), 2);
        Check();
        Send(dialog, IDCANCEL);
    };
    EXPECT_EQ(Pilot(draw, {}, [this] { OpenSet(); }), Flight::kClosed);
}

TEST_F(ConfigureFaults, Commands) {
    Press(IDCANCEL, [this] { return Open(); });
    RunCommands(
        "Configure: ", [this] { OpenSet(); }, [this](HWND dialog) { return Commands(dialog); });
}

TEST_F(ConfigureFaults, CommandsWithFields) {
    m_indexing = true;
    m_remembers = true;  // the fields of removed areas, for undo
    const auto field = [](int i) { return Field(kFields[i], kRects[i]); };
    std::vector<SAIndexField> fields = {field(0), field(1), Field(kFields[2])};
    RunCommands(
        "Fields: ", [&] { OpenPage(fields); }, [this](HWND dialog) { return Commands(dialog); });
}

}  // namespace
