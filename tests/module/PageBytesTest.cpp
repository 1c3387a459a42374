// The bytes on their way from the document stack into the page image class: those of a real file as they are, and
// arrays of every shape that a host could hand out.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "module/ZonwickApp.h"
#include "refhost/documents/HostDocuments.h"
#include "support/FakeObject.h"

namespace {

using Bytes = std::vector<BYTE>;
using test::FakeDispatch;
using test::FakeObject;
using test::Host;

std::function<SAFEARRAY*()> g_makeArray;
std::vector<Bytes> g_loaded;

class Data final : public FakeDispatch<IImageData> {
    HRESULT STDMETHODCALLTYPE GetBytes(SAFEARRAY** bytes) override {
        *bytes = g_makeArray();
        return S_OK;
    }
};

class Source final : public FakeDispatch<IImageSource> {
    HRESULT STDMETHODCALLTYPE GetData(IUnknown** data) override {
        *data = new Data;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
};

class Page final : public FakeDispatch<IQuirePage> {
    HRESULT STDMETHODCALLTYPE GetImageSource(IImageSource** source) override {
        *source = new Source;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
};

// A collection of one.
template <class Collection, class Item, class Made>
class One final : public FakeDispatch<Collection> {
    HRESULT STDMETHODCALLTYPE GetCount(LONG* count) override {
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetItem(LONG, Item** item) override {
        *item = new Made;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
};
using Document = One<IQuireDocument, IQuirePage, Page>;
using Quire = One<IQuire, IQuireDocument, Document>;

// Keeps what it is given to load. Both interfaces in one object, as the real class has them.
class Image final : public FakeObject<IPageImage> {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid != __uuidof(IImageLoader)) return FakeObject::QueryInterface(iid, object);
        AddRef();
        *object = &m_loader;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSize(SIZE* size) override {
        *size = {2100, 2970};
        return S_OK;
    }

private:
    class Loader final : public IImageLoader {
    public:
        explicit Loader(Image& owner) : m_owner(owner) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
            return m_owner.QueryInterface(iid, object);
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return m_owner.AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return m_owner.Release(); }
        HRESULT STDMETHODCALLTYPE LoadFromMemory(const BYTE* bytes, LONG length) override {
            g_loaded.emplace_back(bytes, bytes + length);
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE CreateBlank(LONG, LONG, LONG, LONG, LONG) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE Reserved6() override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }

    private:
        Image& m_owner;
    };
    Loader m_loader{*this};
};

class PageBytes : public testing::Test {
protected:
    PageBytes() {
        Host() = {};
        g_loaded.clear();
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        m_images = std::make_unique<test::FakeClass>(
            host::kClsidPageImage, [] { return static_cast<IUnknown*>(new Image); }, m_made);
    }
    ~PageBytes() override {
        m_images.reset();
        CoUninitialize();
        EXPECT_EQ(Host().liveObjects, 0);
    }

    // What is thrown, or whether there is a page.
    static HRESULT Load(IQuire* quire) {
        CZonwickApp app;
        app.SetQuire(quire);
        int32_t document = 0;
        int32_t page = 0;
        uint32_t flags = 0;
        IPageImagePtr image;
        HRESULT result = S_OK;
        try {
            result = app.GetPage(document, page, image, flags) ? S_OK : S_FALSE;
        } catch (const _com_error& error) {
            result = error.Error();
        }
        EXPECT_EQ(image != nullptr, result == S_OK);
        return result;
    }

    const HRESULT m_made = S_OK;
    std::unique_ptr<test::FakeClass> m_images;
};

TEST_F(PageBytes, AreThoseOfTheFile) {
    for (const wchar_t* name : {L"alpha.png", L"grey.jpg", L"rgb16.png"}) {
        const std::wstring path = std::wstring(TEST_DATA_DIR) + L"/" + name;
        std::ifstream file(path.c_str(), std::ios::binary);
        const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
        ASSERT_GT(bytes.size(), 100u);
        const wchar_t* const paths[] = {path.c_str()};
        IQuire* quire = nullptr;
        ASSERT_EQ(HostOpenDocuments(paths, 1, &quire), S_OK);
        g_loaded.clear();
        EXPECT_EQ(Load(quire), S_OK);
        quire->Release();
        ASSERT_EQ(g_loaded.size(), 1u);
        EXPECT_TRUE(g_loaded[0] == bytes) << testing::PrintToString(std::wstring(name));
    }
}

SAFEARRAY* MakeArray(VARTYPE type, std::vector<SAFEARRAYBOUND> bounds) {
    SAFEARRAY* array = SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
    if (type != VT_UI1) return array;
    ULONG size = 1;
    for (const SAFEARRAYBOUND& bound : bounds) size *= bound.cElements;
    for (ULONG i = 0; i < size; ++i) static_cast<BYTE*>(array->pvData)[i] = static_cast<BYTE>(i + 1);
    return array;
}

// The first byte is the first byte whatever its position is called; what is no row of bytes is thrown, not read.
TEST_F(PageBytes, OfAnyLowerBoundButOfOneKindAlone) {
    const struct {
        VARTYPE type;
        std::vector<SAFEARRAYBOUND> bounds;
        HRESULT result;
        Bytes loaded;
    } cases[] = {
        {VT_UI1, {{4, 0}}, S_OK, {1, 2, 3, 4}},       {VT_UI1, {{4, 7}}, S_OK, {1, 2, 3, 4}},
        {VT_UI1, {{4, -2}}, S_OK, {1, 2, 3, 4}},      {VT_UI1, {{3, LONG_MIN}}, S_OK, {1, 2, 3}},
        {VT_UI1, {{1, LONG_MAX}}, S_OK, {1}},         {VT_UI1, {{0, 5}}, S_OK, {}},
        {VT_UI1, {{2, 0}, {3, 0}}, E_INVALIDARG, {}}, {VT_UI1, {{4, 0}, {1, 0}}, E_INVALIDARG, {}},
        {VT_I1, {{4, 0}}, E_INVALIDARG, {}},          {VT_I2, {{4, 0}}, E_INVALIDARG, {}},
        {VT_BSTR, {{4, 0}}, E_INVALIDARG, {}},        {VT_VARIANT, {{4, 0}}, E_INVALIDARG, {}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(testing::Message() << "type " << test.type << ", row " << &test - cases);
        g_makeArray = [&] { return MakeArray(test.type, test.bounds); };
        g_loaded.clear();
        IQuire* quire = new Quire;
        EXPECT_EQ(Load(quire), test.result);
        quire->Release();
        EXPECT_EQ(g_loaded, test.result == S_OK ? std::vector<Bytes>{test.loaded} : std::vector<Bytes>{});
    }
}

}  // namespace
