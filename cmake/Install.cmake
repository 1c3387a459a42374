# What `cmake --install` lays down: the package of a host developer. Everything in it finds the rest by its own place,
# so the folder can be moved.
include(CMakePackageConfigHelpers)

get_property(language_modules GLOBAL PROPERTY zonwick_language_modules)
set(reference_parts HostControls HostDocuments HostImaging HostLanguage HostSettings HostSupport HostUnits Folium)
set(binaries Zonwick ${language_modules} ${reference_parts} zonhost)
set(package_folder ${CMAKE_BINARY_DIR}/package)
set(module_definition ${PROJECT_SOURCE_DIR}/src/exports/zonwick.def)

# The same sources give the same bytes.
foreach(target ${binaries})
    target_link_options(${target} PRIVATE -Wl,--no-insert-timestamp)
endforeach()

# --- Binaries and import libraries

# The program, the parts that it loads and the guide that its help opens, with the one it leads to, have to stand in one
# folder.
foreach(target ${binaries})
    install(PROGRAMS $<TARGET_FILE:${target}> DESTINATION bin)
endforeach()
install(DIRECTORY docs DESTINATION bin FILES_MATCHING PATTERN "operator.*" PATTERN "troubleshooting.*"
        PATTERN "*.png")

install(FILES ${module_definition} DESTINATION lib RENAME Zonwick.def)

# The tool writes the path that it is given into the library, so that is the name alone.
set(mingw_library ${package_folder}/libZonwick.dll.a)
file(MAKE_DIRECTORY ${package_folder})
add_custom_command(
    OUTPUT ${mingw_library}
    COMMAND ${CMAKE_DLLTOOL} --deterministic-libraries -m i386:x86-64 -d ${module_definition} -l libZonwick.dll.a
    WORKING_DIRECTORY ${package_folder}
    DEPENDS ${module_definition}
    COMMENT "Import library for mingw-w64"
    VERBATIM)
install(FILES ${mingw_library} DESTINATION lib)
set(import_libraries ${mingw_library})

find_program(ZONWICK_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 DOC "Makes the import library for MSVC")
if(ZONWICK_LLVM_DLLTOOL)
    set(msvc_library ${package_folder}/Zonwick.lib)
    add_custom_command(
        OUTPUT ${msvc_library} COMMAND ${ZONWICK_LLVM_DLLTOOL} -m i386:x86-64 -d ${module_definition} -l ${msvc_library}
        DEPENDS ${module_definition} COMMENT "Import library for MSVC" VERBATIM)
    install(FILES ${msvc_library} DESTINATION lib)
    list(APPEND import_libraries ${msvc_library})
else()
    message(STATUS "No llvm-dlltool (Debian package llvm): the import library for MSVC is left out of the package")
endif()
add_custom_target(zonwick_package_files ALL DEPENDS ${import_libraries})
add_dependencies(zonwick_package_files ${binaries})

# --- Headers

install(FILES include/zonwick/zonwick.h DESTINATION include/zonwick)
install(DIRECTORY src/host DESTINATION include/zonwick FILES_MATCHING PATTERN "*.h")
foreach(header controls/HostControls documents/HostDocuments documents/PixelAccess imaging/HostImaging
               language/HostLanguage settings/HostSettings support/HostSupport units/HostUnits)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES refhost/${header}.h DESTINATION include/zonwick/refhost/${folder})
endforeach()

# --- CMake package

set(runtime_files "")
foreach(target Zonwick ${language_modules})
    list(APPEND runtime_files ${target}.dll)
endforeach()
list(TRANSFORM reference_parts APPEND .dll OUTPUT_VARIABLE reference_files)
configure_file(cmake/package/ZonwickConfig.cmake.in ${package_folder}/ZonwickConfig.cmake @ONLY)
write_basic_package_version_file(${package_folder}/ZonwickConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${package_folder}/ZonwickConfig.cmake ${package_folder}/ZonwickConfigVersion.cmake
        DESTINATION lib/cmake/Zonwick)

# --- Sources of the reference host, guides and samples, in the same places to each other as here

install(DIRECTORY docs refhost samples DESTINATION share/zonwick)
install(FILES cmake/package/CMakeLists.txt DESTINATION share/zonwick)
install(FILES cmake/BuildOptions.cmake cmake/DllRuntime.cpp cmake/HeaderOnly.cmake cmake/mingw-w64-x86_64.cmake
        DESTINATION share/zonwick/cmake)
install(FILES res/version.h.in DESTINATION share/zonwick/res)
configure_file(cmake/package/README.md.in ${package_folder}/README.md @ONLY)
install(FILES ${package_folder}/README.md LICENSE DESTINATION .)

# The minimal host stands in the guide, and comes as files too.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/integration.md)
file(READ docs/integration.md guide)
foreach(block "cpp;main.cpp" "cmake;CMakeLists.txt")
    list(GET block 0 language)
    list(GET block 1 name)
    if(NOT guide MATCHES "```${language}\n([^`]*)```")
        message(FATAL_ERROR "docs/integration.md has no block of ${language} for the minimal host")
    endif()
    file(CONFIGURE OUTPUT ${package_folder}/minimal/${name} CONTENT "${CMAKE_MATCH_1}" @ONLY)
    install(FILES ${package_folder}/minimal/${name} DESTINATION share/zonwick/minimal)
endforeach()
