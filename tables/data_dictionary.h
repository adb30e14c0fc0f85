// The program's own data dictionary: names, VRs and multiplicities of the standard attributes (PS3.6), parsed from text
// lines at the first look-up and kept until the process ends.
#pragma once

#include <stdint.h>

#include "platform/window.h"

static const int DICTIONARY_LINE_SIZE   = 160;      // Characters of a line that are read.
static const int DICTIONARY_NAME_SIZE   = 80;
static const int DICTIONARY_VR_COUNT    = 3;
static const int DICTIONARY_TABLE_COUNT = 53;

struct Dictionary_Multiplicity {
    uint16_t minimum, maximum;      // 0xFFFF: no limit.
};

struct Dictionary_Entry {
    uint16_t group;
    uint16_t element;
    uint16_t element_mask;
    int8_t   nb_vr;                 // VR/VM pairs, negative when retired. 0 or less marks a retired entry.
    const char *name;               // Owned by the dictionary.
    uint16_t vr[DICTIONARY_VR_COUNT];
    Dictionary_Multiplicity vm[DICTIONARY_VR_COUNT];
};

struct Dictionary_Table {
    const char *const *lines;       // "(gggg,eeee) Name VR VM[ RET]"
    int                count;
};

// --- known tags ------------------------------------------------------------

// Tags that were looked up, with their entries. Files have the same few again and again, in every item of a sequence. For the
// functions below only, which are called for every attribute.
static const int DICTIONARY_KNOWN_COUNT = 512;      // A power of 2.

struct Dictionary_Known {
    uint32_t                key;    // The tag + 1, 0 for an empty place.
    const Dictionary_Entry *entry;  // Or none.
};

extern Dictionary_Known Dictionary_Known_Tags[DICTIONARY_KNOWN_COUNT];

inline uint32_t Dictionary_Known_Key (uint16_t group, uint16_t element) {
    return (static_cast<uint32_t> (group) << 16 | element) + 1;
}
inline Dictionary_Known *Dictionary_Known_Place (uint16_t group, uint16_t element) {
    return &Dictionary_Known_Tags[(element ^ group * 37u) % DICTIONARY_KNOWN_COUNT];
}

const Dictionary_Entry *Dictionary_Seek (Window window, uint16_t group, uint16_t element);  // In the lines themselves.

// --- looking up ------------------------------------------------------------

// The entry of a tag, or none; an odd group, which is private, has none. Builds the dictionary the first time.
inline const Dictionary_Entry *Dictionary_Lookup (Window window, uint16_t group, uint16_t element) {
    if (group & 1) return nullptr;
    const Dictionary_Known *known = Dictionary_Known_Place (group, element);
    if (known->key == Dictionary_Known_Key (group, element)) return known->entry;
    return Dictionary_Seek (window, group, element);
}

// 1 when it is known, from a look-up before, that the tag has no entry. Nothing is built.
inline int Dictionary_Is_Unknown (uint16_t group, uint16_t element) {
    const Dictionary_Known *known = Dictionary_Known_Place (group, element);
    return known->key == Dictionary_Known_Key (group, element) && !known->entry;
}

// Parses the lines once. The number of entries added, remembered for further calls. When memory runs out it is 0 and
// nothing is remembered, so the next look-up tries again.
int Dictionary_Build (Window window);

// The program's lines.
extern const Dictionary_Table Dictionary_Tables[DICTIONARY_TABLE_COUNT];

// --- for tests -------------------------------------------------------------

// Forgets what was built and takes other tables (none: the program's own) for the next look-up. Tables that are given are
// parsed at once, with warnings about what is wrong in them; the program's own lines when they are looked up.
void Dictionary_Reset (const Dictionary_Table *tables, int count);
