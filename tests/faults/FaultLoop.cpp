#include "faults/FaultLoop.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "faults/FaultTable.h"
#include "host/DocumentStack.h"
#include "host/MeasureUnits.h"
#include "refhost/imaging/HostImaging.h"

namespace test {

namespace {

// Ends the program when a run takes too long, and says which.
class Watchdog {
public:
    static void Watch(const char* operation, Fault kind, int n, bool keep) {
        static Watchdog dog;
        std::snprintf(dog.m_what, sizeof dog.m_what, "%s, %s %d%s", operation, NameOf(kind), n, keep ? " and on" : "");
        dog.m_begun = GetTickCount64();
    }

private:
    static constexpr ULONGLONG kLongest = 30000;
    Watchdog() {
        std::thread([this] {
            while (true) {
                Sleep(500);
                if (GetTickCount64() - m_begun < kLongest) continue;
                std::fprintf(stderr, "hang: %s\n", m_what);
                std::fflush(stderr);
                TerminateProcess(GetCurrentProcess(), 78);
            }
        }).detach();
    }
    char m_what[128] = {};
    std::atomic<ULONGLONG> m_begun = GetTickCount64();
};

bool EveryChance() {
    static const bool all = std::getenv("ZONWICK_TEST_LONG") != nullptr;
    return all;
}
// The next chance that fails: each of the first ones, then ever fewer; a dialog takes long to open.
int Next(int n, bool dialog) {
    if (EveryChance()) return n + 1;
    return dialog ? n * 2 : n + 1 + n / 10;
}

// Without any memory there is a trace alone: the text of a box needs some.
bool CanTell(Fault kind, bool keep) {
    return kind != Fault::kMemory || !keep;
}

}  // namespace

void FaultLoop::SetUp() {
    ManageDialog::SetUp();
    UsePages({SAMPLES_DIR L"/letter.tif", SAMPLES_DIR L"/fax-pages.tif"});
    m_imaging = std::make_unique<com::HostDll>(L"HostImaging.dll");
    void* file = nullptr;
    uint32_t frames = 0;
    ASSERT_TRUE(m_imaging->Export<decltype(::HostOpenImageFile)>("HostOpenImageFile")(SAMPLES_DIR L"/letter.tif", &file,
                                                                                      &frames));
    EXPECT_TRUE(m_imaging->Export<decltype(::HostLoadFrame)>("HostLoadFrame")(file, 0, 0, 0, &m_page));
    m_imaging->Export<decltype(::HostCloseImageFile)>("HostCloseImageFile")(file);
    m_hooks = std::make_unique<FaultHooks>();
    GateParts();
    m_host->instead = []() -> std::optional<HRESULT> {
        if (FaultHooks::Meet(Fault::kConfig)) return E_FAIL;
        return FaultHooks::Meet(Fault::kConfigNull) ? std::optional(S_OK) : std::nullopt;
    };
    m_pristine = m_tree->Clone();
    PutBack();
}

void FaultLoop::TearDown() {
    m_hooks.reset();
    reinterpret_cast<decltype(&::HostReleaseImage)>(
        reinterpret_cast<void*>(GetProcAddress(m_imaging->Get(), MAKEINTRESOURCEA(83))))(m_page);
    TakeTraces();
    TakeHostBoxes();
    ManageDialog::TearDown();
}

// One object of each class shows the table that all of its class share.
void FaultLoop::GateParts() {
    win32::ComPtr<IQuireDocument> document;
    win32::ComPtr<IQuirePage> page;
    win32::ComPtr<IImageSource> source;
    win32::ComPtr<IUnknown> unknown;
    win32::ComPtr<IImageData> data;
    win32::ComPtr<IPageImage> image;
    win32::ComPtr<IImageLoader> loader;
    win32::ComPtr<IMeasureUnits> units;
    win32::ComPtr<IFolium> folium;
    ASSERT_EQ(m_host->quire.GetInterfacePtr()->GetItem(0, &document), S_OK);
    ASSERT_EQ(document.GetInterfacePtr()->GetItem(0, &page), S_OK);
    ASSERT_EQ(page.GetInterfacePtr()->GetImageSource(&source), S_OK);
    ASSERT_EQ(source.GetInterfacePtr()->GetData(&unknown), S_OK);
    ASSERT_EQ(unknown.GetInterfacePtr()->QueryInterface(&data), S_OK);
    const auto make = [](REFCLSID classId, REFIID iid, auto** object) {
        return CoCreateInstance(classId, nullptr, CLSCTX_ALL, iid, reinterpret_cast<void**>(object));
    };
    ASSERT_EQ(make(host::kClsidPageImage, __uuidof(IPageImage), &image), S_OK);
    ASSERT_EQ(image.GetInterfacePtr()->QueryInterface(&loader), S_OK);
    ASSERT_EQ(make(host::kClsidMeasureUnits, __uuidof(IMeasureUnits), &units), S_OK);
    ASSERT_EQ(make(host::kClsidFolium, __uuidof(IFolium), &folium), S_OK);
    m_hooks->Gate(m_host->quire.GetInterfacePtr(), 10);
    m_hooks->Gate(document.GetInterfacePtr(), 10);
    m_hooks->Gate(page.GetInterfacePtr(), 12);
    m_hooks->Gate(source.GetInterfacePtr(), 14);
    m_hooks->Gate(data.GetInterfacePtr(), 8);
    m_hooks->Gate(image.GetInterfacePtr(), 4);
    m_hooks->Gate(loader.GetInterfacePtr(), 9);
    m_hooks->Gate(units.GetInterfacePtr(), 15);
    m_hooks->Gate(folium.GetInterfacePtr(), 35);
}

std::wstring FaultLoop::Sets() {
    std::wstring sets;
    DWORD id = 0;
    for (int i = 0; Export<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(i, &id); ++i) {
        SAAreaInfo info = {};
        EXPECT_TRUE(Export<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(id, &info));
        sets += std::to_wstring(id) + L":" + info.szName + L":" + std::to_wstring(info.nAreas) + L" ";
    }
    return sets;
}

void FaultLoop::PutBack() {
    *m_tree = *m_pristine->Clone();
    Init();
    EXPECT_EQ(Sets(), kSets);
    TakeTraces();
    TakeHostBoxes();
}

// Without the choice of the page source, which depends on whether there is a page.
std::wstring FaultLoop::HostState() const {
    const auto sets = m_tree->Clone();
    sets->booleans.clear();
    return sets->Dump();
}

void FaultLoop::EndFaults() {
    const FaultPlan done = FaultHooks::Disarm();
    if (done.kind != Fault::kCount) m_done = done;
}

void FaultLoop::Print(const char* name, Fault kind, const Tally& tally) {
    CountFaults(name, kind, tally.injected);
    if (tally.met == 0) return;
    std::printf("%-30s %-11s met %5d, injected %6d, failed %5d, went on %5d\n", name, NameOf(kind), tally.met,
                tally.injected, tally.failed, tally.succeeded);
}

void FaultLoop::ExpectHeld(const Holdings& before) {
    const Holdings now = FaultHooks::Measure();
    EXPECT_TRUE(now.blocks == before.blocks || m_remembers) << now.blocks << " blocks, not " << before.blocks;
    EXPECT_EQ(now.strings, before.strings);
    EXPECT_EQ(now.objects, before.objects);
}

bool FaultLoop::Once(const Operation& operation, Fault kind, int n, bool keep, Tally& tally) {
    Watchdog::Watch(operation.name, kind, n, keep);
    m_before = HostState();
    m_done = {};
    m_flight = Flight::kNone;
    FaultHooks::Arm(kind, n, keep);
    const bool succeeded = operation.call();
    EndFaults();
    EXPECT_TRUE(FaultHooks::IsLockFree());
    const std::wstring traces = TakeTraceTexts();
    const auto boxes = TakeHostBoxes();
    if (succeeded) {
        operation.check();
    } else {
        EXPECT_TRUE(std::ranges::any_of(operation.told, [&](const wchar_t* text) {
            return traces.find(text) != std::wstring::npos;
        })) << traces;
        EXPECT_TRUE(!operation.box || !CanTell(kind, keep) || boxes.size() == 1)
            << boxes.size() << " boxes, " << traces;
    }
    const bool met = m_done.met >= n;
    if (!met) {
        EXPECT_TRUE(succeeded) << "without a fault";
        EXPECT_EQ(m_flight == Flight::kClosed, operation.dialog) << "its dialog did not come up";
    }
    tally.met = std::max(tally.met, m_done.met);
    tally.injected += m_done.injected;
    ++(succeeded ? tally.succeeded : tally.failed);
    // What a dialog that was closed as it should took over is there.
    if (kind != Fault::kCount) {
        const std::wstring after = HostState();
        EXPECT_TRUE(after == m_changed || (after == m_before && (!succeeded || m_flight != Flight::kClosed))) << after;
    }
    return met;
}

void FaultLoop::Run(const Operation& operation, std::initializer_list<Fault> kinds) {
    Tally warm;
    for (int i = 0; i < 2; ++i) {
        Once(operation, Fault::kCount, 1, false, warm);
        m_changed = HostState();
        PutBack();
    }
    const Holdings before = FaultHooks::Measure();
    for (const Fault kind : kinds) {
        Tally tally;
        for (const bool keep : {true, false}) {
            for (int n = 1; !HasFatalFailure(); n = Next(n, operation.dialog)) {
                SCOPED_TRACE(std::string(operation.name) + ", " + NameOf(kind) + " " + std::to_string(n) +
                             (keep ? " and on" : ""));
                const bool met = Once(operation, kind, n, keep, tally);
                PutBack();
                ExpectHeld(before);
                if (!met) break;
                if (HasFailure() && ++m_failures > 40) return;
            }
        }
        Print(operation.name, kind, tally);
    }
    const Holdings last = FaultHooks::Measure();
    EXPECT_LE(last.userObjects, before.userObjects + 2) << operation.name;
    EXPECT_LE(last.gdiObjects, before.gdiObjects + 2) << operation.name;
    EXPECT_LE(last.handles, before.handles + 4) << operation.name;
}

void FaultLoop::CommandOnce(HWND dialog, const Command& command, Fault kind, int n, bool keep, Tally& tally) {
    Watchdog::Watch(command.name, kind, n, keep);
    m_done = {};
    m_kind = kind;
    FaultHooks::Arm(kind, n, keep);
    command.run();
    EndFaults();
    EXPECT_TRUE(FaultHooks::IsLockFree());
    EXPECT_TRUE(IsWindow(dialog));
    EXPECT_EQ(FrontDialog(), dialog);
    const auto boxes = TakeHostBoxes();
    const std::wstring traces = TakeTraceTexts();
    const bool done = command.done();
    if (m_done.injected == 0) {
        EXPECT_TRUE(done) << "without a fault";
        EXPECT_TRUE(boxes.empty() && traces.empty()) << traces;
    }
    m_told |= !boxes.empty();
    if (!done && !(command.notice && m_told && boxes.empty())) {
        EXPECT_TRUE(std::ranges::any_of(command.told, [&](const wchar_t* text) {
            return traces.find(text) != std::wstring::npos;
        })) << traces;
        const size_t most = command.dialog ? 2 : 1;  // of the other dialog, and of this one afterwards
        EXPECT_TRUE(!command.box || !CanTell(kind, keep) || (!boxes.empty() && boxes.size() <= most))
            << boxes.size() << " boxes, " << traces;
    }
    command.check();
    tally.met = std::max(tally.met, m_done.met);
    tally.injected += m_done.injected;
    ++(done ? tally.succeeded : tally.failed);
}

void FaultLoop::RunCommand(HWND dialog, const Command& command, std::initializer_list<Fault> kinds) {
    const auto restore = [&] {
        command.restore();
        TakeTraces();
        TakeHostBoxes();
    };
    restore();
    // Without a fault, and with one that makes the dialog remember what it told.
    for (int i = 0; i < 3; ++i) {
        if (i == 2) FaultHooks::Arm(Fault::kPart, 1, true);
        command.run();
        EndFaults();
        m_told |= !TakeHostBoxes().empty();
        restore();
    }
    const std::wstring host = m_tree->Dump();
    const Holdings before = FaultHooks::Measure();
    for (const Fault kind : kinds) {
        Tally tally;
        for (const bool keep : {true, false}) {
            for (int n = 1;; n = Next(n, command.dialog)) {
                SCOPED_TRACE(std::string(command.name) + ", " + NameOf(kind) + " " + std::to_string(n) +
                             (keep ? " and on" : ""));
                CommandOnce(dialog, command, kind, n, keep, tally);
                const bool met = m_done.met >= n;
                restore();
                EXPECT_EQ(m_tree->Dump(), host);
                ExpectHeld(before);
                if (!met) break;
                if (HasFailure() && ++m_failures > 40) return;
            }
        }
        Print(command.name, kind, tally);
    }
}

}  // namespace test
