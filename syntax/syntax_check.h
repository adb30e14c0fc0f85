// Checks values against the rules of their VR. A check only reports: it works on a private copy and leaves the attribute
// as it was.
#pragma once

#include "attribute/sequence_cursor.h"
#include "syntax/syntax_rules.h"

// Checks every attribute of the list and of its items. Returns 1.
int DICOM_Attribute_Syntax_Walk (Window window, SequenceCursor *cursor, Attribute *list);

// 1 when the value passed or there is none, 0 after a finding, when the VR has no check, or when memory ran out.
int DICOM_Attribute_Syntax_Tag (Window window, const Settings *settings, const Attribute *attribute);

// Brings a value that is stored most significant byte first into little-endian order, in place, and clears bit 0 of the
// mode. 1, also when there is nothing to do; 0 when memory ran out (nothing has changed then).
int DICOM_Attribute_Syntax_Swab (Window window, Attribute *attribute);

// --- building blocks -------------------------------------------------------

// Each looks at the working copy that run is about; those that count return the number of values.
int     DICOM_Tag_Syntax_Padding       (const Syntax_Run *run, Attribute *attribute, int leading, int trailing);
int     DICOM_Tag_Syntax_Char_Set      (const Syntax_Run *run, Attribute *attribute, const char *set);   // 1, or 0 after a finding.
int32_t DICOM_Tag_Syntax_Text_Multiple (const Syntax_Run *run, Attribute *attribute, int32_t max);
int32_t DICOM_Tag_Syntax_Text_Single   (const Syntax_Run *run, Attribute *attribute, int32_t max);
int     DICOM_Tag_Syntax_Valid_Int     (const Syntax_Run *run, Attribute *attribute);                    // 1, or 0 after a finding.
int     DICOM_Tag_Syntax_VM            (const Syntax_Run *run, Attribute *attribute, int32_t count);     // 1, or 0 after a finding.
