#pragma once
// What is fuzzed: each target reads its input as data from outside, and checks what has to hold for any of it. A
// failure of the code under test other than the documented one ends the process.

#include <cstddef>
#include <cstdint>

#include "fuzz/FuzzInput.h"

namespace fuzz {

// Settings files: reading and writing them, and the area sets in them.
void settings_file(Input input);
// Names of area set nodes, as the module and the program read them.
void set_key(Input input);
// Zone files (.uzn).
void zone_file(Input input);
// Area set files (JSON) and the plan of their import.
void area_set_file(Input input);
// Masking of images of any size.
void image_mask(Input input);
// Page files of every kind: their facts, frames and pixels.
void page_file(Input input);

struct Target {
    const char* name;
    void (*run)(Input input);
};
#define ZONWICK_TARGET(name) \
    { #name, name }
inline constexpr Target kTargets[] = {
    ZONWICK_TARGET(settings_file), ZONWICK_TARGET(set_key),    ZONWICK_TARGET(zone_file),
    ZONWICK_TARGET(area_set_file), ZONWICK_TARGET(image_mask), ZONWICK_TARGET(page_file),
};
#undef ZONWICK_TARGET

}  // namespace fuzz
