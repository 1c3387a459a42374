// "Configure Area Set" while the page display control, the list or the units fail: the rows show what OK stores, and OK
// stores all or nothing.
#include "configdlg/ConfigFixture.h"

#include <commctrl.h>

namespace {

using namespace test;

using ConfigFaults = ConfigDialog;

// An operation of the page control, by its place in the table, that fails at its n-th call. All arguments fit into
// registers, so one shape of function stands for every operation.
class FailingOperation {
public:
    FailingOperation(HWND dialog, size_t place, int n)
        : m_slot(*reinterpret_cast<Operation**>(FoliumOf(dialog).GetInterfacePtr()) + place) {
        s_left = n;
        s_real = *m_slot;
        Write([](IFolium* folium, void* first, void* second) -> HRESULT {
            return --s_left == 0 ? E_FAIL : s_real(folium, first, second);
        });
    }
    ~FailingOperation() { Write(s_real); }
    FailingOperation(const FailingOperation&) = delete;
    FailingOperation& operator=(const FailingOperation&) = delete;

private:
    using Operation = HRESULT(STDMETHODCALLTYPE*)(IFolium*, void*, void*);

    void Write(Operation operation) {
        DWORD before = 0;
        VirtualProtect(m_slot, sizeof *m_slot, PAGE_READWRITE, &before);
        *m_slot = operation;
        VirtualProtect(m_slot, sizeof *m_slot, before, &before);
    }

    Operation* m_slot;
    static inline Operation s_real = nullptr;
    static inline int s_left = 0;
};

TEST_F(ConfigFaults, WhatThePageRefusesIsTakenBackAndOkIsAllOrNothing) {
    constexpr size_t kQueryRect = 30, kUpdateRect = 34;
    KeepPages();
    EXPECT_TRUE(PlaySet(5, [&](HWND dialog) {
        {
            const FailingOperation failing(dialog, kUpdateRect, 1);
            EditCell(dialog, 0, 2, L"55");
        }
        ExpectBox(L"was taken back");
        EXPECT_EQ(RowText(dialog, 0), L"10.0 20.0 20.0 20.0");

        Push(dialog, IDC_CONFIG_ADD);
        Push(dialog, IDC_CONFIG_IGNORED);
        {
            const FailingOperation failing(dialog, kQueryRect, 3);
            PressOk(dialog);
        }
        ExpectBox(L"");
        EXPECT_TRUE(IsWindowVisible(dialog));
        EXPECT_EQ(RowCount(dialog), 4);
        EXPECT_EQ(StoredRects(5), kInvoiceAreas);
        EXPECT_EQ(WorkingSet(L"0x00000005").integers[L"Flags"], 0);
        PressOk(dialog);
    }));
    EXPECT_EQ(StoredRects(5).size(), 4u);
    TakeTraces();
}

// A list that has no memory for another row.
LRESULT CALLBACK RefuseRows(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    return message == LVM_INSERTITEMW ? -1 : DefSubclassProc(list, message, wParam, lParam);
}

TEST_F(ConfigFaults, AnAreaHasARowThatWorksOrIsTakenBack) {
    const std::function<void(HWND)> adds[] = {[](HWND dialog) { Push(dialog, IDC_CONFIG_ADD); },
                                              [](HWND dialog) {  // draws one
                                                  SendMessageW(PageOf(dialog), WM_KEYDOWN, VK_RETURN, 0);
                                                  SendMessageW(PageOf(dialog), WM_KEYDOWN, VK_RETURN, 0);
                                              }};
    KeepPages();
    for (const auto& add : adds) {
        Init();
        EXPECT_TRUE(PlaySet(9, [&](HWND dialog) {
            SetWindowSubclass(ListOf(dialog), RefuseRows, 1, 0);
            add(dialog);
            RemoveWindowSubclass(ListOf(dialog), RefuseRows, 1);
            ExpectBox(L"was taken back");
            EXPECT_EQ(RowCount(dialog), 0);
            FoliumRect rect = {};
            EXPECT_TRUE(FAILED(FoliumOf(dialog)->QueryRect(1, &rect)));

            m_units.reset();
            add(dialog);
            ExpectBox(L"");
            EXPECT_EQ(RowText(dialog, 0), L"? ? ? ?");
            EXPECT_TRUE(Enabled(dialog, IDC_CONFIG_REMOVE));
            SelectRow(dialog, 0);
            Push(dialog, IDC_CONFIG_REMOVE);
            EXPECT_EQ(RowCount(dialog), 0);
            EXPECT_FALSE(Enabled(dialog, IDC_CONFIG_REMOVE));

            MakeUnits();
            add(dialog);
            EXPECT_NE(CellText(dialog, 0, 0), L"?");
            PressOk(dialog);
        }));
        EXPECT_EQ(StoredRects(9).size(), 1u);
        TakeTraces();
    }
}

}  // namespace
