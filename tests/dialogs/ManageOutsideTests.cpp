// "Manage Area Sets" when what is around it gives way while it is open: pages that go, memory that ends.
#include <cstring>

#include "dialogs/ManageFixture.h"
#include "support/FakeObject.h"

namespace {

using namespace test;

// The host's stack, until its pages are gone.
class LosingStack final : public FakeDispatch<IQuire> {
public:
    explicit LosingStack(win32::ComPtr<IQuire> stack) : m_stack(std::move(stack)) {}
    HRESULT STDMETHODCALLTYPE GetCount(LONG* count) override {
        *count = 0;
        return lost ? S_OK : m_stack->GetCount(count);
    }
    HRESULT STDMETHODCALLTYPE GetItem(LONG index, IQuireDocument** document) override {
        *document = nullptr;
        return lost ? E_INVALIDARG : m_stack->GetItem(index, document);
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }

    bool lost = false;

private:
    win32::ComPtr<IQuire> m_stack;
};

class ManageOutside : public ManageDialog {
protected:
    void SetUp() override {
        ManageDialog::SetUp();
        m_tree->booleans[L"RadioPageSource"] = true;
        Init();
        UsePages({std::wstring(SAMPLES_DIR) + L"/fax-pages.tif", std::wstring(SAMPLES_DIR) + L"/letter.tif"});
        m_stack = new LosingStack(m_host->quire);
        m_host->quire.Attach(m_stack);
    }

    LosingStack* m_stack;
};

TEST_F(ManageOutside, PagesThatGoLeaveTheSetsAlone) {
    EXPECT_TRUE(Play({[](HWND dialog) {
                          EXPECT_TRUE(Checked(dialog, IDC_MANAGE_SCANNED));
                          Post(dialog, IDC_MANAGE_CONFIGURE);
                      },
                      [&](HWND dialog) {
                          EXPECT_TRUE(Enabled(dialog, IDC_CONFIG_NEXT_PAGE));
                          m_stack->lost = true;
                          Push(dialog, IDC_CONFIG_NEXT_PAGE);
                          EXPECT_EQ(RowCount(dialog), 2) << "the page before stays, with its areas";
                          Push(dialog, IDC_CONFIG_ADD);
                          PressOk(dialog);
                      },
                      [&](HWND dialog) {
                          EXPECT_EQ(GetTextOfWindow(dialog), L"Manage Area Sets");
                          EXPECT_EQ(TakeTraceTexts(),
                                    L"6 CSASetConfigDlg::OnNextPage: page from Quire was not obtained.\n");
                          Post(dialog, IDC_MANAGE_CONFIGURE);
                      },
                      [](HWND dialog) {
                          EXPECT_EQ(GetTextOfWindow(dialog), L"Configure Area Set - Invoice") << "on a blank page";
                          EXPECT_EQ(RowCount(dialog), 3);
                          EXPECT_FALSE(Enabled(dialog, IDC_CONFIG_NEXT_PAGE));
                          PressCancel(dialog);
                      },
                      PressOk}));
    TakeTraces();
    EXPECT_EQ(m_tree->Child(L"0x00000001")->Child(L"Rect")->children.size(), 3u);
}

int g_failAt, g_allocations;
decltype(&std::malloc) g_malloc;

// No memory for the n-th block.
void* FailingMalloc(size_t size) {
    return ++g_allocations == g_failAt ? nullptr : g_malloc(size);
}

// Where the module keeps the address of an imported function.
void** ImportSlot(HMODULE module, const char* name) {
    auto* const base = reinterpret_cast<BYTE*>(module);
    const auto* dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + table); library->Name != 0; ++library) {
        auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* import = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(import->Name), name) == 0) {
                return reinterpret_cast<void**>(&slots->u1.Function);
            }
        }
    }
    return nullptr;
}

// The module's allocations go through FailingMalloc while it lives.
class FailingMemory {
public:
    FailingMemory() : m_slot(ImportSlot(GetModuleHandleW(L"Zonwick.dll"), "malloc")) {
        if (m_slot == nullptr) return;
        g_malloc = reinterpret_cast<decltype(g_malloc)>(*m_slot);
        g_failAt = 0;
        Write(reinterpret_cast<void*>(FailingMalloc));
    }
    ~FailingMemory() {
        if (m_slot != nullptr) Write(reinterpret_cast<void*>(g_malloc));
    }
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    bool Works() const { return m_slot != nullptr; }

private:
    void Write(void* function) {
        DWORD before;
        VirtualProtect(m_slot, sizeof *m_slot, PAGE_READWRITE, &before);
        *m_slot = function;
        VirtualProtect(m_slot, sizeof *m_slot, before, &before);
    }

    void** m_slot;
};

TEST_F(ManageOutside, WithoutMemoryForASetTheListIsUnchanged) {
    EXPECT_TRUE(Play({PressOk}));
    const std::wstring before = m_tree->Dump();
    int refused = 0;
    for (const UINT command : {IDC_MANAGE_CREATE, IDC_MANAGE_COPY}) {
        EXPECT_TRUE(Play({[&](HWND dialog) {
            FailingMemory memory;
            ASSERT_TRUE(memory.Works());
            bool met = true;
            for (int n = 1; met && n < 200; ++n) {
                SCOPED_TRACE(n);
                g_allocations = 0;
                g_failAt = n;
                SendMessageW(dialog, WM_COMMAND, command, 0);
                met = g_allocations >= n;
                g_failAt = 0;
                SendMessageW(SetsOf(dialog), LVM_CANCELEDITLABEL, 0, 0);
                const std::vector<std::wstring> boxes = TakeHostBoxes();
                const int count = SetCount(dialog);
                if (boxes.empty()) {
                    EXPECT_EQ(count, 4) << "neither done nor told";
                } else if (boxes[0].starts_with(L"No area set could be added")) {
                    ++refused;
                    EXPECT_EQ(count, 3);
                }
                // What the list shows is what there is to remove, and the rest is as it was.
                while (SetCount(dialog) > 3) {
                    SelectSet(dialog, 3);
                    SendMessageW(dialog, WM_COMMAND, IDC_MANAGE_REMOVE, 0);
                }
                EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|");
            }
            TakeHostBoxes();
            TakeTraces();
            PressOk(dialog);
        }}));
        EXPECT_EQ(m_tree->Dump(), before) << "no set is left that the list did not show";
    }
    EXPECT_GT(refused, 2);
}

}  // namespace
