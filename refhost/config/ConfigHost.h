#pragma once
// The host's configuration object: hands out a document stack, and checks that every Begin is followed by one End.

#include "host/ConfigObjects.h"
#include "refhost/com/ComObject.h"

namespace confighost {

// For page configurations on the window thread. It starts with one reference, its maker's.
class ConfigHost final : public com::Object<com::NoDispatch<IConfigHost>, com::NoDispatch<IConfigScope>> {
public:
    // Adds a reference to the stack; null is handed out as it is.
    explicit ConfigHost(IQuire* quire);

    HRESULT STDMETHODCALLTYPE GetQuire(IQuire** quire) override;
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }

    // One scope at a time: a second Begin, and an End without Begin, fail with E_UNEXPECTED and count as mistakes.
    HRESULT STDMETHODCALLTYPE Begin() override;
    HRESULT STDMETHODCALLTYPE End() override;

    int Scopes() const { return m_scopes; }      // that were begun
    int Mistakes() const { return m_mistakes; }  // calls out of turn
    bool IsOpen() const { return m_open; }

private:
    ~ConfigHost() override;

    IQuire* m_quire;
    int m_scopes = 0;
    int m_mistakes = 0;
    bool m_open = false;
};

}  // namespace confighost
