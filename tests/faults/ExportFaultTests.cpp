// Every export without a window, with a fault at every chance.
#include <array>

#include "faults/FaultLoop.h"

namespace {

using namespace test;

constexpr const wchar_t* kLoadFailed = L"6 CAreaSetManager::LoadSettings failed\n";

class ExportFaults : public FaultLoop {};

TEST_F(ExportFaults, Init) {
    // A failing load, or a working node that cannot be made: then the next query tells.
    const auto call = [this] {
        Init();
        EndFaults();
        return Sets() == L"1:Invoice:2 2:Letter:1 3:Blank:0 ";
    };
    Run({"SAInit", call, [] {}, {kOutOfMemory, kHostFailed, kLoadFailed, kNotRead}},
        {Fault::kObject, Fault::kMemory, Fault::kString, Fault::kLockAbandoned, Fault::kLockFailed});
    // A value that the host fails to give counts as missing, which is no failure.
    const auto lenient = [this] {
        Init();
        EndFaults();
        const std::wstring sets = Sets();
        return sets.find(L"1:") == 0 && sets.find(L"2:") != std::wstring::npos &&
               sets.find(L"3:") != std::wstring::npos;
    };
    Run({"SAInit", lenient, [] {}, {kHostFailed, kLoadFailed, kNotRead}}, {Fault::kSettings, Fault::kSettingsNull});
}

TEST_F(ExportFaults, Queries) {
    SAAreaInfo info = {};
    std::array<RECT, 2> rects = {};
    DWORD id = 0;
    DWORD index = 9;
    const Operation operations[] = {
        {"SAGetAreaInfo",
         [&] {
             info = {};
             return Export<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(1, &info) != FALSE;
         },
         [&] {
             EXPECT_STREQ(info.szName, L"Invoice");
             EXPECT_EQ(info.nAreas, 2u);
         },
         {kOutOfMemory}},
        {"SAGetAreaRects",
         [&] {
             rects = {};
             return Export<decltype(::SAGetAreaRects)>("SAGetAreaRects")(1, rects.data()) != FALSE;
         },
         [&] {
             EXPECT_EQ(rects[1], (RECT{1050, 1485, 2100, 2970}));
         },
         {kOutOfMemory}},
        {"SAMapID2Index",
         [&] {
             index = Export<decltype(::SAMapID2Index)>("SAMapID2Index")(2);
             return true;
         },
         [&] { EXPECT_EQ(index, 1u); }},
        {"SAMapIndex2ID", [&] { return Export<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(2, &id) != FALSE; },
         [&] { EXPECT_EQ(id, 3u); }},
        {"SAChangeColors",
         [&] {
             Export<decltype(::SAChangeColors)>("SAChangeColors")(0xFFFFFF, 0xFFFFFF, 0);
             return true;
         }},
    };
    for (const Operation& operation : operations) {
        Run(operation, {Fault::kSettings, Fault::kMemory, Fault::kString, Fault::kLockAbandoned, Fault::kLockFailed});
    }
}

TEST_F(ExportFaults, MaskedImage) {
    BYTE* block = nullptr;
    DWORD length = 0;
    const auto call = [&] {
        block = nullptr;
        length = 0;
        return Export<decltype(::CreateAreaSetImage)>("CreateAreaSetImage")(m_page, L"Letter", &block, &length) != 0;
    };
    const auto check = [&] {
        EXPECT_GT(length, 1000u);
        EXPECT_EQ(block[0], 'B');
        Export<decltype(::FreeAreaSetImage)>("FreeAreaSetImage")(block);
    };
    Run({"CreateAreaSetImage",
         call,
         check,
         {L"2 unknown areaset name requested", L"2 cannot allocate memory: 24", L"2 cannot create masked image",
          L"2 cannot copy masked image", L"2 cannot allocate memory for masked image"}},
        {Fault::kMemory, Fault::kImaging, Fault::kCodec, Fault::kLockAbandoned, Fault::kLockFailed});
    // Giving the block back needs nothing that could fail.
    const auto giveBack = [&] {
        FaultHooks::Hold(true);
        const bool made = call();
        FaultHooks::Hold(false);
        Export<decltype(::FreeAreaSetImage)>("FreeAreaSetImage")(block);
        return made;
    };
    Run({"FreeAreaSetImage", giveBack}, {Fault::kMemory, Fault::kImaging, Fault::kString, Fault::kLockFailed});
}

// An abandoned lock counts as taken, one that cannot be waited for does not stop anything; both are told.
TEST_F(ExportFaults, TheLockTellsWhatBecameOfIt) {
    const struct {
        Fault kind;
        const wchar_t* text;
    } cases[] = {
        {Fault::kLockAbandoned, L"6 CAreaSetManager: the lock's last owner ended without releasing it.\n"},
        {Fault::kLockFailed, L"6 CAreaSetManager: the lock could not be taken.\n"},
    };
    for (const auto& [kind, text] : cases) {
        TakeTraces();
        FaultHooks::Arm(kind, 1, false);
        EXPECT_EQ(Export<decltype(::SAMapID2Index)>("SAMapID2Index")(2), 1u);
        EXPECT_EQ(FaultHooks::Disarm().injected, 1);
        EXPECT_EQ(TakeTraceTexts(), text);
        EXPECT_TRUE(FaultHooks::IsLockFree());
    }
}

// Another thread asks while this one reads the sets: it waits, although the lock between processes cannot be had.
TEST_F(ExportFaults, WithoutTheLockThreadsOfTheProcessStillWait) {
    constexpr int kInTheLoad = 20;
    static HANDLE asking;
    static DWORD early;
    asking = nullptr;
    Host().during = [](int call) {
        if (call != kInTheLoad) return;
        asking = CreateThread(
            nullptr, 0, [](void*) { return Export<decltype(::SAMapID2Index)>("SAMapID2Index")(2); }, nullptr, 0,
            nullptr);
        early = WaitForSingleObject(asking, 300);
    };
    FaultHooks::Arm(Fault::kLockFailed, 1, true);
    Init();
    Host().during = nullptr;
    EXPECT_GT(FaultHooks::Disarm().injected, 0);
    ASSERT_NE(asking, nullptr);
    EXPECT_EQ(early, static_cast<DWORD>(WAIT_TIMEOUT));
    EXPECT_EQ(WaitForSingleObject(asking, 60000), WAIT_OBJECT_0);
    DWORD index = 9;
    GetExitCodeThread(asking, &index);
    EXPECT_EQ(index, 1u);
    CloseHandle(asking);
    TakeTraces();
}

// What the loop rests on: a block that stays, a string that stays and a lock that is held are seen.
TEST_F(ExportFaults, TheLoopSeesWhatIsLeftBehind) {
    const Holdings before = FaultHooks::Measure();
    BYTE* block = nullptr;
    DWORD length = 0;
    ASSERT_TRUE(Export<decltype(::CreateAreaSetImage)>("CreateAreaSetImage")(m_page, L"Letter", &block, &length));
    EXPECT_EQ(FaultHooks::Measure().blocks, before.blocks + 1);
    Export<decltype(::FreeAreaSetImage)>("FreeAreaSetImage")(block);
    EXPECT_EQ(FaultHooks::Measure().blocks, before.blocks);

    BSTR text = SysAllocStringLen(L"left", 4);
    EXPECT_EQ(FaultHooks::Measure().strings, before.strings + 1);
    SysFreeString(text);
    EXPECT_EQ(FaultHooks::Measure().strings, before.strings);

    const HANDLE lock = CreateMutexW(nullptr, TRUE, L"SASyncMutex");
    if (GetLastError() == ERROR_ALREADY_EXISTS) WaitForSingleObject(lock, 0);
    EXPECT_FALSE(FaultHooks::IsLockFree());
    ReleaseMutex(lock);
    EXPECT_TRUE(FaultHooks::IsLockFree());
    CloseHandle(lock);
}

}  // namespace
