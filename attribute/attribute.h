// The record that the whole program works on: one data element of a file, a definition or a comparison. Fields, flags and
// two-character codes; the operations stand in the other headers of this folder.
#pragma once

#include <stdint.h>

struct Dictionary_Entry;
struct List_Index;
struct Value_Block;

// --- two-character codes ---------------------------------------------------

// A VR or an attribute type as one number: first character times 256 plus second. 0 is none.
constexpr uint16_t Code (char first, char second) {
    return static_cast<uint16_t> (static_cast<unsigned char> (first) * 256 + static_cast<unsigned char> (second));
}
constexpr char Code_First  (uint16_t code, char none) { return code ? static_cast<char> (code >> 8) : none; }
constexpr char Code_Second (uint16_t code, char none) { return code ? static_cast<char> (code & 0xFF) : none; }

enum : uint16_t {
    VR_AE = Code ('A', 'E'), VR_AS = Code ('A', 'S'), VR_AT = Code ('A', 'T'), VR_CS = Code ('C', 'S'),
    VR_DA = Code ('D', 'A'), VR_DS = Code ('D', 'S'), VR_DT = Code ('D', 'T'), VR_FD = Code ('F', 'D'),
    VR_FL = Code ('F', 'L'), VR_IS = Code ('I', 'S'), VR_LO = Code ('L', 'O'), VR_LT = Code ('L', 'T'),
    VR_OB = Code ('O', 'B'), VR_OF = Code ('O', 'F'), VR_OW = Code ('O', 'W'), VR_OX = Code ('O', 'X'),
    VR_PN = Code ('P', 'N'), VR_SH = Code ('S', 'H'), VR_SL = Code ('S', 'L'), VR_SQ = Code ('S', 'Q'),
    VR_SS = Code ('S', 'S'), VR_ST = Code ('S', 'T'), VR_TM = Code ('T', 'M'), VR_UH = Code ('U', 'H'),
    VR_UI = Code ('U', 'I'), VR_UL = Code ('U', 'L'), VR_UN = Code ('U', 'N'), VR_US = Code ('U', 'S'),
    VR_UT = Code ('U', 'T'),
    VR_RT = Code ('R', 'T'),            // Dictionary placeholder, resolved by the value's length.
    VR_ITEM     = Code ('I', 'b'),      // Item of a sequence, (FFFE,E000).
    VR_FRAGMENT = Code ('I', 'a')       // Fragment of encapsulated pixel data, (FFFE,E000).
};

// --- tags ------------------------------------------------------------------

enum : uint16_t {
    TAG_ANY              = 0xFFFF,      // Matches any group or element in look-ups.
    GROUP_META           = 0x0002,
    GROUP_PIXEL          = 0x7FE0,
    GROUP_DELIMITER      = 0xFFFE,      // Items and delimiters: structure, not attributes.
    ELEMENT_ITEM         = 0xE000,
    ELEMENT_ITEM_END     = 0xE00D,
    ELEMENT_SEQUENCE_END = 0xE0DD
};

static const int32_t LENGTH_UNDEFINED = -1;     // 0xFFFFFFFF in the stream.

// --- reading mode ----------------------------------------------------------

enum : uint8_t {
    MODE_BIG_ENDIAN = 0x01,     // Numbers are stored most significant byte first.
    MODE_SWAB       = 0x02,     // The two bytes of every 16-bit unit are exchanged.
    MODE_EXPLICIT   = 0x08,     // The stream carries VRs.
    MODE_VENDOR     = 0xF0,     // Which vendor's repairs are enabled:
    MODE_GE         = 0x10,
    MODE_GE_ROGAN   = 0x30
};

// --- flags -----------------------------------------------------------------

enum : uint16_t {
    ORIGIN_MASK   = 0x000F,
    ORIGIN_DICOM  = 1,          // Read from a DICOM stream.
    ORIGIN_KEST   = 2,          // From the maker's own definition tables.
    ORIGIN_MODULE = 4,          // From a module definition.
    SYNTAX_ERROR  = 0x0010,
    RETIRED       = 0x0020,
    PRIVATE       = 0x0040,
    CONVERTER     = 0x0080,
    DELETED       = 0x0100,     // Also: a tag that the data dictionary doesn't hold.
    TABLE_DELETE  = 0x0200,     // The mark "-" of a definition table.
    VR_UNKNOWN    = 0x0400,     // VR forced to "UN".
    INVALID       = 0x0800,
    FORCED        = 0x1000,     // Never overwritten by a copy; its items are not copied.
    DEFAULT       = 0x2000,
    APPEND        = 0x8000      // A copy appends value and items to the target instead of replacing them.
};

// --- the record ------------------------------------------------------------

// Zero bytes are a valid empty record. A list is a reference to its first record (none when empty); a list owns its
// records. In a comparison's merged list flags holds the difference code, and data an owned text.
struct Attribute {
    uint8_t     mode;           // Reading mode of the value bytes; bits 0 and 1 are their byte order.
    uint8_t     level;          // Depth of the list: 0 top, 1 inside an item of a top-level sequence, ...
    uint16_t    flags;
    uint16_t    group;
    uint16_t    element;
    uint16_t    vr_file;        // VR in the stream, 0 for implicit VR.
    uint16_t    vr;             // VR of dictionary or definition, 0 when unknown.
    uint16_t    type;           // "1 ", "1C", "2 ", "2C", "3 " or 0.
    uint8_t     unordered : 1;  // First record of a list only: 1 when some record is smaller than the one before it.
    uint8_t     right : 1;      // The value is. For DICOM_Attribute_Check_And_Clean only.
    uint8_t     room;           // Bytes behind the record for its first value, 0 for none; of attribute/value.h.
    int32_t     length;         // Of the value in bytes; LENGTH_UNDEFINED possible.
    int32_t     nb_item;        // Slots in item.
    uint8_t    *data;           // Value bytes without terminator, or none. They live in block; unshare before writing.
    Value_Block *block;         // What data points into: one reference of it is owned. None when data is none.
    Attribute  *next;
    char       *description;    // Owned, or none.
    List_Index *index;          // First record of a list only: owned, of attribute/list_index.h, or none.

    // Comparing and releasing a list, which no longer is in the processor's caches, touch nothing from here on.
    Attribute **item;           // Owned array of lists, one an item; a slot may be none. None without slots.
    const Dictionary_Entry *definition;     // Borrowed for the life of the process, or none.
    Attribute  *last;           // First record of a list only: where the next one is linked,
    Attribute  *seek;           // where the last search of the list ended, a hint,
    int32_t     walked;         // and steps of searches that count towards an index.
    int32_t     vm;             // Values found by the last decoding call.
    int32_t     diff_a;         // Compared quantities; merged list only.
    int32_t     diff_b;
    uint32_t    pos_tag;        // Byte positions in the file.
    uint32_t    pos_data;
};

// What a reader knows of an element of a stream before it makes its record; the fields are those of the record.
struct Element_Header {
    uint8_t     mode;
    uint16_t    flags;
    uint16_t    group;
    uint16_t    element;
    uint16_t    vr_file;
    uint16_t    vr;
    uint32_t    pos_tag;
    uint32_t    pos_data;
    int32_t     length;
    const Dictionary_Entry *definition;
};

// The VR that counts: the stream's, else the dictionary's.
inline uint16_t Attribute_VR (const Attribute *attribute) {
    return attribute->vr_file ? attribute->vr_file : attribute->vr;
}
inline uint16_t Element_VR (const Element_Header *header) { return header->vr_file ? header->vr_file : header->vr; }

// Below 0, 0 or above 0 as tag a stands before, is, or stands behind tag b.
inline int Tag_Compare (uint16_t group_a, uint16_t element_a, uint16_t group_b, uint16_t element_b) {
    return group_a != group_b ? static_cast<int> (group_a) - group_b : static_cast<int> (element_a) - element_b;
}
