#pragma once
// The dialogs in Zonwick.dll over a settings file of the real store, whose calls are counted.

#include "dialogs/ManageFixture.h"
#include "faults/DialogPilot.h"
#include "processes/CountedSettings.h"
#include "support/LoadedModule.h"

namespace test {

// Before the settings of the dialog's tests, so these are the ones that the module gets.
struct Settings {
    CountedSettings file;
};

class SettingsFileDialog : protected Settings, public ManageDialog {
protected:
    void TearDown() override {
        TakeTraces();
        ManageDialog::TearDown();
    }
    // Hands the settings of the file to the module.
    void Load() {
        const auto root = file.Open();
        ASSERT_TRUE(root != nullptr) << "damaged";
        m_init(root);
    }
    void Load(const std::string& content) {
        file.Write(content);
        Load();
    }
    // Presses a button of "Manage Area Sets" after `edit`.
    template <class Edit>
    void PlayManage(Edit edit, UINT button) {
        const auto play = [&](HWND dialog) {
            edit(dialog);
            Push(dialog, button);
        };
        EXPECT_EQ(Pilot(play, {}, [this] { Open(); }), Flight::kClosed);
    }
};

}  // namespace test
