// "Manage Area Sets" over the host's settings file: what OK, Cancel and a second host leave on the disk.
#include <cstdio>
#include <functional>

#include "dialogs/ManageFileFixture.h"

namespace {

using namespace test;

TEST_F(ManageFile, OkIsOnTheDiskAndCancelIsNot) {
    Steps steps = Create(L"Delivery note");
    steps.push_back(PressOk);
    EXPECT_TRUE(Play(steps));
    const std::string stored = Content();
    EXPECT_NE(stored.find("Delivery note"), std::string::npos) << stored;
    EXPECT_NE(stored.find("0x00000001"), std::string::npos);
    steps = Create(L"Dropped");
    steps.push_back(PressCancel);
    EXPECT_TRUE(Play(steps));
    EXPECT_EQ(Content(), stored);
    OpenFile();
    EXPECT_TRUE(Play({[](HWND dialog) { EXPECT_EQ(SetNames(dialog), L"Delivery note|"); }, PressCancel}));
}

TEST_F(ManageFile, AFileThatAnotherHostChangedIsNotOverwritten) {
    Steps steps = Create(L"First");
    steps.push_back(PressOk);
    EXPECT_TRUE(Play(steps));
    std::string others;
    steps = Create(L"Second");
    steps.push_back([&](HWND dialog) {
        Append("\n");
        others = Content();
        PressOk(dialog);
        const std::vector<std::wstring> boxes = TakeHostBoxes();
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_TRUE(boxes[0].starts_with(L"The area sets could not be saved.")) << boxes[0];
        EXPECT_NE(boxes[0].find(m_path.substr(m_path.rfind(L'\\')) + L".refused-1"), std::wstring::npos) << boxes[0];
        EXPECT_EQ(SetNames(dialog), L"First|Second|");
        TakeTraces();
        PressCancel(dialog);
    });
    EXPECT_TRUE(Play(steps));
    EXPECT_EQ(Content(), others);
    EXPECT_NE(Content(L".refused-1").find("Second"), std::string::npos);
}

ULONGLONG Milliseconds(const std::function<void()>& action) {
    const ULONGLONG start = GetTickCount64();
    action();
    return GetTickCount64() - start;
}

TEST_F(ManageFile, TenThousandSets) {
    constexpr const char* kRect =
        "{\"Position:left\":0,\"Position:top\":0,\"Position:right\":2100,\"Position:bottom\":2970}";
    std::string text = "{";
    for (int id = 1; id <= 10000; ++id) {
        char set[512];
        snprintf(set, sizeof set,
                 "%s\"%#010x\":{\"Name\":\"Set %d\",\"Flags\":0,\"DisplayRect\":%s,\"Rect\":{\"0\":%s}}",
                 id > 1 ? "," : "", static_cast<unsigned>(id), id, kRect, kRect);
        text += set;
    }
    Append((text + "}").c_str());
    OpenFile();
    ULONGLONG select = 0, remove = 0, ok = 0;
    const ULONGLONG start = GetTickCount64();
    EXPECT_TRUE(Play({[&](HWND) {
                          printf("10,000 sets: %u ms to open", static_cast<unsigned>(GetTickCount64() - start));
                          PressKey(VK_END);
                      },
                      [&](HWND dialog) {
                          EXPECT_EQ(SelectedSet(dialog), 9999);
                          EXPECT_EQ(SetName(dialog, 9999), L"Set 10000");
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm");
                          select = Milliseconds([&] { SelectSet(dialog, 5000); });
                          remove = Milliseconds([&] { Push(dialog, IDC_MANAGE_REMOVE); });
                          ok = Milliseconds([&] { PressOk(dialog); });
                      }}));
    printf(", %u to select, %u to remove, %u for OK\n", static_cast<unsigned>(select), static_cast<unsigned>(remove),
           static_cast<unsigned>(ok));
    OpenFile();
    EXPECT_TRUE(Play({[](HWND dialog) {
                          EXPECT_EQ(SetCount(dialog), 9999);
                          EXPECT_EQ(SetName(dialog, 5000), L"Set 5002");
                      },
                      PressCancel}));
}

}  // namespace
