// Every export without a window, with a fault at every chance.
#include <array>

#include "faults/FaultLoop.h"

namespace {

using namespace test;
using std::string_literals::operator""s;

constexpr const wchar_t* kLoadFailed = L"6 CAreaSetManager::LoadSettings failed\n";

class ExportFaults : public FaultLoop {
protected:
    BOOLEAN CreateImage(BYTE** block, DWORD* length) {
        return ModuleExport<decltype(::CreateAreaSetImage)>("CreateAreaSetImage")(m_page->Get(), L"Letter", block,
                                                                                  length);
    }
    static void FreeImage(BYTE* block) { ModuleExport<decltype(::FreeAreaSetImage)>("FreeAreaSetImage")(block); }
};

TEST_F(ExportFaults, Init) {
    std::wstring sets;
    // A failing load, or a working node that cannot be made: then the next query tells.
    const auto call = [&] {
        Init();
        EndFaults();
        sets = ModuleSets();
        return sets == m_sets;
    };
    const std::vector<const wchar_t*> told = {kOutOfMemory, kHostFailed, kLoadFailed, kNotRead};
    Run({.name = "SAInit", .call = call, .told = told},
        {Fault::kObject, Fault::kMemory, Fault::kString, Fault::kLockAbandoned, Fault::kLockFailed});
    // A value that the host fails to give counts as missing, which is no failure.
    const auto lenient = [&] {
        return call() || (sets.starts_with(L"1 ") && sets.find(L"\n2 ") != std::wstring::npos &&
                          sets.find(L"\n3 ") != std::wstring::npos);
    };
    Run({.name = "SAInit", .call = lenient, .told = told}, {Fault::kSettings, Fault::kSettingsNull});
}

TEST_F(ExportFaults, Queries) {
    SAAreaInfo info = {};
    std::array<RECT, 2> rects = {};
    DWORD id = 0;
    const std::pair<const char*, std::function<bool()>> queries[] = {
        {"SAGetAreaInfo",
         [&] {
             return ModuleExport<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(1, &info) && info.szName == L"Invoice"s &&
                    info.nAreas == 2;
         }},
        {"SAGetAreaRects",
         [&] {
             return ModuleExport<decltype(::SAGetAreaRects)>("SAGetAreaRects")(1, rects.data()) &&
                    rects[1] == (RECT{1050, 1485, 2100, 2970});
         }},
        {"SAMapID2Index", [] { return ModuleExport<decltype(::SAMapID2Index)>("SAMapID2Index")(2) == 1; }},
        {"SAMapIndex2ID", [&] { return ModuleExport<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(2, &id) && id == 3; }},
        {"SAChangeColors",
         [] {
             ModuleExport<decltype(::SAChangeColors)>("SAChangeColors")(0xFFFFFF, 0xFFFFFF, 0);
             return true;
         }},
    };
    for (const auto& [name, query] : queries) {
        Run({.name = name, .call = query},
            {Fault::kSettings, Fault::kMemory, Fault::kString, Fault::kLockAbandoned, Fault::kLockFailed});
    }
}

TEST_F(ExportFaults, MaskedImage) {
    BYTE* block = nullptr;
    DWORD length = 0;
    const auto call = [&] {
        block = nullptr;
        length = 0;
        return CreateImage(&block, &length) != FALSE;
    };
    const auto check = [&](bool done) {
        EXPECT_EQ(done, block != nullptr);
        if (!done) return;
        EXPECT_GT(length, 1000u);
        EXPECT_EQ(block[0], 'B');
        FreeImage(block);
    };
    Run({.name = "CreateAreaSetImage",
         .call = call,
         .check = check,
         .told = {L"2 unknown areaset name requested", L"2 cannot allocate memory: 24", L"2 cannot create masked image",
                  L"2 cannot copy masked image", L"2 cannot allocate memory for masked image"}},
        {Fault::kMemory, Fault::kImaging, Fault::kCodec, Fault::kLockAbandoned, Fault::kLockFailed});
    // Giving the block back needs nothing that could fail.
    const auto giveBack = [&] {
        FaultHooks::Hold(true);
        const bool made = call();
        FaultHooks::Hold(false);
        FreeImage(block);
        return made;
    };
    Run({.name = "FreeAreaSetImage", .call = giveBack},
        {Fault::kMemory, Fault::kImaging, Fault::kString, Fault::kLockFailed});
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
        EXPECT_EQ(ModuleExport<decltype(::SAMapID2Index)>("SAMapID2Index")(2), 1u);
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
            nullptr, 0, [](void*) { return ModuleExport<decltype(::SAMapID2Index)>("SAMapID2Index")(2); }, nullptr, 0,
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
    ASSERT_TRUE(CreateImage(&block, &length));
    EXPECT_EQ(FaultHooks::Measure().blocks, before.blocks + 1);
    FreeImage(block);
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
