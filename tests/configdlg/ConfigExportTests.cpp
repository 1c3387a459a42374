// The exports that open "Configure Area Set": what they hand back, what they refuse, and what is left after failures.
#include "configdlg/ConfigFixture.h"

#include "host/MeasureUnits.h"

#include <algorithm>
#include <functional>

namespace {

using namespace test;

// What failed shortly before stands between the two.
constexpr const wchar_t* kNotOpened = L"The window for configuring area sets could not be opened.\n\n";
constexpr const wchar_t* kTryAgain = L"Try again. If it happens again, close the program and start it anew.";
const std::vector<RECT> kInvoice = {{100, 200, 300, 400}, {500, 600, 900, 1000}, {1200, 1500, 1800, 2200}};

// Adds an area and presses OK when the dialog opens; cancels one that stays open.
class HastyUser {
public:
    HastyUser() {
        s_self = this;
        m_timer = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) { s_self->Act(); });
    }
    ~HastyUser() { KillTimer(nullptr, m_timer); }
    HastyUser(const HastyUser&) = delete;
    HastyUser& operator=(const HastyUser&) = delete;

private:
    void Act() {
        const HWND dialog = FindWindowW(L"#32770", nullptr);
        if (dialog == nullptr || !IsWindowVisible(dialog) || m_acting) return;
        m_acting = true;
        if (m_acts++ == 0) {
            Push(dialog, IDC_CONFIG_ADD);
            Push(dialog, IDOK);
        } else {
            Push(dialog, IDCANCEL);
        }
        m_acting = false;
    }
    static inline HastyUser* s_self = nullptr;
    UINT_PTR m_timer;
    int m_acts = 0;
    bool m_acting = false;
};

class ConfigExports : public ConfigDialog {
protected:
    void ExpectRefused(const wchar_t* traces, size_t boxes) {
        EXPECT_EQ(TakeTraceTexts(), traces);
        EXPECT_EQ(TakeHostBoxes().size(), boxes);
    }
};

TEST_F(ConfigExports, RefusedBeforeAnyDialog) {
    EXPECT_FALSE(m_configureSet(m_owner, 5)) << "no pages yet";
    ExpectNothingReported();
    EXPECT_FALSE(m_configurePage(m_owner, L"", nullptr, 0, nullptr, 0, 0)) << "no host object";
    ExpectNothingReported();
    EXPECT_FALSE(m_configurePage(m_owner, L"", nullptr, 1, m_host, 0, 0));
    ExpectRefused(L"6 ConfigurePage: fields is NULL.\n", 0);
    EXPECT_EQ(m_host->calls, "") << "left before Begin";

    KeepPages();
    const HastyUser user;
    EXPECT_FALSE(m_configureSet(m_owner, 6));
    ExpectRefused(L"2 #34108\n6 SAConfigureSet: pSet or pNewSet is NULL.\n", 1);
    m_host->calls.clear();
    for (const HWND parent : {HWND(nullptr), reinterpret_cast<HWND>(UINT_PTR{0xDEAD})}) {
        EXPECT_FALSE(m_configureSet(parent, 5));
        const std::vector<std::wstring> boxes = TakeHostBoxes();
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_TRUE(boxes[0].starts_with(kNotOpened) && boxes[0].ends_with(kTryAgain)) << boxes[0];
        ExpectRefused(L"2 #34108\n6 SAConfigureSet: CWnd::FromHandle(hParent) returned NULL.\n", 0);
        EXPECT_FALSE(m_configurePage(parent, L"", nullptr, 0, m_host, 0, 0));
        ExpectRefused(L"2 #34108\n6 SAConfigureSet: CWnd::FromHandle(a_hParent) returned NULL.\n", 1);
    }
    EXPECT_EQ(m_host->calls, "BQEBQE");
}

TEST_F(ConfigExports, SetsThatCannotBeLoadedAreReported) {
    KeepPages();
    m_host->calls.clear();
    const HastyUser user;
    for (const bool page : {false, true}) {
        Host().createTransfer = E_NOINTERFACE;
        Init();
        Host().createTransfer = S_OK;
        TakeTraces();
        std::vector<SAIndexField> fields;
        EXPECT_FALSE(page ? OpenPage(fields) : m_configureSet(m_owner, 5));
        const std::wstring traces = TakeTraceTexts();
        EXPECT_TRUE(traces.ends_with(L"2 #34106\n")) << traces;
        EXPECT_EQ(TakeHostBoxes().size(), 1u);
    }
    EXPECT_EQ(m_host->calls, "BQE");
}

TEST_F(ConfigExports, AMissingPageControlIsReported) {
    KeepPages();
    const HastyUser user;
    m_folium.reset();
    std::vector<SAIndexField> fields = {Field(L"Total", {1, 2, 3, 4})};
    m_host->calls.clear();
    EXPECT_FALSE(OpenPage(fields));
    EXPECT_EQ(m_host->calls, "BQE");
    EXPECT_EQ(PlaceOf(fields[0]), (RECT{1, 2, 3, 4}));
    std::wstring traces = TakeTraceTexts();
    EXPECT_TRUE(traces.ends_with(L"2 #34108\n6 SAConfigureSet: dlg.DoModal failed.\n")) << traces;
    EXPECT_EQ(TakeHostBoxes().size(), 1u);
    EXPECT_FALSE(m_configureSet(m_owner, 5));
    traces = TakeTraceTexts();
    EXPECT_TRUE(traces.ends_with(L"2 #34108\n6 SAConfigureSet: dlg.DoModal failed.\n")) << traces;
    const std::vector<std::wstring> boxes = TakeHostBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_TRUE(boxes[0].starts_with(kNotOpened)) << boxes[0];
}

TEST_F(ConfigExports, AnExceptionWhileOpeningIsReportedWithTheHint) {
    KeepPages();
    const HastyUser user;
    m_host->calls.clear();
    m_units.reset();
    WorkingRoot().integers[L"LastScale"] = 123;
    std::vector<SAIndexField> fields = {Field(L"Total", {1, 2, 3, 4})};
    EXPECT_FALSE(OpenPage(fields));
    EXPECT_EQ(m_host->calls, "BQE");
    for (const bool page : {true, false}) {
        if (!page) {
            EXPECT_FALSE(m_configureSet(m_owner, 5));
        }
        const std::wstring traces = TakeTraceTexts();
        EXPECT_TRUE(traces.ends_with(L"2 #34108\n2 Hint: check if Folium.dll is registered properly.\n")) << traces;
        EXPECT_EQ(TakeHostBoxes().size(), 1u);
    }
    EXPECT_EQ(StoredRects(5), kInvoice);
    EXPECT_EQ(WorkingRoot().integers[L"LastScale"], 123) << "no view was shown that could be remembered";
}

// A host without documents shows a blank page, which is no error, and may hand over its settings in its own calls.
TEST_F(ConfigExports, WithoutAStackABlankPage) {
    std::vector<SAIndexField> fields = {Field(L"Total", {1, 2, 3, 4})};
    m_tree->booleans[L"RadioPageSource"] = true;
    Init();
    m_host->quire = nullptr;
    m_host->instead = [this]() -> std::optional<HRESULT> {
        Init();
        return std::nullopt;
    };
    EXPECT_TRUE(PlayPage(fields, {PressCancel}));
    EXPECT_EQ(TakeTraceTexts(), L"");
}

TEST_F(ConfigExports, EveryBeginThatSucceededHasItsEnd) {
    std::vector<SAIndexField> fields = {Field(L"Total", {1, 2, 3, 4})};
    const struct {
        HRESULT TestConfigHost::*call;
        HRESULT status;
        const char* calls;
    } failures[] = {{&TestConfigHost::scopeQuery, E_NOINTERFACE, ""},
                    {&TestConfigHost::scopeQuery, E_FAIL, ""},
                    {&TestConfigHost::begin, E_FAIL, "B"},
                    {&TestConfigHost::getQuire, E_ACCESSDENIED, "BQE"}};
    for (const auto& [call, status, calls] : failures) {
        SCOPED_TRACE(calls);
        m_host->*call = status;
        EXPECT_FALSE(OpenPage(fields));
        m_host->*call = S_OK;
        EXPECT_EQ(std::exchange(m_host->calls, {}), calls);
        EXPECT_EQ(TakeTraceTexts().substr(0, 2), L"2 ");
        EXPECT_EQ(TakeHostBoxes().size(), 0u);
    }
    // When only End fails, the work is done.
    m_host->end = E_FAIL;
    EXPECT_TRUE(PlayPage(fields, {[](HWND dialog) { Push(dialog, IDC_CONFIG_REMOVE); },
                                  [](HWND dialog) {
                                      SelectRow(dialog, 0);
                                      Push(dialog, IDC_CONFIG_REMOVE);
                                  },
                                  PressOk}));
    EXPECT_EQ(m_host->calls, "BQE");
    EXPECT_EQ(PlaceOf(fields[0]), RECT{});
    EXPECT_EQ(TakeTraceTexts().substr(0, 2), L"2 ");
    EXPECT_EQ(TakeHostBoxes().size(), 0u);
}

TEST_F(ConfigExports, FieldsThatAreOddStillComeBack) {
    std::vector<SAIndexField> fields = {Field(L"Same", {10, 20, 30, 40}), Field(L"Same", {50, 60, 70, 80}),
                                        Field(L"", {90, 100, 110, 120}), Field(nullptr),
                                        Field(L"Turned", {300, 400, 100, 200})};
    const std::wstring longName(1000, L'n');
    fields.push_back(Field(longName.c_str(), {1, 2, 3, 4}));
    EXPECT_TRUE(PlayPage(fields,
                         {[](HWND dialog) {
                              wchar_t title[64] = {};
                              GetWindowTextW(dialog, title, 64);
                              EXPECT_STREQ(title, L"Configure Area Set");
                              EXPECT_EQ(RowCount(dialog), 5);
                          },
                          PressOk},
                         nullptr));
    EXPECT_EQ(PlaceOf(fields[0]), PlaceOf(fields[1])) << "fields of one name share a rectangle";
    EXPECT_EQ(PlaceOf(fields[1]), (RECT{50, 60, 70, 80}));
    EXPECT_EQ(PlaceOf(fields[2]), (RECT{90, 100, 110, 120}));
    EXPECT_EQ(PlaceOf(fields[4]), (RECT{100, 200, 300, 400}));
    EXPECT_EQ(PlaceOf(fields[5]), (RECT{1, 2, 3, 4}));

    for (const int count : {0, -1}) {
        BOOL result = FALSE;
        PlayDialog({[](HWND dialog) {
                        EXPECT_EQ(RowCount(dialog), 0);
                        EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, IDC_CONFIG_IGNORED))) << "no indexing";
                    },
                    PressOk},
                   [&] { result = m_configurePage(m_owner, L"", nullptr, count, m_host, 0, 0); });
        EXPECT_TRUE(result);
    }
}

TEST_F(ConfigExports, CancelChangesNothingAndOkReplacesTheFlags) {
    KeepPages();
    const std::wstring before = WorkingSet(L"0x00000005").Dump();
    const std::wstring host = m_tree->Dump();
    std::vector<SAIndexField> fields = {Field(L"Total", {10, 20, 30, 40})};
    const Steps leave = {
        [](HWND dialog) { Push(dialog, IDC_CONFIG_ADD); },
        [](HWND dialog) { CheckRadioButton(dialog, IDC_CONFIG_REQUIRED, IDC_CONFIG_IGNORED, IDC_CONFIG_IGNORED); },
        [](HWND) { PressKey(VK_ESCAPE); }};
    EXPECT_TRUE(PlayPage(fields, leave));
    EXPECT_EQ(PlaceOf(fields[0]), (RECT{10, 20, 30, 40}));
    EXPECT_TRUE(PlaySet(5, leave));
    EXPECT_EQ(WorkingSet(L"0x00000005").Dump(), before);
    EXPECT_EQ(StoredRects(5), kInvoice);

    m_tree->Child(L"0x00000005")->integers[L"Flags"] = 0x10000007;
    Init();
    EXPECT_TRUE(PlaySet(
        5, {[](HWND dialog) { EXPECT_EQ(IsDlgButtonChecked(dialog, IDC_CONFIG_IGNORED), BST_CHECKED); }, PressOk}));
    EXPECT_EQ(WorkingSet(L"0x00000005").integers[L"Flags"], 0x10000000);
    EXPECT_TRUE(PlaySet(5, {[](HWND dialog) { Push(dialog, IDC_CONFIG_REQUIRED); }, PressOk}));
    EXPECT_EQ(WorkingSet(L"0x00000005").integers[L"Flags"], 0);
    m_tree->Child(L"0x00000005")->integers[L"Flags"] = 0;
    EXPECT_EQ(m_tree->Dump(), host) << "the host's node waits for a commit";
}

TEST_F(ConfigExports, WhileOpenTheSameExportAndNewSettingsAreRefused) {
    KeepPages();
    std::vector<SAIndexField> fields = {Field(L"Total", {10, 20, 30, 40})};
    EXPECT_TRUE(
        PlayPage(fields, {[&](HWND) {
                              EXPECT_FALSE(OpenPage(fields));
                              EXPECT_EQ(TakeTraceTexts(), L"6 ConfigurePage: called again while its dialog is open.\n");
                              m_init(nullptr);
                              EXPECT_EQ(TakeTraceTexts(), L"6 SAInit: a dialog is open, nothing was changed.\n");
                              EXPECT_EQ(StoredRects(5), kInvoice);
                          },
                          PressCancel}));
    EXPECT_TRUE(PlaySet(5, {[&](HWND) {
                                EXPECT_FALSE(m_configureSet(m_owner, 5));
                                EXPECT_EQ(TakeTraceTexts(),
                                          L"6 SAConfigureSet: called again while its dialog is open.\n");
                            },
                            PressCancel}));
    EXPECT_TRUE(PlaySet(5, {PressCancel})) << "the refusal ends with the dialog";
}

// Units whose calls fail like those of the settings.
class FailingUnits final : public FakeObject<IMeasureUnits> {
public:
    HRESULT STDMETHODCALLTYPE GetMeasureSystem(LONG* system) override {
        *system = 1;
        return Status();
    }
    HRESULT STDMETHODCALLTYPE GetUnitName(BSTR* name) override { return Give(L"mm", name); }
    HRESULT STDMETHODCALLTYPE ToUserUnits(LONG length, double* value) override {
        *value = length / 10.0;
        return Status();
    }
    HRESULT STDMETHODCALLTYPE FromUserUnits(double value, LONG* length) override {
        *length = static_cast<LONG>(value * 10);
        return Status();
    }
    HRESULT STDMETHODCALLTYPE FormatValue(LONG length, BSTR* text) override {
        return Give(std::to_wstring(length / 10).c_str(), text);
    }
    HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }

private:
    static HRESULT Status() { return Host().Fails() ? E_FAIL : S_OK; }
    static HRESULT Give(const wchar_t* text, BSTR* out) {
        *out = nullptr;
        if (Host().Fails()) return E_FAIL;
        *out = SysAllocString(text);
        return S_OK;
    }
};

// Whichever call of the settings or of the units fails: all or nothing, and End follows Begin.
TEST_F(ConfigExports, AFailingHostCallLeavesNothingHalfDone) {
    KeepPages();
    m_units.reset();
    const FakeClass units(
        host::kClsidMeasureUnits, [] { return static_cast<IUnknown*>(new FailingUnits); }, Host().createSettingsNode);
    const std::wstring host = m_tree->Dump();
    std::vector<RECT> changed = kInvoice;
    changed.push_back({525, 742, 1575, 2227});

    for (const bool page : {false, true}) {
        int opened = 0, done = 0, n = 0;
        for (bool reached = true; reached && n < 500;) {
            SCOPED_TRACE(testing::Message() << (page ? "page" : "set") << ", call " << ++n);
            Init();
            EXPECT_EQ(StoredRects(5), kInvoice);
            TakeTraces();
            m_host->calls.clear();
            std::vector<SAIndexField> fields = {Field(L"Total", {10, 20, 30, 40})};
            BOOL result = FALSE;
            {
                const HastyUser user;
                Host().Reset();
                Host().failAt = n;
                result = page ? OpenPage(fields) : m_configureSet(m_owner, 5);
                reached = Host().calls >= n;
                Host().Reset();
            }
            const size_t boxes = TakeHostBoxes().size();
            EXPECT_TRUE(result || boxes == 1) << boxes;
            if (page) {
                EXPECT_EQ(m_host->calls, "BQE");
                EXPECT_EQ(PlaceOf(fields[0]), (RECT{10, 20, 30, 40}));
            }
            const std::vector<RECT> rects = StoredRects(5);
            if (!page && result && rects != kInvoice) {
                EXPECT_EQ(rects, changed);
                ++done;
            } else {
                EXPECT_EQ(rects, kInvoice);
            }
            opened += result;
            EXPECT_EQ(m_tree->Dump(), host);
        }
        EXPECT_LT(n, 500);
        EXPECT_GT(n, 20);
        EXPECT_GT(opened, 5);
        EXPECT_TRUE(page || done > 5) << done;
    }
}

}  // namespace
