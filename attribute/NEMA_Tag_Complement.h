// Completes the records of a list, at every depth, with what a file doesn't say itself: dictionary entry and VR, and
// descriptions for group lengths, private attributes, pixel data, items and delimiters.
#pragma once

#include <stddef.h>

#include "attribute/sequence_cursor.h"

static const size_t DESCRIPTION_TEXT_SIZE = 2048;   // A formatted description with its zero; what is longer is cut.
static const int    CREATOR_NAME_LENGTH   = 64;     // Bytes of a private creator's value that count as its name.

// first is the top list, which also holds the private creators for the items below; the cursor stands at its top. Always
// 0: a description that there is no memory for is reported and left out.
int DICOM_Attribute_Complement (Window window, SequenceCursor *cursor, Attribute *first);

// The same for a list in whose items there is nothing to complete: they are left alone.
int DICOM_Attribute_Complement_Top (Window window, SequenceCursor *cursor, Attribute *first);

// 1 when the pass is known to leave the attribute as it is; its items aren't asked about.
int DICOM_Attribute_Is_Complete (const Attribute *attribute);

// Replaces the description by a formatted text, by none when that is empty. A vr that is not 0 becomes the attribute's.
// 1, or 0 after the strdup message; then there is no description.
int DICOM_Attribute_Set_Description (Window window, Attribute *attribute, uint16_t vr, const char *format, ...)
    __attribute__ ((format (printf, 4, 5)));

// --- private attributes, each 1 --------------------------------------------

// An attribute of an odd group: a creator, or one that gets the name of its creator in the list at first.
int DICOM_Attribute_Complement_Private (Window window, SequenceCursor *cursor, Attribute *first, Attribute *attribute);

// Groups of two makers' compression: 1000, and 7F00 to 7FDF.
int SPI_Complement_1000 (Window window, Attribute *attribute);
int SPI_Complement_7Fxx (Window window, Attribute *attribute);
