// zonhost as its users have it: the built program, run over real files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>
#include <windows.h>

#include "app/ZonhostFixture.h"
#include "refhost/app/PageImages.h"
#include "refhost/app/Text.h"
#include "refhost/files/PartFile.h"

using namespace test;
using namespace zonhost;
using testing::HasSubstr;
using testing::Not;

namespace {

// A 1-bit page of 200 x 100 pixels at 254 dpi (a pixel is a tenth of a millimetre) with a pattern of its own.
constexpr int kWidth = 200;
constexpr int kHeight = 100;

bool IsBlack(int seed, int x, int y) {
    return ((x * 7 + y * 13 + x * y + seed) % 5) < 2;
}

std::string PageBmp(int seed) {
    const int stride = (kWidth + 31) / 32 * 4;
    std::string bmp;
    const auto put = [&bmp](uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) bmp += static_cast<char>(value >> (8 * i));
    };
    const auto pixelBytes = static_cast<uint32_t>(stride * kHeight);
    bmp = "BM";
    for (const uint32_t value : {62 + pixelBytes, 0u, 62u, 40u, uint32_t{kWidth}, uint32_t{kHeight}}) put(value, 4);
    put(1, 2);
    put(1, 2);
    for (const uint32_t value : {0u, pixelBytes, 10000u, 10000u, 2u, 2u, 0u, 0xFFFFFFu}) put(value, 4);
    for (int y = kHeight - 1; y >= 0; --y) {
        std::string row(static_cast<size_t>(stride), '\0');
        for (int x = 0; x < kWidth; ++x) {
            if (!IsBlack(seed, x, y)) row[static_cast<size_t>(x / 8)] |= static_cast<char>(0x80 >> (x % 8));
        }
        bmp += row;
    }
    return bmp;
}

struct Page {
    LoadedFrame frame;
    HostImagePixels pixels{};

    explicit Page(const fs::path& path, uint32_t index = 0) {
        if (const auto file = ImageFile::Open(path, frame.problem)) frame = file->Load(index, {});
        if (frame.image) HostGetImagePixels(frame.image.get(), &pixels);
    }
    bool Black(int x, int y) const {
        const uint8_t* row = pixels.topRow + y * pixels.stride;
        switch (frame.info.bitsPerPixel) {
            case 1:
                return (pixels.palette[(row[x / 8] >> (7 - x % 8)) & 1] & 0xFF) == 0;
            case 8:
                return (pixels.palette[row[x]] & 0xFF) == 0;
            default:
                return row[x * static_cast<int>(frame.info.bitsPerPixel / 8)] == 0;
        }
    }
};

class Zonhost : public ZonhostFolder {
protected:
    static void SetUpTestSuite() { ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)); }
    static void TearDownTestSuite() { CoUninitialize(); }

    void SetUp() override {
        ZonhostFolder::SetUp();
        for (int i = 0; i < 3; ++i) WriteAll(m_folder / "in" / ("page" + std::to_string(i) + ".bmp"), PageBmp(i));
    }

    size_t FilesIn(const char* folder) const {
        std::error_code error;
        return static_cast<size_t>(std::distance(fs::directory_iterator(m_folder / folder, error), {}));
    }
};

// Area of both sets in pixels; an edge at n tenths touches no pixel beyond n - 1.
bool InArea(int x, int y) {
    return x >= 20 && x < 120 && y >= 10 && y < 60;
}

TEST_F(Zonhost, TheFirstSettingsOfAFolderMakeTheFolder) {
    const Result imported = Run(L"--settings new\\folder\\settings.json sets import sets.json");
    EXPECT_EQ(imported.code, 0u) << imported.err;
    const Result listed = Run(L"--settings new\\folder\\settings.json sets list");
    EXPECT_EQ(listed.code, 0u) << listed.err;
    EXPECT_NE(listed.out.find("Keep"), std::string::npos) << listed.out;
}

TEST_F(Zonhost, MasksPagesByRequiredAndIgnoredSetsInEveryFormat) {
    Import();
    for (const wchar_t* format : {L"png", L"tif", L"bmp"}) {
        for (const bool required : {true, false}) {
            const std::wstring out = std::wstring(required ? L"keep-" : L"drop-") + format;
            const Result result = Run(std::wstring(L"mask --format ") + format + L" --set " +
                                      (required ? L"Keep" : L"Drop") + L" --out " + out + L" in");
            ASSERT_EQ(result.code, 0u) << result.err;
            EXPECT_EQ(result.err, "");
            for (int i = 0; i < 3; ++i) {
                const Page page(m_folder / out / (L"page" + std::to_wstring(i) + L"." + format));
                ASSERT_EQ(page.frame.problem, "");
                EXPECT_EQ(page.frame.info.bitsPerPixel, 1u);
                EXPECT_NEAR(page.frame.info.dpiX, 254, 0.01);
                int wrong = 0;
                for (int y = 0; y < kHeight; ++y) {
                    for (int x = 0; x < kWidth; ++x) {
                        wrong += page.Black(x, y) != (IsBlack(i, x, y) && InArea(x, y) == required);
                    }
                }
                EXPECT_EQ(wrong, 0) << i;
            }
            EXPECT_EQ(FilesIn("in"), 3u);
        }
    }
}

TEST_F(Zonhost, EveryFrameOfATiffBecomesAFile) {
    Import();
    void* output = nullptr;
    ASSERT_EQ(HostCreateOutput((m_folder / "fax.tif").c_str(), kHostFormatTiff, &output), 1);
    for (int i = 0; i < 6; ++i) {
        const std::string bmp = PageBmp(i);
        void* image = nullptr;
        ASSERT_EQ(HostImageFromBmp(bmp.data(), bmp.size(), &image), 1);
        ASSERT_EQ(HostAppendImage(output, image), 1);
        HostReleaseImage(image);
    }
    ASSERT_EQ(HostCommitOutput(output), 1);
    ASSERT_EQ(Run(L"mask --set Keep --out out fax.tif --dpi 127").code, 0u);
    EXPECT_EQ(FilesIn("out"), 6u);
    const Page page(m_folder / "out" / "fax-06.png");
    ASSERT_EQ(page.frame.problem, "");
    EXPECT_NEAR(page.frame.info.dpiX, 127, 0.01);
    // At half the resolution the area has half the pixels.
    EXPECT_EQ(page.Black(12, 6), IsBlack(5, 12, 6));
    int outside = 0;
    for (int y = 30; y < kHeight; ++y) outside += page.Black(40, y);
    EXPECT_EQ(outside, 0);
}

TEST_F(Zonhost, SourcesAndEarlierResultsAreNeverOverwritten) {
    Import();
    const std::string source = PageBmp(0);
    ASSERT_EQ(Run(L"mask --set Keep --out out in\\page0.bmp").code, 0u);
    const std::string result = ReadAll(m_folder / "out" / "page0.png");

    Result again = Run(L"mask --set Drop --out out in\\page0.bmp");
    EXPECT_EQ(again.code, 4u);
    EXPECT_THAT(again.err, HasSubstr("page0.png is there already; use --force"));
    EXPECT_EQ(ReadAll(m_folder / "out" / "page0.png"), result);
    EXPECT_EQ(Run(L"mask --set Drop --out out --force in\\page0.bmp").code, 0u);
    EXPECT_NE(ReadAll(m_folder / "out" / "page0.png"), result);

    // The result would be the source itself, by its own name and by a second one.
    again = Run(L"mask --set Drop --out in --format bmp --force in\\page0.bmp");
    EXPECT_EQ(again.code, 4u);
    EXPECT_THAT(again.err, HasSubstr("is not overwritten"));
    fs::create_directories(m_folder / "linked");
    ASSERT_TRUE(
        CreateHardLinkW((m_folder / "linked" / "page0.bmp").c_str(), (m_folder / "in" / "page0.bmp").c_str(), nullptr));
    EXPECT_EQ(Run(L"mask --set Drop --out linked --format bmp --force in\\page0.bmp").code, 4u);
    EXPECT_EQ(ReadAll(m_folder / "in" / "page0.bmp"), source);
    EXPECT_EQ(ReadAll(m_folder / "linked" / "page0.bmp"), source);
    // Nor the settings, by a link.
    const std::string settings = ReadAll(m_folder / "settings.json");
    ASSERT_TRUE(
        CreateHardLinkW((m_folder / "linked" / "page1.png").c_str(), (m_folder / "settings.json").c_str(), nullptr));
    EXPECT_THAT(Run(L"mask --set Drop --out linked --force in\\page1.bmp").err, HasSubstr("is the settings file"));
    EXPECT_EQ(ReadAll(m_folder / "linked" / "page1.png"), settings);
}

TEST_F(Zonhost, NamesAreAsLongAsTheFileSystemTakes) {
    Import();
    fs::create_directories(m_folder / "long");
    const std::wstring names[] = {std::wstring(222, 'a'), std::wstring(251, 'b'), std::wstring(83, 0x4E2D)};
    for (const std::wstring& name : names) WriteAll(m_folder / "long" / (name + L".bmp"), PageBmp(0));
    const std::wstring tooLong = L"long\\" + std::wstring(253, 'c') + L".b";
    WriteAll(m_folder / tooLong, PageBmp(0));
    const Result result = Run(L"mask --set Keep --out out long " + tooLong);
    EXPECT_EQ(result.code, 1u) << result.err;
    EXPECT_THAT(result.err, HasSubstr("ccc.b: out\\ccc"));
    EXPECT_THAT(result.err, HasSubstr("its name is longer than the 255"));
    for (const std::wstring& name : names) {
        EXPECT_EQ(Page(m_folder / "out" / (name + L".png")).frame.problem, "") << name.size();
    }
    EXPECT_EQ(FilesIn("out"), 3u);
}

TEST_F(Zonhost, UnfinishedFilesOfEndedProcessesOfThisMachineAreRemoved) {
    Import();
    fs::create_directories(m_folder / "out");
    const std::wstring left = files::PartPrefix() + L"4-1.part";
    const std::wstring others[] = {L"~zonwick-other-machine-4-1.part", files::PartPrefix() + L"notes.part",
                                   L"page.png.part"};
    WriteAll(m_folder / "out" / left, "left");
    for (const std::wstring& name : others) WriteAll(m_folder / "out" / name, "not ours");
    files::PartFile held;
    ASSERT_EQ(held.Open((m_folder / "out" / "held.png").native()), 0u);
    EXPECT_EQ(Run(L"mask --set Keep --out out in\\page0.bmp").code, 0u);
    EXPECT_FALSE(fs::exists(m_folder / "out" / left));
    for (const std::wstring& name : others) EXPECT_EQ(ReadAll(m_folder / "out" / name), "not ours");
    EXPECT_EQ(held.Commit(false), 0u);
    EXPECT_TRUE(fs::exists(m_folder / "out" / "held.png"));
}

TEST_F(Zonhost, BadPagesAreToldAndTheOthersDone) {
    Import();
    WriteAll(m_folder / "in" / "broken.png", "no image at all");
    WriteAll(m_folder / "in" / "cut.bmp", PageBmp(0).substr(0, 700));
    WriteAll(m_folder / "in" / "empty.tif", "");
    const Result result = Run(L"mask --set Keep --out out in missing.tif");
    EXPECT_EQ(result.code, 1u);
    for (const char* name : {"broken.png: ", "empty.tif: ", "missing.tif: no such file"}) {
        EXPECT_THAT(result.err, HasSubstr(name));
    }
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(fs::exists(m_folder / "out" / ("page" + std::to_string(i) + ".png")));
    EXPECT_THAT(result.err, Not(HasSubstr("\r"))) << "a progress bar in a file";
    for (const auto& entry : fs::directory_iterator(m_folder / "out")) EXPECT_EQ(entry.path().extension(), ".png");
}

TEST_F(Zonhost, WhatCannotBeDoneIsToldAndLeavesTheSettingsAlone) {
    Import();
    const std::string settings = ReadAll(m_folder / "settings.json");
    WriteAll(m_folder / "wrong.json", "{\"sets\":[]}");
    WriteAll(m_folder / "more.json", R"({"sets":[{"name":"New","mode":"required","areas":[]}]})");
    WriteAll(m_folder / "zones.uzn", "10 10 20 20\n1 2 3\n");
    WriteAll(m_folder / "damaged.json", "{\n\"a\": {\n");
    ASSERT_TRUE(CreateHardLinkW((m_folder / "link.json").c_str(), (m_folder / "settings.json").c_str(), nullptr));
    const struct {
        const wchar_t* arguments;
        DWORD code;
        const char* message;
    } cases[] = {
        {L"mask --set keep --out out in", 4, "there is no area set \"keep\""},
        {L"mask --set Keep --out out none", 4, "none: no such file or folder"},
        {L"mask --set Keep --out in\\page0.bmp in", 4, "cannot be made"},
        {L"mask --set Keep in", 2, "--out is required"},
        {L"mask --set Keep --out out --dpi 0 in", 2, "\"0\" is no resolution"},
        {L"mask --set Keep --out out --format gif in", 2, "--format"},
        {L"", 2, "subcommand is required"},
        {L"sets show Keep2", 4, "\"Keep2\""},
        {L"sets import sets.json", 4, "there already: \"Keep\", \"Drop\"; use --replace"},
        // A good file before a bad one: neither is imported.
        {L"sets import more.json wrong.json", 4, "wrong.json: sets: holds no area set"},
        {L"sets import more.json zones.uzn --dpi 200", 4, "zones.uzn: line 2: height is missing"},
        {L"sets import --replace sets.json --set Nope", 4, "no file holds an area set \"Nope\""},
        {L"sets import zones.uzn", 2, "use --dpi or --page"},
        {L"sets import --replace more.json sets.json --dry-run", 0, ""},
        {L"--settings damaged.json sets list", 3, "damaged.json"},
        {L"--settings damaged.json sets import more.json", 3, "damaged.json"},
        {L"--settings missing.json sets list", 3, "does not exist"},
        {L"--log settings.json sets list", 4, "settings.json is the settings file and cannot be the log"},
        {L"--log link.json sets show Keep", 4, "link.json is the settings file"},
        {L"--log in\\page0.bmp mask --set Keep --out out in", 4, "is one of the pages to be masked"},
        {L"--log in\\page1.PNG mask --set Keep --out in in", 4, "is the place of a result"},
        {L"--log more.json sets import more.json", 4, "more.json is a file to be imported"},
        {L"--log log.json sets export --out log.json --force", 4, "log.json is the log"},
        {L"sets import --replace link.json", 4, "link.json would be replaced by the import"},
        {L"mask --set Keep --out out --memory 1 in", 2, "--memory"},
    };
    for (const auto& c : cases) {
        const Result result = Run(c.arguments);
        EXPECT_EQ(result.code, c.code) << Utf8FromPath(c.arguments) << "\n" << result.err;
        EXPECT_THAT(result.err, HasSubstr(c.message)) << Utf8FromPath(c.arguments);
        EXPECT_EQ(ReadAll(m_folder / "settings.json"), settings) << Utf8FromPath(c.arguments);
    }
    EXPECT_EQ(ReadAll(m_folder / "damaged.json"), "{\n\"a\": {\n");
    EXPECT_FALSE(fs::exists(m_folder / "missing.json"));
}

// Each part of a set missing, of another kind, out of range, doubled or nested wrongly, in sets of both modes.
TEST_F(Zonhost, SetsThatWereNotReadWholeAreNeverMaskedWith) {
    const auto set = [](const char* name, const std::string& flags) {
        return std::string("{\"Name\":\"") + name + "\",\"Flags\":" + flags +
               ",\"DisplayRect\":{\"Position:bottom\":9,\"Position:left\":0,\"Position:right\":9,\"Position:top\":0},"
               "\"Rect\":{\"0\":{\"Position:bottom\":60,\"Position:left\":20,\"Position:right\":120,\"Position:top\":"
               "10},"
               "\"1\":{\"Position:bottom\":61,\"Position:left\":20,\"Position:right\":120,\"Position:top\":11}}}";
    };
    const struct {
        const char* good;
        const char* bad;
        const char* reason;
    } cases[] = {
        {"\"Name\":\"Set\",", "", "Name is missing"},
        {"\"Name\":\"Set\"", "\"Name\":7", "Name is no text"},
        {"\"Flags\":", "\"Flag\":", "Flags is missing"},
        {"\"Flags\":", "\"Flags\":{},\"x\":", "Flags is no whole number"},
        {"\"Flags\":", "\"Flags\":4294967296,\"x\":", "Flags is no whole number"},
        {"\"Rect\":{", "\"rect\":{", "Rect is missing"},
        {"\"Rect\":{", "\"Rect\":\"x\",\"x\":{", "Rect is no group"},
        {"\"Rect\":{", "\"Rect\":{\"Rect\":{", "area \"Rect\": Position:bottom is missing"},
        {"\"0\":{", "\"0\":null,\"x\":{", "area \"0\" is no group"},
        {"\"1\":{", "\"2\":{", "an area is missing"},
        {"\"Position:left\":20", "\"Position:left\":\"20\"", "Position:left is no whole number"},
        {"\"Position:right\":120", "\"Position:right\":1.5", "Position:right is no whole number"},
        {"\"Position:top\":11", "\"Position:top\":2147483648", "area \"1\": Position:top is no whole number"},
        {"\"Position:top\":10", "\"Top\":10", "area \"0\": Position:top is missing"},
        {"\"0x00000002\":{", "\"0x00000002\":7,\"y\":{", "0x00000002: is no group"},
        {"\"0x00000002\":{", "\"2\":{},\"0x00000002\":{", "has the identifier of"},
    };
    for (const char* flags : {"0", "268435456"}) {
        const std::string good = "{\"0x00000002\":" + set("Set", flags) + ",\"0x00000003\":" + set("Last", flags) + "}";
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(flags) + c.bad);
            std::string bad = good;
            bad.replace(bad.find(c.good), std::string(c.good).size(), c.bad);
            if (std::string(c.bad).ends_with("{\"Rect\":{")) bad.insert(bad.find(",\"0x00000003\""), "}");
            WriteAll(m_folder / "settings.json", bad);
            EXPECT_THAT(Run(L"mask --set Set --out out in").code, testing::AnyOf(3u, 4u));
            EXPECT_EQ(FilesIn("out"), 0u);
            const Result list = Run(L"sets list");
            EXPECT_EQ(list.code, 3u);
            EXPECT_THAT(list.err, testing::AllOf(HasSubstr("0x00000002"), HasSubstr(c.reason)));
            EXPECT_THAT(list.out, HasSubstr("0x00000003  Last      2"));
        }
        // Behind the damaged set.
        const std::wstring out = flags[0] == '0' ? L"keep" : L"drop";
        EXPECT_EQ(Run(L"mask --set Last --out " + out + L" in\\page0.bmp").code, 0u);
        EXPECT_EQ(Page(m_folder / out / "page0.png").Black(20, 10), IsBlack(0, 20, 10) && flags[0] == '0');
    }
    EXPECT_EQ(Run(L"manage").code, 3u) << "opened over what its OK would lose";
    fs::rename(m_folder / "settings.json", m_folder / "bad.json");
    EXPECT_THAT(Run(L"sets import bad.json").err, HasSubstr("area set 2: Name is missing"));
    EXPECT_EQ(Run(L"sets import bad.json --set Last").code, 0u);
}

TEST_F(Zonhost, NamesThatAreTooLongOrFullOfCommandsAreShownAndDoNoHarm) {
    const std::string name = "\\u001b[31m\\u009b\\u202e" + std::string(70, 'n');
    WriteAll(m_folder / "settings.json", R"({"0x00000002":{"Name":")" + name +
                                             R"(","Flags":0,"Rect":{"0":{"Position:bottom":9,"Position:left":0,)"
                                             R"("Position:right":9,"Position:top":0}}}})");
    for (const wchar_t* command : {L"sets list", L"sets export", L"sets show 2"}) {
        const Result result = Run(command);
        EXPECT_EQ(result.code, 0u) << result.err;
        EXPECT_THAT(result.out, HasSubstr(name));
        EXPECT_THAT(result.err, Not(HasSubstr("\033")));
    }
    WriteAll(m_folder / "settings.json", R"({"2":{"Name":")" + std::string(64, 'n') +
                                             R"(","Flags":0,"Rect":{"0":{"Position:bottom":9,"Position:left":0,)"
                                             R"("Position:right":9,"Position:top":0}}}})");
    const Result result = Run(L"mask --set " + std::wstring(64, L'n') + L" --out out in");
    EXPECT_EQ(result.code, 4u);
    EXPECT_THAT(result.err, HasSubstr("more than 63 characters"));
}

TEST_F(Zonhost, ReplacedSetsKeepTheirIdentifiersAndTheFileWhatItHeld) {
    WriteAll(m_folder / "settings.json",
             R"({"0x0000002a":{"Name":"Keep","Own":7,"Rect":{"0":{"Position:left":1},"1":{}}},"View":{"Zoom":1.5}})");
    ASSERT_EQ(Run(L"sets import --replace sets.json").code, 0u);
    const std::string settings = ReadAll(m_folder / "settings.json");
    EXPECT_THAT(settings, HasSubstr("\"Own\": 7"));
    EXPECT_THAT(settings, HasSubstr("1.5"));
    const Result list = Run(L"sets list");
    EXPECT_THAT(list.out, HasSubstr("0x0000002a  Keep      1  required"));
    EXPECT_THAT(list.out, HasSubstr("0x0000002b  Drop      1  ignored"));
}

TEST_F(Zonhost, SingleSetsComeBackFromASettingsFileThatWasKept) {
    Import();
    fs::rename(m_folder / "settings.json", m_folder / "settings.json.refused-1");
    const Result result = Run(L"sets import settings.json.refused-1 --set Drop");
    ASSERT_EQ(result.code, 0u) << result.err;
    EXPECT_THAT(Run(L"sets list").out, testing::AllOf(HasSubstr("Drop      1  ignored"), Not(HasSubstr("Keep"))));
    EXPECT_THAT(Run(L"sets show Drop").out, HasSubstr("2.0       1.0      12.0       6.0"));
}

TEST_F(Zonhost, ExportedSetsAndZonesComeBackTheSame) {
    WriteAll(m_folder / L"Rechnung \u00FC.uzn", "20 10 100 50 Text\n");
    ASSERT_EQ(Run(L"sets import \"Rechnung \u00FC.uzn\" --page in\\page0.bmp --ignored").code, 0u);
    Import();
    ASSERT_EQ(Run(L"sets export --out all.json").code, 0u);
    EXPECT_EQ(Run(L"sets export --out all.json").code, 4u) << "replaced without --force";
    EXPECT_EQ(Run(L"sets export --out settings.json --force").code, 4u) << "settings replaced by an export";
    const std::string all = ReadAll(m_folder / "all.json");
    EXPECT_THAT(all, HasSubstr("\"name\": \"Rechnung \xC3\xBC\""));
    EXPECT_THAT(all, HasSubstr("\"page\": { \"width\": 200, \"height\": 100 }"));
    fs::remove(m_folder / "settings.json");
    ASSERT_EQ(Run(L"sets import all.json").code, 0u);
    EXPECT_EQ(Run(L"sets list --json").out, all);
    EXPECT_THAT(Run(L"sets show \"Rechnung \u00FC\"").out, HasSubstr("2.0       1.0      12.0       6.0"));
}

}  // namespace
