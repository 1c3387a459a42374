// Stack, document, page, image source and image data. A page has its bytes from the moment it is handed out; the
// stack's files are only looked at on the way to it.
#include "refhost/documents/Quire.h"

#include <cstring>

#include "refhost/com/ComObject.h"

namespace documents {

namespace {

using Bytes = std::shared_ptr<const std::vector<uint8_t>>;

class ImageData final : public com::Object<com::NoDispatch<IImageData>> {
public:
    explicit ImageData(Bytes bytes) : m_bytes(std::move(bytes)) {}

    HRESULT STDMETHODCALLTYPE GetBytes(SAFEARRAY** bytes) noexcept override {
        if (bytes == nullptr) return E_POINTER;
        *bytes = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(m_bytes->size()));
        if (*bytes == nullptr) return E_OUTOFMEMORY;
        std::memcpy((*bytes)->pvData, m_bytes->data(), m_bytes->size());
        return S_OK;
    }

private:
    Bytes m_bytes;
};

class ImageSource final : public com::Object<com::NoDispatch<IImageSource>> {
public:
    explicit ImageSource(Bytes bytes) : m_bytes(std::move(bytes)) {}

    HRESULT STDMETHODCALLTYPE GetData(IUnknown** data) noexcept override {
        return com::Create<ImageData>(__uuidof(IUnknown), reinterpret_cast<void**>(data), m_bytes);
    }
    HRESULT STDMETHODCALLTYPE Reserved7() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() noexcept override { return E_NOTIMPL; }

private:
    Bytes m_bytes;
};

class Page final : public com::Object<com::NoDispatch<IQuirePage>> {
public:
    explicit Page(Bytes bytes) : m_bytes(std::move(bytes)) {}

    HRESULT STDMETHODCALLTYPE GetImageSource(IImageSource** source) noexcept override {
        return com::Create<ImageSource>(__uuidof(IImageSource), reinterpret_cast<void**>(source), m_bytes);
    }
    HRESULT STDMETHODCALLTYPE Reserved7() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() noexcept override { return E_NOTIMPL; }

private:
    Bytes m_bytes;
};

class Document final : public com::Object<com::NoDispatch<IQuireDocument>> {
public:
    explicit Document(std::shared_ptr<DocumentFiles> files) : m_files(std::move(files)) {}

    HRESULT STDMETHODCALLTYPE GetCount(LONG* count) noexcept override {
        if (count == nullptr) return E_POINTER;
        return com::Guard([&] {
            *count = m_files->PageCount();
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetItem(LONG index, IQuirePage** page) noexcept override {
        if (page == nullptr) return E_POINTER;
        *page = nullptr;
        return com::Guard([&] {
            auto bytes = std::make_shared<const std::vector<uint8_t>>(m_files->PageBytes(index));
            if (bytes->empty()) return S_OK;
            return com::Create<Page>(__uuidof(IQuirePage), reinterpret_cast<void**>(page), std::move(bytes));
        });
    }
    HRESULT STDMETHODCALLTYPE Reserved8() noexcept override { return E_NOTIMPL; }

private:
    std::shared_ptr<DocumentFiles> m_files;
};

class Quire final : public com::Object<com::NoDispatch<IQuire>> {
public:
    explicit Quire(std::vector<std::shared_ptr<DocumentFiles>> documents) : m_documents(std::move(documents)) {}

    HRESULT STDMETHODCALLTYPE GetCount(LONG* count) noexcept override {
        if (count == nullptr) return E_POINTER;
        *count = static_cast<LONG>(m_documents.size());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetItem(LONG index, IQuireDocument** document) noexcept override {
        if (document == nullptr) return E_POINTER;
        *document = nullptr;
        if (index < 0 || static_cast<size_t>(index) >= m_documents.size()) return S_OK;
        return com::Create<Document>(__uuidof(IQuireDocument), reinterpret_cast<void**>(document),
                                     m_documents[static_cast<size_t>(index)]);
    }
    HRESULT STDMETHODCALLTYPE Reserved8() noexcept override { return E_NOTIMPL; }

private:
    std::vector<std::shared_ptr<DocumentFiles>> m_documents;
};

}  // namespace

IQuire* MakeQuire(std::vector<std::shared_ptr<DocumentFiles>> documents) {
    return new Quire(std::move(documents));
}

}  // namespace documents
