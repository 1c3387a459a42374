# Header-only packages of the build machine, each with an include folder of its own: /usr/include as a whole would put
# the wrong C library's headers in front of a cross build.
function(zonwick_header_only target folder)
    set(include_dir ${CMAKE_BINARY_DIR}/header-only/${target})
    file(MAKE_DIRECTORY ${include_dir})
    file(CREATE_LINK /usr/include/${folder} ${include_dir}/${folder} SYMBOLIC)
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE ${include_dir})
endfunction()

zonwick_header_only(nlohmann_json nlohmann)
zonwick_header_only(cli11 CLI)
