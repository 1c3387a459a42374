#include "win32/DataExchange.h"

#include <comdef.h>

#include <cfloat>
#include <cmath>

#include "resource.h"
#include "win32/Dialog.h"
#include "win32/NumberText.h"
#include "win32/Resources.h"

namespace {

// What the user knows the field by: the label before it, without mnemonic and colon.
std::wstring GetFieldName(HWND control) {
    const HWND label = GetWindow(control, GW_HWNDPREV);
    std::wstring name = label == nullptr ? std::wstring() : GetTextOfWindow(label);
    std::erase(name, L'&');
    if (name.ends_with(L':')) name.pop_back();
    return name;
}

std::wstring Shown(float value) {
    return win32::FormatGeneral(double{value}, FLT_DIG);
}

}  // namespace

HWND CDataExchange::GetControl(UINT id) const {
    const HWND control = m_dialog.GetDlgItem(id);
    if (control == nullptr) throw _com_error(E_UNEXPECTED);
    return control;
}

void DDX_Control(CDataExchange& exchange, UINT id, CWnd& control) {
    if (control.GetSafeHwnd() == nullptr) control.Attach(exchange.GetControl(id));
}

void DDX_MinMaxFloat(CDataExchange& exchange, UINT id, float& value, float minimum, float maximum) {
    const HWND control = exchange.GetControl(id);
    if (!exchange.m_bSaveAndValidate) {
        SetWindowTextW(control, Shown(value).c_str());
        return;
    }
    const auto typed = static_cast<float>(win32::ParseNumber(GetTextOfWindow(control)).value_or(NAN));
    if (!(typed >= minimum && typed <= maximum)) {
        throw DataRefused{
            id, win32::FormatText(IDS_NUMBER_REFUSED, {GetFieldName(control), Shown(minimum), Shown(maximum)})};
    }
    value = typed;
}
