// Sets: the query exports, enumeration, loading and storing.
#include <cstdio>
#include <cwchar>
#include <memory>

#include "bench/Bench.h"
#include "bench/Library.h"
#include "bench/Traces.h"
#include "store/AreaSetManager.h"
#include "store/ComSettingsNode.h"
#include "trace/Trace.h"

namespace bench {

void QueryExports() {
    const Library library(100, 10);
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"Zonwick-bench");
    const auto bare = Timed(
        [&] {
            WaitForSingleObject(mutex, INFINITE);
            ReleaseMutex(mutex);
        },
        4000);
    DWORD id = 0;
    SAAreaInfo info = {};
    RECT rects[10];
    Compare("query", "SAMapIndex2ID", Timed([&] { library.MapIndex2ID(50, &id); }, 4000), bare, 11);
    Compare("query", "SAMapID2Index", Timed([&] { library.MapID2Index(id); }, 4000), bare, 11);
    Compare("query", "SAGetAreaInfo", Timed([&] { library.GetAreaInfo(id, &info); }, 4000), bare, 11);
    Compare("query", "SAGetAreaRects", Timed([&] { library.GetAreaRects(id, rects); }, 4000), bare, 11);
    // What the measurement itself scatters by.
    Compare("query-scatter", "the mutex against itself", bare, bare, 11);
    CloseHandle(mutex);
}

void Enumeration() {
    const auto each = [](const Library& library, int count, int rounds) {
        return [&library, count, rounds] {
            return TimeOf(
                       [&] {
                           DWORD id = 0;
                           SAAreaInfo info;
                           int found = 0;
                           while (library.MapIndex2ID(found, &id) && library.GetAreaInfo(id, &info)) ++found;
                           Require(found == count, "the sets cannot be enumerated");
                       },
                       rounds) /
                   count;
        };
    };
    // One library at a time can have the sets of its node.
    for (int round = 0; round < 9; ++round) {
        double times[2];
        for (const int i : {0, 1}) {
            const Library library(i == 0 ? 10000 : 1000, 1);
            times[i] = each(library, i == 0 ? 10000 : 1000, i == 0 ? 1 : 10)();
        }
        std::printf("pair\tenumerate\t10,000 to 1,000, per set\t%.0f\t%.0f\n", times[0], times[1]);
    }
    for (const int sets : {100, 1000, 10000, 30000}) {
        const Library library(sets, 1);
        const auto all = each(library, sets, sets < 1000 ? 10 : 1);
        for (int run = 0; run < 5; ++run) {
            std::printf("pair\tsize-sets\t%d\t%.0f\t1\n", sets, all() * sets);
        }
    }
}

namespace {

ISettingsNodePtr g_node;

SettingsNodePtr NodeOfBench() {
    return std::make_unique<ComSettingsNode>(g_node);
}

// The same calls with no more than they need.
class Bare {
public:
    Bare() {
        for (int i = 0; i < 10; ++i) m_numbers[i] = std::to_wstring(i).c_str();
    }
    void Load(ISettingsNode* root, int64_t traces) {
        SAFEARRAY* keys = Names(root);
        for (ULONG i = 0; i < keys->rgsabound[0].cElements; ++i) {
            ISettingsNode* set = Child(root, static_cast<BSTR*>(keys->pvData)[i]);
            BSTR name = nullptr;
            LONGLONG flags = 0;
            set->GetString(m_name, &name);
            SysFreeString(name);
            set->GetInt64(m_flags, &flags);
            Read(set, m_display);
            ISettingsNode* rects = Child(set, m_rect);
            SAFEARRAY* names = Names(rects);
            for (ULONG r = 0; r < names->rgsabound[0].cElements; ++r) {
                Read(rects, static_cast<BSTR*>(names->pvData)[r]);
            }
            SafeArrayDestroy(names);
            rects->Release();
            set->Release();
        }
        SafeArrayDestroy(keys);
        Trace(traces);
    }
    void Store(ISettingsNode* root, int64_t traces) {
        SAFEARRAY* keys = Names(root);
        for (ULONG i = 0; i < keys->rgsabound[0].cElements; ++i) {
            root->DeleteSubNode(static_cast<BSTR*>(keys->pvData)[i]);
        }
        for (ULONG i = 0; i < keys->rgsabound[0].cElements; ++i) {
            ISettingsNode* set = Child(root, static_cast<BSTR*>(keys->pvData)[i]);
            set->SetString(m_name, m_name);
            set->SetInt64(m_flags, 0);
            Write(set, m_display);
            ISettingsNode* rects = Child(set, m_rect);
            SafeArrayDestroy(Names(rects));
            for (const _bstr_t& number : m_numbers) Write(rects, number);
            rects->Release();
            set->Release();
        }
        SafeArrayDestroy(keys);
        Trace(traces);
    }

private:
    static SAFEARRAY* Names(ISettingsNode* node) {
        SAFEARRAY* names = nullptr;
        Require(SUCCEEDED(node->GetSubNodeNames(&names)), "no names");
        return names;
    }
    static ISettingsNode* Child(ISettingsNode* node, BSTR name) {
        ISettingsNode* child = nullptr;
        Require(SUCCEEDED(node->GetSubNode(name, &child)), "no sub-node");
        return child;
    }
    void Read(ISettingsNode* node, BSTR name) {
        ISettingsNode* rect = Child(node, name);
        LONGLONG value = 0;
        for (const _bstr_t& key : m_coordinates) rect->GetInt64(key, &value);
        rect->Release();
    }
    void Write(ISettingsNode* node, BSTR name) {
        ISettingsNode* rect = Child(node, name);
        for (const _bstr_t& key : m_coordinates) rect->SetInt64(key, 10);
        rect->Release();
    }
    static void Trace(int64_t count) {
        for (int64_t i = 0; i < count; ++i) trace::TraceText(trace::kDiagnostic, "Bench", __LINE__, L"%d", 1);
    }

    _bstr_t m_name{L"Name"}, m_flags{L"Flags"}, m_display{L"DisplayRect"}, m_rect{L"Rect"};
    _bstr_t m_coordinates[4] = {L"Position:bottom", L"Position:left", L"Position:right", L"Position:top"};
    _bstr_t m_numbers[10];
};

}  // namespace

void LoadAndStore() {
    const SettingsFile file(10000, 10);
    g_node = file.Node();
    {
        CAreaSetManager manager(NodeOfBench, L"Zonwick-bench-manager");
        Bare bare;
        TakeTraceCount();
        manager.ReloadSettings();
        const int64_t loading = TakeTraceCount();
        Require(manager.GetCount() == 10000, "the sets were not loaded");
        TakeTraceCount();
        manager.StoreSettings();
        const int64_t storing = TakeTraceCount();
        Tell("settings-traces", "loading", static_cast<double>(loading));
        Compare("settings", "load", Timed([&] { manager.ReloadSettings(); }),
                Timed([&] { bare.Load(g_node, loading); }), 7);
        Compare("settings", "store", Timed([&] { manager.StoreSettings(); }),
                Timed([&] { bare.Store(g_node, storing); }), 7);
    }
    g_node = nullptr;
}

}  // namespace bench
