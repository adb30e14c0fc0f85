// The "Stool" listing: a whole list written into the trace, one coloured line an attribute.
#pragma once

#include <stddef.h>

#include "attribute/sequence_cursor.h"

static const size_t LISTING_TEXT_SIZE = 512;    // Holds any value text.

// Writes the legend (at depth 0) and every record, through sequences and items.
void DICOM_Attribute_List (Window window, SequenceCursor *cursor, Attribute *first, int kind);

void DICOM_Attribute_List_Line (Window window, SequenceCursor *cursor, Attribute *attribute, int kind);

// The value as a short text in buffer (LISTING_TEXT_SIZE bytes; none: a static buffer, valid until the next call), or
// none when there is no value.
const char *DICOM_Attribute_Data_Text (Window window, Attribute *attribute, char *buffer);
