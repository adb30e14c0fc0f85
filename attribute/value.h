// Value bytes and who shares them. An attribute's data lives in a reference-counted block: memory of its own, or the
// read-only mapping of the file. Copying an attribute shares the block; whoever changes bytes in place unshares first.
// The count is a plain integer: one thread works on lists.
//
// A record that is made for a small value has room for it right behind itself, so that both cost one allocation. Whoever
// shares such a value may keep it longer than the record lives: its memory stays until then.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "attribute/attribute.h"
#include "util/file.h"
#include "util/memory.h"

// Gives attribute a new block of its own of length bytes (0 gives a buffer without bytes), uninitialised, and releases
// the old one. length and the other fields stay. 1, or 0 after the malloc message.
int Value_New (Window window, Memory_Site site, Attribute *attribute, int32_t length);

// A record of this element, with room for a value of so many bytes (0 for none), and with a copy of these bytes as its
// value unless bytes is none. None on failure, which isn't reported.
Attribute *Value_Record_New (const Element_Header *header, int32_t room, const uint8_t *bytes);
void       Value_Record_Free (Attribute *record);   // The record's memory, also one's without room, and its value.

static const int32_t VALUE_ROOM_MOST = 96;          // Longer values have a block of their own.

// Value_New in the room behind the record. 1, or 0 when there is none or too little, or it is in use.
int Value_New_In_Room (Attribute *record, int32_t length);

// Gives attribute the next length bytes of the file as a view, without reading them, and moves the file behind them.
// 1, or 0 when it can't be mapped; then nothing has changed and the caller reads.
int Value_Map (Window window, Attribute *attribute, File *file, int32_t length);

void Value_Share (Attribute *target, const Attribute *source);  // target's own value is released first. Self is allowed.
void Value_Release (Attribute *attribute);                      // data and block are none afterwards; length stays.

// Makes the bytes writable: attribute is their only owner afterwards. 1, or 0 after the malloc message.
int Value_Unshare (Window window, Memory_Site site, Attribute *attribute);

// Makes the bytes writable and the buffer new_length bytes long: the first bytes are kept, added ones are
// uninitialised; length stays. 1, or 0 after the realloc message.
int Value_Resize (Window window, Memory_Site site, Attribute *attribute, int32_t new_length);

// Replaces the value by an owned, terminated text (for a merged record; length stays). 1, or 0 after the strdup message.
int Value_Set_Text (Window window, Memory_Site site, Attribute *attribute, const char *text);

int Value_Is_Mapped (const Attribute *attribute);

// Count bytes from start on were looked at and won't be for a while: of a view they leave the memory of the process.
void Value_Looked_At (const Attribute *attribute, size_t start, size_t count);
