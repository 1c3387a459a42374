#pragma once
// Moves values between a dialog's members and its controls; see CDialog::DoDataExchange.

#include <windows.h>

#include <string>

class CDialog;
class CWnd;

class CDataExchange {
public:
    CDataExchange(CDialog& dialog, bool save) : m_bSaveAndValidate(save), m_dialog(dialog) {}

    const bool m_bSaveAndValidate;  // true: from the controls to the members

    HWND GetControl(UINT id) const;

private:
    CDialog& m_dialog;
};

// Thrown by an exchange that refuses what stands in a control; CDialog::UpdateData tells the user.
struct DataRefused {
    UINT id;
    std::wstring text;
};

// Binds a control to its object. A dialog without the control is thrown as E_UNEXPECTED.
void DDX_Control(CDataExchange& exchange, UINT id, CWnd& control);
// A number from minimum to maximum in an edit; six significant digits when shown. The member keeps its value when the
// text is refused.
void DDX_MinMaxFloat(CDataExchange& exchange, UINT id, float& value, float minimum, float maximum);
