#include "refhost/reader/TiffPage.h"

#include <algorithm>
#include <cstring>

#include "refhost/reader/Ccitt.h"
#include "refhost/reader/JpegPiece.h"
#include "refhost/reader/Samples.h"
#include "refhost/reader/TiffTags.h"

namespace reader {

namespace {

[[noreturn]] void ThrowNoPixels(const wchar_t* what) {
    ThrowDamaged(std::wstring(L"the page's strips or tiles ") + what);
}

// The bytes of a piece, turned around where the file has the lowest bit first.
class PieceInput {
public:
    PieceInput(std::span<const uint8_t> bytes, bool turned) : m_bytes(bytes) {
        if (!turned) return;
        m_turned.assign(bytes.begin(), bytes.end());
        ReverseBits(m_turned);
        m_bytes = m_turned;
    }
    std::span<const uint8_t> Bytes() const { return m_bytes; }

private:
    std::vector<uint8_t> m_turned;
    std::span<const uint8_t> m_bytes;
};

FaxCoding FaxCodingOf(uint32_t compression, uint32_t group3Options) {
    switch (compression) {
        case tiff::kFaxRows:
            return FaxCoding::kRowsOfBytes;
        case tiff::kFaxRowsOfWords:
            return FaxCoding::kRowsOfWords;
        case tiff::kFaxGroup3:
            return (group3Options & 1) != 0 ? FaxCoding::kGroup3TwoDimensional : FaxCoding::kGroup3;
        default:
            return FaxCoding::kGroup4;
    }
}

void Require(FaxResult result) {
    switch (result) {
        case FaxResult::kWhole:
            return;
        case FaxResult::kEndsEarly:
            throw BadPiece{L"ends before its last row"};
        case FaxResult::kUncompressedMode:
            throw BadPiece{L"uses the uncompressed mode of fax coding, which is not read"};
        default:
            throw BadPiece{L"is damaged"};
    }
}

}  // namespace

// Decoding one page into its bitmap.
class TiffPage::Work {
public:
    Work(const TiffPage& page, JpegDecoder& jpeg)
        : m_page(page),
          m_layout(page.m_layout),
          m_jpeg(jpeg),
          m_converter(page.m_layout, Colours() != JpegColours::kAsTheyAre),
          m_bitmap(std::make_shared<Bitmap>(m_layout.width, m_layout.height, m_layout.ResultBits())) {
        const TiffEntry* options = page.m_directory.Find(tiff::kGroup3Options);
        m_fax = FaxCodingOf(m_layout.compression, options == nullptr ? 0 : page.m_directory.Number(*options, 0));
        m_bitmap->palette = page.Palette();
    }

    std::shared_ptr<Bitmap> Run() {
        for (uint32_t line = 0; line < m_layout.down; ++line) {
            for (uint32_t column = 0; column < m_layout.across; ++column) Piece(line, column);
        }
        return m_bitmap;
    }

private:
    void Piece(uint32_t line, uint32_t column) {
        const uint32_t index = line * m_layout.across + column;
        try {
            if (m_layout.compression == tiff::kJpeg) {
                JpegRows(index, line, column);
            } else if (tiff::IsFax(m_layout.compression)) {
                FaxPiece(index, line, column);
            } else {
                Rows(index, line, column);
            }
        } catch (const BadPiece& bad) {
            ThrowDamaged((m_layout.tiled ? L"tile " : L"strip ") + std::to_wstring(index + 1) + L" of " +
                         std::to_wstring(m_page.PieceCount()) + L": its data " + bad.what);
        }
    }

    uint32_t PlaneStep() const { return m_layout.across * m_layout.down; }

    // Rows of each plane, side by side.
    void Rows(uint32_t index, uint32_t line, uint32_t column) {
        const uint32_t rows = m_layout.Rows(line);
        const auto rowBytes = static_cast<size_t>(m_layout.RowBytes());
        std::vector<PieceInput> inputs;
        inputs.reserve(m_layout.Planes());
        m_changed.resize(m_layout.Planes());
        for (uint32_t plane = 0; plane < m_layout.Planes(); ++plane) {
            inputs.emplace_back(m_page.PieceBytes(index + plane * PlaneStep()), m_layout.lowBitFirst);
            if (plane == m_decoders.size()) {
                m_decoders.push_back(MakeDecoder(tiff::CodingOf(m_layout.compression, [] {})));
            }
            m_decoders[plane]->Start(inputs.back().Bytes(), rowBytes * rows);
        }
        std::vector<const uint8_t*> planes(m_decoders.size());
        for (uint32_t y = 0; y < rows; ++y) {
            for (size_t plane = 0; plane < planes.size(); ++plane) {
                planes[plane] = Plain(m_decoders[plane]->Next(rowBytes), rowBytes, m_changed[plane]);
            }
            Put(planes.data(), line * m_layout.pieceHeight + y, column);
        }
        for (const auto& decoder : m_decoders) decoder->End();
    }

    // The row with its differences undone, in this machine's byte order.
    const uint8_t* Plain(const uint8_t* row, size_t size, std::vector<uint8_t>& changed) const {
        const bool swapped = m_layout.bits >= 16 && m_page.m_directory.BigEndian();
        if (!swapped && m_layout.predictor == 1) return row;
        changed.assign(row, row + size);
        const size_t values = size / (m_layout.bits / 8);
        if (swapped) SwapBytes(changed.data(), m_layout.bits, values);
        const size_t step = m_layout.planar ? 1 : m_layout.samples;
        if (m_layout.predictor != 1) UndoDifferences(changed.data(), m_layout.bits, values, step);
        return changed.data();
    }

    void FaxPiece(uint32_t index, uint32_t line, uint32_t column) {
        const PieceInput input(m_page.PieceBytes(index), m_layout.lowBitFirst);
        const uint32_t top = line * m_layout.pieceHeight;
        const uint32_t rows = m_layout.Rows(line);
        if (!m_layout.tiled) {
            const uint8_t white = m_layout.photometric == tiff::kWhiteIsZero ? 0xFF : 0x00;
            const auto stride = static_cast<ptrdiff_t>(m_bitmap->Stride());
            Require(DecodeFax(input.Bytes(), m_fax, {m_bitmap->Row(top), -stride, m_layout.width, rows, white}));
            for (uint32_t y = 0; y < rows; ++y) m_bitmap->ClearPadding(top + y);
            return;
        }
        const auto rowBytes = static_cast<size_t>(m_layout.RowBytes());
        m_tile.resize(rowBytes * rows);
        Require(DecodeFax(input.Bytes(), m_fax,
                          {m_tile.data(), static_cast<ptrdiff_t>(rowBytes), m_layout.pieceWidth, rows, 0}));
        for (uint32_t y = 0; y < rows; ++y) {
            const uint8_t* row = m_tile.data() + y * rowBytes;
            Put(&row, top + y, column);
        }
    }

    void JpegRows(uint32_t index, uint32_t line, uint32_t column) {
        const uint32_t rows = m_layout.Rows(line);
        const uint32_t samples = m_layout.planar ? 1 : m_layout.samples;
        // Planes are put together when all are there; the rows of one go straight to their place.
        std::vector<std::vector<uint8_t>> planes(m_layout.planar ? m_layout.Planes() : 0);
        const uint32_t top = line * m_layout.pieceHeight;
        for (uint32_t plane = 0; plane < m_layout.Planes(); ++plane) {
            const JpegPiece piece =
                MakeJpegPiece(m_page.JpegTables(), m_page.PieceBytes(index + plane * PlaneStep()), Colours());
            if (piece.samples != samples || piece.width != m_layout.pieceWidth || piece.height < rows ||
                piece.height > m_layout.pieceHeight) {
                throw BadPiece{L"is a JPEG of another size than the page says"};
            }
            if (m_layout.planar) planes[plane].resize(size_t{piece.width} * piece.height);
            m_jpeg.Decode(piece.stream, piece.width, piece.height, samples, [&](uint32_t y, const uint8_t* row) {
                if (m_layout.planar) {
                    std::memcpy(planes[plane].data() + size_t{y} * piece.width, row, piece.width);
                } else if (y < rows) {
                    Put(&row, top + y, column);
                }
            });
        }
        if (planes.empty()) return;
        std::vector<const uint8_t*> row(planes.size());
        for (uint32_t y = 0; y < rows; ++y) {
            for (size_t plane = 0; plane < planes.size(); ++plane) {
                row[plane] = planes[plane].data() + size_t{y} * m_layout.pieceWidth;
            }
            Put(row.data(), top + y, column);
        }
    }

    JpegColours Colours() const {
        const bool three = m_layout.samples == 3 && !m_layout.planar;
        if (m_layout.compression != tiff::kJpeg || !three) return JpegColours::kAsTheyAre;
        return m_layout.photometric == tiff::kYCbCr ? JpegColours::kYCbCr : JpegColours::kRgb;
    }

    // A row of a piece to its place; what of a tile is beyond the page's edge is left out.
    void Put(const uint8_t* const* planes, uint32_t y, uint32_t column) {
        const uint32_t x = column * m_layout.pieceWidth;
        const uint32_t count = std::min(m_layout.pieceWidth, m_layout.width - x);
        m_converter.Convert(planes, count, m_bitmap->Row(y) + size_t{x} * m_layout.ResultBits() / 8);
        if (column + 1 == m_layout.across) m_bitmap->ClearPadding(y);
    }

    const TiffPage& m_page;
    const TiffLayout& m_layout;
    JpegDecoder& m_jpeg;
    SampleConverter m_converter;
    std::shared_ptr<Bitmap> m_bitmap;
    FaxCoding m_fax;
    std::vector<std::unique_ptr<Decoder>> m_decoders;  // one a plane
    std::vector<std::vector<uint8_t>> m_changed;
    std::vector<uint8_t> m_tile;
};

TiffPage::TiffPage(std::span<const uint8_t> file, TiffDirectory directory)
    : m_file(file), m_directory(std::move(directory)), m_layout(ReadTiffLayout(m_directory)) {
    m_offsets = m_directory.Find(m_layout.tiled ? tiff::kTileOffsets : tiff::kStripOffsets);
    m_lengths = m_directory.Find(m_layout.tiled ? tiff::kTileLengths : tiff::kStripLengths);
    // Some writers give tiles under the names of strips.
    if (m_offsets == nullptr) m_offsets = m_directory.Find(tiff::kStripOffsets);
    if (m_lengths == nullptr) m_lengths = m_directory.Find(tiff::kStripLengths);
    CheckPieces();
}

PageFacts TiffPage::Facts() const {
    return {m_layout.width,     m_layout.height,   m_layout.ResultBits(), m_directory.Orientation(),
            m_directory.DpiX(), m_directory.DpiY()};
}

void TiffPage::CheckPieces() const {
    if (m_offsets == nullptr) ThrowNoPixels(L"are not listed in the file");
    const uint64_t count = uint64_t{m_layout.across} * m_layout.down * m_layout.Planes();
    if (m_offsets->count < count || (m_lengths != nullptr && m_lengths->count < count)) {
        ThrowDamaged(L"the file lists " + std::to_wstring(m_offsets->count) + L" of the page's " +
                     std::to_wstring(count) + (m_layout.tiled ? L" tiles" : L" strips"));
    }
    uint64_t sum = 0;
    for (uint32_t i = 0; i < count; ++i) sum += PieceBytes(i).size();
    // Pieces over the same bytes would let a small file take very long.
    constexpr uint64_t kMostTimes = 16;
    if (sum > kMostTimes * m_file.size()) ThrowNoPixels(L"lie over each other");
}

// A length that is left out is, for plain bytes, what the rows take; the codings know where they end.
std::span<const uint8_t> TiffPage::PieceBytes(uint32_t index) const {
    const uint64_t offset = m_directory.Number(*m_offsets, index);
    uint64_t length = m_lengths == nullptr ? 0 : m_directory.Number(*m_lengths, index);
    if (offset == 0 || (length == 0 && m_lengths != nullptr && PieceCount() > 1)) ThrowNoPixels(L"are not all there");
    if (offset >= m_file.size()) ThrowCutOff();
    if (length == 0) {
        const uint32_t line = index % (m_layout.across * m_layout.down) / m_layout.across;
        length = m_layout.compression == tiff::kUncompressed ? m_layout.RowBytes() * m_layout.Rows(line)
                                                             : m_file.size() - offset;
    }
    if (length > m_file.size() - offset) ThrowCutOff();
    return m_file.subspan(static_cast<size_t>(offset), static_cast<size_t>(length));
}

std::span<const uint8_t> TiffPage::JpegTables() const {
    const TiffEntry* entry = m_directory.Find(tiff::kJpegTables);
    return entry == nullptr ? std::span<const uint8_t>() : m_file.subspan(entry->offset, entry->size);
}

std::vector<uint32_t> TiffPage::Palette() const {
    if (m_layout.photometric != tiff::kPalette) {
        return m_layout.ResultBits() == 1   ? BlackWhitePalette()
               : m_layout.ResultBits() == 8 ? GreyPalette()
                                            : std::vector<uint32_t>();
    }
    const TiffEntry* map = m_directory.Find(tiff::kColorMap);
    const uint32_t colors = 1U << m_layout.bits;
    if (map == nullptr || map->count < 3 * colors) {
        throw ImageError{L"the page's colours are missing; save it anew with 24 bits of colour"};
    }
    // Colours have 16 bits; writers that took them for 8 are told by having none above.
    bool wide = false;
    for (uint32_t i = 0; i < 3 * colors; ++i) wide = wide || m_directory.Number(*map, i) > 255;
    const auto value = [&](uint32_t index) {
        const uint32_t number = m_directory.Number(*map, index);
        return wide ? number >> 8 & 0xFF : number;
    };
    std::vector<uint32_t> palette(m_layout.ResultBits() == 1 ? 2 : 256, 0xFFFFFF);
    for (uint32_t i = 0; i < colors; ++i) {
        palette[i] = value(i) << 16 | value(colors + i) << 8 | value(2 * colors + i);
    }
    return palette;
}

uint64_t TiffPage::WorkingBytes(const JpegDecoder& jpeg) const {
    const uint64_t rows = m_layout.pieceHeight;
    uint64_t longest = 0;
    for (uint32_t i = 0; i < PieceCount(); ++i) longest = std::max<uint64_t>(longest, PieceBytes(i).size());
    uint64_t bytes = 4 * m_layout.RowBytes();
    if (m_layout.lowBitFirst) bytes += longest;
    if (m_layout.compression == tiff::kJpeg) {
        const uint32_t samples = m_layout.planar ? 1 : m_layout.samples;
        bytes += longest + (m_layout.planar ? m_layout.RowBytes() * rows : 0) +
                 jpeg.Memory(m_layout.pieceWidth, m_layout.pieceHeight, samples);
    } else if (tiff::IsFax(m_layout.compression)) {
        bytes += m_layout.tiled ? m_layout.RowBytes() * rows : 0;
    } else {
        bytes += DecoderMemory(tiff::CodingOf(m_layout.compression, [] {}), m_layout.RowBytes() * rows);
    }
    return bytes * m_layout.Planes();
}

std::shared_ptr<Bitmap> TiffPage::Decode(JpegDecoder& jpeg) const {
    return Work(*this, jpeg).Run();
}

}  // namespace reader
