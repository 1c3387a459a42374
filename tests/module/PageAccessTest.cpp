// The module object's access to the document stack, linked directly.
#include <gtest/gtest.h>

#include <optional>

#include "fakehost/FakeHost.h"
#include "module/ZonwickApp.h"
#include "support/FakeDocuments.h"

extern "C" void FakeSetSinks(void* context, FakeTraceSink traceSink, FakeBoxSink boxSink);

namespace {

using test::FakeStack;
using test::Host;

constexpr uint32_t kForeign = 0xABCD0000;  // flags that are not GetPage's

class PageAccess : public testing::Test {
protected:
    void SetUp() override {
        Host() = {};
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        m_class.emplace();
        FakeSetSinks(
            this,
            [](void* self, int severity, HINSTANCE, const char* source, int, const wchar_t* text) {
                static_cast<PageAccess*>(self)->m_traces.push_back(
                    std::to_wstring(severity) + L" " + std::wstring(source, source + strlen(source)) + L" " + text);
            },
            nullptr);
        Use({3, 1, 2});
    }
    void TearDown() override {
        m_app.SetQuire(nullptr);
        m_class.reset();
        FakeSetSinks(nullptr, nullptr, nullptr);
        CoUninitialize();
        EXPECT_EQ(Host().liveObjects, 0);
    }

    void Use(std::vector<int> documents) {
        m_stack = {};
        m_stack.documents = std::move(documents);
        IQuire* quire = test::MakeFakeQuire(m_stack);
        m_app.SetQuire(quire);
        quire->Release();
    }

    FakeStack m_stack;
    CZonwickApp m_app;
    std::optional<test::FakePageImageClass> m_class;
    std::vector<std::wstring> m_traces;
};

TEST_F(PageAccess, CorrectsPositionsAndTellsWhereThePageLies) {
    struct Case {
        std::vector<int> documents;
        int startDocument, startPage;
        int document, page;
        bool found;
        int newDocument, newPage;
        uint32_t flags;  // only when found
    };
    const Case cases[] = {
        {{3, 1, 2}, 1, 0, 5, 0, true, 1, 0, NAV_NO_PREV_PAGE | NAV_NO_NEXT_PAGE},
        {{1}, -3, -7, -1, -1, true, 0, 0, 15},
        {{3, 1, 2}, 0, 1, 0, 1, true, 0, 1, NAV_NO_PREV_DOC},
        {{3, 1, 2}, 0, 1, 2, 5, true, 2, 1, NAV_NO_NEXT_DOC | NAV_NO_NEXT_PAGE},
        {{}, 0, 0, 0, 0, false, 0, 0, 0},
        {{0, 1}, 0, 0, 0, 0, false, 0, 0, 0},
        {{-1, 1}, 0, 0, 9, 0, false, 0, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        Use(c.documents);
        m_app.SetStartPosition(c.startDocument, c.startPage);
        int32_t document = c.document;
        int32_t page = c.page;
        uint32_t flags = kForeign;
        IPageImagePtr image;
        EXPECT_EQ(m_app.GetPage(document, page, image, flags), c.found);
        EXPECT_EQ(image != nullptr, c.found);
        EXPECT_EQ(document, c.newDocument);
        EXPECT_EQ(page, c.newPage);
        EXPECT_EQ(flags, kForeign | c.flags);
        EXPECT_EQ(m_stack.loaded, c.found ? std::vector<LONG>{3} : std::vector<LONG>{});
    }
}

TEST_F(PageAccess, ClearsFlagsThatNoLongerHold) {
    int32_t document = 1;
    int32_t page = 0;
    uint32_t flags = kForeign | 15;
    IPageImagePtr image;
    Use({1, 3, 1});
    page = 1;
    EXPECT_TRUE(m_app.GetPage(document, page, image, flags));
    EXPECT_EQ(flags, kForeign);
}

TEST_F(PageAccess, BytesThatAreNoneAreThrownOrRefused) {
    const struct {
        VARTYPE type;
        LONG count;
        HRESULT load, query, thrown;
    } cases[] = {
        {VT_UI1, 0, S_OK, S_OK, S_OK},
        {VT_UI1, 3, E_FAIL, S_OK, S_OK},
        {VT_I4, 3, S_OK, S_OK, E_INVALIDARG},
        {VT_UI1, 3, S_OK, E_NOINTERFACE, E_POINTER},
        {VT_UI1, 3, S_OK, E_ACCESSDENIED, E_ACCESSDENIED},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        m_stack.byteType = c.type;
        m_stack.byteCount = c.count;
        m_stack.load = c.load;
        m_stack.dataQuery = c.query;
        int32_t document = 0;
        int32_t page = 0;
        uint32_t flags = 0;
        IPageImagePtr image;
        HRESULT thrown = S_OK;
        try {
            EXPECT_EQ(m_app.GetPage(document, page, image, flags), SUCCEEDED(c.load));
        } catch (const _com_error& error) {
            thrown = error.Error();
        }
        EXPECT_EQ(thrown, c.thrown);
        EXPECT_EQ(image != nullptr, SUCCEEDED(c.thrown) && SUCCEEDED(c.load));
    }
}

TEST_F(PageAccess, TracesAClassThatCannotBeCreated) {
    m_class.reset();
    int32_t document = 0;
    int32_t page = 0;
    uint32_t flags = 0;
    IPageImagePtr image;
    EXPECT_FALSE(m_app.GetPage(document, page, image, flags));
    EXPECT_EQ(flags, uint32_t{NAV_NO_PREV_DOC | NAV_NO_PREV_PAGE});
    EXPECT_EQ(m_traces, std::vector<std::wstring>{L"2 ZonwickWiz !0 {3D985447-4B5F-4b92-B261-5D1F85195149}"});
}

TEST_F(PageAccess, WithoutAStackIsThrown) {
    m_app.SetQuire(nullptr);
    int32_t document = 0;
    int32_t page = 0;
    uint32_t flags = 0;
    IPageImagePtr image;
    EXPECT_THROW(m_app.GetPage(document, page, image, flags), _com_error);
}

// Every host call fails in turn, with a status and with null: a page, no page, or an exception, and nothing leaks.
TEST_F(PageAccess, SurvivesAFailureOfEveryHostCall) {
    for (const bool giveNull : {false, true}) {
        for (int n = 1;; ++n) {
            SCOPED_TRACE(n);
            Host().Reset();
            Host().failAt = n;
            Host().giveNull = giveNull;
            const int liveBefore = Host().liveObjects;
            int32_t document = 0;
            int32_t page = 0;
            uint32_t flags = 0;
            IPageImagePtr image;
            bool found = false;
            try {
                found = m_app.GetPage(document, page, image, flags);
            } catch (const _com_error&) {
                found = false;
            }
            const bool reached = Host().calls >= n;
            Host().Reset();  // comparing interfaces queries them
            EXPECT_EQ(found, image != nullptr);
            EXPECT_EQ(found, !reached);
            image = nullptr;
            EXPECT_EQ(Host().liveObjects, liveBefore);
            if (!reached) break;
        }
    }
}

}  // namespace
