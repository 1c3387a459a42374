// What the tags of a page say. Whatever is left out gets what other readers take it for.
#include <algorithm>

#include "refhost/reader/TiffPage.h"
#include "refhost/reader/TiffTags.h"

namespace reader {

namespace {

[[noreturn]] void Refuse(const std::wstring& kind) {
    throw ImageError{L"TIFF pages with " + kind + L" are not read; save the page with 8 bits a colour and LZW"};
}

class LayoutReader {
public:
    explicit LayoutReader(const TiffDirectory& directory) : m_directory(directory) {}

    TiffLayout Read() {
        m_layout.width = Value(tiff::kWidth, 0);
        m_layout.height = Value(tiff::kHeight, 0);
        m_layout.compression = Value(tiff::kCompression, tiff::kUncompressed);
        m_layout.planar = Value(tiff::kPlanarConfiguration, 1) == 2;
        m_layout.lowBitFirst = Value(tiff::kFillOrder, 1) == 2;
        ReadSamples();
        ReadColours();
        ReadPieces();
        CheckCoding();
        return m_layout;
    }

private:
    uint32_t Value(uint32_t tag, uint32_t missing, uint32_t index = 0) const {
        const TiffEntry* entry = m_directory.Find(tag);
        return entry == nullptr || index >= entry->count ? missing : m_directory.Number(*entry, index);
    }
    uint32_t Count(uint32_t tag) const {
        const TiffEntry* entry = m_directory.Find(tag);
        return entry == nullptr ? 0 : entry->count;
    }

    // Old writers give one number of bits for all samples.
    void ReadSamples() {
        constexpr uint32_t kMostSamples = 16;
        m_layout.bits = Value(tiff::kBitsPerSample, 1);
        m_layout.samples = Value(tiff::kSamplesPerPixel, std::max(Count(tiff::kBitsPerSample), 1U));
        if (m_layout.samples == 0 || m_layout.samples > kMostSamples) {
            Refuse(std::to_wstring(m_layout.samples) + L" samples a pixel");
        }
        for (uint32_t i = 1; i < m_layout.samples; ++i) {
            if (Value(tiff::kBitsPerSample, m_layout.bits, i) != m_layout.bits) Refuse(L"samples of different sizes");
        }
        if (m_layout.bits == 0 || (m_layout.bits > 16 && m_layout.bits != 32)) {
            Refuse(std::to_wstring(m_layout.bits) + L" bits a sample");
        }
        constexpr uint32_t kUnsigned = 1;
        constexpr uint32_t kUndefined = 4;
        const uint32_t format = Value(tiff::kSampleFormat, kUnsigned);
        if (format != kUnsigned && format != kUndefined) Refuse(L"samples that are no whole positive numbers");
        if (m_layout.samples == 1) m_layout.planar = false;
    }

    void ReadColours() {
        m_layout.photometric = Value(tiff::kPhotometric, MissingPhotometric());
        switch (m_layout.photometric) {
            case tiff::kWhiteIsZero:
            case tiff::kBlackIsZero:
                break;
            case tiff::kPalette:
                if (m_layout.bits > 8) Refuse(L"palettes of more than 256 colours");
                break;
            case tiff::kYCbCr:
                if (m_layout.compression != tiff::kJpeg) Refuse(L"YCbCr colours outside of JPEG");
                [[fallthrough]];
            case tiff::kRgb:
                m_layout.colors = 3;
                break;
            case tiff::kSeparated:
                m_layout.colors = 4;
                if (Value(tiff::kInkSet, 1) != 1) Refuse(L"inks that are not CMYK");
                break;
            default:
                Refuse(L"colours of kind " + std::to_wstring(m_layout.photometric));
        }
        if (m_layout.samples < m_layout.colors) Refuse(L"fewer samples than colours");
        if (m_layout.samples > m_layout.colors) {
            const uint32_t kind = Value(tiff::kExtraSamples, 0);
            m_layout.alpha = kind == 1 || kind == 2 ? kind : 0;
        }
        if (m_layout.photometric == tiff::kPalette && m_layout.alpha != 0) Refuse(L"a palette and transparency");
    }

    uint32_t MissingPhotometric() const {
        if (m_layout.samples >= 3) return tiff::kRgb;
        return tiff::IsFax(m_layout.compression) ? tiff::kWhiteIsZero : tiff::kBlackIsZero;
    }

    void ReadPieces() {
        // Throws for sizes that no bitmap has.
        Bitmap::Check(m_layout.width, m_layout.height, m_layout.ResultBits());
        const uint32_t tileWidth = Value(tiff::kTileWidth, 0);
        const uint32_t tileHeight = Value(tiff::kTileHeight, 0);
        m_layout.tiled = tileWidth != 0 && tileHeight != 0;
        if (m_layout.tiled) {
            if (tileWidth > kMaxSide || tileHeight > kMaxSide) Refuse(L"tiles of more than 65535 pixels on a side");
            // A tile may begin within a byte of a row only where it is the only one.
            if (tileWidth % 8 != 0 && tileWidth < m_layout.width) Refuse(L"tiles of a width that is no multiple of 8");
            m_layout.pieceWidth = tileWidth;
            m_layout.pieceHeight = tileHeight;
        } else {
            const uint32_t rows = Value(tiff::kRowsPerStrip, m_layout.height);
            m_layout.pieceWidth = m_layout.width;
            m_layout.pieceHeight = rows == 0 ? m_layout.height : std::min(rows, m_layout.height);
        }
        m_layout.across = (m_layout.width + m_layout.pieceWidth - 1) / m_layout.pieceWidth;
        m_layout.down = (m_layout.height + m_layout.pieceHeight - 1) / m_layout.pieceHeight;
        if (m_layout.RowBytes() * m_layout.pieceHeight > kMaxPixelBytes) {
            throw ImageError{
                L"a strip or tile of the page takes 2 GiB or more when decoded; scan it at a lower resolution"};
        }
    }

    void CheckCoding() {
        const bool fax = tiff::IsFax(m_layout.compression);
        if (fax && (m_layout.bits != 1 || m_layout.samples != 1)) Refuse(L"fax coding of more than 1 bit");
        if (m_layout.compression == tiff::kJpeg && m_layout.bits != 8) Refuse(L"JPEG of other than 8 bits");
        if (!fax && m_layout.compression != tiff::kJpeg) {
            tiff::CodingOf(m_layout.compression, [&] {
                Refuse(m_layout.compression == tiff::kOldJpeg
                           ? L"the old form of JPEG"
                           : L"compression " + std::to_wstring(m_layout.compression));
            });
        }
        if (m_layout.compression != tiff::kLzw && m_layout.compression != tiff::kDeflate &&
            m_layout.compression != tiff::kOldDeflate) {
            return;
        }
        m_layout.predictor = Value(tiff::kPredictor, 1);
        if (m_layout.predictor == 1) return;
        if (m_layout.predictor != 2) Refuse(L"predictor " + std::to_wstring(m_layout.predictor));
        if (m_layout.bits != 8 && m_layout.bits != 16 && m_layout.bits != 32) {
            Refuse(L"differences of " + std::to_wstring(m_layout.bits) + L" bits");
        }
    }

    const TiffDirectory& m_directory;
    TiffLayout m_layout;
};

}  // namespace

uint32_t TiffLayout::Rows(uint32_t line) const {
    return std::min(pieceHeight, height - line * pieceHeight);
}

TiffLayout ReadTiffLayout(const TiffDirectory& directory) {
    return LayoutReader(directory).Read();
}

}  // namespace reader
