#pragma once
// What is fuzzed: each target reads its input as data from outside, and checks what has to hold for any of it. A
// failure of the code under test other than the documented one ends the process.

#include <cstddef>
#include <cstdint>

#include "fuzz/FuzzInput.h"

namespace fuzz {

// Settings files: reading and writing them, and the area sets in them.
void settings_file(Input input);
// Area sets in a node tree whose calls fail.
void settings_tree(Input input);
// Names of area set nodes, as the module and the program read them.
void set_key(Input input);
// A number typed into the rectangle list.
void cell_text(Input input);
// Column widths and cell texts of the list control.
void column_widths(Input input);
// Lengths and their texts, the preview of a page.
void page_lengths(Input input);
// Zone files (.uzn).
void zone_file(Input input);
// Area set files (JSON) and the plan of their import.
void area_set_file(Input input);
// Masking of images of any size.
void image_mask(Input input);
// Headers of image files, frames of TIFF files, BMP files.
void image_header(Input input);
// BMP files as pages.
void page_file(Input input);

struct Target {
    const char* name;
    void (*run)(Input input);
};
#define ZONWICK_TARGET(name) \
    { #name, name }
inline constexpr Target kTargets[] = {
    ZONWICK_TARGET(settings_file), ZONWICK_TARGET(settings_tree), ZONWICK_TARGET(set_key),
    ZONWICK_TARGET(cell_text),     ZONWICK_TARGET(column_widths), ZONWICK_TARGET(page_lengths),
    ZONWICK_TARGET(zone_file),     ZONWICK_TARGET(area_set_file), ZONWICK_TARGET(image_mask),
    ZONWICK_TARGET(image_header),  ZONWICK_TARGET(page_file),
};
#undef ZONWICK_TARGET

}  // namespace fuzz
