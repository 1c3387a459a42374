// Access to the host's document stack: the pages that the dialogs show.
#include <cstring>
#include <cwchar>
#include <limits>
#include <memory>
#include <new>

#include "host/SafeArray.h"
#include "module/ZonwickApp.h"
#include "trace/Trace.h"

namespace {

using win32::CallHost;
using win32::CheckHost;

constexpr const char* kSource = host::kSourceZonwickWiz;

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
        data = win32::QueryHost<IImageDataPtr>(unknown);
    }
    SAFEARRAY* bytes = nullptr;
    CallHost(data.GetInterfacePtr(), &IImageData::GetBytes, &bytes);
    // Given back in the opposite order: the host's array, the copy, the loader.
    IImageLoaderPtr loader;
    std::unique_ptr<BYTE[]> copy;
    host::ArrayOwner array(bytes);
    CheckHost(array.Lock(VT_UI1), __uuidof(IImageData));
    if (array.Count() > std::numeric_limits<LONG>::max()) win32::ThrowHostError(E_INVALIDARG, __uuidof(IImageData));
    const auto length = static_cast<LONG>(array.Count());
    copy.reset(new (std::nothrow) BYTE[static_cast<size_t>(length)]);
    if (copy == nullptr) return false;
    if (length > 0) std::memcpy(copy.get(), array.Data<BYTE>(), static_cast<size_t>(length));

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
