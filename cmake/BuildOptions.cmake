# Compiler and linker options that hold for every target of this project: link zonwick_options.
add_library(zonwick_options INTERFACE)

set(warnings -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(DEFINED ENV{CI})
    list(APPEND warnings -Werror)
endif()
target_compile_options(zonwick_options INTERFACE ${warnings})

if(WIN32)
    # Nothing to ship beside the binaries: the compiler's runtime is linked in.
    target_link_options(zonwick_options INTERFACE -static)
    target_compile_definitions(zonwick_options INTERFACE UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX
                                                         _WIN32_WINNT=0x0601 WINVER=0x0601)
    # See DllRuntime.cpp.
    set(is_dll $<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>)
    target_sources(zonwick_options INTERFACE $<${is_dll}:${CMAKE_CURRENT_LIST_DIR}/DllRuntime.cpp>)
    target_link_options(zonwick_options INTERFACE $<${is_dll}:-Wl,--entry,DllRuntimeEntry>)
    foreach(function mutex_init mutex_destroy mutex_lock mutex_unlock cond_wait cond_broadcast once key_create getspecific
                     setspecific)
        target_link_options(zonwick_options INTERFACE $<${is_dll}:-Wl,--wrap=pthread_${function}>)
    endforeach()
    # Every COM interface has a virtual table and no virtual destructor; that is its contract.
    target_compile_options(zonwick_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-non-virtual-dtor>)
    if(ZONWICK_CHECKED)
        target_compile_options(
            zonwick_options
            INTERFACE
                $<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize=undefined,float-cast-overflow;-fsanitize-undefined-trap-on-error;-fstack-protector-all;-D_GLIBCXX_ASSERTIONS>
        )
        target_link_options(zonwick_options INTERFACE -fstack-protector-all)
    else()
        target_compile_options(zonwick_options INTERFACE -ffunction-sections -fdata-sections)
        target_link_options(zonwick_options INTERFACE -Wl,--gc-sections -s)
    endif()
else()
    if(ZONWICK_SANITIZE)
        target_compile_options(zonwick_options INTERFACE -fsanitize=${ZONWICK_SANITIZE} -fno-sanitize-recover=all
                                                         -fno-omit-frame-pointer -D_GLIBCXX_ASSERTIONS)
        target_link_options(zonwick_options INTERFACE -fsanitize=${ZONWICK_SANITIZE})
    endif()
    if(ZONWICK_FUZZ)
        target_compile_options(zonwick_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined
                                                         -fno-sanitize-recover=all)
        target_link_options(zonwick_options INTERFACE -fsanitize=address,undefined)
    endif()
endif()
