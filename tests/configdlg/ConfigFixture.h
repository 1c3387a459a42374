#pragma once
// Zonwick.dll among the host's real libraries, with settings in memory that can fail, and its dialog "Configure Area
// Set" played through its window.

#include <gtest/gtest.h>

#include <concepts>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/ConfigObjects.h"
#include "host/PageDisplay.h"
#include "refhost/com/ClassRegistration.h"
#include "refhost/com/ComObject.h"
#include "resource.h"
#include "support/FakeSettings.h"
#include "win32/ComPtr.h"
#include "win32/DialogDriver.h"
#include "win32/DialogScript.h"
#include "zonwick/zonwick.h"

inline bool operator==(const RECT& a, const RECT& b) {
    return EqualRect(&a, &b) != FALSE;
}
std::ostream& operator<<(std::ostream& out, const RECT& rect);

namespace test {

struct Trace {
    int severity;
    unsigned stringId;
    std::wstring text;
};

// The host's object; writes down the order of calls: "BQE".
class TestConfigHost final : public com::Object<com::NoDispatch<IConfigHost>, com::NoDispatch<IConfigScope>> {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    HRESULT STDMETHODCALLTYPE GetQuire(IQuire** quire) override;
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Begin() override;
    HRESULT STDMETHODCALLTYPE End() override;

    // Asked first by each call; what it gives is the call's result, a success being one without a pointer.
    std::function<std::optional<HRESULT>()> instead = [] { return std::nullopt; };
    win32::ComPtr<IQuire> quire;
    std::string calls;
};

// The areas of the set "Invoice".
inline const std::vector<RECT> kInvoiceAreas = {{100, 200, 300, 400}, {500, 600, 900, 1000}, {1200, 1500, 1800, 2200}};

// A field with its place; all 0 for none.
inline SAIndexField Field(const wchar_t* name, RECT rect = {}) {
    return {rect.top, rect.bottom, rect.right, rect.left, name};
}
inline RECT PlaceOf(const SAIndexField& field) {
    return {field.left, field.top, field.right, field.bottom};
}

// The parts of the open dialog.
win32::ComPtr<IFolium> FoliumOf(HWND dialog);
HWND ListOf(HWND dialog);
HWND PageOf(HWND dialog);  // the control's own window
bool Enabled(HWND dialog, UINT id);
bool Checked(HWND dialog, UINT id);
std::wstring TitleOf(HWND dialog);
// Of a list view.
int ItemCount(HWND list);
std::wstring ItemText(HWND list, int item, int column = 0);
int SelectedItem(HWND list);
void SelectItem(HWND list, int item);
// Of the list of rectangles.
inline int RowCount(HWND dialog) {
    return ItemCount(ListOf(dialog));
}
inline std::wstring CellText(HWND dialog, int row, int column) {
    return ItemText(ListOf(dialog), row, column);
}
inline int SelectedRow(HWND dialog) {
    return SelectedItem(ListOf(dialog));
}
inline void SelectRow(HWND dialog, int row) {
    SelectItem(ListOf(dialog), row);
}
// All cells of a row: "52.5 74.2 105.0 148.5".
std::wstring RowText(HWND dialog, int row);
// The rectangle of a row as the page display control has it; all -1 when there is none.
RECT RectOfRow(HWND dialog, int row);
// A place in the page's window, in thousandths of its size.
POINT OnPage(HWND dialog, int x, int y);

// By real keys: a text for a cell; the field before (VK_UP) or after (VK_DOWN) the one that the row has.
void EditCell(HWND dialog, int row, int column, const std::wstring& text);
void ChooseField(HWND dialog, int row, WORD key);

inline void PressOk(HWND dialog) {
    Push(dialog, IDOK);
}
inline void PressCancel(HWND dialog) {
    Push(dialog, IDCANCEL);
}

class ConfigDialog : public testing::Test {
protected:
    ConfigDialog();
    ~ConfigDialog() override;
    void SetUp() override;
    void TearDown() override;

    // Hands the settings over; they have the set 5 "Invoice" with three areas, and the set 9 "Empty".
    void Init();
    void MakeUnits();
    // Of the host's units: 1 metric, 2 inches.
    void UseSystem(LONG system);
    void UsePages(const std::vector<std::wstring>& files);

    BOOL OpenPage(std::vector<SAIndexField>& fields, const wchar_t* name = L"Page", int document = 0, int page = 0);
    BOOL PlayPage(std::vector<SAIndexField>& fields, const Script& script, const wchar_t* name = L"Page");
    // Opens and cancels a page configuration, which leaves its pages for stored sets.
    void KeepPages();
    template <std::invocable<HWND> Moves>
    BOOL PlaySet(DWORD id, const Moves& script) {
        BOOL result = FALSE;
        PlayScript(script, [&] { result = m_configureSet(m_owner, id); });
        return result;
    }
    BOOL PlaySet(DWORD id, Steps steps);  // for what still plays steps
    std::vector<RECT> StoredRects(DWORD id);
    // The working settings, and what they hold of a set.
    FakeTree& WorkingRoot();
    FakeTree& WorkingSet(const wchar_t* key);

    std::vector<Trace> TakeTraces() { return std::exchange(m_traces, {}); }
    // Texts of severity 2 and 6 since the last call, but for the look-ups that every loading does.
    std::wstring TakeTraceTexts();
    // Boxes of the host's libraries, all answered with OK.
    std::vector<std::wstring> TakeHostBoxes() { return std::exchange(m_boxes, {}); }
    // One box was shown since the last call, with this text in it.
    void ExpectBox(const std::wstring& text);
    void ExpectNothingReported();

    std::shared_ptr<FakeTree> m_tree = std::make_shared<FakeTree>();  // of the host
    std::unique_ptr<com::ClassRegistration> m_documents, m_units, m_folium;
    TestConfigHost* m_host;
    HWND m_owner = nullptr;

    decltype(&::SAInit) m_init;
    decltype(&::SAConfigureSet) m_configureSet;
    decltype(&::ConfigurePage) m_configurePage;
    std::unique_ptr<com::HostDll> m_module;

private:
    struct Classes;
    std::unique_ptr<Classes> m_classes;
    std::vector<Trace> m_traces;
    std::vector<std::wstring> m_boxes;
};

}  // namespace test
