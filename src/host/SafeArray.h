#pragma once
// The arrays that objects hand out: one dimension of elements of one kind, which the taker destroys.

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <utility>

namespace host {

// Owns an array; unlocks it, where Lock has locked it, and destroys it on every way out.
class ArrayOwner {
public:
    explicit ArrayOwner(SAFEARRAY* array) noexcept : m_array(array) {}
    ~ArrayOwner() {
        if (m_locked) SafeArrayUnlock(m_array);
        SafeArrayDestroy(m_array);
    }
    ArrayOwner(const ArrayOwner&) = delete;
    ArrayOwner& operator=(const ArrayOwner&) = delete;

    SAFEARRAY* Release() noexcept { return std::exchange(m_array, nullptr); }

    // For the elements to be read. E_INVALIDARG for no array, more dimensions or elements of another kind; else what
    // the system's functions say.
    HRESULT Lock(VARTYPE kind) noexcept {
        VARTYPE type = VT_EMPTY;
        if (m_array == nullptr || SafeArrayGetDim(m_array) != 1) return E_INVALIDARG;
        HRESULT status = SafeArrayGetVartype(m_array, &type);
        if (SUCCEEDED(status) && type != kind) return E_INVALIDARG;
        if (SUCCEEDED(status)) status = SafeArrayGetLBound(m_array, 1, &m_lower);
        if (SUCCEEDED(status)) status = SafeArrayGetUBound(m_array, 1, &m_upper);
        if (SUCCEEDED(status)) status = SafeArrayLock(m_array);
        m_locked = SUCCEEDED(status);
        return status;
    }
    LONG Lower() const noexcept { return m_lower; }
    LONG Upper() const noexcept { return m_upper; }
    int64_t Count() const noexcept { return int64_t{m_upper} - m_lower + 1; }
    // The first element.
    template <class Element>
    Element* Data() const noexcept {
        return static_cast<Element*>(m_array->pvData);
    }

private:
    SAFEARRAY* m_array;
    LONG m_lower = 0;
    LONG m_upper = -1;
    bool m_locked = false;
};

}  // namespace host
