// "Configure Area Set" while the page display control or the document stack fails: all or nothing, and the user is
// told.
#include <array>
#include <cstdlib>
#include <functional>

#include "configdlg/ConfigFixture.h"
#include "refhost/units/HostUnits.h"

#include <commctrl.h>
#include "support/FakeDocuments.h"

namespace test {
namespace {

const std::vector<RECT> kInvoice = {{100, 200, 300, 400}, {500, 600, 900, 1000}, {1200, 1500, 1800, 2200}};

// The operations of the control that the dialog uses, by their positions in its table.
constexpr size_t kFirst = 7, kLast = 34;
constexpr size_t kQueryRect = 30, kUpdateRect = 34;

// Makes every control of Folium.dll ask Host() before each of its operations, for as long as this lives. All arguments
// fit into registers, so one shape of function stands for every operation.
class FailingFolium {
public:
    using Operation = HRESULT(STDMETHODCALLTYPE*)(void* self, void* first, void* second);

    explicit FailingFolium(const com::HostDll& dll) {
        win32::ComPtr<IClassFactory> factory;
        EXPECT_EQ(dll.Export<decltype(::DllGetClassObject)>("DllGetClassObject")(
                      host::kClsidFolium, __uuidof(IClassFactory), reinterpret_cast<void**>(&factory)),
                  S_OK);
        win32::ComPtr<IFolium> folium;
        EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(IFolium), reinterpret_cast<void**>(&folium)), S_OK);
        s_table = *reinterpret_cast<Operation**>(folium.GetInterfacePtr());
        Change([](size_t i) {
            s_real[i] = s_table[i];
            s_table[i] = kStandIns[i - kFirst];
        });
    }
    ~FailingFolium() {
        Change([](size_t i) { s_table[i] = s_real[i]; });
        s_only = 0;
    }
    FailingFolium(const FailingFolium&) = delete;
    FailingFolium& operator=(const FailingFolium&) = delete;

    static void Only(size_t operation) { s_only = operation; }

private:
    template <size_t i>
    static HRESULT STDMETHODCALLTYPE StandIn(void* self, void* first, void* second) {
        if ((s_only == 0 || s_only == i) && Host().Fails()) return E_FAIL;
        return s_real[i](self, first, second);
    }
    template <size_t... i>
    static constexpr std::array<Operation, sizeof...(i)> MakeStandIns(std::index_sequence<i...>) {
        return {&StandIn<kFirst + i>...};
    }
    static void Change(void (*change)(size_t)) {
        DWORD before = 0;
        VirtualProtect(s_table, (kLast + 1) * sizeof *s_table, PAGE_READWRITE, &before);
        for (size_t i = kFirst; i <= kLast; ++i) change(i);
        VirtualProtect(s_table, (kLast + 1) * sizeof *s_table, before, &before);
    }
    static const std::array<Operation, kLast - kFirst + 1> kStandIns;
    static inline Operation* s_table = nullptr;
    static inline Operation s_real[kLast + 1] = {};
    static inline size_t s_only = 0;
};
const std::array<FailingFolium::Operation, kLast - kFirst + 1> FailingFolium::kStandIns =
    MakeStandIns(std::make_index_sequence<kLast - kFirst + 1>());

// Does `work` in the dialog that opens, then cancels whatever stays open. By a timer, because a dialog that fails while
// it opens has no steps.
class Visitor {
public:
    explicit Visitor(std::function<void(HWND)> work) : m_work(std::move(work)) {
        s_self = this;
        m_timer = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) { s_self->Visit(); });
    }
    ~Visitor() { KillTimer(nullptr, m_timer); }
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;

private:
    void Visit() {
        const HWND dialog = FindWindowW(L"#32770", nullptr);
        if (dialog == nullptr || !IsWindowVisible(dialog) || m_visiting) return;
        m_visiting = true;
        if (m_work != nullptr) {
            std::exchange(m_work, nullptr)(dialog);
        } else {
            PressCancel(dialog);
        }
        m_visiting = false;
    }
    static inline Visitor* s_self = nullptr;
    UINT_PTR m_timer;
    std::function<void(HWND)> m_work;
    bool m_visiting = false;
};

class ConfigFaults : public ConfigDialog {
protected:
    // Fails call n of `Host()` for every n (every few in a short run) while set 5 is opened, worked on and stored;
    // `expectRects` looks at what is stored then.
    void FailEveryCall(int stride, int least, const std::function<void(HWND)>& work,
                       const std::function<void(const std::vector<RECT>&)>& expectRects) {
        const std::wstring host = m_tree->Dump();
        if (std::getenv("ZONWICK_TEST_LONG") != nullptr) stride = 1;
        int n = 1, failed = 0, stored = 0, told = 0;
        for (bool reached = true; reached && n < 500; n += stride, ++failed) {
            SCOPED_TRACE(testing::Message() << "call " << n);
            Init();
            TakeTraces();
            BOOL result = FALSE;
            {
                const Visitor visitor(work);
                Host().Reset();
                Host().failAt = n;
                result = m_configureSet(m_owner, 5);
                reached = Host().calls >= n;
                Host().Reset();
            }
            const size_t boxes = TakeHostBoxes().size();
            EXPECT_LE(boxes, 1u);
            EXPECT_TRUE(result || boxes == 1);
            told += boxes > 0 ? 1 : 0;
            const std::vector<RECT> rects = StoredRects(5);
            if (rects != kInvoice) {
                ++stored;
                expectRects(rects);
            }
            EXPECT_EQ(m_tree->Dump(), host);
            TakeTraces();
        }
        EXPECT_GT(n, least);
        EXPECT_LT(n, 500);
        EXPECT_GT(stored, 0);
        std::printf("%d calls failed one after the other, %d times told in a box, %d times stored\n", failed - 1, told,
                    stored);
    }
};

TEST_F(ConfigFaults, APageControlThatFailsAtEveryCallLosesNoArea) {
    KeepPages();
    const FailingFolium failing(m_folium->Dll());
    FailEveryCall(
        2, 15,
        [](HWND dialog) {
            Push(dialog, IDC_CONFIG_ADD);
            SelectRow(dialog, 0);
            PressOk(dialog);
        },
        [](const std::vector<RECT>& rects) {
            // The added area stands behind the others, which are as they were.
            ASSERT_EQ(rects.size(), kInvoice.size() + 1);
            EXPECT_TRUE(std::equal(kInvoice.begin(), kInvoice.end(), rects.begin()));
        });
}

TEST_F(ConfigFaults, WhileARectangleCannotBeReadOkChangesNothingAndStaysOpen) {
    KeepPages();
    const FailingFolium failing(m_folium->Dll());
    EXPECT_TRUE(PlaySet(5, {[](HWND dialog) {
                                Push(dialog, IDC_CONFIG_ADD);
                                CheckRadioButton(dialog, IDC_CONFIG_IGNORED, IDC_CONFIG_IGNORED, IDC_CONFIG_IGNORED);
                            },
                            [&](HWND dialog) {
                                FailingFolium::Only(kQueryRect);
                                Host().Reset();
                                Host().failAt = 3;
                                PressOk(dialog);
                                EXPECT_EQ(Host().calls, 3);
                                Host().Reset();
                                EXPECT_TRUE(IsWindowVisible(dialog));
                                EXPECT_EQ(TakeHostBoxes().size(), 1u);
                                EXPECT_EQ(StoredRects(5), kInvoice);
                                EXPECT_EQ(RowCount(dialog), 4);
                            },
                            PressOk}));
    EXPECT_EQ(StoredRects(5).size(), 4u) << "the second OK";
    TakeTraces();
}

// The row shows what OK will store.
TEST_F(ConfigFaults, ATypedLengthThatThePageRefusesIsTakenBack) {
    KeepPages();
    const FailingFolium failing(m_folium->Dll());
    Steps steps = {[](HWND) {
        FailingFolium::Only(kUpdateRect);
        Host().Reset();
        Host().failAt = 1;
    }};
    EditCell(steps, 0, 2, L"55");
    steps.push_back([&](HWND dialog) {
        Host().Reset();
        EXPECT_EQ(RowText(dialog, 0), L"10.0 20.0 20.0 20.0");
        const std::vector<std::wstring> boxes = TakeHostBoxes();
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_NE(boxes[0].find(L"was taken back"), std::wstring::npos) << boxes[0];
    });
    steps.push_back(PressOk);
    EXPECT_TRUE(PlaySet(5, steps));
    EXPECT_EQ(StoredRects(5), kInvoice);
    TakeTraces();
}

// A list that has no memory for another row.
WNDPROC g_list = nullptr;
LRESULT CALLBACK RefuseRows(HWND list, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == LVM_INSERTITEMW) return -1;
    return CallWindowProcW(g_list, list, message, wParam, lParam);
}

TEST_F(ConfigFaults, AnAreaWithoutARowDoesNotStayOnThePage) {
    KeepPages();
    EXPECT_TRUE(PlaySet(5, {[&](HWND dialog) {
                                const auto replace = [&](WNDPROC by) {
                                    return reinterpret_cast<WNDPROC>(SetWindowLongPtrW(ListOf(dialog), GWLP_WNDPROC,
                                                                                       reinterpret_cast<LONG_PTR>(by)));
                                };
                                g_list = replace(RefuseRows);
                                Push(dialog, IDC_CONFIG_ADD);
                                replace(g_list);
                                EXPECT_EQ(TakeHostBoxes().size(), 1u);
                                EXPECT_EQ(RowCount(dialog), 3);
                                EXPECT_EQ(RectOfId(dialog, 4), (RECT{-1, -1, -1, -1}));
                                Push(dialog, IDC_CONFIG_ADD);
                                EXPECT_EQ(RectOfRow(dialog, 3), (RECT{525, 742, 1575, 2227}));
                            },
                            PressOk}));
    EXPECT_EQ(StoredRects(5).size(), 4u);
    TakeTraces();
}

// Lengths cannot be written then; what was drawn or added is there all the same, and can be removed.
TEST_F(ConfigFaults, AnAreaAddedWithoutUnitsHasARowThatWorks) {
    const std::function<void(HWND)> adds[] = {[](HWND dialog) { Push(dialog, IDC_CONFIG_ADD); },
                                              [](HWND dialog) {
                                                  const FoliumRect rect = {0, 0, 100, 200, 300, 400};
                                                  LONG id = 0;
                                                  FoliumOf(dialog)->InsertRect(&rect, &id);
                                              }};
    KeepPages();
    for (const auto& add : adds) {
        EXPECT_TRUE(PlaySet(9, {[&](HWND dialog) {
                                    EXPECT_FALSE(Enabled(dialog, IDC_CONFIG_REMOVE));
                                    m_units.reset();
                                    add(dialog);
                                    EXPECT_EQ(TakeHostBoxes().size(), 1u);
                                    EXPECT_EQ(RowCount(dialog), 1);
                                    EXPECT_TRUE(Enabled(dialog, IDC_CONFIG_REMOVE));
                                    SelectRow(dialog, 0);
                                    Push(dialog, IDC_CONFIG_REMOVE);
                                    EXPECT_EQ(RowCount(dialog), 0);
                                    EXPECT_FALSE(Enabled(dialog, IDC_CONFIG_REMOVE));
                                    m_units = std::make_unique<com::ClassRegistration>(
                                        L"HostUnits.dll", std::initializer_list<CLSID>{host::kClsidMeasureUnits});
                                    m_units->Dll().Export<decltype(HostSetMeasureSystem)>("HostSetMeasureSystem")(1);
                                    add(dialog);
                                    EXPECT_NE(CellText(dialog, 0, 0), L"");
                                    SelectRow(dialog, 0);
                                    Push(dialog, IDC_CONFIG_REMOVE);
                                },
                                PressOk}));
        TakeTraces();
    }
    EXPECT_TRUE(StoredRects(9).empty());
}

TEST_F(ConfigFaults, AStackThatFailsAtEveryCallStillShowsTheAreas) {
    m_documents.reset();
    const FakePageImageClass images;
    FakeStack stack;
    stack.documents = {2, 1};
    m_tree->booleans[L"RadioPageSource"] = true;
    m_host->quire.Attach(MakeFakeQuire(stack));
    Init();
    std::vector<SAIndexField> none;
    EXPECT_TRUE(PlayPage(none, {PressCancel}));
    TakeTraces();
    TakeHostBoxes();
    FailEveryCall(
        7, 5,
        [](HWND dialog) {
            for (const UINT id : {IDC_CONFIG_NEXT_PAGE, IDC_CONFIG_NEXT_DOC, IDC_CONFIG_PREV_DOC}) Push(dialog, id);
            Push(dialog, IDC_CONFIG_ADD);
            PressOk(dialog);
        },
        [](const std::vector<RECT>& rects) {
            ASSERT_EQ(rects.size(), kInvoice.size() + 1);
            EXPECT_TRUE(std::equal(kInvoice.begin(), kInvoice.end(), rects.begin()));
        });
    m_init(nullptr);
    m_host->quire = nullptr;
}

// Every operation of a long list has to stay quick for the operator; the figures are printed, not judged.
TEST_F(ConfigFaults, TwoThousandAreasKeepTheirOrder) {
    constexpr int kAreas = 2000;
    std::vector<RECT> rects;
    for (LONG i = 0; i < kAreas; ++i) {
        const LONG left = 10 + i % 50 * 40, top = 10 + i / 50 * 70;
        rects.push_back({left, top, left + 30, top + 50});
    }
    m_tree->AddSet(L"0x0000000b", L"Many", 0, rects);
    Init();
    TakeTraces();
    KeepPages();
    ULONGLONG start = GetTickCount64(), opened = 0, added = 0, done = 0;
    const auto lap = [&] { return GetTickCount64() - std::exchange(start, GetTickCount64()); };
    EXPECT_TRUE(PlaySet(11, {[&](HWND dialog) {
                            opened = lap();
                            EXPECT_EQ(RowCount(dialog), kAreas);
                            Push(dialog, IDC_CONFIG_ADD);
                            UpdateWindow(dialog);
                            added = lap();
                            EXPECT_EQ(RowCount(dialog), kAreas + 1);
                            EXPECT_EQ(SelectedRow(dialog), kAreas);
                            start = GetTickCount64();
                            PressOk(dialog);
                        }}));
    done = lap();
    std::printf("%d areas: %u ms to open, %u to add one, %u for OK\n", kAreas, static_cast<unsigned>(opened),
                static_cast<unsigned>(added), static_cast<unsigned>(done));
    const std::vector<RECT> stored = StoredRects(11);
    ASSERT_EQ(stored.size(), rects.size() + 1);
    EXPECT_TRUE(std::equal(rects.begin(), rects.end(), stored.begin()));
}

TEST_F(ConfigFaults, TwoThousandFieldsKeepTheirPlaces) {
    constexpr LONG kFields = 2000;
    std::vector<std::wstring> names;
    std::vector<SAIndexField> fields;
    for (LONG i = 0; i < kFields; ++i) names.push_back(L"Field " + std::to_wstring(i));
    for (LONG i = 0; i < kFields; ++i)
        fields.push_back(Field(names[static_cast<size_t>(i)].c_str(), {i, i, i + 9, i + 9}));
    UsePages({});
    ULONGLONG start = GetTickCount64(), opened = 0;
    EXPECT_TRUE(PlayPage(fields, {[&](HWND dialog) {
                             opened = GetTickCount64() - start;
                             EXPECT_EQ(CellText(dialog, kFields - 1, 4), names.back());
                             start = GetTickCount64();
                             PressOk(dialog);
                         }}));
    std::printf("%d fields: %u ms to open, %u for OK\n", static_cast<int>(kFields), static_cast<unsigned>(opened),
                static_cast<unsigned>(GetTickCount64() - start));
    for (LONG i = 0; i < kFields; ++i) {
        ASSERT_EQ(PlaceOf(fields[static_cast<size_t>(i)]), (RECT{i, i, i + 9, i + 9}));
    }
}

}  // namespace
}  // namespace test
