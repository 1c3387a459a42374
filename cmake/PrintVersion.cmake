# cmake -P: the version, for scripts.
include(${CMAKE_CURRENT_LIST_DIR}/Version.cmake)
message(${ZONWICK_VERSION})
