// The masked copy against copying the same bytes.
#include <cstring>
#include <memory>
#include <random>

#include "bench/Bench.h"
#include "bench/MaskPages.h"

namespace bench {

namespace {

// The compiler may leave out a copy into a block that nobody looks at.
void Use(const void* block) {
    asm volatile("" : : "r"(block) : "memory");
}

}  // namespace

void MaskedCopy() {
    for (const bool keep : {true, false}) {
        const MaskPage page(2480, 3508, 24, keep);
        const size_t size = page.image.Size();
        const std::string detail = keep ? "keep" : "ignore";
        const auto fresh = [&](const auto& fill) {
            return Timed([&, fill] {
                const auto block = std::make_unique_for_overwrite<uint8_t[]>(size);
                fill(block.get());
                Use(block.get());
            });
        };
        const auto masked = [&](uint8_t* to) { imaging::CopyMasked(page.image, page.mask, to); };
        const auto plain = [&](uint8_t* to) { std::memcpy(to, page.image.Data(), size); };
        Compare("copy-fresh", detail, fresh(masked), fresh(plain), 15);
        const auto touched = std::make_unique<uint8_t[]>(size);
        Compare("copy-touched", detail, Timed([&] { masked(touched.get()); }), Timed([&] { plain(touched.get()); }),
                15);
    }
    // For the plot: cost against the number of pixels and of areas.
    for (const uint32_t dpi : {75u, 150u, 300u, 600u}) {
        const MaskPage page(dpi * 827 / 100, dpi * 1169 / 100, 24, false);
        const auto to = std::make_unique<uint8_t[]>(page.image.Size());
        Compare("size-pixels", std::to_string(page.image.Width() * page.image.Height()),
                Timed([&] { imaging::CopyMasked(page.image, page.mask, to.get()); }, 2),
                Timed([&] { std::memcpy(to.get(), page.image.Data(), page.image.Size()); }, 2), 5);
    }
    for (const int areas : {1, 10, 100, 1000, 10000}) {
        const MaskPage page(2480, 3508, 24, false, areas);
        const auto to = std::make_unique<uint8_t[]>(page.image.Size());
        Compare("size-areas", std::to_string(areas),
                Timed([&] { imaging::CopyMasked(page.image, page.mask, to.get()); }),
                Timed([&] { std::memcpy(to.get(), page.image.Data(), page.image.Size()); }), 5);
    }
}

void PackedCopy() {
    for (const bool keep : {true, false}) {
        const MaskPage page(2480, 3508, 1, keep);
        const auto to = std::make_unique<uint8_t[]>(page.image.Size());
        Compare("packed-copy", keep ? "keep" : "ignore",
                Timed([&] { imaging::CopyMasked(page.image, page.mask, to.get()); }, 10),
                Timed([&] { std::memcpy(to.get(), page.image.Data(), page.image.Size()); }, 10), 15);
    }
}

}  // namespace bench
