// zonhost as its users have it: the built program, run over real files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "app/ZonhostFixture.h"
#include "imaging/TestImage.h"
#include "refhost/app/ImportPlan.h"
#include "refhost/app/Text.h"
#include "refhost/files/PartFile.h"
#include "refhost/reader/Page.h"
#include "support/FakeJpeg.h"

using namespace test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using zonhost::Utf8FromPath;

namespace {

// A 1-bit page; at 254 dpi a pixel is a tenth of a millimetre. Pages of other numbers have other pixels.
std::shared_ptr<reader::Bitmap> MakePage(uint32_t number, double dpi = 254) {
    return MakeTestImage(200 + number, 100, 1, dpi, dpi);
}

std::shared_ptr<const reader::Bitmap> ReadPage(const fs::path& path) {
    const Bytes file = ReadBytes(path);
    FakeJpeg jpeg;
    return reader::DecodeUpright(*reader::OpenPage(file, reader::FindPages(file).at(0)), jpeg, 0, 0);
}

// A set as settings files have it, with two areas.
std::string StoredSet(const std::string& key, const std::string& name, const std::string& flags) {
    const auto rect = [](const char* sides, int top, int bottom) {
        return "{\"Position:bottom\":" + std::to_string(bottom) + sides + ",\"Position:top\":" + std::to_string(top) +
               "}";
    };
    constexpr const char* kSides = R"(,"Position:left":20,"Position:right":120)";
    return "\"" + key + R"(":{"Name":")" + name + R"(","Flags":)" + flags + R"(,"DisplayRect":)" +
           rect(R"(,"Position:left":0,"Position:right":9)", 0, 9) + R"(,"Rect":{"0":)" + rect(kSides, 10, 60) +
           R"(,"1":)" + rect(kSides, 11, 61) + "}}";
}

class Zonhost : public ZonhostFolder {
protected:
    void SetUp() override {
        ZonhostFolder::SetUp();
        for (uint32_t i = 0; i < 3; ++i)
            WriteAll(m_folder / "in" / ("page" + std::to_string(i) + ".bmp"), BmpOf(imaging::Image(MakePage(i))));
    }

    size_t FilesIn(const char* folder) const {
        std::error_code error;
        return static_cast<size_t>(std::distance(fs::directory_iterator(m_folder / folder, error), {}));
    }

    // Of a result: by "Keep" or "Drop", at a resolution.
    uint32_t WrongPixelsOf(const fs::path& result, uint32_t number, bool keep, double dpi = 254) const {
        const auto page = ReadPage(m_folder / result);
        EXPECT_EQ(page->Bits(), 1u);
        EXPECT_NEAR(page->resolution.x, dpi, 0.01);
        return WrongPixels(*MakePage(number, dpi), keep, {{20, 10, 120, 60}}, *page);
    }
};

TEST_F(Zonhost, TheFirstSettingsOfAFolderMakeTheFolder) {
    const std::wstring settings = L"--settings new\\folder\\settings.json ";
    EXPECT_EQ(Run(settings + L"sets import sets.json").code, 0u);
    EXPECT_THAT(Run(settings + L"sets list").out, HasSubstr("Keep"));
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
            for (uint32_t i = 0; i < 3; ++i) {
                EXPECT_EQ(WrongPixelsOf(out + L"\\page" + std::to_wstring(i) + L"." + format, i, required), 0u) << i;
            }
            EXPECT_EQ(FilesIn("in"), 3u);
        }
    }
}

TEST_F(Zonhost, EveryFrameOfATiffBecomesAFileAtTheResolutionAskedFor) {
    Import();
    fs::copy_file(SAMPLES_DIR "/fax-pages.tif", m_folder / "fax.tif");
    ASSERT_EQ(Run(L"mask --set Drop --out out --dpi 127 fax.tif in\\page0.bmp").code, 0u);
    EXPECT_EQ(FilesIn("out"), 4u);
    for (const char* page : {"fax-02.png", "fax-03.png"}) {
        const bool black = ColourAt(*ReadPage(m_folder / "out" / page), 500, 630) == 0;
        EXPECT_EQ(black, page[5] == '3') << "page n has n bars";
    }
    EXPECT_EQ(WrongPixelsOf("out/page0.png", 0, false, 127), 0u);
}

TEST_F(Zonhost, SourcesAndEarlierResultsAreNeverOverwritten) {
    Import();
    const fs::path page = m_folder / "in" / "page0.bmp", out = m_folder / "out" / "page0.png";
    const std::string source = ReadAll(page), settings = Settings();
    ASSERT_EQ(Run(L"mask --set Keep --out out in\\page0.bmp").code, 0u);
    const std::string result = ReadAll(out);
    // The result would be the source itself, by its own name and by a second one, or the settings by a link.
    const fs::path linked = m_folder / "linked";
    fs::create_directories(linked);
    fs::create_hard_link(page, linked / "page0.bmp");
    fs::create_hard_link(m_folder / "settings.json", linked / "page1.png");
    for (const auto& [arguments, message] : {std::pair{L"out in\\page0.bmp", "page0.png is there already; use --force"},
                                             std::pair{L"in --format bmp --force in\\page0.bmp", "is not overwritten"},
                                             {L"linked --format bmp --force in\\page0.bmp", "is not overwritten"},
                                             {L"linked --force in\\page1.bmp", "is the settings file"}}) {
        const Result refused = Run(std::wstring(L"mask --set Drop --out ") + arguments);
        EXPECT_EQ(refused.code, 4u);
        EXPECT_THAT(refused.err, HasSubstr(message));
    }
    EXPECT_EQ(ReadAll(out), result);
    EXPECT_EQ(ReadAll(page), source);
    EXPECT_EQ(Settings(), settings);
    EXPECT_EQ(Run(L"mask --set Drop --out out --force in\\page0.bmp").code, 0u);
    EXPECT_NE(ReadAll(out), result);
}

TEST_F(Zonhost, NamesAreAsLongAsTheFileSystemTakes) {
    Import();
    fs::create_directories(m_folder / "long");
    const std::wstring names[] = {std::wstring(222, 'a'), std::wstring(251, 'b'), std::wstring(83, 0x4E2D)};
    const fs::path page = m_folder / "in" / "page0.bmp";
    for (const std::wstring& name : names) fs::copy_file(page, m_folder / "long" / (name + L".bmp"));
    const std::wstring tooLong = L"long\\" + std::wstring(253, 'c') + L".b";
    fs::copy_file(page, m_folder / tooLong);
    const Result result = Run(L"mask --set Keep --out out long " + tooLong);
    EXPECT_EQ(result.code, 1u) << result.err;
    EXPECT_THAT(result.err, HasSubstr("ccc.b: out\\ccc"));
    EXPECT_THAT(result.err, HasSubstr("its name is longer than the 255"));
    for (const std::wstring& name : names) {
        EXPECT_TRUE(fs::exists(m_folder / "out" / (name + L".png"))) << name.size();
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
    WriteAll(m_folder / "in" / "cut.bmp", ReadAll(m_folder / "in" / "page0.bmp").substr(0, 700));
    WriteAll(m_folder / "in" / "empty.tif", "");
    // The folder of the pages is the current one; no library may be taken from there.
    for (const char* name : {"Zonwick.dll", "Zonwick.en.dll", "HostSettings.dll", "HostControls.dll",
                             "windowscodecs.dll", "atl.dll", "uxtheme.dll"}) {
        WriteAll(m_folder / name, "MZ");
    }
    const Result result = Run(L"mask --set Keep --out out in missing.tif");
    EXPECT_EQ(result.code, 1u);
    for (const char* text : {"broken.png: ", "cut.bmp: ", "empty.tif: ", "missing.tif: no such file"}) {
        EXPECT_THAT(result.err, HasSubstr(text));
    }
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(fs::exists(m_folder / "out" / ("page" + std::to_string(i) + ".png")));
    EXPECT_EQ(FilesIn("out"), 3u);
    EXPECT_THAT(result.err, Not(HasSubstr("\r"))) << "a progress bar in a file";
}

// A collection of malformed files, each of which is masked or told.
TEST_F(Zonhost, MalformedTiffsDoNoHarm) {
    Import();
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(COLLECTION_DIR)) {
        if (entry.path().extension() != ".tif" && entry.path().extension() != ".tiff") continue;
        files.push_back(entry.path().filename());
        fs::copy_file(entry.path(), m_folder / "in" / files.back());
    }
    ASSERT_GT(files.size(), 30u) << "install the package checkit-tiff";
    const Result result = Run(L"mask --set Keep --out out in");
    EXPECT_EQ(result.code, 1u);
    EXPECT_THAT(result.err, HasSubstr(" masked"));
    std::string known = result.err;
    for (const auto& entry : fs::directory_iterator(m_folder / "out")) known += entry.path().filename().string();
    for (const fs::path& file : files) EXPECT_THAT(known, HasSubstr(file.stem().string() + "."));
}

TEST_F(Zonhost, WhatCannotBeDoneIsToldAndLeavesTheSettingsAlone) {
    Import();
    const std::string settings = Settings();
    WriteAll(m_folder / "wrong.json", "{\"sets\":[]}");
    WriteAll(m_folder / "more.json", R"({"sets":[{"name":"New","mode":"required","areas":[]}]})");
    WriteAll(m_folder / "zones.uzn", "10 10 20 20\n1 2 3\n");
    WriteAll(m_folder / "damaged.json", "{\n\"a\": {\n");
    fs::create_hard_link(m_folder / "settings.json", m_folder / "link.json");
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
        EXPECT_EQ(Settings(), settings) << Utf8FromPath(c.arguments);
    }
    EXPECT_EQ(ReadAll(m_folder / "damaged.json"), "{\n\"a\": {\n");
    EXPECT_FALSE(fs::exists(m_folder / "missing.json"));
}

// Each part of a set missing, of another kind, out of range, doubled or nested wrongly, in sets of both modes.
TEST_F(Zonhost, SetsThatWereNotReadWholeAreNeverMaskedWith) {
    const struct {
        const char* good;
        const char* bad;
        const char* reason;
    } cases[] = {
        {"", "\"2\":{},", "has the identifier of"},  // the first one's
        {":{\"Name\"", ":7,\"y\":{\"Name\"", "is no group"},
        {"\"Name\":", "\"x\":", "Name is missing"},
        {"\"Name\":", "\"Name\":7,\"x\":", "Name is no text"},
        {"\"Flags\":", "\"Flag\":", "Flags is missing"},
        {"\"Flags\":", "\"Flags\":{},\"x\":", "Flags is no whole number"},
        {"\"Flags\":", "\"Flags\":4294967296,\"x\":", "Flags is no whole number"},
        {"\"Rect\":{", "\"rect\":{", "Rect is missing"},
        {"\"Rect\":{", "\"Rect\":\"x\",\"x\":{", "Rect is no group"},
        {"\"Rect\":{\"0\"", "\"Rect\":{\"Rect\":{},\"0\"", "area \"Rect\": Position:bottom is missing"},
        {"\"0\":{", "\"0\":null,\"x\":{", "area \"0\" is no group"},
        {"\"1\":{", "\"2\":{", "an area is missing"},
        {"\"Position:left\":20", "\"Position:left\":\"20\"", "Position:left is no whole number"},
        {"\"Position:right\":120", "\"Position:right\":1.5", "Position:right is no whole number"},
        {"\"Position:top\":11", "\"Position:top\":2147483648", "area \"1\": Position:top is no whole number"},
        {"\"Position:top\":10", "\"Top\":10", "area \"0\": Position:top is missing"},
    };
    std::string settings = "{";
    uint32_t id = 2;
    for (const auto& c : cases) {
        std::string bad = StoredSet(zonhost::KeyOfId(id), "Set" + std::to_string(id), id % 2 == 0 ? "0" : "268435456");
        bad.replace(bad.find(c.good), std::string(c.good).size(), c.bad);
        settings += bad + ",";
        ++id;
    }
    // Behind the damaged sets.
    settings += StoredSet("0x00000064", "Keep", "0") + "," + StoredSet("0x00000065", "Drop", "268435456") + "}";
    WriteAll(m_folder / "settings.json", settings);
    const Result list = Run(L"sets list");
    EXPECT_EQ(list.code, 3u);
    EXPECT_THAT(list.out, HasSubstr("0x00000064  Keep      2"));
    id = 2;
    for (const auto& c : cases) {
        const size_t line = list.err.find("area set " + zonhost::KeyOfId(id));
        ASSERT_NE(line, std::string::npos) << id << list.err;
        EXPECT_THAT(list.err.substr(line, list.err.find('\n', line) - line), HasSubstr(c.reason));
        EXPECT_THAT(Run(L"mask --out out in --set Set" + std::to_wstring(id)).code, testing::AnyOf(3u, 4u)) << c.bad;
        ++id;
    }
    EXPECT_EQ(FilesIn("out"), 0u);
    EXPECT_EQ(Run(L"mask in\\page0.bmp --out out --set Drop").code, 0u);
    const auto page = ReadPage(m_folder / "out" / "page0.png");
    EXPECT_EQ(WrongPixels(*MakePage(0), false, {{20, 10, 120, 61}}, *page), 0u);
    EXPECT_EQ(Run(L"manage").code, 3u) << "opened over what its OK would lose";
    fs::rename(m_folder / "settings.json", m_folder / "bad.json");
    EXPECT_THAT(Run(L"sets import bad.json").err, HasSubstr("area set 2: Name is missing"));
    EXPECT_EQ(Run(L"sets import bad.json --set Keep").code, 0u);
}

TEST_F(Zonhost, NamesThatAreTooLongOrFullOfCommandsAreShownAndDoNoHarm) {
    const std::string name = "\\u001b[31m\\u009b\\u202e" + std::string(70, 'n');
    WriteAll(m_folder / "settings.json",
             "{" + StoredSet("2", name, "0") + "," + StoredSet("3", std::string(64, 'n'), "0") + "}");
    for (const wchar_t* command : {L"sets list", L"sets export", L"sets show 2"}) {
        const Result result = Run(command);
        EXPECT_EQ(result.code, 0u) << result.err;
        EXPECT_THAT(result.out, HasSubstr(name));
        EXPECT_THAT(result.err, Not(HasSubstr("\033")));
    }
    const Result result = Run(L"mask --set " + std::wstring(64, L'n') + L" --out out in");
    EXPECT_EQ(result.code, 4u);
    EXPECT_THAT(result.err, HasSubstr("more than 63 characters"));
}

TEST_F(Zonhost, ReplacedSetsKeepTheirIdentifiersAndTheFileWhatItHeld) {
    WriteAll(m_folder / "settings.json",
             R"({"0x0000002a":{"Name":"Keep","Own":7,"Rect":{"0":{"Position:left":1},"1":{}}},"View":{"Zoom":1.5}})");
    ASSERT_EQ(Run(L"sets import --replace sets.json").code, 0u);
    EXPECT_THAT(Settings(), AllOf(HasSubstr("\"Own\": 7"), HasSubstr("1.5")));
    EXPECT_THAT(Run(L"sets list").out,
                AllOf(HasSubstr("0x0000002a  Keep      1  required"), HasSubstr("0x0000002b  Drop      1  ignored")));
}

TEST_F(Zonhost, SingleSetsComeBackFromASettingsFileThatWasKept) {
    Import();
    fs::rename(m_folder / "settings.json", m_folder / "settings.json.refused-1");
    const Result result = Run(L"sets import settings.json.refused-1 --set Drop");
    ASSERT_EQ(result.code, 0u) << result.err;
    EXPECT_THAT(Run(L"sets list").out, AllOf(HasSubstr("Drop      1  ignored"), Not(HasSubstr("Keep"))));
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
