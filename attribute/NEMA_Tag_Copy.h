// Copying records and whole lists into a list, replacing or appending as the flags of both sides say.
#pragma once

#include "attribute/sequence_cursor.h"

// Copies every record of chain, with its items, into the list at place. 1, or 0 when one failed (what was copied stays).
// Values are shared, not copied.
int DICOM_Attribute_Copy (Window window, SequenceCursor *cursor, Attribute **place, const Attribute *chain);

// Copies one record onto another, with its items (into the list at place). 1, or 0 after a memory message.
int DICOM_Attribute_Copy_Tag (Window window, SequenceCursor *cursor, Attribute **place, Attribute *target,
                              const Attribute *source);

// What copying a record without items onto a new one makes of its fields, where it is itself the new one.
void Attribute_Copy_Kept (Window window, SequenceCursor *cursor, Attribute *record);
