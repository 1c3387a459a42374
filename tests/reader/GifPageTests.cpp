// GIF files of Pillow (still, transparent) and ImageMagick (interlaced, with a table of codes that gets full; two).
#include <fstream>

#include "imaging/TestImage.h"
#include "refhost/reader/Page.h"
#include "support/FakeJpeg.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Stored(const std::string& name) {
    std::ifstream file(TEST_DATA_DIR "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// What is wrong with the file; nothing when it has `pages` of the colours that the files were made of.
std::wstring Problem(const Bytes& file, size_t pages, uint32_t colours, uint32_t clear) try {
    test::FakeJpeg jpeg;
    uint32_t wrong = 0;
    const std::vector<uint32_t> places = reader::FindPages(file);
    for (uint32_t page = 0; page < places.size(); ++page) {
        const auto bitmap = reader::DecodeUpright(*reader::OpenPage(file, places[page]), jpeg, 0, 0);
        for (uint32_t x = 0, y = 0; y < bitmap->Height(); ++x < bitmap->Width() ? 0 : (x = 0, ++y)) {
            const uint32_t v = (x * x * 7 + y * y * 13 + x * y + page) % (colours + page);
            const uint32_t made = v == clear ? 0xFFFFFF : v << 16 | (v * 3 & 0xFF) << 8 | (v * 5 & 0xFF);
            wrong += ColourAt(*bitmap, x, y) != made;
        }
    }
    return wrong > 0 ? std::to_wstring(wrong) + L" pixels" : places.size() != pages ? L"other pages" : L"";
} catch (const reader::ImageError& error) {
    return error.text;
}

struct Case {
    const char* name;
    size_t pages;
    uint32_t colours, clear;
};

TEST(GifPage, WhatOtherProgramsWroteAndEveryMissingEnd) {
    for (const auto& [name, pages, colours, clear] : {Case{"still.gif", 1, 5, 5}, Case{"transparent.gif", 1, 5, 2},
                                                      Case{"interlaced.gif", 1, 256, 256}, Case{"two.gif", 2, 3, 4}}) {
        for (Bytes file = Stored(name), part = file; !part.empty(); part = Bytes(part.begin(), part.end() - 1)) {
            const bool whole = part.size() + 1 >= file.size();  // the mark of the file's end can be missing
            ASSERT_EQ(Problem(part, pages, colours, clear).empty(), whole) << name << " at " << part.size();
        }
    }
}

TEST(GifPage, WhatIsRefused) {
    using Changes = std::vector<std::pair<size_t, uint8_t>>;  // of the bytes of a still image
    for (const auto& [problem, changes] : {std::pair{L"part of its picture", Changes{{38, 1}}},
                                           {L"part of its picture", {{8, 14}}},
                                           {L"no pixels", {{42, 0}}},
                                           {L"no image", {{37, ';'}}},
                                           {L"is damaged", {{47, 0}}},
                                           {L"is damaged", {{47, 9}}},
                                           {L"data is damaged", {{51, 11}}},
                                           {L"part of the file is damaged", {{119, 'U'}}},
                                           {L"before its last row", {{50, 3}, {51, 10}}},
                                           {L"before its last row", {{48, 65}, {114, 0}, {115, ';'}}}}) {
        Bytes file = Stored("still.gif");
        for (const auto& [at, value] : changes) file.at(at) = value;
        EXPECT_NE(Problem(file, 1, 5, 5).find(problem), std::wstring::npos) << changes[0].first;
    }
}

}  // namespace
