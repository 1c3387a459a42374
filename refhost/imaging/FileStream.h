#pragma once
// The stream through which an encoder writes its file. What fails is remembered by the file, because encoders look away
// from failing and short writes.

#include <objidl.h>

#include <atomic>

#include "refhost/files/PartFile.h"

namespace imaging {

class FileStream final : public IStream {
public:
    // `file` has to live until Detach. The object begins with one reference and deletes itself.
    explicit FileStream(files::PartFile& file) : m_file(&file) {}
    // For an encoder that holds on to its stream: from now on every call fails.
    void Detach() { m_file = nullptr; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE Read(void* bytes, ULONG length, ULONG* read) override;
    HRESULT STDMETHODCALLTYPE Write(const void* bytes, ULONG length, ULONG* written) override;
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* position) override;
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) override;
    HRESULT STDMETHODCALLTYPE Commit(DWORD flags) override;
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* stat, DWORD flags) override;
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override;
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

private:
    ~FileStream() = default;

    files::PartFile* m_file;
    std::atomic<ULONG> m_references{1};
};

}  // namespace imaging
