// Records that become a list's own instead of being copied into it: for the reader and for the pass that nests its list,
// which append every record of a file, so that the usual step is inline.
#pragma once

#include "attribute/NEMA_Tag_Copy.h"
#include "attribute/list_index.h"
#include "attribute/sequence_cursor.h"
#include "attribute/value.h"
#include "util/my_error_fct.h"

// The record of an element that is in no list, with room for a value of so many bytes (Value_New_In_Room), and with a copy
// of these bytes as its value unless bytes is none. None after the memory message.
void Attribute_New_Failed (Window window, const Element_Header *header);
inline Attribute *Attribute_New (Window window, const Element_Header *header, int32_t room, const uint8_t *bytes) {
    Attribute *record = Value_Record_New (header, room, bytes);
    if (!record) Attribute_New_Failed (window, header);
    return record;
}

// --- the end of a list -----------------------------------------------------

// The final record. last is nearly always it; a record inserted in tag order may have become last in front of others.
inline Attribute *List_End (Attribute *first) {
    Attribute *end = first->last ? first->last : first;
    while (end->next) end = end->next;
    return end;
}

// Links a record, whose tag is set, behind the final one.
inline void List_Append (Attribute *first, Attribute *record) {
    Attribute *end = List_End (first);
    if (Tag_Compare (end->group, end->element, record->group, record->element) > 0) first->unordered = 1;
    end->next   = record;
    first->last = record;
    if (first->index) List_Index_Appended (first, record);
}

// --- adopting --------------------------------------------------------------

// The places of the lists on the way to the one in which a cursor stands, the top list at 0, as far as they are known. A
// caller that appends many records keeps it and says by Insert_Path_Cut which steps of its cursor made places wrong.
struct Insert_Path {
    Attribute **place[SEQUENCE_DEPTHS];
    int32_t     depth;      // Of the last place that is known.
};
inline void Insert_Path_Cut (Insert_Path *path, int32_t depth) { if (path->depth > depth) path->depth = depth; }

// As DICOM_Attribute_Insert for a record that the caller gives away, in two steps, of which only the first can fail. The
// record has no items and no text without characters, and is in no list.

// The place of the list that it is appended to, with all that is made on the way, or none on failure.
Attribute **Insert_Path_Make (Window window, SequenceCursor *cursor, Insert_Path *path, const Attribute *record);
inline Attribute **DICOM_Attribute_Adopt_Place (Window window, SequenceCursor *cursor, Insert_Path *path,
                                                const Attribute *record) {
    if (path->depth >= cursor->depth && !Log_Is_Read (LOG_TRACE5)) return path->place[cursor->depth];
    return Insert_Path_Make (window, cursor, path, record);
}

// It becomes the last one there and gets the fields that a copy of it would have.
inline void DICOM_Attribute_Adopt_At (Window window, SequenceCursor *cursor, Attribute **place, Attribute *record) {
    if (record->index) List_Index_Free (record);
    record->next      = nullptr;
    record->last      = nullptr;
    record->seek      = nullptr;
    record->walked    = 0;
    record->unordered = 0;
    if (*place) List_Append (*place, record);
    else *place = record->last = record;
    Attribute_Copy_Kept (window, cursor, record);
}

// Both. 1, or 0 when it stays with the caller.
inline int DICOM_Attribute_Adopt (Window window, SequenceCursor *cursor, Insert_Path *path, Attribute *record) {
    Attribute **place = DICOM_Attribute_Adopt_Place (window, cursor, path, record);
    if (place) DICOM_Attribute_Adopt_At (window, cursor, place, record);
    return place != nullptr;
}
