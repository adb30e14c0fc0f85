// The correcting twin of the checks: strips padding, removes characters, cuts and rewrites values in the attribute itself,
// and discards what can't be repaired.
#pragma once

#include "attribute/sequence_cursor.h"
#include "syntax/syntax_rules.h"

// Brings every attribute of the list and of its items into order and corrects it. Returns 1.
int DICOM_Attribute_Cleanup_Walk (Window window, SequenceCursor *cursor, Attribute *list);

// Both passes over a list that comes from DICOM_Attribute_Format_End, one behind the other: the check, then this one.
// They leave out the values that were found right there. Nothing may change values in between. Returns 1.
int DICOM_Attribute_Check_And_Clean (Window window, SequenceCursor *cursor, Attribute *list);

int DICOM_Attribute_Cleanup_Swab (Window window, Attribute *attribute);     // As DICOM_Attribute_Syntax_Swab.

// Corrects one attribute. The result of the multiplicity check; 1 without a value; 0 when the value was discarded, when
// the VR has no cleanup, or when memory ran out (the value then stays as far as it was corrected).
int DICOM_Attribute_Cleanup_Tag (Window window, const Settings *settings, Attribute *attribute);

// --- building blocks -------------------------------------------------------

// What a block returns when memory ran out. The fixed message was written and the value is kept.
static const int32_t CLEANUP_MEMORY = -1;

int     DICOM_Tag_Cleanup_Padding       (Syntax_Run *run, Attribute *attribute, int leading, int trailing);
int     DICOM_Tag_Cleanup_Char_Set      (Syntax_Run *run, Attribute *attribute, const char *set);
int32_t DICOM_Tag_Cleanup_Text_Multiple (Syntax_Run *run, Attribute *attribute, int32_t max);     // Number of values.
int32_t DICOM_Tag_Cleanup_Text_Single   (Syntax_Run *run, Attribute *attribute, int32_t max);     // 1
int     DICOM_Tag_Cleanup_Valid_Int     (Syntax_Run *run, Attribute *attribute);                  // 0: out of range.
int     DICOM_Tag_Cleanup_VM            (Syntax_Run *run, Attribute *attribute, int32_t count);
int     DICOM_Tag_Cleanup_Int           (Syntax_Run *run, Attribute *attribute);  // Decimal texts to integers.
