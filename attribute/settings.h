// What a reading or a comparison may choose. One record, set by start-up and the configuration, passed down to whoever
// asks; zero bytes and MODE_EXPLICIT as mode_start are the program as it starts.
#pragma once

#include <stdint.h>

#include "attribute/attribute.h"

struct Settings {
    int       kind_warning;     // Kind of length, structural, store, sort, repair and syntax warnings: 0 or LOG_WARNING.
    int       kind_note;        // Kind of "Unknown tag", retired, VR mismatch and syntax notes: 0 or LOG_REPORT.
    uint8_t   mode_start;       // Reading mode of a file's first element: MODE_EXPLICIT, perhaps with a vendor field.
    int32_t   Nb_Skip;          // Tags that a two-file comparison leaves out: patterns, owned; an entry may be none.
    char    **Skip_Group;
    char    **Skip_Element;
};
