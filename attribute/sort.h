// Ascending tag order at every depth, with what several definitions of one tag say merged.
#pragma once

#include "attribute/sequence_cursor.h"

// 1 when sorted; 0 when place is none or the cursor's current item has no list, and after a memory message (what
// could not be sorted stays as it was). Costs n log n; definitions of one tag may cost the square of their number.
int DICOM_Attribute_Sort (Window window, SequenceCursor *cursor, Attribute **place);

// 1 when a must come after its successor b, 0 when the pair stays. Equal tags get their marks merged.
int DICOM_Attribute_Sort_Swap (Window window, const SequenceCursor *cursor, Attribute *a, Attribute *b);
