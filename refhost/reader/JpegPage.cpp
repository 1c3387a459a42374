#include "refhost/reader/JpegPage.h"

#include <algorithm>
#include <cstring>

#include "refhost/reader/Bytes.h"
#include "refhost/reader/Codecs.h"
#include "refhost/reader/JpegPiece.h"
#include "refhost/reader/Samples.h"
#include "refhost/reader/Tiff.h"
#include "refhost/reader/TiffTags.h"

namespace reader {

namespace {

SampleLayout LayoutOf(uint32_t samples) {
    SampleLayout layout;
    layout.bits = 8;
    layout.samples = layout.colors = samples;
    layout.photometric = samples == 1 ? tiff::kBlackIsZero : samples == 3 ? tiff::kRgb : tiff::kSeparated;
    return layout;
}

}  // namespace

JpegPage::JpegPage(Bytes file) : m_file(file) {
    constexpr uint8_t kScan = 0xDA;
    size_t at = 2;
    for (;;) {
        if (file.size() < at + 4) ThrowCutOff();
        if (file[at] != 0xFF) {
            ThrowDamaged(L"the file's header is damaged");
        }
        const uint8_t marker = file[at + 1];
        if (marker == 0xFF) {  // padding before a marker
            ++at;
            continue;
        }
        const size_t length = Get16(file, at + 2, true);
        if (length < 2 || length > file.size() - at - 2) ThrowCutOff();
        ReadSegment(marker, file.subspan(at + 4, length - 2));
        at += 2 + length;
        if (marker == kScan) break;
    }
    if (m_samples != 1 && m_samples != 3 && m_samples != 4) {
        throw ImageError{L"JPEG pages with " + std::to_wstring(m_samples) +
                         L" colours are not read; save the page as grey or RGB"};
    }
    m_facts.bits = LayoutOf(m_samples).ResultBits();
    Bitmap::Check(m_facts.width, m_facts.height, m_facts.bits);
    if (!HasJpegEnd(file.subspan(at))) ThrowCutOff();
}

void JpegPage::ReadSegment(uint8_t marker, Bytes data) {
    constexpr uint8_t kApp0 = 0xE0;
    constexpr uint8_t kApp1 = 0xE1;
    if (IsJpegFrame(marker)) ReadFrame(data);
    if (marker == kApp0) ReadJfif(data);
    if (marker == kApp1) ReadExif(data);
}

void JpegPage::ReadFrame(Bytes data) {
    m_facts.height = Get16(data, 1, true);
    m_facts.width = Get16(data, 3, true);
    m_samples = data.size() > 5 ? data[5] : 0;
}

void JpegPage::ReadJfif(Bytes data) {
    if (data.size() < 12 || std::memcmp(data.data(), "JFIF", 5) != 0) return;
    const double scale = data[7] == 1 ? 1 : data[7] == 2 ? 2.54 : 0;
    if (scale == 0) return;
    m_facts.dpiX = Get16(data, 8, true) * scale;
    m_facts.dpiY = Get16(data, 10, true) * scale;
}

void JpegPage::ReadExif(Bytes data) {
    if (data.size() < 6 || std::memcmp(data.data(), "Exif\0", 6) != 0) return;
    const auto directory = TiffFrame(data.subspan(6), 0);
    if (!directory) return;
    m_facts.orientation = directory->Orientation();
    if (m_facts.dpiX != 0) return;
    m_facts.dpiX = directory->DpiX();
    m_facts.dpiY = directory->DpiY();
}

uint64_t JpegPage::WorkingBytes(const JpegDecoder& jpeg) const {
    return jpeg.Memory(m_facts.width, m_facts.height, m_samples);
}

std::shared_ptr<Bitmap> JpegPage::Decode(JpegDecoder& jpeg) const {
    const SampleLayout layout = LayoutOf(m_samples);
    SampleConverter converter(layout, m_samples == 3);
    auto bitmap = std::make_shared<Bitmap>(m_facts.width, m_facts.height, m_facts.bits);
    if (m_facts.bits == 8) bitmap->palette = GreyPalette();
    try {
        jpeg.Decode(m_file, m_facts.width, m_facts.height, m_samples, [&](uint32_t y, const uint8_t* row) {
            converter.Convert(&row, m_facts.width, bitmap->Row(y));
            bitmap->ClearPadding(y);
        });
    } catch (const BadPiece& bad) {
        ThrowDamaged(std::wstring(L"the page's data ") + bad.what);
    }
    return bitmap;
}

}  // namespace reader
