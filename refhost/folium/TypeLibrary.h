#pragma once

#include <oaidl.h>

namespace folium {

// The type information of the control's class, which tells containers what events it has. Made in memory: there is no
// type library file to lose. The caller releases it.
HRESULT MakeClassInfo(ITypeInfo** info);

}  // namespace folium
