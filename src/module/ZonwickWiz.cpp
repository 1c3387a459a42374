// Access to the host's document stack: the pages that the dialogs show.
#include <cstring>
#include <cwchar>
#include <limits>
#include <memory>
#include <new>

#include "module/ZonwickApp.h"
#include "trace/Trace.h"

namespace {

using win32::CallHost;
using win32::CheckHost;

constexpr const char* kSource = "ZonwickWiz";

_COM_SMARTPTR_TYPEDEF(IUnknown, __uuidof(IUnknown));
_COM_SMARTPTR_TYPEDEF(IQuireDocument, __uuidof(IQuireDocument));
_COM_SMARTPTR_TYPEDEF(IQuirePage, __uuidof(IQuirePage));
_COM_SMARTPTR_TYPEDEF(IImageSource, __uuidof(IImageSource));
_COM_SMARTPTR_TYPEDEF(IImageData, __uuidof(IImageData));
_COM_SMARTPTR_TYPEDEF(IImageLoader, __uuidof(IImageLoader));

template <class Collection>
LONG CountOf(Collection* collection) {
    LONG count = 0;
    CallHost(collection, &Collection::GetCount, &count);
    return count;
}

// A host's byte array: destroyed, and unlocked before that, on every way out.
class ByteArray {
public:
    explicit ByteArray(SAFEARRAY* array) : m_array(array) {}
    ~ByteArray() {
        if (m_locked) SafeArrayUnlock(m_array);
        SafeArrayDestroy(m_array);
    }
    ByteArray(const ByteArray&) = delete;
    ByteArray& operator=(const ByteArray&) = delete;

    // Checks the kind of array, locks it and tells its length.
    LONG Lock() {
        VARTYPE type = VT_EMPTY;
        if (m_array == nullptr || SafeArrayGetDim(m_array) != 1) throw _com_error(E_INVALIDARG);
        CheckHost(SafeArrayGetVartype(m_array, &type), __uuidof(IImageData));
        if (type != VT_UI1) throw _com_error(E_INVALIDARG);
        CheckHost(SafeArrayLock(m_array), __uuidof(IImageData));
        m_locked = true;
        LONG lower = 0;
        LONG upper = 0;
        CheckHost(SafeArrayGetLBound(m_array, 1, &lower), __uuidof(IImageData));
        CheckHost(SafeArrayGetUBound(m_array, 1, &upper), __uuidof(IImageData));
        const int64_t length = int64_t{upper} - lower + 1;
        if (length > std::numeric_limits<LONG>::max()) throw _com_error(E_INVALIDARG);
        return static_cast<LONG>(length);
    }
    const void* Data() const { return m_array->pvData; }

private:
    SAFEARRAY* m_array;
    bool m_locked = false;
};

void SetFlag(uint32_t& flags, uint32_t flag, bool on) {
    flags = on ? flags | flag : flags & ~flag;
}

}  // namespace

void CZonwickApp::SetQuire(IQuire* quire) {
    if (m_pQuire.GetInterfacePtr() != quire) m_pQuire = quire;
}

void CZonwickApp::SetStartPosition(int32_t document, int32_t page) {
    m_nDefaultDoc = document < 0 ? 0 : document;
    m_nDefaultPage = page < 0 ? 0 : page;
}

int32_t CZonwickApp::GetDocumentCount() {
    return CountOf(m_pQuire.GetInterfacePtr());
}

bool CZonwickApp::GetPage(int32_t& document, int32_t& page, IPageImagePtr& image, uint32_t& flags) {
    image = nullptr;
    if (GetDocumentCount() == 0) return false;
    if (document < 0 || document >= GetDocumentCount()) document = m_nDefaultDoc;
    IQuireDocumentPtr doc;
    CallHost(m_pQuire.GetInterfacePtr(), &IQuire::GetItem, LONG{document}, &doc);
    if (!doc || CountOf(doc.GetInterfacePtr()) == 0) return false;
    if (page < 0 || page >= CountOf(doc.GetInterfacePtr())) page = m_nDefaultPage;
    IQuirePagePtr source;
    CallHost(doc.GetInterfacePtr(), &IQuireDocument::GetItem, LONG{page}, &source);
    if (!source) return false;

    SetFlag(flags, NAV_NO_PREV_DOC, document <= 0);
    SetFlag(flags, NAV_NO_PREV_PAGE, page <= 0);
    SetFlag(flags, NAV_NO_NEXT_DOC, document >= GetDocumentCount() - 1);
    SetFlag(flags, NAV_NO_NEXT_PAGE, page >= CountOf(doc.GetInterfacePtr()) - 1);

    IPageImagePtr made(static_cast<IPageImage*>(CreateHostObject(host::kClsidPageImage, __uuidof(IPageImage))), false);
    if (!made || !CopyPageImage(source, made)) return false;
    image = made;
    return true;
}

bool CZonwickApp::CopyPageImage(IQuirePage* page, IPageImage* image) {
    IImageDataPtr data;
    {
        IImageSourcePtr source;
        CallHost(page, &IQuirePage::GetImageSource, &source);
        IUnknownPtr unknown;
        CallHost(source.GetInterfacePtr(), &IImageSource::GetData, &unknown);
        if (!unknown) win32::ThrowHostError(E_POINTER, __uuidof(IImageSource));
        const HRESULT status = unknown->QueryInterface(__uuidof(IImageData), reinterpret_cast<void**>(&data));
        if (FAILED(status) && status != E_NOINTERFACE) win32::ThrowHostError(status, __uuidof(IImageData));
    }
    SAFEARRAY* bytes = nullptr;
    CallHost(data.GetInterfacePtr(), &IImageData::GetBytes, &bytes);
    ByteArray array(bytes);
    const LONG length = array.Lock();
    const std::unique_ptr<BYTE[]> copy(new (std::nothrow) BYTE[static_cast<size_t>(length)]);
    if (copy == nullptr) return false;
    if (length > 0) std::memcpy(copy.get(), array.Data(), static_cast<size_t>(length));

    IImageLoaderPtr loader;
    if (FAILED(image->QueryInterface(__uuidof(IImageLoader), reinterpret_cast<void**>(&loader)))) return false;
    return loader && SUCCEEDED(loader->LoadFromMemory(copy.get(), length));
}

void* CZonwickApp::CreateHostObject(REFCLSID classId, REFIID iid) {
    void* object = nullptr;
    constexpr DWORD kContext = CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;
    if (SUCCEEDED(CoCreateInstance(classId, nullptr, kContext, iid, &object))) return object;

    wchar_t text[40];
    const auto& d = classId.Data4;
    std::swprintf(text, std::size(text), L"{%08lX-%04X-%04x-%02X%02X-%02X%02X%02X%02X%02X%02X}", classId.Data1,
                  classId.Data2, classId.Data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]);
    trace::TraceMessage(trace::kError, kSource, __LINE__, trace::HostMessage{0}, text);
    return nullptr;
}
