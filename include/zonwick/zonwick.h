/*
 * zonwick.h - the exported functions of Zonwick.dll and their records, for C and C++.
 *
 * Units     All lengths are whole tenths of a millimetre on the page: origin at the page's top-left corner, x to the
 *           right, y downwards. A4 is 2100 x 2970.
 * Threads   Call all exports on one thread, the host's window thread, with COM initialised on it. Only the collection
 *           of area sets is protected against other threads and processes (named mutex "SASyncMutex").
 * Memory    The caller owns all memory that it passes in. Nothing that comes back needs freeing, but for the block of
 *           CreateAreaSetImage.
 * Errors    No exception leaves an export. Every failure is traced through the host support library; results are plain
 *           values as told below.
 * Life      The module holds COM objects of the host until it is unloaded (a settings node of its class, its own node,
 *           the document stack): call FreeLibrary before CoUninitialize.
 *
 * Each function can be had by name and by the ordinal given with it (ordinal 7 is unassigned).
 *
 *     CoInitializeEx(NULL, COINIT_APARTMENTTHREADED);
 *     SAInit(settingsNode);
 *     DWORD id;
 *     SAAreaInfo info;
 *     for (int i = 0; SAMapIndex2ID(i, &id); ++i)
 *         if (SAGetAreaInfo(id, &info)) wprintf(L"%ls: %lu areas\n", info.szName, info.nAreas);
 */
#ifndef ZONWICK_ZONWICK_H
#define ZONWICK_ZONWICK_H

#include <stddef.h>
#include <windows.h>

/* The version of Zonwick that this header belongs to. */
#define ZONWICK_VERSION_MAJOR 0
#define ZONWICK_VERSION_MINOR 1
#define ZONWICK_VERSION_PATCH 0

#ifdef __cplusplus
extern "C" {
#endif

struct IUnknown;
struct IQuire;      /* the host's document stack, see src/host/DocumentStack.h */
struct IConfigHost; /* the host's configuration object, see src/host/ConfigObjects.h */

/* Flag of an area set: its areas are the parts of the page to leave out. Clear: they are the parts to keep. */
#define SA_AREAS_IGNORED 0x10000000u

/* Room for an area set's name in SAAreaInfo, in UTF-16 units with the terminator. */
#define SA_NAME_LENGTH 64

/* What is known of one area set. 140 bytes. */
typedef struct SAAreaInfo {
    WCHAR szName[SA_NAME_LENGTH]; /* name, NUL-terminated */
    DWORD nAreas;                 /* number of areas */
    DWORD dwFlags;                /* SA_AREAS_IGNORED; the other bits are kept as the host stored them */
    DWORD dwID;                   /* identifier, never 0 */
} SAAreaInfo;

/* One indexing field of the host. 24 bytes; mind the order of the coordinates. All four 0: not placed yet. */
typedef struct SAIndexField {
    LONG top;
    LONG bottom;
    LONG right;
    LONG left;
    LPCWSTR pszName; /* NUL-terminated, never null */
} SAIndexField;

/*
 * SAInit (ordinal 6) - hands over the settings node that holds the host's area sets, and reads them.
 *
 * pHost  any interface of the node, or null to let go of it. The module adds its own reference and works on a copy. An
 *        object without the settings node interface counts as null. With null the sets in memory stay as they are.
 *
 * Call it once after loading the DLL, and again whenever the node was changed by others. When the host's node cannot be
 * copied, that is traced, the sets are forgotten and the next query fails. When only some sets can be read, that is
 * traced ("CAreaSetManager::LoadSettings failed") and queries serve the sets before that place. While a dialog is open,
 * or from within a call that the module makes to the host's settings, the call is traced and changes nothing.
 */
void WINAPI SAInit(struct IUnknown* pHost);

/*
 * SAConfigure (ordinal 1) - opens "Manage Area Sets", modally over hParent.
 *
 * hParent         a window of the calling thread; may be null.
 * stack           the document stack whose pages the dialogs show from now on; the module adds its own reference. Null
 *                 gives 0 and nothing else.
 * document, page  where page display starts; negative values count as 0.
 *
 * OK stores all sets and writes them into the host's node (SAInit); when that fails the user is told and the dialog
 * stays open. Cancel reads the host's node again and drops every change made while the dialog was open; when that
 * fails, the user is told and the sets cannot be read until the next SAInit. Without a host's node the changes stay in
 * memory either way.
 *
 * Returns 1 when the dialog ran, whatever came of it, also when the system could not make its window. 0 when the sets
 * cannot be loaded or the dialog failed while it opened: then a message box told the user. Called while its dialog is
 * open it gives 0 and a trace.
 */
BOOL WINAPI SAConfigure(HWND hParent, struct IQuire* stack, int document, int page);

/*
 * SAConfigureSet (ordinal 2) - opens "Configure Area Set" for a stored set, modally over hParent.
 *
 * hParent  a window of the calling thread.
 * dwID     the set.
 *
 * Pages come from the document stack of an earlier ConfigurePage or SAConfigure; without one the result is 0 and
 * nothing is traced. OK changes the set in memory and in the module's working copy of the settings; the host's own node
 * changes when "Manage Area Sets" is closed with OK.
 *
 * Returns 1 when the dialog ran, whether it was accepted or cancelled. On failure (no such set, no window, the sets
 * cannot be loaded, the dialog cannot be opened) 0, and a message box told the user.
 */
BOOL WINAPI SAConfigureSet(HWND hParent, DWORD dwID);

/*
 * SAGetAreaInfo (ordinal 3) - fills *pInfo for the set with identifier dwID.
 *
 * Returns 1, or 0 when there is no such set, the sets could not be loaded, or pInfo is null: then *pInfo is unchanged.
 * A name of 64 units or more gives 0 as well, with its first 63 units in szName and the other fields unchanged.
 */
BOOL WINAPI SAGetAreaInfo(DWORD dwID, SAAreaInfo* pInfo);

/*
 * SAGetAreaRects (ordinal 4) - writes the rectangles of a set in their order.
 *
 * pRects  room for exactly SAAreaInfo.nAreas rectangles; may be null for a set without areas. Each comes out with
 *         left <= right and top <= bottom.
 *
 * Returns 1, also for a set without areas; 0 when there is no such set, the sets could not be loaded, or pRects is null
 * for a set with areas.
 */
BOOL WINAPI SAGetAreaRects(DWORD dwID, RECT* pRects);

/*
 * SAMapID2Index (ordinal 5) - the position of a set.
 *
 * Returns the position from 0, 0xFFFFFFFF when no set has the identifier, and 0 when the sets could not be loaded.
 * Positions shift when a set is removed; identifiers never change.
 */
DWORD WINAPI SAMapID2Index(DWORD dwID);

/*
 * SAMapIndex2ID (ordinal 8) - the identifier of the set at a position, for enumeration from 0 to the first failure.
 *
 * Returns 1, or 0 when there is no such position, the sets could not be loaded, or pID is null: then *pID is unchanged.
 */
BOOL WINAPI SAMapIndex2ID(int iIndex, DWORD* pID);

/*
 * SAChangeColors (ordinal 9) - sets the three colours of areas that dialogs opened from now on use.
 * They start as white, white and black.
 */
void WINAPI SAChangeColors(COLORREF first, COLORREF second, COLORREF third);

/*
 * ConfigurePage (ordinal 10) - opens "Configure Area Set" for the host's indexing fields, modally over hParent.
 *
 * hParent         a window of the calling thread.
 * name            shown in the dialog's title; null counts as empty.
 * fields, count   the fields; those with coordinates are shown as areas. After OK every one has the rectangle that now
 *                 carries its name, all 0 when none does; fields of the same name get the same rectangle. Unchanged
 *                 otherwise. Null only with a count below 1.
 * host            bracketed by IConfigScope::Begin and End; the dialogs show its document stack from now on.
 * document, page  where page display starts; negative values count as 0.
 *
 * Returns 1 when the dialog ran, whether it was accepted or cancelled, and 0 on failure; a message box told the user,
 * but for a null or failing host object and for null fields. No stored set changes.
 */
BOOL WINAPI ConfigurePage(HWND hParent, LPCWSTR name, SAIndexField* fields, int count, struct IConfigHost* host,
                          int document, int page);

/*
 * CreateAreaSetImage (ordinal 11) - masks a page image by the area set of a name.
 *
 * image    a handle of the host imaging library, passed on as it is; stays the caller's.
 * name     name of the set, compared unit by unit; the first set of that name counts. Names of 64 units or more cannot
 *          be found.
 * block    receives the masked image, in the form that the imaging library gives (the reference host: a BMP file in
 *          memory). To be returned with FreeAreaSetImage. Unchanged on failure.
 * length   receives the length in bytes, also when only the block could not be had.
 *
 * Returns nonzero on success. On failure (unknown name, set without areas, imaging library failed, out of memory, null
 * argument) 0. May take as long as masking takes; shows nothing.
 */
BOOLEAN WINAPI CreateAreaSetImage(void* image, LPCWSTR name, BYTE** block, DWORD* length);

/* FreeAreaSetImage (ordinal 12) - frees a block of CreateAreaSetImage; null does nothing. */
void WINAPI FreeAreaSetImage(BYTE* block);

#ifdef __cplusplus
}

static_assert(sizeof(SAAreaInfo) == 140 && offsetof(SAAreaInfo, szName) == 0 && offsetof(SAAreaInfo, nAreas) == 128 &&
                  offsetof(SAAreaInfo, dwFlags) == 132 && offsetof(SAAreaInfo, dwID) == 136,
              "layout of SAAreaInfo");
static_assert(sizeof(SAIndexField) == 24 && offsetof(SAIndexField, top) == 0 && offsetof(SAIndexField, bottom) == 4 &&
                  offsetof(SAIndexField, right) == 8 && offsetof(SAIndexField, left) == 12 &&
                  offsetof(SAIndexField, pszName) == 16,
              "layout of SAIndexField");
#endif

#endif
