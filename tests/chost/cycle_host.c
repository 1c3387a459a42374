/*
 * A host that loads and unloads Zonwick.dll over and over: nothing of a cycle may stay in the process. Any compiler for
 * Windows x64 builds it, with the system's import libraries alone: no headers of the system, no runtime, no start-up
 * code.
 *
 *     cycle_host WAY CYCLES
 *
 * WAY: plain (without COM), sta, mta, or threads (four that load, ask and unload at the same time). Prints what grew
 * from the tenth cycle to the last; 0 when nothing did.
 */
#include "host/HostIds.h"

typedef void* Handle;
typedef unsigned long Word;
typedef struct {
    void* data;
    Word size;
    unsigned char overhead, region;
    unsigned short flags;
    void* rest[4];
} HeapEntry;
typedef struct {
    unsigned data1;
    unsigned short data2, data3;
    unsigned char data4[8];
} Guid;
typedef struct Object {
    const struct {
        long(__stdcall* query)(struct Object*, const Guid*, struct Object**);
        Word(__stdcall* addRef)(struct Object*);
        Word(__stdcall* release)(struct Object*);
        long(__stdcall* create)(struct Object*, struct Object*, const Guid*, struct Object**); /* of a factory */
    } * table;
} Object;
typedef long(__stdcall* GetClassFunction)(const Guid*, const Guid*, Object**);
typedef Word(__stdcall* ThreadFunction)(void*);
typedef void(__stdcall* InitFunction)(Object*);
typedef int(__stdcall* ToIdFunction)(int, Word*);

#define IMPORT(result) __declspec(dllimport) result __stdcall
IMPORT(Handle) LoadLibraryA(const char*);
IMPORT(Handle) GetModuleHandleA(const char*);
IMPORT(int) FreeLibrary(Handle);
IMPORT(void*) GetProcAddress(Handle, const char*);
IMPORT(Word) TlsAlloc(void);
IMPORT(int) TlsFree(Word);
IMPORT(Word) GetProcessHeaps(Word, Handle*);
IMPORT(int) HeapLock(Handle);
IMPORT(int) HeapUnlock(Handle);
IMPORT(int) HeapWalk(Handle, HeapEntry*);
IMPORT(Handle) CreateEventA(void*, int, int, const char*);
IMPORT(Handle) CreateThread(void*, unsigned long long, ThreadFunction, void*, Word, Word*);
IMPORT(Word) WaitForSingleObject(Handle, Word);
IMPORT(int) CloseHandle(Handle);
IMPORT(void) Sleep(Word);
IMPORT(Handle) GetStdHandle(Word);
IMPORT(int) WriteFile(Handle, const void*, Word, Word*, void*);
IMPORT(char*) GetCommandLineA(void);
__declspec(dllimport) int wsprintfA(char*, const char*, ...);
IMPORT(void) ExitProcess(unsigned);
IMPORT(long) CoInitializeEx(void*, Word);
IMPORT(void) CoUninitialize(void);
IMPORT(long) CoRegisterClassObject(const Guid*, Object*, Word, Word, Word*);
IMPORT(long) CoRevokeClassObject(Word);

enum { kThreads = 4, kFirst = 10, kSlotLimit = 2048, kProbes = 32 };

typedef struct {
    int slots, handles, heap;
} Holdings;

/* Slots that are free, heaps, and the highest of a few new handles, which fill the gaps first: not every system counts
   a process's handles. */
static Holdings Measure(void) {
    static Word slots[kSlotLimit];
    Handle made[kProbes], heaps[kProbes];
    Holdings now = {0, 0, 0};
    Word count = GetProcessHeaps(kProbes, heaps);
    int free = 0;
    while (free < kSlotLimit && (slots[free] = TlsAlloc()) != 0xFFFFFFFF) ++free;
    for (int i = 0; i < free; ++i) TlsFree(slots[i]);
    now.slots = -free;
    for (Word i = 0; i < count && i < kProbes; ++i) {
        HeapEntry entry;
        entry.data = 0;
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry)) now.heap += (entry.flags & 4) != 0 ? (int)entry.size : 0;
        HeapUnlock(heaps[i]);
    }
    for (int i = 0; i < kProbes; ++i) {
        made[i] = CreateEventA(0, 0, 0, 0);
        if ((long long)made[i] / 4 > now.handles) now.handles = (int)((long long)made[i] / 4);
    }
    for (int i = 0; i < kProbes; ++i) CloseHandle(made[i]);
    return now;
}

/* Waits until all threads are here, so that every cycle unloads the module. */
static int g_threads;
static int g_arrived;
static void Meet(void) {
    const int before = __atomic_fetch_add(&g_arrived, 1, __ATOMIC_SEQ_CST);
    const int all = before / g_threads * g_threads + g_threads;
    while (__atomic_load_n(&g_arrived, __ATOMIC_SEQ_CST) < all) Sleep(0);
}

/* The settings store, which stays: its classes, and an empty node of it for the module. */
static Object* g_settings;
static Word g_cookies[2];

static int OpenSettings(void) {
    static const Guid kUnknown = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    static const Guid kFactory = {1, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    static const Guid kClasses[2] = {{ZONWICK_GUID_FIELDS(ZONWICK_CLSID_SETTINGS_NODE)},
                                     {ZONWICK_GUID_FIELDS(ZONWICK_CLSID_SETTINGS_TRANSFER)}};
    GetClassFunction getClass = (GetClassFunction)GetProcAddress(LoadLibraryA("HostSettings.dll"), "DllGetClassObject");
    if (getClass == 0) return 0;
    for (int i = 0; i < 2; ++i) {
        Object* factory = 0;
        if (getClass(&kClasses[i], &kFactory, &factory) < 0) return 0;
        if (i == 0) factory->table->create(factory, 0, &kUnknown, &g_settings);
        CoRegisterClassObject(&kClasses[i], factory, 1, 1, &g_cookies[i]);
        factory->table->release(factory);
    }
    return g_settings != 0;
}
static void CloseSettings(void) {
    if (g_settings != 0) g_settings->table->release(g_settings);
    for (int i = 0; i < 2; ++i) CoRevokeClassObject(g_cookies[i]);
}

/* Without settings the query fails inside the module, which is where it uses the most of its runtime. */
static int Cycle(void) {
    Word id = 0;
    Handle library = LoadLibraryA("Zonwick.dll");
    if (library != 0) {
        if (g_settings != 0) ((InitFunction)GetProcAddress(library, "SAInit"))(g_settings);
        ((ToIdFunction)GetProcAddress(library, "SAMapIndex2ID"))(0, &id);
    }
    Meet();
    return library != 0 && FreeLibrary(library);
}

static int g_cycles;
static Word __stdcall Cycles(void* done) {
    int good = 1;
    for (int i = 0; i < g_cycles; ++i) {
        good = Cycle() && good;
        Meet();
    }
    *(int*)done = good && GetModuleHandleA("Zonwick.dll") == 0;
    return 0;
}

/* On this thread, or on as many new ones. */
static int Run(int threads, int cycles) {
    Handle handles[kThreads];
    int done[kThreads];
    int all = 1;
    g_cycles = cycles;
    g_threads = threads;
    if (threads == 1) Cycles(done);
    for (int i = 0; i < threads && threads > 1; ++i) handles[i] = CreateThread(0, 0, Cycles, &done[i], 0, 0);
    for (int i = 0; i < threads; ++i) {
        if (threads > 1) WaitForSingleObject(handles[i], 0xFFFFFFFF);
        if (threads > 1) CloseHandle(handles[i]);
        all = all && done[i];
    }
    return all;
}

/* The word of the command line behind `line`, which ends at a space. */
static char* NextWord(char* line) {
    while (*line != 0 && *line != ' ') ++line;
    while (*line == ' ') ++line;
    return line;
}

void Start(void) {
    char* way = NextWord(GetCommandLineA());
    const char* number = NextWord(way);
    const int threads = way[0] == 't' ? kThreads : 1;
    int cycles = 0;
    int held;
    char text[200];
    int length;
    Word written;
    Holdings first, last;
    while (*number >= '0' && *number <= '9') cycles = cycles * 10 + (*number++ - '0');
    const int withCom = way[0] == 's' || way[0] == 'm';
    if (withCom) CoInitializeEx(0, way[0] == 's' ? 2 : 0);
    held = !withCom || OpenSettings();
    held = Run(threads, kFirst) && held;
    first = Measure();
    held = held && Run(threads, cycles - kFirst);
    last = Measure();
    if (withCom) {
        CloseSettings();
        CoUninitialize();
    }
    length = wsprintfA(text, "slots %d, handles %d, heap %d%s\r\n", last.slots - first.slots,
                       last.handles - first.handles, last.heap - first.heap, held ? "" : ", a cycle failed");
    WriteFile(GetStdHandle((Word)-11), text, (Word)length, &written, 0);
    ExitProcess(!held || last.slots > first.slots || last.handles > first.handles || last.heap > first.heap);
}
