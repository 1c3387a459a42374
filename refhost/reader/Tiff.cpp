#include "refhost/reader/Tiff.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "refhost/reader/Bytes.h"

namespace reader {

namespace {

constexpr uint32_t kByte = 1;
constexpr uint32_t kShort = 3;
constexpr uint32_t kLong = 4;
constexpr uint32_t kRational = 5;
constexpr uint32_t kResolutionUnit = 296;
constexpr uint32_t kMaxFrames = 65535;
constexpr size_t kEntrySize = 12;

// Bytes of a value of a type; 0 for unknown types.
size_t TypeSize(uint32_t type) {
    static constexpr size_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    return type < std::size(kSizes) ? kSizes[type] : 0;
}

// Offsets and lengths of the pieces that hold the image.
struct Pieces {
    uint32_t offsets;
    uint32_t lengths;
};
constexpr Pieces kStrips = {273, 279};
constexpr Pieces kTiles = {324, 325};

const Pieces* PiecesOf(const TiffDirectory& frame) {
    for (const Pieces* pieces : {&kStrips, &kTiles}) {
        const TiffEntry* offsets = frame.Find(pieces->offsets);
        const TiffEntry* lengths = frame.Find(pieces->lengths);
        if (offsets != nullptr && lengths != nullptr && offsets->count == lengths->count) return pieces;
    }
    return nullptr;
}

// Tags that point to places in the file which are not taken along: other directories and parts of old JPEG.
bool IsPointer(uint32_t tag) {
    static constexpr uint32_t kPointers[] = {288, 289, 330, 513, 514, 519, 520, 521, 34665, 34853, 40965};
    return std::ranges::find(kPointers, tag) != std::end(kPointers);
}

constexpr uint32_t kCompression = 259;
constexpr uint32_t kOldJpeg = 6;

// Entries of the directory at `offset`, 0 when it does not lie in the file.
size_t CountEntries(std::span<const uint8_t> file, size_t offset, bool bigEndian) {
    if (offset < 8 || offset > file.size() || file.size() - offset < 2) return 0;
    const size_t count = Get16(file, offset, bigEndian);
    return (file.size() - offset - 2) / kEntrySize < count ? 0 : count;
}

// Where the directory after the one at `offset` stands. Its entries are not looked at: overlapping directories would
// make a walk through a small file very long.
uint32_t NextDirectory(std::span<const uint8_t> file, size_t offset, bool bigEndian) {
    const size_t count = CountEntries(file, offset, bigEndian);
    return count == 0 ? 0 : Get32(file, offset + 2 + count * kEntrySize, bigEndian);
}

}  // namespace

std::optional<TiffDirectory> TiffDirectory::Read(std::span<const uint8_t> file, size_t offset, bool bigEndian) {
    const size_t count = CountEntries(file, offset, bigEndian);
    if (count == 0) return {};
    TiffDirectory directory;
    directory.m_file = file;
    directory.m_bigEndian = bigEndian;
    directory.m_next = NextDirectory(file, offset, bigEndian);
    for (size_t i = 0; i < count; ++i) {
        const size_t at = offset + 2 + i * kEntrySize;
        TiffEntry entry = {Get16(file, at, bigEndian), Get16(file, at + 2, bigEndian), Get32(file, at + 4, bigEndian),
                           at + 8, 0};
        const uint64_t size = uint64_t{entry.count} * TypeSize(entry.type);
        if (size == 0 || size > file.size()) continue;
        entry.size = static_cast<size_t>(size);
        if (size > 4) entry.offset = Get32(file, at + 8, bigEndian);
        if (entry.offset > file.size() || file.size() - entry.offset < size) continue;
        directory.m_entries.push_back(entry);
    }
    return directory;
}

const TiffEntry* TiffDirectory::Find(uint32_t tag) const {
    const auto found = std::ranges::find(m_entries, tag, &TiffEntry::tag);
    return found == m_entries.end() ? nullptr : &*found;
}

uint32_t TiffDirectory::Number(const TiffEntry& entry, uint32_t index) const {
    if (index >= entry.count) return 0;
    if (entry.type == kByte) return m_file[entry.offset + index];
    if (entry.type == kShort) return Get16(m_file, entry.offset + size_t{index} * 2, m_bigEndian);
    if (entry.type == kLong) return Get32(m_file, entry.offset + size_t{index} * 4, m_bigEndian);
    return 0;
}

double TiffDirectory::Fraction(uint32_t tag) const {
    const TiffEntry* entry = Find(tag);
    if (entry == nullptr || entry->type != kRational) return 0;
    const uint32_t divisor = Get32(m_file, entry->offset + 4, m_bigEndian);
    return divisor == 0 ? 0 : static_cast<double>(Get32(m_file, entry->offset, m_bigEndian)) / divisor;
}

double TiffDirectory::Dpi(uint32_t tag) const {
    constexpr uint32_t kInch = 2;
    constexpr uint32_t kCentimetre = 3;
    const TiffEntry* entry = Find(kResolutionUnit);
    const uint32_t unit = entry == nullptr ? kInch : Number(*entry, 0);
    if (unit == kInch) return Fraction(tag);
    return unit == kCentimetre ? Fraction(tag) * 2.54 : 0;
}

uint32_t TiffDirectory::Orientation() const {
    constexpr uint32_t kOrientation = 274;
    const TiffEntry* entry = Find(kOrientation);
    const uint32_t value = entry == nullptr ? 1 : Number(*entry, 0);
    return value >= 1 && value <= 8 ? value : 1;
}

bool TiffDirectory::IsWhole() const {
    const Pieces* pieces = PiecesOf(*this);
    if (pieces == nullptr) return true;
    const TiffEntry& offsets = *Find(pieces->offsets);
    const TiffEntry& lengths = *Find(pieces->lengths);
    for (uint32_t i = 0; i < offsets.count; ++i) {
        if (uint64_t{Number(offsets, i)} + Number(lengths, i) > m_file.size()) return false;
    }
    return true;
}

bool IsTiff(std::span<const uint8_t> file) {
    return file.size() >= 8 && ((file[0] == 'I' && file[1] == 'I' && Get16(file, 2, false) == 42) ||
                                (file[0] == 'M' && file[1] == 'M' && Get16(file, 2, true) == 42));
}

std::optional<TiffDirectory> TiffFrame(std::span<const uint8_t> file, uint32_t frame) {
    if (!IsTiff(file)) return {};
    const bool bigEndian = file[0] == 'M';
    std::set<uint32_t> seen;
    uint32_t offset = Get32(file, 4, bigEndian);
    for (uint32_t index = 0; index < kMaxFrames && seen.insert(offset).second; ++index) {
        if (index == frame) return TiffDirectory::Read(file, offset, bigEndian);
        offset = NextDirectory(file, offset, bigEndian);
    }
    return {};
}

namespace {

// Calls `visit` with the place of each directory, as far as the chain goes.
template <class Read, class Visit>
void WalkDirectories(const Read& read, const Visit& visit) {
    uint8_t header[8];
    if (!read(0, header, sizeof header) || !IsTiff(header)) return;
    const bool bigEndian = header[0] == 'M';
    std::set<uint32_t> seen;
    uint32_t offset = Get32(header, 4, bigEndian);
    while (seen.size() < kMaxFrames && offset >= sizeof header && seen.insert(offset).second) {
        uint8_t number[4];
        if (!read(offset, number, 2)) return visit(offset);
        const size_t entries = Get16(std::span(number), 0, bigEndian);
        const uint64_t next = uint64_t{offset} + 2 + entries * kEntrySize;
        if (entries == 0 || next > UINT32_MAX) return;
        visit(offset);
        // Where even the link is missing, pages may be.
        if (!read(static_cast<uint32_t>(next), number, 4)) return visit(static_cast<uint32_t>(next));
        offset = Get32(number, 0, bigEndian);
    }
}

}  // namespace

uint32_t CountTiffFrames(const ReadAt& read) {
    uint32_t frames = 0;
    WalkDirectories(read, [&](uint32_t) { ++frames; });
    return frames;
}

std::vector<uint32_t> TiffDirectories(std::span<const uint8_t> file) {
    std::vector<uint32_t> places;
    const auto read = [&](uint32_t offset, uint8_t* to, size_t size) {
        if (offset > file.size() || file.size() - offset < size) return false;
        std::memcpy(to, file.data() + offset, size);
        return true;
    };
    WalkDirectories(read, [&](uint32_t offset) { places.push_back(offset); });
    return places;
}

namespace {

// Lays a file out: header, directory, values, image data.
class FrameWriter {
public:
    FrameWriter(std::span<const uint8_t> file, const TiffDirectory& frame, const Pieces& pieces)
        : m_file(file), m_frame(frame), m_pieces(pieces) {}

    std::vector<uint8_t> Write() {
        for (const TiffEntry& entry : m_frame.Entries()) {
            if (!IsPointer(entry.tag)) m_entries.push_back(entry);
        }
        const size_t directory = 8;
        m_out.assign(directory + 2 + m_entries.size() * kEntrySize + 4, 0);
        std::memcpy(m_out.data(), m_file.data(), 4);
        Put(4, directory, 4);
        Put(directory, static_cast<uint32_t>(m_entries.size()), 2);
        for (size_t i = 0; i < m_entries.size(); ++i) WriteEntry(directory + 2 + i * kEntrySize, m_entries[i]);
        CopyPieces();
        return std::move(m_out);
    }

private:
    void Put(size_t at, size_t value, int size) {
        reader::Put(m_out.data() + at, static_cast<uint32_t>(value), size, m_frame.BigEndian());
    }

    size_t Append(const uint8_t* bytes, size_t size) {
        m_out.resize((m_out.size() + 1) / 2 * 2);  // values begin at even places
        const size_t at = m_out.size();
        m_out.insert(m_out.end(), bytes, bytes + size);
        return at;
    }

    void WriteEntry(size_t at, const TiffEntry& entry) {
        const bool isOffsets = entry.tag == m_pieces.offsets;
        Put(at, entry.tag, 2);
        Put(at + 2, isOffsets ? kLong : entry.type, 2);
        Put(at + 4, entry.count, 4);
        if (isOffsets) {
            // Filled in by CopyPieces.
            const std::vector<uint8_t> room(size_t{entry.count} * 4);
            m_offsetsAt = at + 8;
            if (entry.count > 1) Put(at + 8, m_offsetsAt = Append(room.data(), room.size()), 4);
        } else if (entry.size <= 4) {
            std::memcpy(m_out.data() + at + 8, m_file.data() + entry.offset, entry.size);
        } else {
            const size_t place = Append(m_file.data() + entry.offset, entry.size);
            Put(at + 8, place, 4);
        }
    }

    void CopyPieces() {
        const TiffEntry& offsets = *m_frame.Find(m_pieces.offsets);
        const TiffEntry& lengths = *m_frame.Find(m_pieces.lengths);
        for (uint32_t i = 0; i < offsets.count; ++i) {
            const size_t place = Append(m_file.data() + m_frame.Number(offsets, i), m_frame.Number(lengths, i));
            Put(m_offsetsAt + size_t{i} * 4, place, 4);
        }
    }

    std::span<const uint8_t> m_file;
    const TiffDirectory& m_frame;
    const Pieces& m_pieces;
    std::vector<TiffEntry> m_entries;
    std::vector<uint8_t> m_out;
    size_t m_offsetsAt = 0;
};

}  // namespace

std::vector<uint8_t> ExtractTiffFrame(std::span<const uint8_t> file, const TiffDirectory& frame) {
    const Pieces* pieces = PiecesOf(frame);
    const TiffEntry* compression = frame.Find(kCompression);
    if (pieces == nullptr || !frame.IsWhole()) return {};
    if (compression != nullptr && frame.Number(*compression, 0) == kOldJpeg) return {};
    // Pieces and values that overlap would let a small file grow without end.
    uint64_t size = 0;
    for (const TiffEntry& entry : frame.Entries()) size += entry.size;
    const TiffEntry& lengths = *frame.Find(pieces->lengths);
    for (uint32_t i = 0; i < lengths.count; ++i) size += frame.Number(lengths, i);
    if (size > 2 * uint64_t{file.size()}) return {};
    return FrameWriter(file, frame, *pieces).Write();
}

}  // namespace reader
