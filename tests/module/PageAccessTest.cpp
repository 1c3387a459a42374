// The module object's access to the document stack, linked directly: which page is shown, where it lies, and its bytes
// on their way into the page image class.
#include <gtest/gtest.h>

#include <optional>

#include "module/ZonwickApp.h"
#include "refhost/support/HostSupport.h"
#include "support/FakeDocuments.h"

namespace {

using test::FakeStack;
using test::Host;
using Bytes = std::vector<BYTE>;

constexpr uint32_t kForeign = 0xABCD0000;  // flags that are not GetPage's
constexpr uint32_t kAll = NAV_NO_PREV_DOC | NAV_NO_NEXT_DOC | NAV_NO_PREV_PAGE | NAV_NO_NEXT_PAGE;

class PageAccess : public testing::Test {
protected:
    void SetUp() override {
        Host() = {};
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        m_class.emplace();
        m_app.emplace();
        HostSupportSetTraceObserver(
            [](const HostTrace* trace, void* self) {
                static_cast<PageAccess*>(self)->m_traces += std::to_wstring(trace->severity) + L" " + trace->text;
            },
            this);
        Use({3, 1, 2});
    }
    void TearDown() override {
        m_app.reset();
        m_class.reset();
        HostSupportSetTraceObserver(nullptr, nullptr);
        CoUninitialize();
        EXPECT_EQ(Host().liveObjects, 0);
    }

    void Use(std::vector<int> documents) {
        m_stack = {};
        m_stack.documents = std::move(documents);
        IQuire* quire = test::MakeFakeQuire(m_stack);
        m_app->SetQuire(quire);
        quire->Release();
    }
    // What is thrown, or whether there is a page.
    HRESULT GetPage() {
        IPageImagePtr image;
        HRESULT result = S_OK;
        try {
            result = m_app->GetPage(m_document, m_page, image, m_flags) ? S_OK : S_FALSE;
        } catch (const _com_error& error) {
            result = error.Error();
        }
        EXPECT_EQ(image.GetInterfacePtr() != nullptr, result == S_OK);
        return result;
    }

    FakeStack m_stack;
    std::optional<CZonwickApp> m_app;
    std::optional<test::FakePageImageClass> m_class;
    std::wstring m_traces;
    int32_t m_document = 0, m_page = 0;
    uint32_t m_flags = kForeign;
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
        {{1}, -3, -7, -1, -1, true, 0, 0, kAll},
        {{3, 1, 2}, 0, 1, 0, 1, true, 0, 1, NAV_NO_PREV_DOC},
        {{3, 1, 2}, 0, 1, 2, 5, true, 2, 1, NAV_NO_NEXT_DOC | NAV_NO_NEXT_PAGE},
        {{1, 3, 1}, 0, 0, 1, 1, true, 1, 1, 0},
        {{}, 0, 0, 0, 0, false, 0, 0, 0},
        {{0, 1}, 0, 0, 0, 0, false, 0, 0, 0},
        {{-1, 1}, 0, 0, 9, 0, false, 0, 0, 0},
    };
    for (const auto& c : cases) {
        for (const uint32_t before : {kForeign, kForeign | kAll}) {
            SCOPED_TRACE(&c - cases);
            Use(c.documents);
            m_app->SetStartPosition(c.startDocument, c.startPage);
            m_document = c.document;
            m_page = c.page;
            m_flags = before;
            EXPECT_EQ(GetPage(), c.found ? S_OK : S_FALSE);
            EXPECT_EQ(m_document, c.newDocument);
            EXPECT_EQ(m_page, c.newPage);
            EXPECT_EQ(m_flags, c.found ? kForeign | c.flags : before);
            EXPECT_EQ(m_stack.loaded.size(), c.found ? 1u : 0u);
            EXPECT_FALSE(m_stack.arrayOutlivedLoader);
        }
    }
}

SAFEARRAY* MakeArray(VARTYPE type, std::vector<SAFEARRAYBOUND> bounds) {
    if (bounds.empty()) return nullptr;
    SAFEARRAY* array = SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
    if (type != VT_UI1) return array;
    ULONG size = 1;
    for (const SAFEARRAYBOUND& bound : bounds) size *= bound.cElements;
    for (ULONG i = 0; i < size; ++i) static_cast<BYTE*>(array->pvData)[i] = static_cast<BYTE>(i + 1);
    return array;
}

// The first byte is the first byte whatever its position is called; what is no row of bytes is thrown, not read.
TEST_F(PageAccess, TakesBytesOfAnyLowerBoundButOfOneKindAlone) {
    const struct {
        VARTYPE type;
        std::vector<SAFEARRAYBOUND> bounds;
        HRESULT result;
        Bytes loaded;
        HRESULT load = S_OK, query = S_OK;  // what the image, and the data when it is asked for its interface, answer
    } cases[] = {
        {VT_UI1, {{4, 0}}, S_OK, {1, 2, 3, 4}},
        {VT_UI1, {{4, 7}}, S_OK, {1, 2, 3, 4}},
        {VT_UI1, {{4, -2}}, S_OK, {1, 2, 3, 4}},
        {VT_UI1, {{3, LONG_MIN}}, S_OK, {1, 2, 3}},
        {VT_UI1, {{1, LONG_MAX}}, S_OK, {1}},
        {VT_UI1, {{0, 5}}, S_OK, {}},
        {VT_UI1, {{2, 0}, {3, 0}}, E_INVALIDARG, {}},
        {VT_UI1, {{4, 0}, {1, 0}}, E_INVALIDARG, {}},
        {VT_UI1, {}, E_INVALIDARG, {}},
        {VT_I1, {{4, 0}}, E_INVALIDARG, {}},
        {VT_I2, {{4, 0}}, E_INVALIDARG, {}},
        {VT_I4, {{3, 0}}, E_INVALIDARG, {}},
        {VT_BSTR, {{4, 0}}, E_INVALIDARG, {}},
        {VT_VARIANT, {{4, 0}}, E_INVALIDARG, {}},
        {VT_UI1, {{2, 0}}, S_FALSE, {1, 2}, E_FAIL},
        {VT_UI1, {{2, 0}}, E_POINTER, {}, S_OK, E_NOINTERFACE},
        {VT_UI1, {{2, 0}}, E_ACCESSDENIED, {}, S_OK, E_ACCESSDENIED},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        m_stack.makeArray = [&] { return MakeArray(c.type, c.bounds); };
        m_stack.load = c.load;
        m_stack.dataQuery = c.query;
        m_stack.loaded.clear();
        EXPECT_EQ(GetPage(), c.result);
        EXPECT_EQ(m_stack.loaded, SUCCEEDED(c.result) ? std::vector<Bytes>{c.loaded} : std::vector<Bytes>{});
    }
}

TEST_F(PageAccess, WithoutAClassOrAStackThereIsNoPage) {
    m_class.reset();
    EXPECT_EQ(GetPage(), S_FALSE);
    EXPECT_EQ(m_flags, kForeign | NAV_NO_PREV_DOC | NAV_NO_PREV_PAGE);
    EXPECT_NE(m_traces.find(L"{3D985447-4B5F-4b92-B261-5D1F85195149}"), std::wstring::npos) << m_traces.c_str();
    m_app->SetQuire(nullptr);
    EXPECT_EQ(GetPage(), E_POINTER);
}

}  // namespace
