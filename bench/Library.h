#pragma once
// Zonwick.dll among the host's real libraries, over a settings file made for the measurement.

#include <windows.h>

#include <string>

#include "bench/Bench.h"
#include "host/HostIds.h"
#include "host/SettingsStore.h"
#include "refhost/com/ClassRegistration.h"
#include "win32/ComPtr.h"
#include "zonwick/zonwick.h"

namespace bench {

// Gone from the disk at its end.
class SettingsFile {
public:
    SettingsFile(int sets, int areas);
    ~SettingsFile();
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;
    win32::ComPtr<ISettingsNode> Node() const { return m_root; }

private:
    com::ClassRegistration m_classes{L"HostSettings.dll", {host::kClsidSettingsNode, host::kClsidSettingsTransfer}};
    std::wstring m_path;
    win32::ComPtr<ISettingsNode> m_root;
};

class Library {
public:
    Library(int sets, int areas) : m_file(sets, areas) {
        Init(m_file.Node());
        DWORD id = 0;
        Require(MapIndex2ID(sets - 1, &id), "the library has no sets");
    }

private:
    SettingsFile m_file;
    com::HostDll m_module{L"Zonwick.dll"};

public:
    decltype(&::SAInit) Init = m_module.Export<decltype(::SAInit)>("SAInit");
    decltype(&::SAConfigure) Configure = m_module.Export<decltype(::SAConfigure)>("SAConfigure");
    decltype(&::SAConfigureSet) ConfigureSet = m_module.Export<decltype(::SAConfigureSet)>("SAConfigureSet");
    decltype(&::SAGetAreaInfo) GetAreaInfo = m_module.Export<decltype(::SAGetAreaInfo)>("SAGetAreaInfo");
    decltype(&::SAGetAreaRects) GetAreaRects = m_module.Export<decltype(::SAGetAreaRects)>("SAGetAreaRects");
    decltype(&::SAMapID2Index) MapID2Index = m_module.Export<decltype(::SAMapID2Index)>("SAMapID2Index");
    decltype(&::SAMapIndex2ID) MapIndex2ID = m_module.Export<decltype(::SAMapIndex2ID)>("SAMapIndex2ID");
};

}  // namespace bench
