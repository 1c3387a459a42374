#include "refhost/reader/JpegPiece.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "refhost/reader/Bytes.h"
#include "refhost/reader/Codecs.h"

namespace reader {

namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint8_t kStart = 0xD8;
constexpr uint8_t kEndOfImage = 0xD9;
constexpr uint8_t kScan = 0xDA;
constexpr uint8_t kComment = 0xFE;
constexpr uint8_t kHead[] = {0xFF, kStart};

[[noreturn]] void ThrowNoStream() {
    throw BadPiece{L"is no whole JPEG stream"};
}

bool IsApplication(uint8_t marker) {
    return marker >= 0xE0 && marker <= 0xEF;
}

class PieceMaker {
public:
    PieceMaker(JpegPiece& made, size_t size) : m_made(made) {
        m_made.stream.reserve(size + 64);
        Append(kHead);
    }

    // Copies the segments of a stream up to its scan, or to its end where it has tables alone. Gives where the scan
    // begins; 0: there is none.
    size_t CopySegments(Bytes stream) {
        if (stream.size() < 4 || stream[0] != 0xFF || stream[1] != kStart) ThrowNoStream();
        size_t at = 2;
        while (stream.size() - at >= 2) {
            if (stream[at] != 0xFF) ThrowNoStream();
            const uint8_t marker = stream[at + 1];
            if (marker == 0xFF) {
                ++at;
                continue;
            }
            if (marker == kEndOfImage) return 0;
            if (marker == kScan) return at;
            const size_t length = Get16(stream, at + 2, true);
            if (length < 2 || length > stream.size() - at - 2) ThrowNoStream();
            if (IsJpegFrame(marker)) ReadFrame(stream.subspan(at + 4, length - 2));
            if (!IsApplication(marker) && marker != kComment) Append(stream.subspan(at, length + 2));
            at += length + 2;
        }
        return 0;
    }

    // What tells a decoder how three samples are meant.
    void AppendColours(JpegColours colours) {
        if (colours == JpegColours::kAsTheyAre) return;
        const uint8_t transform = colours == JpegColours::kYCbCr ? 1 : 0;
        const uint8_t segment[] = {0xFF, 0xEE, 0, 14, 'A', 'd', 'o', 'b', 'e', 0, 100, 0, 0, 0, 0, transform};
        Append(segment);
    }

    void Append(Bytes bytes) {
        const size_t at = m_made.stream.size();
        m_made.stream.resize(at + bytes.size());
        std::memcpy(m_made.stream.data() + at, bytes.data(), bytes.size());
    }

private:
    void ReadFrame(Bytes header) {
        constexpr uint8_t kBits = 8;
        if (header.size() < 6 || header[0] != kBits) ThrowNoStream();
        m_made.height = Get16(header, 1, true);
        m_made.width = Get16(header, 3, true);
        m_made.samples = header[5];
    }

    JpegPiece& m_made;
};

}  // namespace

// Between them stand three other markers.
bool IsJpegFrame(uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool HasJpegEnd(Bytes scans) {
    static constexpr uint8_t kEndMarker[] = {0xFF, kEndOfImage};
    return std::find_end(scans.begin(), scans.end(), std::begin(kEndMarker), std::end(kEndMarker)) != scans.end();
}

JpegPiece MakeJpegPiece(Bytes tables, Bytes piece, JpegColours colours) {
    JpegPiece made = {{}, 0, 0, 0};
    PieceMaker maker(made, tables.size() + piece.size());
    maker.AppendColours(colours);
    if (!tables.empty()) maker.CopySegments(tables);
    const size_t scan = maker.CopySegments(piece);
    const Bytes rest = piece.subspan(scan);
    if (scan == 0 || made.samples == 0 || !HasJpegEnd(rest)) ThrowNoStream();
    maker.Append(rest);
    return made;
}

}  // namespace reader
