#include "faults/ImportHook.h"

#include <cstdlib>
#include <cstring>

namespace test {

namespace {

// Entries of imports stand in arrays that end with a null.
template <class Visit>
void ForEachImport(HMODULE module, Visit visit) {
    auto* base = reinterpret_cast<BYTE*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.VirtualAddress == 0) return;
    for (auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
         library->Name != 0; ++library) {
        for (auto* entry = reinterpret_cast<void**>(base + library->FirstThunk); *entry != nullptr; ++entry)
            visit(entry);
    }
}

// Executable memory, never given back: a call may still be on its way through it.
BYTE* TakeCode(size_t size) {
    static BYTE* page = nullptr;
    static size_t used = 0;
    constexpr size_t kPage = 1 << 16;
    if (page == nullptr || used + size > kPage) {
        page = static_cast<BYTE*>(VirtualAlloc(nullptr, kPage, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
        if (page == nullptr) std::abort();
        used = 0;
    }
    BYTE* code = page + used;
    used += size;
    return code;
}

}  // namespace

void* MakeGate(GateKeeper keeper, int kind, void* original, const intptr_t* failure) {
    // Keeps the arguments' registers, calls keeper(kind), and takes one of two ways.
    BYTE code[] = {
        0x55, 0x48, 0x89, 0xe5, 0x51, 0x52, 0x41, 0x50, 0x41, 0x51,  // push rbp; mov rbp,rsp; push rcx,rdx,r8,r9
        0x48, 0x83, 0xec, 0x60,                                      // sub rsp,0x60
        0xf3, 0x0f, 0x7f, 0x44, 0x24, 0x20, 0xf3, 0x0f, 0x7f, 0x4c, 0x24, 0x30,  // xmm0 and xmm1 to the stack
        0xf3, 0x0f, 0x7f, 0x54, 0x24, 0x40, 0xf3, 0x0f, 0x7f, 0x5c, 0x24, 0x50,  // xmm2, xmm3
        0xb9, 0,    0,    0,    0,                                               // mov ecx,kind
        0x48, 0xb8, 0,    0,    0,    0,    0,    0,    0,    0,    0xff, 0xd0,  // mov rax,keeper; call rax
        0xf3, 0x0f, 0x6f, 0x44, 0x24, 0x20, 0xf3, 0x0f, 0x6f, 0x4c, 0x24, 0x30,  // and back
        0xf3, 0x0f, 0x6f, 0x54, 0x24, 0x40, 0xf3, 0x0f, 0x6f, 0x5c, 0x24, 0x50,
        0x48, 0x83, 0xc4, 0x60, 0x41, 0x59, 0x41, 0x58, 0x5a, 0x59, 0x5d,        // add rsp,0x60; pop r9,r8,rdx,rcx,rbp
        0x84, 0xc0, 0x75, 0x0c,                                                  // test al,al; jnz failure
        0x48, 0xb8, 0,    0,    0,    0,    0,    0,    0,    0,    0xff, 0xe0,  // mov rax,original; jmp rax
        0x48, 0xb8, 0,    0,    0,    0,    0,    0,    0,    0,                 // failure: mov rax,failure
        0x48, 0x8b, 0x00, 0xc3,                                                  // mov rax,[rax]; ret
    };
    constexpr size_t kKind = 39, kKeeper = 45, kOriginal = 96, kFailure = 108;
    static_assert(sizeof code == 120);
    const auto keep = reinterpret_cast<uintptr_t>(keeper);
    std::memcpy(code + kKind, &kind, 4);
    std::memcpy(code + kKeeper, &keep, 8);
    std::memcpy(code + kOriginal, &original, 8);
    std::memcpy(code + kFailure, &failure, 8);
    BYTE* made = TakeCode(128);
    std::memcpy(made, code, sizeof code);
    FlushInstructionCache(GetCurrentProcess(), made, sizeof code);
    return made;
}

PointerHooks::~PointerHooks() {
    while (!m_old.empty()) {
        const Old old = m_old.back();
        m_old.pop_back();
        DWORD access = 0;
        if (!VirtualProtect(old.place, sizeof(void*), PAGE_READWRITE, &access)) continue;
        *old.place = old.pointer;
        VirtualProtect(old.place, sizeof(void*), access, &access);
    }
}

void PointerHooks::Put(void** place, void* pointer) {
    DWORD access = 0;
    if (!VirtualProtect(place, sizeof(void*), PAGE_READWRITE, &access)) std::abort();
    m_old.push_back({place, *place});
    *place = pointer;
    VirtualProtect(place, sizeof(void*), access, &access);
}

bool PointerHooks::HookImport(HMODULE importer, void* function, void* replacement) {
    bool found = false;
    ForEachImport(importer, [&](void** entry) {
        if (*entry != function) return;
        Put(entry, replacement);
        found = true;
    });
    return found;
}

void PointerHooks::GateInterface(void* object, size_t slots, GateKeeper keeper, int kind, const intptr_t* failure) {
    constexpr size_t kFirst = 3;  // after those of IUnknown
    void** table = *static_cast<void***>(object);
    for (size_t slot = kFirst; slot < slots; ++slot) {
        Put(table + slot, MakeGate(keeper, kind, table[slot], failure));
    }
}

}  // namespace test
