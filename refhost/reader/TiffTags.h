#pragma once
// Tags of TIFF directories and their values, as far as pages need them.

#include <cstdint>

#include "refhost/reader/Codecs.h"

namespace reader::tiff {

inline constexpr uint32_t kWidth = 256;
inline constexpr uint32_t kHeight = 257;
inline constexpr uint32_t kBitsPerSample = 258;
inline constexpr uint32_t kCompression = 259;
inline constexpr uint32_t kPhotometric = 262;
inline constexpr uint32_t kFillOrder = 266;
inline constexpr uint32_t kStripOffsets = 273;
inline constexpr uint32_t kOrientation = 274;
inline constexpr uint32_t kSamplesPerPixel = 277;
inline constexpr uint32_t kRowsPerStrip = 278;
inline constexpr uint32_t kStripLengths = 279;
inline constexpr uint32_t kPlanarConfiguration = 284;
inline constexpr uint32_t kGroup3Options = 292;
inline constexpr uint32_t kPredictor = 317;
inline constexpr uint32_t kColorMap = 320;
inline constexpr uint32_t kTileWidth = 322;
inline constexpr uint32_t kTileHeight = 323;
inline constexpr uint32_t kTileOffsets = 324;
inline constexpr uint32_t kTileLengths = 325;
inline constexpr uint32_t kInkSet = 332;
inline constexpr uint32_t kExtraSamples = 338;
inline constexpr uint32_t kSampleFormat = 339;
inline constexpr uint32_t kJpegTables = 347;

inline constexpr uint32_t kUncompressed = 1;
inline constexpr uint32_t kFaxRows = 2;
inline constexpr uint32_t kFaxGroup3 = 3;
inline constexpr uint32_t kFaxGroup4 = 4;
inline constexpr uint32_t kLzw = 5;
inline constexpr uint32_t kOldJpeg = 6;
inline constexpr uint32_t kJpeg = 7;
inline constexpr uint32_t kDeflate = 8;
inline constexpr uint32_t kFaxRowsOfWords = 32771;
inline constexpr uint32_t kPackBits = 32773;
inline constexpr uint32_t kOldDeflate = 32946;

inline constexpr uint32_t kWhiteIsZero = 0;
inline constexpr uint32_t kBlackIsZero = 1;
inline constexpr uint32_t kRgb = 2;
inline constexpr uint32_t kPalette = 3;
inline constexpr uint32_t kSeparated = 5;
inline constexpr uint32_t kYCbCr = 6;

inline bool IsFax(uint32_t compression) {
    return compression == kFaxRows || compression == kFaxGroup3 || compression == kFaxGroup4 ||
           compression == kFaxRowsOfWords;
}

// The coding of a compression whose pieces are plain bytes; for any other one `other` is called.
template <class Other>
Coding CodingOf(uint32_t compression, Other other) {
    switch (compression) {
        case kUncompressed:
            return Coding::kNone;
        case kLzw:
            return Coding::kLzw;
        case kPackBits:
            return Coding::kPackBits;
        case kDeflate:
        case kOldDeflate:
            return Coding::kDeflate;
        default:
            other();
            return Coding::kNone;
    }
}

}  // namespace reader::tiff
