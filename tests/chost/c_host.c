/*
 * A host in plain C: loads Zonwick.dll at run time, finds every export by name and by ordinal, enumerates and reads the
 * sets of a settings file, and masks a page with the first one.
 *
 *     c_host SETTINGS PAGE
 *
 * Prints one line per set and one for the masked page; 0 when all of it worked.
 */
#define COBJMACROS
#include <ole2.h>
#include <stdio.h>
#include <stdlib.h>
#include <wchar.h>
#include <windows.h>
#include <zonwick/zonwick.h>

#include "host/HostIds.h"

typedef void(WINAPI* InitFunction)(struct IUnknown*);
typedef BOOL(WINAPI* InfoFunction)(DWORD, SAAreaInfo*);
typedef BOOL(WINAPI* RectsFunction)(DWORD, RECT*);
typedef DWORD(WINAPI* ToIndexFunction)(DWORD);
typedef BOOL(WINAPI* ToIdFunction)(int, DWORD*);
typedef BOOLEAN(WINAPI* CreateFunction)(void*, LPCWSTR, BYTE**, DWORD*);
typedef void(WINAPI* FreeFunction)(BYTE*);

static const struct {
    const char* name;
    WORD ordinal;
} kExports[] = {{"SAConfigure", 1},    {"SAConfigureSet", 2},      {"ConfigurePage", 10},   {"SAGetAreaInfo", 3},
                {"SAGetAreaRects", 4}, {"SAMapID2Index", 5},       {"SAInit", 6},           {"SAMapIndex2ID", 8},
                {"SAChangeColors", 9}, {"CreateAreaSetImage", 11}, {"FreeAreaSetImage", 12}};

static int CheckExports(HMODULE library) {
    for (size_t i = 0; i < sizeof kExports / sizeof kExports[0]; ++i) {
        FARPROC byName = GetProcAddress(library, kExports[i].name);
        if (byName == NULL || byName != GetProcAddress(library, MAKEINTRESOURCEA(kExports[i].ordinal))) {
            printf("export %s is not at ordinal %d\n", kExports[i].name, kExports[i].ordinal);
            return 0;
        }
    }
    if (GetProcAddress(library, MAKEINTRESOURCEA(7)) != NULL) {
        printf("ordinal 7 is taken\n");
        return 0;
    }
    return 1;
}

/* The reference host's parts, found at run time like the module. */

static HMODULE g_settings, g_imaging;
static void* g_file;
static DWORD g_cookies[2];

static struct IUnknown* OpenSettings(const WCHAR* path) {
    static const GUID kClasses[2] = {{ZONWICK_GUID_FIELDS(ZONWICK_CLSID_SETTINGS_NODE)},
                                     {ZONWICK_GUID_FIELDS(ZONWICK_CLSID_SETTINGS_TRANSFER)}};
    typedef HRESULT(WINAPI * GetClassFunction)(REFCLSID, REFIID, void**);
    typedef HRESULT(WINAPI * OpenFunction)(const WCHAR*, struct IUnknown**);
    struct IUnknown* root = NULL;
    GetClassFunction getClass;
    OpenFunction open;
    g_settings = LoadLibraryW(L"HostSettings.dll");
    getClass = (GetClassFunction)(void (*)(void))GetProcAddress(g_settings, "DllGetClassObject");
    open = (OpenFunction)(void (*)(void))GetProcAddress(g_settings, "HostSettingsOpenFile");
    if (getClass == NULL || open == NULL) return NULL;
    for (int i = 0; i < 2; ++i) {
        struct IUnknown* factory = NULL;
        if (FAILED(getClass(&kClasses[i], &IID_IClassFactory, (void**)&factory))) return NULL;
        CoRegisterClassObject(&kClasses[i], factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &g_cookies[i]);
        IUnknown_Release(factory);
    }
    return SUCCEEDED(open(path, &root)) ? root : NULL;
}

static void CloseSettings(struct IUnknown* root) {
    if (root != NULL) IUnknown_Release(root);
    for (int i = 0; i < 2; ++i) CoRevokeClassObject(g_cookies[i]);
}

static void* LoadPage(const WCHAR* path) {
    typedef int (*OpenFunction)(const WCHAR*, void**, unsigned*);
    typedef int (*FrameFunction)(void*, unsigned, double, double, void**);
    void* image = NULL;
    unsigned frames = 0;
    OpenFunction open;
    FrameFunction load;
    g_imaging = LoadLibraryW(L"HostImaging.dll");
    open = (OpenFunction)(void (*)(void))GetProcAddress(g_imaging, "HostOpenImageFile");
    load = (FrameFunction)(void (*)(void))GetProcAddress(g_imaging, "HostLoadFrame");
    return open(path, &g_file, &frames) == 1 && load(g_file, 0, 0, 0, &image) == 1 ? image : NULL;
}

static void ReleasePage(void* image) {
    typedef void (*ReleaseFunction)(void*);
    ((ReleaseFunction)(void (*)(void))GetProcAddress(g_imaging, MAKEINTRESOURCEA(83)))(image);
    ((ReleaseFunction)(void (*)(void))GetProcAddress(g_imaging, "HostCloseImageFile"))(g_file);
}

static int PrintSets(HMODULE library, WCHAR* firstName) {
    ToIdFunction toId = (ToIdFunction)(void (*)(void))GetProcAddress(library, "SAMapIndex2ID");
    ToIndexFunction toIndex = (ToIndexFunction)(void (*)(void))GetProcAddress(library, "SAMapID2Index");
    InfoFunction getInfo = (InfoFunction)(void (*)(void))GetProcAddress(library, "SAGetAreaInfo");
    RectsFunction getRects = (RectsFunction)(void (*)(void))GetProcAddress(library, "SAGetAreaRects");
    DWORD id = 0;
    int count = 0;
    for (; toId(count, &id); ++count) {
        SAAreaInfo info;
        RECT* rects = NULL;
        if (!getInfo(id, &info) || toIndex(id) != (DWORD)count) return 0;
        rects = calloc(info.nAreas + 1, sizeof *rects);
        if (rects == NULL || !getRects(id, rects)) return 0;
        printf("%ls: %lu areas, first at %ld,%ld\n", info.szName, info.nAreas, rects[0].left, rects[0].top);
        if (count == 0) wcscpy(firstName, info.szName);
        free(rects);
    }
    return count;
}

static int MaskPage(HMODULE library, const WCHAR* name, const WCHAR* page) {
    CreateFunction create = (CreateFunction)(void (*)(void))GetProcAddress(library, MAKEINTRESOURCEA(11));
    FreeFunction release = (FreeFunction)(void (*)(void))GetProcAddress(library, MAKEINTRESOURCEA(12));
    void* image = LoadPage(page);
    BYTE* block = NULL;
    DWORD length = 0;
    int masked = image != NULL && create(image, name, &block, &length);
    if (masked) printf("masked: %lu bytes, %c%c\n", length, block[0], block[1]);
    release(block);
    ReleasePage(image);
    return masked;
}

int wmain(int argc, WCHAR** argv) {
    WCHAR name[SA_NAME_LENGTH] = L"";
    struct IUnknown* settings = NULL;
    HMODULE library = NULL;
    int done = 0;
    if (argc != 3 || FAILED(CoInitializeEx(NULL, COINIT_APARTMENTTHREADED))) return 2;
    library = LoadLibraryW(L"Zonwick.dll");
    settings = OpenSettings(argv[1]);
    if (library != NULL && settings != NULL && CheckExports(library)) {
        InitFunction init = (InitFunction)(void (*)(void))GetProcAddress(library, MAKEINTRESOURCEA(6));
        init(settings);
        done = PrintSets(library, name) > 0 && MaskPage(library, name, argv[2]);
        init(NULL);
    }
    CloseSettings(settings);
    if (library != NULL) FreeLibrary(library);
    CoUninitialize();
    return done ? 0 : 1;
}
