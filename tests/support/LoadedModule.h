#pragma once
// Zonwick.dll among fake libraries of the host, loaded for the length of a test; its exports by ordinal, its traces and
// boxes recorded.

#include <string>
#include <vector>

#include "fakehost/FakeHost.h"
#include "zonwick/zonwick.h"

namespace test {

struct ModuleTrace {
    int severity;
    std::string source;
    std::wstring text;
    bool operator==(const ModuleTrace&) const = default;
};

class LoadedModule {
public:
    LoadedModule();
    ~LoadedModule();
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    std::vector<ModuleTrace> TakeTraces();
    // The texts of TakeTraces without those that every look-up for a free identifier leaves while loading.
    std::vector<std::wstring> TakeTexts();
    FakeImaging& Imaging() { return *m_imaging; }
    int Boxes() const { return m_boxes; }

    decltype(&::SAInit) Init;
    decltype(&::SAGetAreaInfo) GetAreaInfo;
    decltype(&::SAGetAreaRects) GetAreaRects;
    decltype(&::SAMapID2Index) MapID2Index;
    decltype(&::SAMapIndex2ID) MapIndex2ID;
    decltype(&::SAChangeColors) ChangeColors;
    decltype(&::CreateAreaSetImage) CreateImage;
    decltype(&::FreeAreaSetImage) FreeImage;

private:
    HMODULE m_module;
    FakeImaging* m_imaging;
    std::vector<ModuleTrace> m_traces;
    int m_boxes = 0;
};

}  // namespace test
