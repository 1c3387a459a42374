# Test programs: GoogleTest from the build machine's sources, and a list of all programs for scripts/test.
set(gtest_root /usr/src/googletest)
add_library(gtest STATIC ${gtest_root}/googletest/src/gtest-all.cc ${gtest_root}/googlemock/src/gmock-all.cc)
target_include_directories(gtest SYSTEM PUBLIC ${gtest_root}/googletest/include ${gtest_root}/googlemock/include)
target_include_directories(gtest PRIVATE ${gtest_root}/googletest ${gtest_root}/googlemock)
if(WIN32)
    target_compile_definitions(gtest PUBLIC GTEST_HAS_PTHREAD=0)
elseif(ZONWICK_SANITIZE)
    target_compile_options(gtest PUBLIC -fsanitize=${ZONWICK_SANITIZE})
endif()

# Test code need not run fast, but has to be built soon.
function(zonwick_quick_compile target)
    target_compile_options(${target} PRIVATE -O0)
endfunction()
zonwick_quick_compile(gtest)

# The same for linking them. What is shipped is linked by the toolchain's own linker, which is far slower here.
find_program(ZONWICK_TEST_LINKER NAMES ld.lld DOC "Links the Windows test programs, if it is there")
if(WIN32 AND NOT CMAKE_HOST_WIN32 AND ZONWICK_TEST_LINKER)
    # A cross compiler takes no other linker by its name.
    set(zonwick_quick_link -fno-use-linker-plugin "SHELL:-wrapper ${PROJECT_SOURCE_DIR}/cmake/link-with-lld")
endif()

# zonwick_add_test(NAME SOURCES ... [LIBRARIES ...] [TIMEOUT seconds] [DISPLAY])
# A test program with the shared main of tests/support. TIMEOUT (default 120) is a watchdog, not a measure; DISPLAY says
# that it needs a screen.
function(zonwick_add_test name)
    cmake_parse_arguments(arg "DISPLAY" "TIMEOUT" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE test_support ${arg_LIBRARIES} zonwick_options)
    zonwick_quick_compile(${name})
    target_link_options(${name} PRIVATE ${zonwick_quick_link})
    target_precompile_headers(${name} REUSE_FROM test_support)
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    set(display 0)
    if(arg_DISPLAY)
        set(display 1)
    endif()
    set_property(GLOBAL APPEND PROPERTY zonwick_tests "${name} ${arg_TIMEOUT} ${display}")
endfunction()

# Writes tests.txt in the build tree: program, watchdog in seconds, 1 when it needs a screen.
function(zonwick_write_test_list)
    get_property(tests GLOBAL PROPERTY zonwick_tests)
    list(JOIN tests "\n" text)
    file(WRITE ${CMAKE_BINARY_DIR}/tests.txt "${text}\n")
endfunction()
