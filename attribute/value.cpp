// A block of memory carries its bytes right behind its head, so that a value costs one allocation; a block of a mapping
// only names the view. A block in the room behind a record counts the record as one more that shares it.
#include "attribute/value.h"

#include <string.h>

static const char *const MODULE = "value";

struct Mapped_Block {
    Value_Block    head;
    System_Mapping mapping;
};

static Attribute *Room_Record (Value_Block *block) { return reinterpret_cast<Attribute *> (block) - 1; }

static int Is_Own (const Attribute *attribute) {
    const Value_Block *block = attribute->block;
    return block && block->kind != BLOCK_MAPPED && block->count == (block->kind == BLOCK_ROOM ? 2 : 1);
}

// Puts a fresh block, which may be none after a failed allocation, in the place of the old value.
static int Take (Attribute *attribute, void *memory) {
    if (!memory) return 0;
    Value_Block *block = static_cast<Value_Block *> (memory);
    block->count       = 1;
    block->kind        = BLOCK_MEMORY;
    Value_Release (attribute);
    attribute->block = block;
    attribute->data  = Value_Block_Bytes (block);
    return 1;
}

int Value_New (Window window, Memory_Site site, Attribute *attribute, int32_t length) {
    return Take (attribute, Memory_Malloc (window, site, Value_Block_Size (length)));
}

// --- room behind a record --------------------------------------------------

void Value_Record_Free (Attribute *record) {
    Value_Block *room = Value_Room (record);
    if (record->block == room) room->count--;
    else Value_Release (record);
    if (record->room && --room->count) room->kind = BLOCK_ORPHAN;
    else Memory_Free (record);
}

int Value_New_In_Room (Attribute *record, int32_t length) {
    if (!record->room || length > record->room || Value_Room (record)->count > 1) return 0;
    if (record->block) Value_Release (record);
    record->block = Value_Room (record);
    record->data  = Value_Block_Bytes (record->block);
    record->block->count++;
    return 1;
}

// --- views of a file -------------------------------------------------------

int Value_Map (Window window, Attribute *attribute, File *file, int32_t length) {
    Mapped_Block *block =
        static_cast<Mapped_Block *> (Memory_Malloc (window, HERE ("block", 1, sizeof *block), sizeof *block));
    if (!block) return 0;
    if (!File_Map (file, static_cast<size_t> (length), &block->mapping)) {
        Memory_Free (block);
        return 0;
    }
    block->head.count = 1;
    block->head.kind  = BLOCK_MAPPED;
    Value_Release (attribute);
    attribute->block = &block->head;
    // Nobody writes through a mapped view: whoever changes a value unshares it first.
    attribute->data = const_cast<uint8_t *> (block->mapping.bytes);
    return 1;
}

// --- sharing ---------------------------------------------------------------

void Value_Share (Attribute *target, const Attribute *source) {
    Value_Block *block = source->block;
    uint8_t     *data  = source->data;
    if (block) block->count++;
    Value_Release (target);
    target->block = block;
    target->data  = data;
}

__attribute__ ((noinline)) static void Block_Free (Value_Block *block) {
    if (block->kind == BLOCK_MAPPED) System_File_Unmap (&reinterpret_cast<Mapped_Block *> (block)->mapping);
    if (block->kind == BLOCK_ORPHAN) Memory_Free (Room_Record (block));
    else Memory_Free (block);
}

void Value_Release (Attribute *attribute) {
    Value_Block *block = attribute->block;
    attribute->block   = nullptr;
    attribute->data    = nullptr;
    if (block && --block->count == 0) Block_Free (block);
}

int Value_Unshare (Window window, Memory_Site site, Attribute *attribute) {
    if (!attribute->data || Is_Own (attribute)) return 1;

    Attribute copy = {};
    if (!Value_New (window, site, &copy, attribute->length)) return 0;
    memcpy (copy.data, attribute->data, static_cast<size_t> (attribute->length > 0 ? attribute->length : 0));
    Value_Release (attribute);
    attribute->block = copy.block;
    attribute->data  = copy.data;
    return 1;
}

int Value_Resize (Window window, Memory_Site site, Attribute *attribute, int32_t new_length) {
    if (Is_Own (attribute) && attribute->block->kind == BLOCK_MEMORY) {
        void *memory = Memory_Realloc (window, site, attribute->block, Value_Block_Size (new_length));
        if (!memory) return 0;
        attribute->block = static_cast<Value_Block *> (memory);
        attribute->data  = Value_Block_Bytes (attribute->block);
        return 1;
    }

    if (Is_Own (attribute) && new_length <= Room_Record (attribute->block)->room) return 1;

    // Held until the bytes are copied: taking the new block releases the old one.
    Attribute old = {};
    Value_Share (&old, attribute);
    int taken = Take (attribute, Memory_Realloc (window, site, nullptr, Value_Block_Size (new_length)));
    if (taken && old.data) {
        int32_t kept = attribute->length < new_length ? attribute->length : new_length;
        memcpy (attribute->data, old.data, static_cast<size_t> (kept > 0 ? kept : 0));
    }
    Value_Release (&old);
    return taken;
}

int Value_Set_Text (Window window, Memory_Site site, Attribute *attribute, const char *text) {
    size_t size = strlen (text) + 1;
    if (!Take (attribute, Memory_Text (window, site, sizeof (Value_Block) + size))) return 0;
    memcpy (attribute->data, text, size);
    return 1;
}

int Value_Is_Mapped (const Attribute *attribute) { return attribute->block && attribute->block->kind == BLOCK_MAPPED; }

void Value_Looked_At (const Attribute *attribute, size_t start, size_t count) {
    if (Value_Is_Mapped (attribute)) System_View_Release (attribute->data + start, count);
}
