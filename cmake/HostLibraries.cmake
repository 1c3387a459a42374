# What Zonwick.dll imports from the host's closed libraries, all of it and only here.
#
# An integrator puts in the real host's: the names of the four DLLs, and for functions imported by name the name under
# which the host's compiler exports them (the second word; the first is the symbol that the declarations in src/host/
# give with this compiler). Ordinals are part of the contract and stay.

set(ZONWICK_HOST_SUPPORT_DLL "HostSupport.dll" CACHE STRING "Host support library: logger and message box")
set(ZONWICK_HOST_LANGUAGE_DLL "HostLanguage.dll" CACHE STRING "Host language library")
set(ZONWICK_HOST_CONTROLS_DLL "HostControls.dll" CACHE STRING "Host controls library")
set(ZONWICK_HOST_IMAGING_DLL "HostImaging.dll" CACHE STRING "Host imaging library")

set(host_support_imports
    "_ZN8CLogBase8InitImplEPKwP11HINSTANCE__S3_ == _ZN8CLogBase8InitImplEPKwP11HINSTANCE__S3_"
    "_ZN8CLogBase9TraceImplEiP11HINSTANCE__PKciPKwPc == _ZN8CLogBase9TraceImplEiP11HINSTANCE__PKciPKwPc"
    "_ZN8CLogBase9TraceImplEiP11HINSTANCE__PKcijPc == _ZN8CLogBase9TraceImplEiP11HINSTANCE__PKcijPc"
    "_ZN8CLogBase9TraceImplEiP11HINSTANCE__PKciN3Log7MessageEPc == _ZN8CLogBase9TraceImplEiP11HINSTANCE__PKciN3Log7MessageEPc"
    "QWMessageBoxExW == QWMessageBoxExW")
set(host_language_imports
    "_ZN5CLang17GetResourceHandleEP11HINSTANCE__ == _ZN5CLang17GetResourceHandleEP11HINSTANCE__")
set(host_controls_imports
    "HostApplicationName @103 NONAME"
    "HostMessageBox @104 NONAME"
    "HostHelp @105 NONAME")
set(host_imaging_imports
    "HostCreateMaskedImage @100 NONAME"
    "HostCopyImage @26 NONAME"
    "HostReleaseImage @83 NONAME")

# Makes the import library `target` for the functions of one DLL of the host.
function(zonwick_host_library target dll)
    set(def ${CMAKE_BINARY_DIR}/host/${target}.def)
    set(lib ${CMAKE_BINARY_DIR}/host/lib${target}.a)
    list(JOIN ARGN "\n" exports)
    file(CONFIGURE OUTPUT ${def} CONTENT "LIBRARY ${dll}\nEXPORTS\n${exports}\n" @ONLY)
    add_custom_command(OUTPUT ${lib} COMMAND ${CMAKE_DLLTOOL} -m i386:x86-64 -d ${def} -l ${lib} DEPENDS ${def}
                       COMMENT "Import library for ${dll}" VERBATIM)
    add_custom_target(${target}_import DEPENDS ${lib})
    add_library(${target} INTERFACE)
    add_dependencies(${target} ${target}_import)
    target_link_libraries(${target} INTERFACE ${lib})
endfunction()

zonwick_host_library(host_support ${ZONWICK_HOST_SUPPORT_DLL} ${host_support_imports})
zonwick_host_library(host_language ${ZONWICK_HOST_LANGUAGE_DLL} ${host_language_imports})
zonwick_host_library(host_controls ${ZONWICK_HOST_CONTROLS_DLL} ${host_controls_imports})
zonwick_host_library(host_imaging ${ZONWICK_HOST_IMAGING_DLL} ${host_imaging_imports})
