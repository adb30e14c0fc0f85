// Value bytes and who shares them. An attribute's data lives in a reference-counted block: memory of its own, or the
// read-only mapping of the file. Copying an attribute shares the block; whoever changes bytes in place unshares first.
// The count is a plain integer: one thread works on lists.
//
// A record that is made for a small value has room for it right behind itself, so that both cost one allocation. Whoever
// shares such a value may keep it longer than the record lives: its memory stays until then.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "attribute/attribute.h"
#include "util/file.h"
#include "util/memory.h"

// --- blocks ----------------------------------------------------------------

// What a block is only this header and value.cpp know.
enum Block_Kind : int32_t {
    BLOCK_MEMORY,
    BLOCK_MAPPED,       // The head of a view's block.
    BLOCK_ROOM,         // Behind a record,
    BLOCK_ORPHAN        // and behind what was one.
};

struct Value_Block {
    int32_t    count;   // Attributes that share the block.
    Block_Kind kind;
};

inline uint8_t     *Value_Block_Bytes (Value_Block *block) { return reinterpret_cast<uint8_t *> (block + 1); }
inline size_t       Value_Block_Size (int32_t length) {
    return sizeof (Value_Block) + static_cast<size_t> (length > 0 ? length : 0);
}
inline Value_Block *Value_Room (Attribute *record) { return reinterpret_cast<Value_Block *> (record + 1); }

// --- values ----------------------------------------------------------------

// Gives attribute a new block of its own of length bytes (0 gives a buffer without bytes), uninitialised, and releases
// the old one. length and the other fields stay. 1, or 0 after the malloc message.
int Value_New (Window window, Memory_Site site, Attribute *attribute, int32_t length);

// A record of this element, with room for a value of so many bytes (0 for none), and with a copy of these bytes as its
// value unless bytes is none. None on failure, which isn't reported. Inline, since a reader makes one for every element: what
// it just found out is still at hand then.
inline Attribute *Value_Record_New (const Element_Header *header, int32_t room, const uint8_t *bytes) {
    size_t     behind = room > 0 ? Value_Block_Size (room) : 0;
    Attribute *record = static_cast<Attribute *> (Memory_Try (sizeof (Attribute) + behind));
    if (!record) return nullptr;
    *record            = {};
    record->mode       = header->mode;
    record->flags      = header->flags;
    record->group      = header->group;
    record->element    = header->element;
    record->vr_file    = header->vr_file;
    record->vr         = header->vr;
    record->pos_tag    = header->pos_tag;
    record->pos_data   = header->pos_data;
    record->length     = header->length;
    record->definition = header->definition;
    if (!room) return record;

    Value_Block *block = Value_Room (record);
    record->room       = static_cast<uint8_t> (room);
    *block             = {bytes ? 2 : 1, BLOCK_ROOM};
    if (!bytes) return record;
    record->block = block;
    record->data  = Value_Block_Bytes (block);
    memcpy (record->data, bytes, static_cast<size_t> (room));
    return record;
}
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
