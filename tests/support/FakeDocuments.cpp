#include "support/FakeDocuments.h"

#include "host/HostIds.h"

namespace test {

namespace {

FakeStack* g_stack = nullptr;

class FakeData final : public FakeDispatch<IImageData> {
public:
    FakeData() : FakeDispatch(g_stack->dataQuery) {}
    HRESULT STDMETHODCALLTYPE GetBytes(SAFEARRAY** bytes) override {
        *bytes = nullptr;
        if (Host().Fails()) return Host().giveNull ? S_OK : E_FAIL;
        *bytes = SafeArrayCreateVector(g_stack->byteType, 0, static_cast<ULONG>(g_stack->byteCount));
        return S_OK;
    }
};

class FakeSource final : public FakeDispatch<IImageSource> {
public:
    HRESULT STDMETHODCALLTYPE GetData(IUnknown** data) override {
        *data = nullptr;
        if (Host().Fails()) return Host().giveNull ? S_OK : E_FAIL;
        *data = new FakeData;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
};

class FakePage final : public FakeDispatch<IQuirePage> {
public:
    HRESULT STDMETHODCALLTYPE GetImageSource(IImageSource** source) override {
        *source = nullptr;
        if (Host().Fails()) return Host().giveNull ? S_OK : E_FAIL;
        *source = new FakeSource;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
};

class FakeDocument final : public FakeDispatch<IQuireDocument> {
public:
    explicit FakeDocument(int pages) : m_pages(pages) {}
    HRESULT STDMETHODCALLTYPE GetCount(LONG* count) override {
        *count = m_pages;
        return Host().Fails() ? E_FAIL : S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetItem(LONG index, IQuirePage** page) override {
        *page = nullptr;
        if (Host().Fails()) return Host().giveNull ? S_OK : E_FAIL;
        if (index < 0 || index >= m_pages) return E_INVALIDARG;
        if (index != g_stack->nullPage) *page = new FakePage;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }

private:
    int m_pages;
};

class FakeQuire final : public FakeDispatch<IQuire> {
public:
    HRESULT STDMETHODCALLTYPE GetCount(LONG* count) override {
        *count = static_cast<LONG>(g_stack->documents.size());
        return Host().Fails() ? E_FAIL : S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetItem(LONG index, IQuireDocument** document) override {
        *document = nullptr;
        if (Host().Fails()) return Host().giveNull ? S_OK : E_FAIL;
        if (index < 0 || static_cast<size_t>(index) >= g_stack->documents.size()) return E_INVALIDARG;
        const int pages = g_stack->documents[static_cast<size_t>(index)];
        if (pages >= 0) *document = new FakeDocument(pages);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
};

class FakePageImage final : public FakeObject<IPageImage> {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid != __uuidof(IImageLoader)) return FakeObject::QueryInterface(iid, object);
        *object = nullptr;
        if (Host().Fails()) return E_NOINTERFACE;
        AddRef();
        *object = &m_loader;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSize(SIZE* size) override {
        *size = {2100, 2970};
        return Host().Fails() ? E_FAIL : S_OK;
    }

private:
    class Loader final : public IImageLoader {
    public:
        explicit Loader(FakePageImage& owner) : m_owner(owner) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
            return m_owner.QueryInterface(iid, object);
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return m_owner.AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return m_owner.Release(); }
        HRESULT STDMETHODCALLTYPE LoadFromMemory(const BYTE*, LONG length) override {
            if (Host().Fails()) return E_FAIL;
            g_stack->loaded.push_back(length);
            return g_stack->load;
        }
        HRESULT STDMETHODCALLTYPE CreateBlank(LONG, LONG, LONG, LONG, LONG) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE Reserved6() override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }

    private:
        FakePageImage& m_owner;
    };
    Loader m_loader{*this};
};

const HRESULT kCreated = S_OK;

}  // namespace

IQuire* MakeFakeQuire(FakeStack& stack) {
    g_stack = &stack;
    return new FakeQuire;
}

FakePageImageClass::FakePageImageClass()
    : m_images(
          host::kClsidPageImage, [] { return static_cast<IUnknown*>(new FakePageImage); }, kCreated) {}

}  // namespace test
