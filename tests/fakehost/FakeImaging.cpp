#include <cstdlib>
#include <cstring>

#include "fakehost/FakeHost.h"
#include "host/Imaging.h"

namespace {

FakeImaging g_fake;

}  // namespace

extern "C" {

FakeImaging* FakeImagingState(void) {
    return &g_fake;
}

int HostCreateMaskedImage(void* source, void** masked, const AreaMask* mask, int constant) {
    g_fake.source = source;
    g_fake.maskConstant = constant;
    g_fake.keep = mask->dwKeep;
    g_fake.count = mask->count;
    for (uint32_t i = 0; i < mask->count && i < 8; ++i) g_fake.rects[i] = mask->rects[i];
    if (*masked != nullptr) std::abort();  // the module clears it before the call
    if (g_fake.maskResult == 1) {
        *masked = std::malloc(1);
        ++g_fake.liveImages;
    }
    return g_fake.maskResult;
}

int HostCopyImage(void*, int format, void** block, DWORD* length, int constant) {
    g_fake.copyFormat = format;
    g_fake.copyConstant = constant;
    if (g_fake.copyResult != 1) return g_fake.copyResult;
    *length = g_fake.copyLength;
    const size_t size = g_fake.copyLength;
    *block = std::malloc(size > 0 ? size : 1);
    std::memset(*block, 0x5A, size > 0 ? size : 1);
    return 1;
}

void HostReleaseImage(void* image) {
    if (image == nullptr) return;
    std::free(image);
    --g_fake.liveImages;
}

}  // extern "C"
