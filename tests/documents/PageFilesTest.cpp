#include "refhost/documents/PageFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace documents;

namespace {

TEST(PageFiles, OrderIsThatOfAPerson) {
    const std::vector<std::wstring> ordered = {L"",
                                               L"2.tif",
                                               L"10.tif",
                                               L"a.tif",
                                               L"A1.tif",
                                               L"a1b.tif",
                                               L"a01c.tif",
                                               L"a2.tif",
                                               L"a10.tif",
                                               L"b",
                                               L"scan 9.png",
                                               L"scan 0010.png",
                                               L"scan 10a.png",
                                               L"scan 99999999999999999999998.png",
                                               L"scan 99999999999999999999999.png",
                                               L"z\x00e4.tif"};
    for (size_t i = 0; i < ordered.size(); ++i) {
        for (size_t j = 0; j < ordered.size(); ++j) {
            EXPECT_EQ(ComesBefore(ordered[i], ordered[j]), i < j) << i << "," << j;
        }
    }
    // Equal to a person: still one order, whatever the folder gives.
    EXPECT_NE(ComesBefore(L"page 1.tif", L"PAGE 01.tif"), ComesBefore(L"PAGE 01.tif", L"page 1.tif"));
}

TEST(PageFiles, KnownByTheirEnding) {
    for (const wchar_t* name : {L"a.tif", L"a.TIFF", L"a.b.png", L"a.Jpg", L"a.jpeg", L"a.bmp"}) {
        EXPECT_TRUE(IsPageFile(name));
    }
    for (const wchar_t* name : {L"", L"tif", L".tif", L"a.txt", L"a.tif.part", L"a.", L"Thumbs.db", L"tif.pdf"}) {
        EXPECT_FALSE(IsPageFile(name));
    }
    EXPECT_TRUE(MayHoldSeveralPages(L"a.TIF"));
    EXPECT_FALSE(MayHoldSeveralPages(L"a.png"));
}

}  // namespace
