// Page images masked by an area set: the module describes the mask, the host imaging library does the imaging.
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <new>

#include "host/Imaging.h"
#include "module/ExportGuard.h"
#include "module/ZonwickApp.h"
#include "trace/Trace.h"
#include "zonwick/zonwick.h"

namespace {

constexpr const char* kSource = "AreaSetImage";
constexpr int kHostSuccess = 1;
constexpr int kMaskConstant = 1;
constexpr int kCopyFormat = 4;

struct Free {
    void operator()(void* block) const { std::free(block); }
};
using MaskPtr = std::unique_ptr<AreaMask, Free>;
using HostBlockPtr = std::unique_ptr<void, Free>;

struct ReleaseImage {
    void operator()(void* image) const { HostReleaseImage(image); }
};
using HostImagePtr = std::unique_ptr<void, ReleaseImage>;

#define TRACE_FAILURE(...) trace::TraceText(trace::kError, kSource, __LINE__, __VA_ARGS__)

// Only sets whose record is complete can be found: a name that is too long has no count and no flags to go by.
bool FindSetByName(LPCWSTR name, SAAreaInfo& info) {
    for (int position = 0;; ++position) {
        DWORD dwID = 0;
        if (!SAMapIndex2ID(position, &dwID)) return false;
        if (SAGetAreaInfo(dwID, &info) && std::wcscmp(info.szName, name) == 0) return true;
    }
}

// The mask of the set with that name. The search and both reads are one operation under the manager's lock, so that the
// mask has room for exactly the rectangles that are written.
MaskPtr MakeMask(LPCWSTR name) {
    const auto lock = GetAreaSetManager()->Lock();
    SAAreaInfo info = {};
    if (name == nullptr || !FindSetByName(name, info)) {
        TRACE_FAILURE(L"unknown areaset name requested");
        return nullptr;
    }
    if (info.nAreas == 0) {
        TRACE_FAILURE(L"areaset has no areas defined");
        return nullptr;
    }
    const uint64_t size = offsetof(AreaMask, rects) + uint64_t{info.nAreas} * sizeof(RECT);
    MaskPtr mask(static_cast<AreaMask*>(std::malloc(size)));
    if (mask == nullptr) {
        TRACE_FAILURE(L"cannot allocate memory: %d", static_cast<int>(size));
        return nullptr;
    }
    mask->dwKeep = (info.dwFlags & SA_AREAS_IGNORED) == 0 ? 1 : 0;
    mask->count = info.nAreas;
    if (!SAGetAreaRects(info.dwID, mask->rects)) {
        TRACE_FAILURE(L"cannot get area rects");
        return nullptr;
    }
    return mask;
}

HostImagePtr MakeMaskedImage(void* image, LPCWSTR name) {
    const MaskPtr mask = MakeMask(name);
    if (mask == nullptr) return nullptr;
    void* masked = nullptr;
    if (HostCreateMaskedImage(image, &masked, mask.get(), kMaskConstant) != kHostSuccess || masked == nullptr) {
        TRACE_FAILURE(L"cannot create masked image");
        return nullptr;
    }
    return HostImagePtr(masked);
}

bool CreateImage(void* image, LPCWSTR name, BYTE** block, DWORD* length) {
    if (block == nullptr || length == nullptr) {
        TRACE_FAILURE(L"CreateAreaSetImage: block or length is NULL.");
        return false;
    }
    HostImagePtr masked = MakeMaskedImage(image, name);
    if (masked == nullptr) return false;

    void* memory = nullptr;
    DWORD size = 0;
    const int copied = HostCopyImage(masked.get(), kCopyFormat, &memory, &size, 0);
    masked.reset();
    if (copied != kHostSuccess || (memory == nullptr && size > 0)) {
        TRACE_FAILURE(L"cannot copy masked image");
        return false;
    }
    const HostBlockPtr source(memory);
    *length = size;
    auto* result = new (std::nothrow) BYTE[size];
    if (result == nullptr) {
        TRACE_FAILURE(L"cannot allocate memory for masked image");
        return false;
    }
    if (size > 0) std::memcpy(result, source.get(), size);
    *block = result;
    return true;
}

}  // namespace

extern "C" {

BOOLEAN WINAPI CreateAreaSetImage(void* image, LPCWSTR name, BYTE** block, DWORD* length) {
    return module::Contain(kSource, __LINE__, L"CreateAreaSetImage", BOOLEAN{FALSE}, [&] {
        return static_cast<BOOLEAN>(CreateImage(image, name, block, length) ? TRUE : FALSE);
    });
}

void WINAPI FreeAreaSetImage(BYTE* block) {
    delete[] block;
}

}  // extern "C"
