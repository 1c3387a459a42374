#pragma once
// Zonwick.dll among the host's real libraries, with settings in memory that can fail; what it traces is kept.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "refhost/com/ClassRegistration.h"
#include "refhost/support/HostSupport.h"
#include "support/FakeSettings.h"
#include "support/LoadedModule.h"

namespace test {

struct ModuleTrace {
    int severity;
    std::string source;
    std::wstring text;  // "#34106" for a string identifier
    bool operator==(const ModuleTrace&) const = default;
};
using Texts = std::vector<std::wstring>;

// The exports, for tests that call them often.
inline BOOL GetAreaInfo(DWORD id, SAAreaInfo* info) {
    return ModuleExport<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(id, info);
}
inline BOOL GetAreaRects(DWORD id, RECT* rects) {
    return ModuleExport<decltype(::SAGetAreaRects)>("SAGetAreaRects")(id, rects);
}
inline DWORD MapID2Index(DWORD id) {
    return ModuleExport<decltype(::SAMapID2Index)>("SAMapID2Index")(id);
}
inline BOOL MapIndex2ID(int index, DWORD* id) {
    return ModuleExport<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(index, id);
}

class ModuleTest : public testing::Test {
protected:
    void SetUp() override {
        Host() = {};
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        m_classes.emplace();
        m_module.emplace(L"Zonwick.dll");
        HostSupportSetTraceObserver(
            [](const HostTrace* trace, void* self) {
                static_cast<ModuleTest*>(self)->m_traces.push_back(
                    {trace->severity, trace->source,
                     trace->stringId != 0 ? L"#" + std::to_wstring(trace->stringId) : trace->text});
            },
            this);
        HostSupportSetBoxAnswerer(
            [](const HostBox* box, void*) {
                ADD_FAILURE() << "a box: " << testing::PrintToString(std::wstring(box->text));
                return IDOK;
            },
            nullptr);
    }
    void TearDown() override {
        m_module.reset();
        EXPECT_EQ(GetModuleHandleW(L"Zonwick.dll"), nullptr);
        HostSupportSetBoxAnswerer(nullptr, nullptr);
        HostSupportSetTraceObserver(nullptr, nullptr);
        m_classes.reset();
        CoUninitialize();
        EXPECT_EQ(Host().liveObjects, 0);
    }

    void Init() { Init(MakeFakeNode(m_tree)); }
    void Init(ISettingsNode* node) {
        ModuleExport<decltype(::SAInit)>("SAInit")(node);
        if (node != nullptr) node->Release();
    }
    std::vector<ModuleTrace> TakeTraces() { return std::exchange(m_traces, {}); }
    // Without those that every look-up for a free identifier leaves while loading.
    Texts TakeTexts() {
        Texts texts;
        for (auto& trace : TakeTraces()) {
            if (trace.text != L"CAreaSetManager::GetAreaSet: wrong dwID was specified.") texts.push_back(trace.text);
        }
        return texts;
    }

    std::shared_ptr<FakeTree> m_tree = std::make_shared<FakeTree>();  // of the host
    std::optional<com::HostDll> m_module;

private:
    std::optional<FakeSettingsClasses> m_classes;
    std::vector<ModuleTrace> m_traces;
};

}  // namespace test
