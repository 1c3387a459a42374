#pragma once

#include <cstdint>

// Where a page lies in the document stack: which ways on are closed.
enum NavigationFlag : uint32_t {
    NAV_NO_PREV_PAGE = 1,
    NAV_NO_NEXT_PAGE = 2,
    NAV_NO_PREV_DOC = 4,
    NAV_NO_NEXT_DOC = 8,
};
