#pragma once

#include <comdef.h>
#include <comip.h>

namespace win32 {

// The smart pointer of an interface; the toolchain's headers name none for the system's interfaces.
template <class Interface>
using ComPtr = _com_ptr_t<_com_IIID<Interface, &__uuidof(Interface)>>;

}  // namespace win32
