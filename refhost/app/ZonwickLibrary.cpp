#include "refhost/app/ZonwickLibrary.h"

#include "refhost/app/Console.h"
#include "refhost/app/Text.h"

namespace zonhost {

ZonwickLibrary::ZonwickLibrary()
    : m_dll(L"Zonwick.dll"),
      m_init(m_dll.Export<decltype(SAInit)>("SAInit")),
      m_getAreaInfo(m_dll.Export<decltype(SAGetAreaInfo)>("SAGetAreaInfo")),
      m_getAreaRects(m_dll.Export<decltype(SAGetAreaRects)>("SAGetAreaRects")),
      m_mapId2Index(m_dll.Export<decltype(SAMapID2Index)>("SAMapID2Index")),
      m_mapIndex2Id(m_dll.Export<decltype(SAMapIndex2ID)>("SAMapIndex2ID")),
      m_configure(m_dll.Export<decltype(SAConfigure)>("SAConfigure")),
      m_configurePage(m_dll.Export<decltype(ConfigurePage)>("ConfigurePage")),
      m_createImage(m_dll.Export<decltype(CreateAreaSetImage)>("CreateAreaSetImage")),
      m_freeImage(m_dll.Export<decltype(FreeAreaSetImage)>("FreeAreaSetImage")) {}

ZonwickLibrary::~ZonwickLibrary() {
    if (m_opened) m_init(nullptr);
}

void ZonwickLibrary::Open(IUnknown* settings) {
    m_init(settings);
    m_opened = true;
    // No set has the identifier 0: any other answer than "not there" means that the sets could not be loaded.
    if (m_mapId2Index(0) != 0xFFFFFFFF) {
        throw CommandError(ExitCode::kSettings, "the area sets of the settings file cannot be read");
    }
}

std::vector<AreaSetRecord> ZonwickLibrary::Sets() const {
    std::vector<AreaSetRecord> sets;
    DWORD id = 0;
    for (int index = 0; m_mapIndex2Id(index, &id); ++index) {
        SAAreaInfo info{};
        if (!m_getAreaInfo(id, &info)) continue;  // its name does not fit into the record
        std::vector<RECT> rects(info.nAreas);
        if (!m_getAreaRects(id, rects.data())) {
            throw CommandError(ExitCode::kSettings, "the areas of set " + std::to_string(id) + " cannot be read");
        }
        AreaSetRecord set{id, Utf8FromWide(info.szName), info.dwFlags, {}, {}};
        for (const RECT& rect : rects) set.areas.push_back({rect.left, rect.top, rect.right, rect.bottom});
        sets.push_back(std::move(set));
    }
    return sets;
}

bool ZonwickLibrary::ManageSets(HWND owner, IQuire* pages) const {
    return m_configure(owner, pages, 0, 0) != FALSE;
}

bool ZonwickLibrary::PlaceFields(HWND owner, const std::wstring& name, std::vector<SAIndexField>& fields,
                                 IConfigHost* host) const {
    return m_configurePage(owner, name.c_str(), fields.data(), static_cast<int>(fields.size()), host, 0, 0) != FALSE;
}

MaskedImage ZonwickLibrary::Mask(void* image, const std::wstring& setName) const {
    BYTE* block = nullptr;
    DWORD length = 0;
    if (!m_createImage(image, setName.c_str(), &block, &length)) return {};
    return {std::unique_ptr<BYTE, FreeBlock>(block, FreeBlock{m_freeImage}), length};
}

}  // namespace zonhost
