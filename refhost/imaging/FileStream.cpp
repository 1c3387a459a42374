#include "refhost/imaging/FileStream.h"

namespace imaging {

namespace {

HRESULT Status(DWORD error) {
    return HRESULT_FROM_WIN32(error);
}

}  // namespace

HRESULT FileStream::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    const bool known = id == __uuidof(IUnknown) || id == __uuidof(ISequentialStream) || id == __uuidof(IStream);
    *object = known ? static_cast<IStream*>(this) : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG FileStream::Release() {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
}

HRESULT FileStream::Read(void* bytes, ULONG length, ULONG* read) {
    if (m_file == nullptr) return E_UNEXPECTED;
    size_t count = 0;
    const DWORD error = m_file->Read(bytes, length, &count);
    if (read != nullptr) *read = static_cast<ULONG>(count);
    if (error != 0) return Status(error);
    return count == length ? S_OK : S_FALSE;
}

HRESULT FileStream::Write(const void* bytes, ULONG length, ULONG* written) {
    if (m_file == nullptr) return E_UNEXPECTED;
    size_t count = 0;
    const DWORD error = m_file->Write(bytes, length, &count);
    if (written != nullptr) *written = static_cast<ULONG>(count);
    return Status(error);
}

HRESULT FileStream::Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* position) {
    static_assert(STREAM_SEEK_SET == FILE_BEGIN && STREAM_SEEK_CUR == FILE_CURRENT && STREAM_SEEK_END == FILE_END);
    if (m_file == nullptr) return E_UNEXPECTED;
    uint64_t reached = 0;
    const DWORD error = m_file->Seek(distance.QuadPart, origin, &reached);
    if (error == 0 && position != nullptr) position->QuadPart = reached;
    return Status(error);
}

HRESULT FileStream::SetSize(ULARGE_INTEGER size) {
    return m_file == nullptr ? E_UNEXPECTED : Status(m_file->SetSize(size.QuadPart));
}

HRESULT FileStream::Commit(DWORD) {
    return m_file == nullptr ? E_UNEXPECTED : Status(m_file->Problem());
}

HRESULT FileStream::Stat(STATSTG* stat, DWORD) {
    if (stat == nullptr) return STG_E_INVALIDPOINTER;
    if (m_file == nullptr) return E_UNEXPECTED;
    *stat = {};
    stat->type = STGTY_STREAM;
    stat->grfMode = STGM_READWRITE;
    uint64_t size = 0;
    const DWORD error = m_file->Size(&size);
    stat->cbSize.QuadPart = size;
    return Status(error);
}

HRESULT FileStream::CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) {
    return E_NOTIMPL;
}

}  // namespace imaging
