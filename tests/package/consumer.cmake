# The project of a host developer that links against the installed package alone; with it the test's own programs.
cmake_minimum_required(VERSION 3.25)
project(consumer LANGUAGES C CXX)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)

find_package(Zonwick ${VERSION} EXACT CONFIG REQUIRED)

# The header by itself, in both languages, and the declarations as a compiler without __CRT_UUID_DECL sees them.
file(WRITE ${CMAKE_BINARY_DIR}/header.c
     "#include <zonwick/zonwick.h>\n_Static_assert(sizeof(SAAreaInfo) == 140, \"\");\n")
file(WRITE ${CMAKE_BINARY_DIR}/declarations.cpp
     "#include <windows.h>\n#include <oaidl.h>\n#undef __CRT_UUID_DECL\n"
     "#include \"host/ConfigObjects.h\"\n#include \"host/Controls.h\"\n#include \"host/Imaging.h\"\n"
     "#include \"host/Language.h\"\n#include \"host/ListTable.h\"\n#include \"host/MeasureUnits.h\"\n"
     "#include \"host/PageDisplay.h\"\n#include \"host/SettingsStore.h\"\n#include \"host/Support.h\"\n"
     "#include \"refhost/controls/HostControls.h\"\n#include \"refhost/documents/PixelAccess.h\"\n"
     "#include \"refhost/imaging/HostImaging.h\"\n#include \"refhost/language/HostLanguage.h\"\n"
     "#include \"refhost/support/HostSupport.h\"\n#include \"refhost/units/HostUnits.h\"\n"
     "static_assert(host::Iid<IFolium>.Data1 != 0 && host::Iid<ISettingsNode>.Data1 != 0);\n")
add_library(headers OBJECT ${CMAKE_BINARY_DIR}/header.c ${CMAKE_BINARY_DIR}/declarations.cpp)
target_link_libraries(headers PRIVATE Zonwick::Zonwick Zonwick::Host)
target_compile_options(headers PRIVATE -Wall -Wextra -Werror)

add_executable(driver ${DRIVER})
target_link_libraries(driver PRIVATE version)
target_link_options(driver PRIVATE -municode -static)
