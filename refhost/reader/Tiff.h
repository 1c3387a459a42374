#pragma once
// The directories of a TIFF file, as far as the reader looks into them itself: resolution, whether the file is
// whole, and one frame taken out without decoding it.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace reader {

struct TiffEntry {
    uint32_t tag;
    uint32_t type;
    uint32_t count;
    size_t offset;  // where the values stand in the file
    size_t size;    // bytes of all values
};

class TiffDirectory {
public:
    // The directory at `offset`; none when it does not lie in the file. Entries whose values do not are left out.
    static std::optional<TiffDirectory> Read(std::span<const uint8_t> file, size_t offset, bool bigEndian);

    const std::vector<TiffEntry>& Entries() const { return m_entries; }
    uint32_t Next() const { return m_next; }
    bool BigEndian() const { return m_bigEndian; }

    const TiffEntry* Find(uint32_t tag) const;
    // Value `index` of a whole-number entry.
    uint32_t Number(const TiffEntry& entry, uint32_t index) const;
    // A fraction of two numbers; 0 where there is none.
    double Fraction(uint32_t tag) const;

    // Dots per inch; 0 where the directory gives none.
    double DpiX() const { return Dpi(282); }
    double DpiY() const { return Dpi(283); }
    // 1 to 8; 1 where there is none, or one that does not exist.
    uint32_t Orientation() const;
    // False when a strip or tile of the image lies beyond the end of the file.
    bool IsWhole() const;

private:
    double Dpi(uint32_t tag) const;

    std::span<const uint8_t> m_file;
    std::vector<TiffEntry> m_entries;
    uint32_t m_next = 0;
    bool m_bigEndian = false;
};

bool IsTiff(std::span<const uint8_t> file);

// The directory of a frame, counted from 0 along the file's chain.
std::optional<TiffDirectory> TiffFrame(std::span<const uint8_t> file, uint32_t frame);

// Where the directories of all frames stand, in their order; empty for what is no TIFF. Of a chain that runs in a
// circle each frame once; of one that leads out of the file also the place where the missing one would be, so that its
// loss is told when the page is asked for.
std::vector<uint32_t> TiffDirectories(std::span<const uint8_t> file);

// Reads `size` bytes at a place of a file; false when they are not there.
using ReadAt = std::function<bool(uint32_t offset, uint8_t* to, size_t size)>;

// The number of these, found with a few small reads, so that a large file need not be read to know its pages.
uint32_t CountTiffFrames(const ReadAt& read);

// A TIFF file with just that frame, its image data byte for byte; empty when the frame cannot be taken out (damaged, or
// of the old form of JPEG whose parts lie anywhere in the file).
std::vector<uint8_t> ExtractTiffFrame(std::span<const uint8_t> file, const TiffDirectory& frame);

}  // namespace reader
