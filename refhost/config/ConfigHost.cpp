#include "refhost/config/ConfigHost.h"

namespace confighost {

ConfigHost::ConfigHost(IQuire* quire) : m_quire(quire) {
    if (m_quire != nullptr) m_quire->AddRef();
}

ConfigHost::~ConfigHost() {
    if (m_quire != nullptr) m_quire->Release();
}

HRESULT STDMETHODCALLTYPE ConfigHost::GetQuire(IQuire** quire) {
    if (quire == nullptr) return E_POINTER;
    *quire = m_quire;
    if (m_quire != nullptr) m_quire->AddRef();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ConfigHost::Begin() {
    if (m_open) {
        ++m_mistakes;
        return E_UNEXPECTED;
    }
    m_open = true;
    ++m_scopes;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ConfigHost::End() {
    if (!m_open) {
        ++m_mistakes;
        return E_UNEXPECTED;
    }
    m_open = false;
    return S_OK;
}

}  // namespace confighost
