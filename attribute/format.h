// From the flat list of a stream, in which items and delimiters are records like any other, to the nested list. The same
// pass marks private and retired attributes, checks VRs against the dictionary and guesses missing ones, and warns about
// structural faults.
#pragma once

#include "attribute/attribute.h"
#include "attribute/settings.h"
#include "platform/window.h"

// The first record of a new nested list, owned by the caller; none for an empty input or when memory ran out. The flat
// list stays with the caller; its records get marks and guessed VRs.
Attribute *DICOM_Attribute_Format (Window window, const Settings *settings, Attribute *flat_first);

// The same from a list that the caller gives away: its records become those of the nested list, and none is left. When
// memory ran out those that were not reached stay. A copy of each would be traced at depth 5, where this traces less.
Attribute *DICOM_Attribute_Format_Own (Window window, const Settings *settings, Attribute **flat);

// What a list from DICOM_Attribute_Format_Lean has left for the passes that follow.
enum {
    FORMAT_LEFT_VALUES       = 1,   // Values to be looked at closely: DICOM_Attribute_Check_And_Clean.
    FORMAT_LEFT_STRUCTURE    = 2,   // Records of items and delimiters to be dropped.
    FORMAT_LEFT_DESCRIPTIONS = 4,   // Records in items to be completed: DICOM_Attribute_Complement.
    FORMAT_LEFT_ALL          = 7
};

// 1 when the attribute's value is as those passes would leave it.
typedef int (*Attribute_Test) (const Attribute *attribute);

// As DICOM_Attribute_Format_Own for a caller that corrects the values next and drops the records that tell structure.
// Those go here already, but for one in each item without others, since walks stop at an item without records. Values
// that is_right finds so are marked; left tells which of the passes have something to do at all.
Attribute *DICOM_Attribute_Format_Lean (Window window, const Settings *settings, Attribute **flat,
                                        Attribute_Test is_right, unsigned *left);

// Drops an explicit VR that isn't known and guesses a missing one from the value. 1, or 0 when the explicit VR isn't one
// of the dictionary's or nothing could be guessed.
int DICOM_Attribute_VR_Check (Window window, const Settings *settings, Attribute *attribute);

// 1 when the attribute has no dictionary entry or the entry allows vr, 0 after a mismatch note.
int DICOM_Attribute_VR_Match (Window window, const Settings *settings, const Attribute *attribute, uint16_t vr);
