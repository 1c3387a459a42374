// The exports.
#include "refhost/documents/HostDocuments.h"

#include "refhost/com/ComObject.h"
#include "refhost/documents/PageImage.h"
#include "refhost/documents/Quire.h"
#include "refhost/documents/Report.h"

namespace documents {

namespace {

// Everything here is used on one thread.
struct State {
    std::wstring text;
    HostDocumentsReporter reporter = nullptr;
    void* context = nullptr;
    Override resolution;
};

State& TheState() {
    static State state;
    return state;
}

// Full paths, so that a change of the current folder does not move a document.
std::wstring FullPath(const wchar_t* path) {
    std::wstring full(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetFullPathNameW(path, static_cast<DWORD>(full.size()), full.data(), nullptr);
        if (length == 0) return path;
        const bool fits = length < full.size();
        full.resize(length);
        if (fits) break;
    }
    while (full.size() > 3 && full.back() == L'\\') full.pop_back();
    return full;
}

HRESULT OpenDocuments(const wchar_t* const* paths, UINT count, IQuire** quire) {
    std::vector<std::shared_ptr<DocumentFiles>> found;
    for (UINT i = 0; i < count; ++i) {
        if (paths[i] == nullptr) return E_POINTER;
        const std::wstring path = FullPath(paths[i]);
        if (StampOf(path)) {
            found.push_back(std::make_shared<DocumentFiles>(path));
        } else {
            Report(path + L": there is no such file or folder; check its name");
        }
    }
    if (found.empty() && count > 0) return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    const bool all = found.size() == count;
    *quire = MakeQuire(std::move(found));
    return all ? S_OK : S_FALSE;
}

}  // namespace

void Report(const std::wstring& text) {
    State& state = TheState();
    state.text = text;
    if (state.reporter != nullptr) state.reporter(state.context, text.c_str());
}

Override ResolutionOverride() {
    return TheState().resolution;
}

}  // namespace documents

extern "C" {

HRESULT WINAPI HostOpenDocuments(const wchar_t* const* paths, UINT count, IQuire** quire) {
    if (quire == nullptr || (paths == nullptr && count > 0)) return E_POINTER;
    *quire = nullptr;
    return com::Guard([&] { return documents::OpenDocuments(paths, count, quire); });
}

void WINAPI HostDocumentsSetReporter(HostDocumentsReporter reporter, void* context) {
    documents::TheState().reporter = reporter;
    documents::TheState().context = context;
}

const wchar_t* WINAPI HostDocumentsErrorText(void) {
    return documents::TheState().text.c_str();
}

void WINAPI HostDocumentsSetResolution(double dpiX, double dpiY) {
    documents::TheState().resolution = {dpiX, dpiY};
}

}  // extern "C"

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
    return com::GetClassObject<documents::PageImage>(host::kClsidPageImage, classId, iid, object);
}

STDAPI DllCanUnloadNow() {
    return com::CanUnloadNow();
}
