// Copying records and whole lists into a list, replacing or appending as the flags of both sides say.
#pragma once

#include "attribute/sequence_cursor.h"
#include "util/my_error_fct.h"

// Copies every record of chain, with its items, into the list at place. 1, or 0 when one failed (what was copied stays).
// Values are shared, not copied.
int DICOM_Attribute_Copy (Window window, SequenceCursor *cursor, Attribute **place, const Attribute *chain);

// How every copy of a record begins: the cursor stands at its tag.
inline void Attribute_Copy_Begin (Window window, SequenceCursor *cursor, const Attribute *source) {
    Log_Message (window, LOG_TRACE4, "in DICOM_Attribute_Copy_Tag(%04x,%04x)", source->group, source->element);
    DICOM_Attribute_Sequence_Set (window, cursor, cursor->depth, source->group, source->element, 0);
}

// Copies one record onto another, with its items (into the list at place). 1, or 0 after a memory message.
int DICOM_Attribute_Copy_Tag (Window window, SequenceCursor *cursor, Attribute **place, Attribute *target,
                              const Attribute *source);

// What copying a record without items onto a new one makes of its fields, where it is itself the new one.
inline void Attribute_Copy_Kept (Window window, SequenceCursor *cursor, Attribute *record) {
    Attribute_Copy_Begin (window, cursor, record);
    record->level = static_cast<uint8_t> (cursor->depth);
    if (record->flags & VR_UNKNOWN) record->vr = VR_UN;
}
