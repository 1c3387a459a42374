#include "refhost/reader/Codecs.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>
#include <vector>

#include "refhost/reader/BitReader.h"

namespace reader {

namespace {

constexpr const wchar_t* kEndsEarly = L"ends before its last row";
constexpr size_t kBlock = size_t{256} << 10;

using Parts = std::span<const std::span<const uint8_t>>;

class RawDecoder final : public Decoder {
public:
    void Start(Parts parts, size_t) override { m_left = parts.front(); }
    const uint8_t* Next(size_t size) override {
        if (m_left.size() < size) throw BadPiece{kEndsEarly};
        const uint8_t* next = m_left.data();
        m_left = m_left.subspan(size);
        return next;
    }

private:
    std::span<const uint8_t> m_left;
};

// Decodes whole blocks ahead: codecs are slow at giving a few bytes at a time.
class BlockDecoder : public Decoder {
public:
    void Start(Parts parts, size_t total) final {
        m_left = total;
        m_at = m_filled = 0;
        Begin(parts);
    }
    const uint8_t* Next(size_t size) final {
        if (m_filled - m_at < size) Refill(size);
        const uint8_t* next = m_block.data() + m_at;
        m_at += size;
        return next;
    }

protected:
    virtual void Begin(Parts parts) = 0;
    // Writes exactly `size` bytes.
    virtual void Decode(uint8_t* to, size_t size) = 0;

private:
    void Refill(size_t size) {
        const size_t kept = m_filled - m_at;
        if (kept > 0) std::memmove(m_block.data(), m_block.data() + m_at, kept);
        m_at = 0;
        m_filled = kept;
        const size_t wanted = std::max(size - kept, std::min(m_left, kBlock));
        if (m_block.size() < kept + wanted) m_block.resize(kept + wanted);
        Decode(m_block.data() + kept, wanted);
        m_filled += wanted;
        m_left -= std::min(m_left, wanted);
    }

    size_t m_left = 0;
    std::vector<uint8_t> m_block;
    size_t m_at = 0;
    size_t m_filled = 0;
};

class PackBitsDecoder final : public BlockDecoder {
    void Begin(Parts parts) override {
        m_bytes = parts.front();
        m_at = m_run = 0;
    }

    void Decode(uint8_t* to, size_t size) override {
        while (size > 0) {
            if (m_run == 0) StartRun();
            const size_t count = std::min(size, m_run);
            if (m_repeats) {
                std::memset(to, m_bytes[m_at], count);
            } else {
                if (m_bytes.size() - m_at < count) throw BadPiece{kEndsEarly};
                std::memcpy(to, m_bytes.data() + m_at, count);
                m_at += count;
            }
            to += count;
            size -= count;
            m_run -= count;
            if (m_run == 0 && m_repeats) ++m_at;
        }
    }

    void StartRun() {
        constexpr int8_t kNothing = -128;
        int8_t head = kNothing;
        while (head == kNothing) {
            // A run of either kind has at least one byte behind its head.
            if (m_bytes.size() < m_at + 2) throw BadPiece{kEndsEarly};
            head = static_cast<int8_t>(m_bytes[m_at++]);
        }
        if (m_at >= m_bytes.size()) throw BadPiece{kEndsEarly};
        m_repeats = head < 0;
        m_run = static_cast<size_t>(m_repeats ? 1 - head : 1 + head);
    }

    std::span<const uint8_t> m_bytes;
    size_t m_at = 0;
    size_t m_run = 0;
    bool m_repeats = false;
};

class DeflateDecoder final : public BlockDecoder {
public:
    explicit DeflateDecoder(bool wholeStream) : m_wholeStream(wholeStream) {
        if (inflateInit(&m_stream) != Z_OK) throw std::bad_alloc();
    }
    ~DeflateDecoder() override { inflateEnd(&m_stream); }
    DeflateDecoder(const DeflateDecoder&) = delete;
    DeflateDecoder& operator=(const DeflateDecoder&) = delete;

    // The checksum stands behind the last byte. Where a writer left it out nothing can be told.
    void End() override {
        uint8_t more = 0;
        m_stream.next_out = &more;
        m_stream.avail_out = 1;
        int result = Z_OK;
        while (result == Z_OK && m_stream.avail_out > 0) result = Step();
        const bool good = result == Z_STREAM_END || (!m_wholeStream && result != Z_DATA_ERROR);
        if (!good) throw BadPiece{kDamaged};
    }

private:
    static constexpr const wchar_t* kDamaged = L"is damaged";

    void Begin(Parts parts) override {
        inflateReset(&m_stream);
        m_stream.avail_in = 0;
        m_parts.assign(parts.begin(), parts.end());
        m_part = 0;
    }

    void Decode(uint8_t* to, size_t size) override {
        m_stream.next_out = to;
        for (size_t left = size; left > 0;) {
            m_stream.avail_out = static_cast<uInt>(std::min<size_t>(left, kBlock));
            const uInt before = m_stream.avail_out;
            const int result = Step();
            left -= before - m_stream.avail_out;
            if (result == Z_MEM_ERROR) throw std::bad_alloc();
            if (left == 0) return;
            if (result == Z_STREAM_END || result == Z_BUF_ERROR) throw BadPiece{kEndsEarly};
            if (result != Z_OK) throw BadPiece{kDamaged};
        }
    }

    int Step() {
        for (; m_stream.avail_in == 0 && m_part < m_parts.size(); ++m_part) {
            // No file has parts beyond 32 bits.
            m_stream.next_in = const_cast<Bytef*>(m_parts[m_part].data());
            m_stream.avail_in = static_cast<uInt>(m_parts[m_part].size());
        }
        return inflate(&m_stream, Z_NO_FLUSH);
    }

    z_stream m_stream = {};
    std::vector<std::span<const uint8_t>> m_parts;
    size_t m_part = 0;
    const bool m_wholeStream;
};

// Each string of the table is one that was written before, made longer by the byte that came behind it there: so it is
// known by its place and length in what was decoded, and the whole piece is kept.
class LzwDecoder final : public Decoder {
public:
    void Start(Parts parts, size_t total) override {
        m_at = 0;
        m_total = total;
        if (m_room < total + kSlack) {
            m_room = total + kSlack;
            m_all.reset();
            m_all = std::make_unique_for_overwrite<uint8_t[]>(m_room);
        }
        const std::span<const uint8_t> bytes = parts.front();
        // The form of the first writers has the lowest bit first and the longer codes one later. It is told by its
        // first code, the one that clears the table.
        m_old = bytes.size() >= 2 && bytes[0] == 0 && (bytes[1] & 1) != 0;
        if (m_old) {
            m_reversed.assign(bytes.begin(), bytes.end());
            ReverseBits(m_reversed);
        }
        BitReader bits(m_old ? std::span<const uint8_t>(m_reversed) : bytes);
        const bool good = Decode(bits);
        if (bits.IsBeyond()) throw BadPiece{kEndsEarly};
        if (!good) throw BadPiece{L"is damaged"};
    }
    const uint8_t* Next(size_t size) override {
        if (m_total - m_at < size) throw BadPiece{kEndsEarly};
        m_at += size;
        return m_all.get() + m_at - size;
    }

private:
    static constexpr uint32_t kClear = 256;
    static constexpr uint32_t kEnd = 257;
    static constexpr uint32_t kFirst = 258;
    static constexpr uint32_t kMost = 4096;
    static constexpr size_t kSlack = 16;  // behind the last byte: strings are copied eight bytes at a time

    struct String {
        uint32_t at;
        uint32_t length;
    };

    // False when a code is none. Behind the end stand zeros, which decode to anything: the caller has to look.
    bool Decode(BitReader& reader) {
        // What is written are bytes, which could be anything's: members would be read anew for each.
        BitReader bits = reader;
        const bool good = Decode(bits, m_all.get(), m_total, m_strings.data(), m_old);
        reader = bits;
        return good;
    }

    static bool Decode(BitReader& bits, uint8_t* all, const size_t total, String* strings, const bool old) {
        uint32_t known = kFirst;
        uint32_t width = 9;
        String last = {0, 0};
        size_t done = 0;
        while (done < total) {
            const uint32_t code = Take(bits, width, old);
            if (code == kClear) {
                known = kFirst;
                width = 9;
                last.length = 0;
                continue;
            }
            if (code == kEnd) throw BadPiece{kEndsEarly};
            if (last.length > 0 && known < kMost) {
                strings[known++] = {last.at, last.length + 1};
                // Codes become longer when the next entry needs it; in the newer form one entry earlier.
                if (known + (old ? 0 : 1) >= uint32_t{1} << width && width < 12) ++width;
            }
            if (code > kEnd && code >= known) return false;
            const auto at = static_cast<uint32_t>(done);
            if (code < kClear) {
                all[done++] = static_cast<uint8_t>(code);
                last = {at, 1};
                continue;
            }
            const String string = strings[code];
            const size_t count = std::min<size_t>(string.length, total - done);
            Copy(all + done, all + string.at, count);
            last = {at, string.length};
            done += count;
        }
        return true;
    }

    // The string that was made last ends in its own first byte, which is written here; all others lie in front.
    static void Copy(uint8_t* to, const uint8_t* from, size_t count) {
        for (size_t i = 0; i < count; i += 8) std::memcpy(to + i, from + i, 8);
        if (from + count > to) to[count - 1] = to[0];
    }

    static uint32_t Take(BitReader& bits, uint32_t width, bool old) {
        bits.FillBelow(12);
        uint32_t code = bits.Peek(width);
        bits.Skip(width);
        if (!old) return code;
        uint32_t turned = 0;
        for (; width > 0; --width, code >>= 1) turned = turned << 1 | (code & 1);
        return turned;
    }

    std::array<String, kMost> m_strings;
    std::vector<uint8_t> m_reversed;
    std::unique_ptr<uint8_t[]> m_all;
    size_t m_room = 0;
    size_t m_total = 0;
    size_t m_at = 0;
    bool m_old = false;
};

}  // namespace

void ReverseBits(std::span<uint8_t> bytes) {
    static const auto kReversed = [] {
        std::array<uint8_t, 256> table{};
        for (uint32_t i = 0; i < 256; ++i) {
            for (uint32_t bit = 0; bit < 8; ++bit) {
                if ((i >> bit & 1) != 0) table[i] = static_cast<uint8_t>(table[i] | 0x80 >> bit);
            }
        }
        return table;
    }();
    for (uint8_t& byte : bytes) byte = kReversed[byte];
}

std::unique_ptr<Decoder> MakeDecoder(Coding coding) {
    switch (coding) {
        case Coding::kPackBits:
            return std::make_unique<PackBitsDecoder>();
        case Coding::kLzw:
            return std::make_unique<LzwDecoder>();
        case Coding::kDeflate:
            return std::make_unique<DeflateDecoder>(false);
        default:
            return std::make_unique<RawDecoder>();
    }
}

std::unique_ptr<Decoder> MakeInflater() {
    return std::make_unique<DeflateDecoder>(true);
}

uint64_t DecoderMemory(Coding coding, uint64_t total) {
    constexpr uint64_t kTables = uint64_t{1} << 18;
    switch (coding) {
        case Coding::kNone:
            return 0;
        case Coding::kLzw:
            return total + kTables;
        default:
            return std::min<uint64_t>(total, 2 * kBlock) + kTables;
    }
}

}  // namespace reader
