#pragma once
// Zonwick.dll, loaded from the folder of the program, and its exports as a host uses them.

#include <windows.h>
#include <zonwick/zonwick.h>

#include <memory>
#include <string>
#include <vector>

#include "refhost/app/AreaSetRecord.h"
#include "refhost/com/ClassRegistration.h"

namespace zonhost {

// Memory of the library, given back to it.
struct FreeBlock {
    decltype(&FreeAreaSetImage) free = nullptr;
    void operator()(BYTE* block) const noexcept { free(block); }
};

struct MaskedImage {
    std::unique_ptr<BYTE, FreeBlock> block;  // null: not masked
    DWORD length = 0;
};

class ZonwickLibrary {
public:
    // Throws com::PartError, which says what is missing.
    ZonwickLibrary();
    ~ZonwickLibrary();
    ZonwickLibrary(const ZonwickLibrary&) = delete;
    ZonwickLibrary& operator=(const ZonwickLibrary&) = delete;

    // Hands over the settings node and reads the sets; throws CommandError (kSettings) when they cannot be read.
    void Open(IUnknown* settings);

    // All sets that the exports serve, in the host's order, without their pages.
    std::vector<AreaSetRecord> Sets() const;

    MaskedImage Mask(void* image, const std::wstring& setName) const;

    // Opens "Manage Area Sets"; false when it could not be opened.
    bool ManageSets(HWND owner, IQuire* pages) const;

    // Opens "Configure Area Set" for indexing fields; false when it could not be opened.
    bool PlaceFields(HWND owner, const std::wstring& name, std::vector<SAIndexField>& fields, IConfigHost* host) const;

private:
    const com::HostDll m_dll;
    bool m_opened = false;
    decltype(&SAInit) m_init;
    decltype(&SAGetAreaInfo) m_getAreaInfo;
    decltype(&SAGetAreaRects) m_getAreaRects;
    decltype(&SAMapID2Index) m_mapId2Index;
    decltype(&SAMapIndex2ID) m_mapIndex2Id;
    decltype(&SAConfigure) m_configure;
    decltype(&ConfigurePage) m_configurePage;
    decltype(&CreateAreaSetImage) m_createImage;
    decltype(&FreeAreaSetImage) m_freeImage;
};

}  // namespace zonhost
