#pragma once
// Standard paper sizes, and which page size a choice of the user comes to.

#include <array>
#include <cstdint>
#include <string>

struct PaperSizeEntry {
    int32_t iFormat;  // its place in kPaperSizes
    int32_t iWidthMm;
    int32_t iHeightMm;
    double dWidthInches;
    double dHeightInches;
    const wchar_t* pszName;
};

// All portrait. Millimetres and inches are the customary figures of each size, not converted from one another.
extern const std::array<PaperSizeEntry, 43> kPaperSizes;
// What the dialog offers, in its order.
extern const std::array<int32_t, 10> kOfferedPaperSizes;

// Null when there is no such size.
const PaperSizeEntry* GetPaperSize(int32_t iFormat);

// How a size is listed: "A4  210 x 297  mm", "A4  8.27 x 11.69  in".
std::wstring GetPaperSizeText(const PaperSizeEntry& entry, bool metric, const std::wstring& unit);

// A page size in the user's unit.
struct UserPageSize {
    float fWidth = 0.0F;
    float fHeight = 0.0F;
};

struct PaperChoice {
    bool standard = true;
    bool landscape = false;  // of a standard size only
    int32_t iFormat = 0;
    UserPageSize custom;
};

// The page that the choice comes to: a standard size in the column of the user's measurement system, turned when
// landscape, or the custom size as typed. An unknown format gives the custom size too.
UserPageSize GetEffectiveSize(const PaperChoice& choice, bool metric);
