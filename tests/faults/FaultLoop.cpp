#include "faults/FaultLoop.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <thread>

#include "host/DocumentStack.h"
#include "host/MeasureUnits.h"

namespace test {

namespace {

// Ends the program when a run takes too long, and says which.
class Watchdog {
public:
    static void Watch(const std::string& operation, Fault kind, int n, bool keep) {
        static Watchdog dog;
        std::snprintf(dog.m_what, sizeof dog.m_what, "%s, %s %d%s", operation.c_str(), NameOf(kind), n,
                      keep ? " and on" : "");
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

// The chance that fails after the n-th, 0 for none. Windows take long: of the `met` chances that an operation has
// without a fault, the first, one in the middle and the last, from which on there is nothing more to fail.
int Next(int n, int met, bool keep, bool windows, bool again) {
    static const bool all = std::getenv("ZONWICK_TEST_LONG") != nullptr;
    if (all || !windows) return !again ? 0 : all ? n + 1 : n + 1 + n / 10;
    const int middle = (met + 1) / 2;
    if (n < middle) return middle;
    return n < met && !keep ? met : 0;
}

// The functions that operations were named after; each export has to be among them.
std::set<FARPROC> g_exports;
int g_injected = 0;

class EveryExport final : public testing::Environment {
    void TearDown() override {
        std::printf("%d faults in all\n", g_injected);
        if (testing::GTEST_FLAG(filter) != "*") return;
        const com::HostDll module(L"Zonwick.dll");
        for (WORD ordinal = 1; ordinal < 100; ++ordinal) {
            const FARPROC function = GetProcAddress(module.Get(), MAKEINTRESOURCEA(ordinal));
            EXPECT_TRUE(function == nullptr || g_exports.contains(function)) << "export " << ordinal;
        }
    }
};
testing::Environment* const g_everyExport = testing::AddGlobalTestEnvironment(new EveryExport);

}  // namespace

void FaultLoop::SetUp() {
    ManageDialog::SetUp();
    UsePages({SAMPLES_DIR L"/letter.tif", SAMPLES_DIR L"/fax-pages.tif"});
    m_page.emplace(SAMPLES_DIR L"/letter.tif");
    m_hooks.emplace();
    GateParts();
    m_host->instead = []() -> std::optional<HRESULT> {
        if (FaultHooks::Meet(Fault::kConfig)) return E_FAIL;
        return FaultHooks::Meet(Fault::kConfigNull) ? std::optional(S_OK) : std::nullopt;
    };
    m_pristine = m_tree->Clone();
    m_sets = ModuleSets();
    PutBack();
}

void FaultLoop::TearDown() {
    m_hooks.reset();
    m_page.reset();
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
    static constexpr intptr_t kGivesNull = S_OK;
    const auto stack = [&](void* object, size_t slots) {
        m_hooks->Gate(object, slots);
        m_hooks->Gate(object, slots, Fault::kPartNull, &kGivesNull);
    };
    stack(m_host->quire.GetInterfacePtr(), 10);
    stack(document.GetInterfacePtr(), 10);
    stack(page.GetInterfacePtr(), 12);
    stack(source.GetInterfacePtr(), 14);
    stack(data.GetInterfacePtr(), 8);
    m_hooks->Gate(image.GetInterfacePtr(), 4);
    m_hooks->Gate(loader.GetInterfacePtr(), 9);
    m_hooks->Gate(units.GetInterfacePtr(), 15);
    m_hooks->Gate(folium.GetInterfacePtr(), 35);
}

void FaultLoop::PutBack() {
    *m_tree = *m_pristine->Clone();
    Init();
    EXPECT_EQ(ModuleSets(), m_sets);
}

// Without the choice of the page source, which depends on whether there is a page.
std::wstring FaultLoop::HostState() const {
    const auto sets = m_tree->Clone();
    sets->booleans.clear();
    return sets->Dump();
}

void FaultLoop::EndFaults() {
    const FaultPlan done = FaultHooks::Disarm();
    if (done.at != 0) m_done = done;
}

void FaultLoop::ExpectHeld(const Holdings& before) {
    const Holdings now = FaultHooks::Measure();
    EXPECT_TRUE(now.blocks == before.blocks || m_remembers) << now.blocks << " blocks, not " << before.blocks;
    EXPECT_EQ(now.strings, 0u);
    EXPECT_EQ(now.objects, before.objects);
}

void FaultLoop::ExpectTold(const Operation& operation, bool keep, const std::wstring& traces, size_t boxes) {
    if (operation.notice && m_told && boxes == 0) return;
    EXPECT_TRUE(std::ranges::any_of(operation.told, [&](const wchar_t* text) {
        return traces.find(text) != std::wstring::npos;
    })) << traces;
    // Without any memory there is a trace alone: the text of a box needs some.
    const bool silent = m_kind == Fault::kMemory && keep;
    EXPECT_TRUE(operation.boxes == 0 || silent || (boxes > 0 && boxes <= operation.boxes))
        << boxes << " boxes, " << traces;
}

bool FaultLoop::Once(const Operation& operation, Fault kind, int n, bool keep) {
    Watchdog::Watch(operation.name, kind, n, keep);
    const std::wstring before = operation.state();
    m_kind = kind;
    m_done = {};
    m_flight = Flight::kNone;
    FaultHooks::Arm(kind, n, keep);
    const bool done = operation.call();
    EndFaults();
    EXPECT_TRUE(FaultHooks::IsLockFree());
    EXPECT_TRUE(m_dialog == nullptr || (IsWindow(m_dialog) && FrontDialog() == m_dialog));
    const std::wstring traces = TakeTraceTexts();
    const size_t boxes = TakeHostBoxes().size();
    m_told |= boxes > 0;
    if (m_done.injected == 0) {
        EXPECT_TRUE(done && boxes == 0 && (traces.empty() || m_dialog == nullptr)) << "without a fault: " << traces;
        EXPECT_EQ(m_flight == Flight::kClosed, operation.dialog) << "its dialog did not come up";
    }
    if (!done) ExpectTold(operation, keep, traces, boxes);
    operation.check(done);
    // What a dialog took over that was closed as it should, be it at the second try, is there.
    const std::wstring after = operation.state();
    const bool unchanged = after == before && (!done || m_flight == Flight::kNone) && m_flight != Flight::kAgain;
    EXPECT_TRUE(unchanged || after == m_changed || m_changed.empty()) << after;
    if (m_changed.empty()) m_changed = after;
    operation.restore();
    return m_done.Met(kind) >= n;
}

void FaultLoop::Run(Operation operation, std::initializer_list<Fault> kinds) {
    if (!operation.state) operation.state = [this] { return HostState(); };
    if (!operation.restore) operation.restore = [this] { PutBack(); };
    operation.restore = [this, restore = operation.restore] {
        restore();
        TakeTraces();
        TakeHostBoxes();
    };
    operation.restore();
    m_changed.clear();
    // Without a fault, and with one that makes the dialog remember what it told.
    for (int i = 0; i < 2; ++i) Once(operation, Fault::kCount, 1, false);
    const FaultPlan chances = m_done;
    FaultHooks::Arm(Fault::kPart, 1, true);
    operation.call();
    EndFaults();
    m_told |= !TakeHostBoxes().empty();
    operation.restore();
    g_exports.insert(
        GetProcAddress(GetModuleHandleW(L"Zonwick.dll"), operation.name.substr(0, operation.name.find(',')).c_str()));
    std::string injected = operation.name + ":";
    const Holdings before = FaultHooks::Measure();
    for (const Fault kind : kinds) {
        const int met = chances.Met(kind), soFar = g_injected;
        for (const bool keep : {true, false}) {
            for (int n = 1; n > 0 && !HasFatalFailure();) {
                SCOPED_TRACE(operation.name + ", " + NameOf(kind) + " " + std::to_string(n) + (keep ? " and on" : ""));
                const bool again = Once(operation, kind, n, keep);
                g_injected += m_done.injected;
                ExpectHeld(before);
                if (HasFailure() && ++m_failures > 40) return;
                n = Next(n, met, keep, operation.dialog || m_dialog != nullptr, again);
            }
        }
        if (g_injected > soFar) injected += std::string(" ") + NameOf(kind) + " " + std::to_string(g_injected - soFar);
    }
    std::printf("%s\n", injected.c_str());
    const Holdings last = FaultHooks::Measure();
    EXPECT_LE(last.userObjects, before.userObjects + 2) << operation.name;
    EXPECT_LE(last.gdiObjects, before.gdiObjects + 2) << operation.name;
    EXPECT_LE(last.handles, before.handles + 4) << operation.name;
}

}  // namespace test
