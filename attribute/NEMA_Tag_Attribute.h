// The store: attribute lists with sequences and items. Every operation works on the list of the item in which the cursor
// stands; navigating creates a missing sequence record and missing item slots on its way, also for a look-up.
#pragma once

#include "attribute/sequence_cursor.h"
#include "util/memory.h"

// --- finding ---------------------------------------------------------------

// First record with this tag, or none. first is the first record of the top list; TAG_ANY matches any group or element.
// The list keeps the record. The last argument has no effect.
Attribute *DICOM_Attribute_Get (Window window, SequenceCursor *cursor, Attribute *first, uint16_t group, uint16_t element,
                                int ignored);

// The same for the tag of a record: a file may hold tags whose group or element is TAG_ANY, and each is itself only.
Attribute *DICOM_Attribute_Get_Exact (Window window, SequenceCursor *cursor, Attribute *first, uint16_t group,
                                      uint16_t element);

// The place of the current item's list one level below first's list, or none. The last argument has no effect.
Attribute **DICOM_Attribute_Item_Slot (Window window, SequenceCursor *cursor, Attribute *first, int ignored);

// 1 when group and element, each as four upper-case hex digits, match their wildcard pattern. A pattern that is none
// matches nothing.
int DICOM_Attribute_Tag_Match (const char *pattern_group, const char *pattern_element, uint16_t group, uint16_t element);

// --- adding ----------------------------------------------------------------

// Appends a copy of source (DICOM_Attribute_Copy_Tag) in reading order. place holds the top list, level is its depth
// (0). The new record, owned by the list, or none.
Attribute *DICOM_Attribute_Insert (Window window, SequenceCursor *cursor, Attribute **place, const Attribute *source,
                                   int32_t level);

// The record with that tag (the last of several), or a new empty one at its place in tag order. None on failure.
Attribute *DICOM_Attribute_Find_Or_Insert (Window window, SequenceCursor *cursor, Attribute **place, uint16_t group,
                                           uint16_t element);

// Makes room for count item slots, new ones empty; never fewer than there are. 1, or 0 after the realloc message.
int Attribute_Grow_Items (Window window, Memory_Site site, Attribute *attribute, int32_t count);

// --- changing --------------------------------------------------------------

// For every record at every depth: the type, and the VR where it has none, of the same tag in the reference list.
void DICOM_Attribute_Set_Type (Window window, SequenceCursor *cursor, Attribute *reference_first, Attribute *list_first);

// --- walking ---------------------------------------------------------------

// What a walk does with each attribute. It may change the attribute, not the list around it.
typedef void (*Attribute_Action) (Window window, SequenceCursor *cursor, Attribute *attribute);

// Calls action for every attribute of the list, and after it for those of its items until the first empty slot. kind is
// passed to the cursor.
void Attribute_Walk (Window window, SequenceCursor *cursor, Attribute *list, int kind, Attribute_Action action);

// --- removing --------------------------------------------------------------

// Removes every match (TAG_ANY matches any) at the current depth and below. 1, or 0 when there was no list.
int DICOM_Attribute_Delete (Window window, SequenceCursor *cursor, Attribute **place, uint16_t group, uint16_t element);

// Releases a record and all it owns; it is not unlinked. Accepts none.
void DICOM_Attribute_Free (Window window, Attribute *attribute);
