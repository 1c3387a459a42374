/*
 * A host in plain C that loads and unloads Zonwick.dll over and over: nothing of a cycle may stay in the process.
 *
 *     cycle_host WAY CYCLES
 *
 * WAY: plain (without COM), sta, mta, or threads (four that load, ask and unload at the same time). Prints what grew
 * from the tenth cycle to the last; 0 when nothing did.
 */
#define COBJMACROS
#include <ole2.h>
#include <stdio.h>
#include <stdlib.h>
#include <windows.h>
#include <zonwick/zonwick.h>

#include "host/HostIds.h"

typedef HRESULT(WINAPI* GetClassFunction)(REFCLSID, REFIID, void**);
typedef void(WINAPI* InitFunction)(struct IUnknown*);
typedef BOOL(WINAPI* ToIdFunction)(int, DWORD*);

enum { kThreads = 4, kFirst = 10, kSlotLimit = 2048, kProbes = 32 };

typedef struct {
    int slots, handles, heap;
} Holdings;

/* Slots that are free, heaps, and the highest of a few new handles, which fill the gaps first: not every system counts
   a process's handles. */
static Holdings Measure(void) {
    static DWORD slots[kSlotLimit];
    HANDLE made[kProbes], heaps[kProbes];
    Holdings now = {0, 0, 0};
    const DWORD count = GetProcessHeaps(kProbes, heaps);
    int free = 0;
    while (free < kSlotLimit && (slots[free] = TlsAlloc()) != TLS_OUT_OF_INDEXES) ++free;
    for (int i = 0; i < free; ++i) TlsFree(slots[i]);
    now.slots = -free;
    for (DWORD i = 0; i < count && i < kProbes; ++i) {
        PROCESS_HEAP_ENTRY entry = {0};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry)) now.heap += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) ? (int)entry.cbData : 0;
        HeapUnlock(heaps[i]);
    }
    for (int i = 0; i < kProbes; ++i) {
        made[i] = CreateEventA(NULL, FALSE, FALSE, NULL);
        if ((INT_PTR)made[i] / 4 > now.handles) now.handles = (int)((INT_PTR)made[i] / 4);
    }
    for (int i = 0; i < kProbes; ++i) CloseHandle(made[i]);
    return now;
}

/* Waits until all threads are here, so that every cycle unloads the module. */
static int g_threads;
static LONG g_arrived;
static void Meet(void) {
    const LONG before = InterlockedIncrement(&g_arrived) - 1;
    const LONG all = before / g_threads * g_threads + g_threads;
    while (InterlockedCompareExchange(&g_arrived, 0, 0) < all) Sleep(0);
}

/* The settings store, which stays: its classes, and an empty node of it for the module. */
static struct IUnknown* g_settings;
static DWORD g_cookies[2];

static int OpenSettings(void) {
    static const GUID kClasses[2] = {{ZONWICK_GUID_FIELDS(ZONWICK_CLSID_SETTINGS_NODE)},
                                     {ZONWICK_GUID_FIELDS(ZONWICK_CLSID_SETTINGS_TRANSFER)}};
    const FARPROC getClass = GetProcAddress(LoadLibraryA("HostSettings.dll"), "DllGetClassObject");
    if (getClass == NULL) return 0;
    for (int i = 0; i < 2; ++i) {
        IClassFactory* factory = NULL;
        if (FAILED(((GetClassFunction)(void (*)(void))getClass)(&kClasses[i], &IID_IClassFactory, (void**)&factory)))
            return 0;
        if (i == 0) IClassFactory_CreateInstance(factory, NULL, &IID_IUnknown, (void**)&g_settings);
        CoRegisterClassObject(&kClasses[i], (struct IUnknown*)factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                              &g_cookies[i]);
        IClassFactory_Release(factory);
    }
    return g_settings != NULL;
}

/* Without settings the query fails inside the module, which is where it uses the most of its runtime. */
static int Cycle(void) {
    DWORD id = 0;
    const HMODULE library = LoadLibraryA("Zonwick.dll");
    if (library != NULL) {
        const FARPROC init = GetProcAddress(library, "SAInit"), toId = GetProcAddress(library, "SAMapIndex2ID");
        if (g_settings != NULL) ((InitFunction)(void (*)(void))init)(g_settings);
        ((ToIdFunction)(void (*)(void))toId)(0, &id);
    }
    Meet();
    return library != NULL && FreeLibrary(library);
}

static int g_cycles;
static DWORD WINAPI Cycles(void* done) {
    int good = 1;
    for (int i = 0; i < g_cycles; ++i) {
        good = Cycle() && good;
        Meet();
    }
    *(int*)done = good && GetModuleHandleA("Zonwick.dll") == NULL;
    return 0;
}

/* On this thread, or on as many new ones. */
static int Run(int threads, int cycles) {
    int done[kThreads];
    int all = 1;
    HANDLE handles[kThreads];
    g_cycles = cycles;
    g_threads = threads;
    if (threads == 1) return Cycles(done), done[0];
    for (int i = 0; i < threads; ++i) handles[i] = CreateThread(NULL, 0, Cycles, &done[i], 0, NULL);
    for (int i = 0; i < threads; ++i) {
        WaitForSingleObject(handles[i], INFINITE);
        CloseHandle(handles[i]);
        all = all && done[i];
    }
    return all;
}

int main(int argc, char** argv) {
    const char way = argc == 3 ? argv[1][0] : 0;
    const int threads = way == 't' ? kThreads : 1;
    const int withCom = way == 's' || way == 'm';
    int held;
    Holdings first, last;
    if (withCom) CoInitializeEx(NULL, way == 's' ? COINIT_APARTMENTTHREADED : COINIT_MULTITHREADED);
    held = argc == 3 && (!withCom || OpenSettings()) && Run(threads, kFirst);
    first = Measure();
    held = held && Run(threads, atoi(argv[2]) - kFirst);
    last = Measure();
    if (g_settings != NULL) IUnknown_Release(g_settings);
    for (int i = 0; i < 2 && withCom; ++i) CoRevokeClassObject(g_cookies[i]);
    if (withCom) CoUninitialize();
    printf("slots %d, handles %d, heap %d%s\n", last.slots - first.slots, last.handles - first.handles,
           last.heap - first.heap, held ? "" : ", a cycle failed");
    return !held || last.slots > first.slots || last.handles > first.handles || last.heap > first.heap;
}
