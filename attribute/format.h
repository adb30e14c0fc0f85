// From the flat list of a stream, in which items and delimiters are records like any other, to the nested list. The same
// pass marks private and retired attributes, checks VRs against the dictionary and guesses missing ones, and warns about
// structural faults.
#pragma once

#include "attribute/adopt.h"
#include "attribute/attribute.h"
#include "attribute/settings.h"
#include "platform/window.h"

// The first record of a new nested list, owned by the caller; none for an empty input or when memory ran out. The flat
// list stays with the caller; its records get marks and guessed VRs.
Attribute *DICOM_Attribute_Format (Window window, const Settings *settings, Attribute *flat_first);

// The same from a list that the caller gives away: its records become those of the nested list, and none is left. When
// memory ran out those that were not reached stay. A copy of each would be traced at depth 5, where this traces less.
Attribute *DICOM_Attribute_Format_Own (Window window, const Settings *settings, Attribute **flat);

// --- while a stream is read ------------------------------------------------

// The same for a reader that gives its records away as it makes them, corrects the values next and drops the records that
// tell structure. Those go here already, but for one in each item without others, since walks stop at an item without
// records. So a record is nested while it is at hand, and what is only structure needs no memory for long.

// What such a list has left for the passes that follow.
enum {
    FORMAT_LEFT_VALUES       = 1,   // Values to be looked at closely: DICOM_Attribute_Check_And_Clean.
    FORMAT_LEFT_STRUCTURE    = 2,   // Records of items and delimiters to be dropped.
    FORMAT_LEFT_DESCRIPTIONS = 4,   // Records in items to be completed: DICOM_Attribute_Complement.
    FORMAT_LEFT_ALL          = 7
};

// 1 when the attribute's value is as those passes would leave it.
typedef int (*Attribute_Test) (const Attribute *attribute);

// The state of the pass; callers keep it where it is.
struct Format_Pass {
    Window          window;
    const Settings *settings;
    SequenceCursor  cursor;
    int32_t         End_Of_Sequence[SEQUENCE_DEPTHS];   // File positions, -1 when no end is known.
    int32_t         End_Of_Item[SEQUENCE_DEPTHS];
    int             sort_warned;
    int             failed;     // 1: memory ran out.
    int             owns;       // 1: records are taken over, 0: copied.
    Attribute_Test  is_right;   // None unless the list is to be lean: owns, and what only tells structure goes.
    int32_t         structure;  // Records of structure in the list.
    unsigned        left;       // FORMAT_LEFT_...
    Attribute      *list;
    Insert_Path     path;       // To where the cursor stands; used when they are taken over.
    Attribute      *next;       // The record behind the one at hand,
    uint16_t        vr;         // and the VR by which this one is taken.
};

// Values that is_right finds so are marked and needn't be looked at again.
void DICOM_Attribute_Format_Start (Format_Pass *pass, Window window, const Settings *settings, Attribute_Test is_right);

// Takes the next record over; its next is the one that follows in the stream, which is asked for its tag and position, or
// none. 1, or 0 when memory ran out: then this record and all that follow stay with the caller.
int DICOM_Attribute_Format_Next (Format_Pass *pass, Attribute *record);

// The list, owned by the caller; none when it is empty or memory ran out. left tells which passes have something to do.
Attribute *DICOM_Attribute_Format_End (const Format_Pass *pass, unsigned *left);

// --- VRs -------------------------------------------------------------------

// Drops an explicit VR that isn't known and guesses a missing one from the value. 1, or 0 when the explicit VR isn't one
// of the dictionary's or nothing could be guessed.
int DICOM_Attribute_VR_Check (Window window, const Settings *settings, Attribute *attribute);

// 1 when the attribute has no dictionary entry or the entry allows vr, 0 after a mismatch note.
int DICOM_Attribute_VR_Match (Window window, const Settings *settings, const Attribute *attribute, uint16_t vr);
