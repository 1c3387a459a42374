#pragma once
// HostImaging.dll: opens, masks and saves page images. Besides the three functions that the module imports by ordinal
// (host/Imaging.h) these are exported by name, for the other parts of the reference host and for its program.
//
// Images    An image handle stands for decoded pixels that never change: 1-bit (packed), 8-bit, 24-bit BGR or 32-bit
//           BGRX with its resolution. Pixels that the file has transparent lie on white paper. Other pixel formats
//           become the nearest of these. Nothing of the file's metadata is kept but the resolution.
// Ownership Every handle that comes out is the caller's: images go to HostReleaseImage (ordinal 83), image files to
//           HostCloseImageFile, output files to HostCommitOutput or HostDropOutput. An image does not need its file.
// Threads   All functions may be called from any thread on which the caller has initialised COM. One image may be used
//           by several threads at once, a file or output by one thread at a time.
// Errors    1 is success, 0 failure: out parameters are unchanged then, and HostImagingErrorText tells what went wrong
//           and what to do. No exception leaves a function. A stale or foreign image handle fails, it does not crash.
// Limits    kHostMaxImageSide pixels a side, kHostMaxImageBytes decoded, kHostMaxFileBytes for a file.
// Resolution  That of the file where it is from 10 to 10000 dpi. An axis without one takes that of the other; a file
//           without any is taken as 200 x 200 dpi. A value given by the caller goes before all of these, axis by axis.
//
//     void *file = nullptr, *image = nullptr;
//     uint32_t frames = 0;
//     if (!HostOpenImageFile(L"scan.tif", &file, &frames) || !HostLoadFrame(file, 0, 0, 0, &image))
//         std::fwprintf(stderr, L"%ls\n", HostImagingErrorText());
//     HostReleaseImage(image);
//     HostCloseImageFile(file);

#include <cstddef>
#include <cstdint>

#include "host/Imaging.h"

inline constexpr uint32_t kHostMaxImageSide = 65535;
inline constexpr uint64_t kHostMaxImageBytes = (uint64_t{2} << 30) - 1;
inline constexpr uint64_t kHostMaxFileBytes = uint64_t{1} << 30;

enum HostImageFormat : int32_t {
    kHostFormatPng = 1,
    kHostFormatTiff = 2,
    kHostFormatBmp = 3,
};
// Added to the format of an output file: it takes no other file's place, HostCommitOutput fails where one is.
inline constexpr int kHostFormatNewFile = 0x100;

struct HostImageInfo {
    uint32_t width;              // pixels
    uint32_t height;             // pixels
    uint32_t bitsPerPixel;       // 1, 8, 24 or 32
    uint32_t resolutionAssumed;  // 1 when the file gave none for at least one axis and the caller neither
    double dpiX;
    double dpiY;
    uint32_t orientation;  // 1 to 8, as the file stores the page; 1 is upright already
};

// What a frame's headers tell before its pixels are decoded.
struct HostFrameSize {
    uint32_t width;         // pixels of the image that HostLoadFrame makes
    uint32_t height;        // pixels
    uint32_t bitsPerPixel;  // 1, 8, 24 or 32
    uint32_t orientation;   // 1 to 8: how the file stores it; the image is upright
    uint64_t imageBytes;    // memory of that image
    uint64_t workingBytes;  // what decoding holds beside it meanwhile, at most
};

// The decoded pixels of an image, for reading while the handle lives.
struct HostImagePixels {
    const uint8_t* topRow;    // row y starts at topRow + y * stride
    ptrdiff_t stride;         // bytes from a row to the one beneath; may be negative
    const uint32_t* palette;  // colours 0x00RRGGBB of 1-bit and 8-bit images, else null
    uint32_t colors;          // 2, 256 or 0
};

extern "C" {
// Opens an image file (PNG, JPEG, BMP, TIFF and what else WIC knows) or a copy of one in memory and counts its frames.
// The file on disk is read once and closed before the function returns.
int HostOpenImageFile(const wchar_t* path, void** file, uint32_t* frames);
int HostOpenImageMemory(const void* bytes, size_t length, void** file, uint32_t* frames);
// Closes a file; null does nothing.
void HostCloseImageFile(void* file);
// Decodes the frame at a 0-based index. dpiX and dpiY override the resolution where they are above 0.
int HostLoadFrame(void* file, uint32_t frame, double dpiX, double dpiY, void** image);
// The size of the frame at a 0-based index, without decoding it.
int HostGetFrameSize(void* file, uint32_t frame, HostFrameSize* size);
// The frame as an encoded image of its own, losslessly: the file's bytes, or for one frame of a TIFF a TIFF with just
// that frame. The block is to be released with HostFreeBlock.
int HostCopyFrameBytes(void* file, uint32_t frame, void** block, size_t* length);
void HostFreeBlock(void* block);

// Makes an image from a BMP file in memory, as HostCopyImage and CreateAreaSetImage give it, with its resolution.
int HostImageFromBmp(const void* bytes, size_t length, void** image);

int HostGetImageInfo(void* image, HostImageInfo* info);
// For an image that HostCreateMaskedImage made, the masked pixels are written out at the first call.
int HostGetImagePixels(void* image, HostImagePixels* pixels);

// An output file. It is written under a name of its own beside `path` and takes its place, replacing an older file, in
// HostCommitOutput only, when every byte of it is on the disk. PNG and BMP take one image, TIFF any number, each a
// frame.
int HostCreateOutput(const wchar_t* path, int format, void** output);
int HostAppendImage(void* output, void* image);
// The same for a BMP file in memory, as CreateAreaSetImage gives it, without a copy of its pixels.
int HostAppendBmp(void* output, const void* bytes, size_t length);
// Finishes the file. The handle is gone afterwards, also on failure: then nothing is left on disk.
int HostCommitOutput(void* output);
// Drops what was written; null does nothing.
void HostDropOutput(void* output);

// What the last failing call of this thread found wrong. Valid until the thread's next call; never null.
const wchar_t* HostImagingErrorText(void);
}
