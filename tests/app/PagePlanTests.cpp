#include "refhost/app/PagePlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <random>
#include <tuple>

#include "refhost/app/Text.h"
#include "refhost/app/WorkerPool.h"

using namespace zonhost;
namespace fs = std::filesystem;

namespace {

std::vector<std::string> NamesOf(const std::vector<fs::path>& files) {
    OutputNames names(files, ".png");
    std::vector<std::string> result;
    for (size_t i = 0; i < files.size(); ++i) result.push_back(Utf8FromPath(names.Name(i, 0, 1)));
    return result;
}

TEST(OutputNames, SourcesOfOneNameAreToldApart) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(NamesOf({"x/a.tif", "x/b.tif"}), (Names{"a.png", "b.png"}));
    EXPECT_EQ(NamesOf({"x/a.tif", "x/a.jpg", "x/b.tif"}), (Names{"a.tif.png", "a.jpg.png", "b.png"}));
    EXPECT_EQ(NamesOf({"x/a.tif", "y/A.tif"}), (Names{"x_a.png", "y_A.png"}));
    EXPECT_EQ(NamesOf({"/a.tif", "/x/a.tif"}), (Names{"a.tif.png", "x_a.png"}));
    EXPECT_EQ(NamesOf({"/a.tif", "/A.tif"}), (Names{"a.tif.png", "A.tif~2.png"}));
    EXPECT_EQ(NamesOf({"1/x/a.tif", "2/x/a.tif"}), (Names{"x_a.tif.png", "x_a.tif~2.png"}));
}

TEST(OutputNames, NoTwoResultsShareANameWhateverTheSources) {
    const std::vector<fs::path> files{"x/a.tif", "y/a.tif", "z/x_a.tif",   "z/a-01.tif", "z/a-1.tif",
                                      "w/A.TIF", "w/a.png", "v/a.tif.png", "v/a.tif"};
    OutputNames names(files, ".tif");
    std::set<std::string> seen;
    for (size_t i = 0; i < files.size(); ++i) {
        const size_t frames = i % 2 == 0 ? 1 : 12;
        for (size_t frame = 0; frame < frames; ++frame) {
            const std::string name = Utf8FromPath(names.Name(i, frame, frames));
            EXPECT_TRUE(seen.insert(FoldCase(name)).second) << name;
            EXPECT_TRUE(names.Covers(name)) << name;
        }
    }
}

TEST(OutputNames, FramesAreNumberedSoThatTheySort) {
    OutputNames names({"fax.tif", "fax-02.tif", "long.tif"}, ".bmp");
    EXPECT_EQ(names.Name(0, 0, 2), "fax-01.bmp");
    EXPECT_EQ(names.Name(0, 1, 2), "fax-02~2.bmp");
    EXPECT_EQ(names.Name(1, 0, 1), "fax-02.bmp");
    EXPECT_EQ(names.Name(2, 8, 120), "long-009.bmp");
    for (const char* other : {"fax-02.png", "fax-.bmp", "fa.bmp", "fax-0x.bmp", "log.txt", "-01.bmp"}) {
        EXPECT_FALSE(names.Covers(other)) << other;
    }
}

TEST(FindPages, TakesFilesFoldersAndPatternsOnce) {
    const fs::path folder = fs::temp_directory_path() / ("zonhost-pages-" + std::to_string(std::random_device{}()));
    fs::create_directories(folder / "sub.tif");
    fs::create_directories(folder / "empty");
    for (const char* name : {"b.tif", "a.PNG", "c.jpeg", "notes.txt", "z\xC3\xA4.bmp"}) {
        std::ofstream(folder / PathFromUtf8(name)) << "x";
    }
    const PageList pages =
        FindPages({folder / "b.tif", folder, folder / "sub.tif" / ".." / "b.tif", folder / "notes.txt", folder / "?.*",
                   folder / "empty", folder / "none.tif", folder / "q*"});
    std::vector<std::string> names;
    for (const fs::path& file : pages.files) names.push_back(Utf8FromPath(file.filename()));
    EXPECT_EQ(names, (std::vector<std::string>{"b.tif", "a.PNG", "c.jpeg", "z\xC3\xA4.bmp", "notes.txt"}));
    EXPECT_EQ(pages.problems.size(), 3u) << Join(pages.problems, "\n");
    // A pattern without a folder looks into the current one.
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    EXPECT_EQ(FindPages({"b*.tif"}).files, (std::vector<fs::path>{fs::path(".") / "b.tif"}));
    fs::current_path(before);
    fs::remove_all(folder);
}

// Texts that a host's operator may hand over, by any name and of any size.
TEST(ReadTextFile, TellsWhatIsWrongWithTheFile) {
    const fs::path folder = fs::temp_directory_path() / ("zonhost-text-" + std::to_string(std::random_device{}()));
    fs::create_directories(folder);
    const std::string whole(200000, 'x');
    std::ofstream(folder / "whole.txt", std::ios::binary) << whole;
    EXPECT_EQ(ReadTextFile(folder / "whole.txt", 200000), whole);
    const struct {
        const char* name;
        const char* message;
    } cases[] = {{"whole.txt", "longer than the 0 MiB"}, {"", "is a folder"}, {"none.txt", "none.txt: no such file"}};
    for (const auto& test : cases) {
        try {
            ReadTextFile(folder / test.name, 199999);
            ADD_FAILURE() << test.name << " was read";
        } catch (const CommandError& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(test.message));
        }
    }
    fs::remove_all(folder);
}

TEST(FindPages, PatternsMatchLikeTheSystems) {
    for (const auto& [name, pattern, matches] :
         std::initializer_list<std::tuple<const char*, const char*, bool>>{{"page1.tif", "page?.tif", true},
                                                                           {"page10.tif", "page?.tif", false},
                                                                           {"a.b.tif", "*.tif", true},
                                                                           {"tif", "*.tif", false},
                                                                           {"abc", "a*b*c*", true},
                                                                           {"ab", "a*c", false},
                                                                           {"", "*", true},
                                                                           {"", "?", false}}) {
        EXPECT_EQ(MatchesPattern(name, pattern), matches) << name << " " << pattern;
    }
}

TEST(WorkerPool, GivesResultsAndExceptionsAndEndsWithAllDone) {
    std::atomic<int> done = 0, threads = 0;
    std::vector<std::future<int>> results;
    {
        WorkerPool pool(2, [&](const std::function<void()>& work) {
            ++threads;
            work();
            --threads;
        });
        for (int i = 0; i < 100; ++i) {
            results.push_back(pool.Do([i, &done] {
                ++done;
                if (i == 50) throw std::runtime_error("bad page");
                return i;
            }));
        }
    }
    EXPECT_EQ(WorkerPool(1).Do([] { return 7; }).get(), 7) << "with nothing around its threads";
    EXPECT_EQ(done, 100);
    EXPECT_EQ(threads, 0);
    EXPECT_EQ(results[99].get(), 99);
    EXPECT_THROW(results[50].get(), std::runtime_error);
}

}  // namespace
