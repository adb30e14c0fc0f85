// Two attribute lists side by side, tag by tag, into sequences and items. Every tag is classified, and the merged record
// with that tag gets the difference code, the compared quantities, the value texts of both sides and a description.
#pragma once

#include "attribute/sequence_cursor.h"

enum Difference_Code : uint16_t {
    DIFFERENCE_NONE              = 0,       // Modality walk: in the definition only.
    DIFFERENCE_SKIPPED           = 1,
    DIFFERENCE_BYTES             = 2,
    DIFFERENCE_LENGTH            = 4,
    DIFFERENCE_VR                = 8,
    DIFFERENCE_ONLY_A            = 16,
    DIFFERENCE_ONLY_B            = 32,
    DIFFERENCE_FILE_ONLY         = 64,      // Modality walk.
    DIFFERENCE_FILE_AND_DEFINITION = 128,   // Modality walk.
    DIFFERENCE_EXPLICIT_IMPLICIT = 256,
    DIFFERENCE_IMPLICIT_EXPLICIT = 512
};

static const int VALUE_TEXT_LENGTH = 62;    // Longest text that Value_Text gives.

// The cursor stands on the sequence and item that hold the current lists, so that the merged record is found. depth is
// the nesting depth; skipped not 0: everything here lies inside a skipped sequence. Each returns the number of
// differences, those of the items included.
int Diff_Lists     (Window window, SequenceCursor *cursor, Attribute *merged, Attribute *list_a, Attribute *list_b,
                    int depth, int skipped);
int Diff_Attribute (Window window, SequenceCursor *cursor, Attribute *merged, Attribute *a, Attribute *b, int depth,
                    int skipped);

// The same for a file and its definition; the count is that of the file's attributes.
int Modality_Diff_Lists     (Window window, SequenceCursor *cursor, Attribute *merged, Attribute *list_a,
                             Attribute *list_d, int depth, int skipped);
int Modality_Diff_Attribute (Window window, SequenceCursor *cursor, Attribute *merged, Attribute *a, Attribute *d,
                             int depth, int skipped);

// The value in at most 62 characters, in one shared buffer: valid until the next call.
const char *Value_Text (Window window, Attribute *attribute);
