// One pass over a list and all its items. A private attribute (gggg,bbee) belongs to the creator (gggg,00bb); PS3.5 7.8.1
// asks for the creator in the same item, but here it is the first one of the top list for all depths. The creators are
// gathered once, so that 50,000 private attributes, in whatever order, don't search the list 50,000 times.
#include "attribute/NEMA_Tag_Complement.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "tables/data_dictionary.h"
#include "tables/definition_files.h"
#include "util/my_error_fct.h"
#include "util/text.h"

static const char *const MODULE = "NEMA_Tag_Complement";

static const uint16_t CREATOR_FIRST  = 0x0010; // Elements of an odd group that name a creator,
static const uint16_t CREATOR_LAST   = 0x00FF;
static const uint16_t PRIVATE_FIRST  = 0x1000; // and those that belong to one.
static const uint16_t ELEMENT_PIXELS = 0x0010; // (7FE0,0010)
static const uint16_t GROUP_SPECIAL  = 0x1000; // The first group that has rules of its own.

static const int32_t GROUP_LENGTH_SIZE = 4; // Bytes of a group length that is one.

// --- descriptions ----------------------------------------------------------

// As DICOM_Attribute_Set_Description, with a text that is ready; a zero byte follows its length bytes.
static int Describe_At_Length (Window window, Attribute *attribute, uint16_t vr, const char *text, size_t length) {
    if (vr) attribute->vr = vr;
    if (attribute->description) Memory_Free (attribute->description);
    attribute->description = nullptr;
    if (!length) return 1;
    attribute->description = static_cast<char *> (Memory_Text (window, HERE ("tag->description", 0, 0), length + 1));
    if (attribute->description) memcpy (attribute->description, text, length + 1);
    return attribute->description != nullptr;
}

static int Describe (Window window, Attribute *attribute, uint16_t vr, const char *text) {
    return Describe_At_Length (window, attribute, vr, text, strlen (text));
}

int DICOM_Attribute_Set_Description (Window window, Attribute *attribute, uint16_t vr, const char *format, ...) {
    char    text[DESCRIPTION_TEXT_SIZE];
    va_list arguments;
    va_start (arguments, format);
    if (vsnprintf (text, sizeof text, format, arguments) < 0) text[0] = 0;
    va_end (arguments);
    return Describe (window, attribute, vr, text);
}

// --- group lengths ---------------------------------------------------------

#define BANNER EMPHASIS COLOUR_BLACK "===== "

struct Group_Banner {
    uint16_t    group;
    const char *text;
};

// clang-format off
static const Group_Banner BANNERS[] = {
    {0x0002, BANNER "Group 0002 (File) =============="},
    {0x0008, BANNER "Group 0008 (Identifying) ======="},
    {0x0010, BANNER "Group 0010 (Patient) ==========="},
    {0x0018, BANNER "Group 0018 (Acquisition) ======="},
    {0x0020, BANNER "Group 0020 (Relationship) ======"},
    {0x0028, BANNER "Group 0028 (Presentation) ======"},
    {0x7FE0, BANNER "Group 7FE0 (Image Data) ========"},
};
// clang-format on

__attribute__ ((noinline)) static void Describe_Group_Length (Window window, Attribute *attribute) {
    for (const Group_Banner &banner : BANNERS) {
        if (banner.group != attribute->group) continue;
        Describe (window, attribute, VR_UL, banner.text);
        return;
    }
    if (attribute->length == GROUP_LENGTH_SIZE)
        DICOM_Attribute_Set_Description (window, attribute, VR_UL,
                                         BANNER "Group %04x =====================", attribute->group);
}

// --- private creators ------------------------------------------------------

// The creators of a list in a table with open addressing. Without a table (slots none) the list is searched. A walk over
// an ordered list alone needs neither: it meets the creators of a group, one behind the other, before what belongs to them.
struct Creators {
    Attribute       *first; // The top list, borrowed; none when it holds no creator.
    Attribute       *met;   // Where a walk that needs no table goes on with looking for creators, or none.
    int              meets; // 1 in such a walk.
    Attribute      **slots; // Owned; an empty one is none. At least half of them are.
    uint32_t         mask;  // Number of slots - 1.
    const Attribute *named; // The one last asked for, or none. Most attributes follow one of the same creator.
    int              asks;  // 0 when it is known that no table describes its attributes.
    size_t           length;
    char             name[CREATOR_NAME_LENGTH + 1]; // Of length bytes and a zero byte.
};

static int Is_Creator (const Attribute *attribute) {
    return (attribute->group & 1) && attribute->element >= CREATOR_FIRST && attribute->element <= CREATOR_LAST;
}

// The slot of the creator with this tag, or the empty one where it would stand.
static Attribute **Creator_Slot (const Creators *creators, uint16_t group, uint16_t element) {
    uint32_t slot = ((static_cast<uint32_t> (group) << 8 | element) * 2654435761u >> 7) & creators->mask;
    while (creators->slots[slot] &&
           Tag_Compare (creators->slots[slot]->group, creators->slots[slot]->element, group, element) != 0)
        slot = (slot + 1) & creators->mask;
    return &creators->slots[slot];
}

// Without memory for the table it goes on with searches, after the calloc message.
static void Creators_Gather (Window window, Creators *creators, Attribute *first) {
    size_t     count = 0, size = 1;
    Attribute *start = nullptr, *end = nullptr; // The first and the last one, which mostly stand near each other.
    for (Attribute *record = first; record; record = record->next) {
        if (!Is_Creator (record)) continue;
        if (!count++) start = record;
        end = record;
    }
    while (size < 2 * count) size *= 2;

    *creators       = {};
    creators->first = count ? first : nullptr;
    creators->mask  = static_cast<uint32_t> (size - 1);
    if (!count) return;
    creators->slots = static_cast<Attribute **> (
        Memory_Calloc (window, HERE ("creators->slots", size, 8), size * sizeof (Attribute *)));
    if (!creators->slots) return;
    for (Attribute *record = start; record != end->next; record = record->next) {
        if (!Is_Creator (record)) continue;
        Attribute **slot = Creator_Slot (creators, record->group, record->element);
        if (!*slot) *slot = record; // The first one with its tag.
    }
}

static void Creator_Meet (Creators *creators, Attribute *creator) {
    if (!creators->met || creators->met->group != creator->group) creators->met = creator;
}

// The walk asks for ascending ones, so it never goes back; nor beyond the attribute at hand, whose element is greater.
static Attribute *Creator_Among_Met (Creators *creators, uint16_t group, uint16_t element) {
    Attribute *record = creators->met;
    while (record && record->element < element) record = record->next;
    creators->met = record;
    return record && record->group == group && record->element == element ? record : nullptr;
}

static Attribute *Creator_Find (Window window, Creators *creators, uint16_t group, uint16_t element) {
    if (creators->meets) return Creator_Among_Met (creators, group, element);
    if (creators->slots) return *Creator_Slot (creators, group, element);
    SequenceCursor top = {}; // Of its own: from where the walk stands, looking would create sequences.
    return DICOM_Attribute_Get_Exact (window, &top, creators->first, group, element);
}

// Its name is what its value holds, up to the first zero byte and without blanks around it.
static void Creator_Take (Creators *creators, const Attribute *creator) {
    char *name   = creators->name;
    int   length = creator->data ? creator->length : 0;
    if (length > CREATOR_NAME_LENGTH) length = CREATOR_NAME_LENGTH;
    if (length < 0) length = 0;
    if (length) memcpy (name, creator->data, static_cast<size_t> (length));
    name[length] = 0;
    Text_Trim (name);
    creators->length = strlen (name);
    creators->named  = creator;
    creators->asks   = 1;
}

// 1 when named is the creator of that block, 0 when there is none.
static inline int Creator_Turn_To (Window window, Creators *creators, uint16_t group, uint16_t block) {
    const Attribute *named = creators->named;
    if (named && named->element == block && named->group == group) return 1;
    const Attribute *creator = Creator_Find (window, creators, group, block);
    if (creator) Creator_Take (creators, creator);
    return creator != nullptr;
}

// 1 when the table of the named creator describes the attribute. Each time it is asked a trace tells so.
__attribute__ ((noinline)) static int Complement_From_Table (Window window, const Settings *settings,
                                                             Creators *creators, Attribute *attribute) {
    int found = DICOM_Module_Read_Private (window, settings, creators->name, attribute);
    if (found < 0 && !Log_Is_Read (LOG_TRACE5)) creators->asks = 0;
    return found > 0;
}

// An attribute that its creator's table doesn't describe is called by the creator's name.
static inline void Complement_Private (Window window, const Settings *settings, Creators *creators,
                                       Attribute *attribute) {
    if (attribute->element >= PRIVATE_FIRST) {
        uint16_t block = static_cast<uint16_t> (attribute->element >> 8);
        if (!Creator_Turn_To (window, creators, attribute->group, block)) return;
        if (creators->asks && Complement_From_Table (window, settings, creators, attribute)) return;
        Describe_At_Length (window, attribute, 0, creators->name, creators->length);
    } else if (Is_Creator (attribute)) {
        Creator_Meet (creators, attribute);
        Describe (window, attribute, VR_LO, "Private Creator Data Element");
    }
}

int DICOM_Attribute_Complement_Private (Window window, SequenceCursor *cursor, Attribute *first, Attribute *attribute) {
    Creators creators = {};
    creators.first    = first;
    Complement_Private (window, cursor->settings, &creators, attribute);
    if (creators.named) DICOM_Module_Private_Look_Anew ();
    return 1;
}

// --- private compression groups --------------------------------------------

struct Known_Element {
    uint16_t    element;
    uint16_t    vr;
    const char *description;
};

// clang-format off
static const Known_Element ELEMENTS_1000[] = {
    {0x0000, VR_LT, EMPHASIS COLOUR_BLACK "---- ---- Group 1000: Compression Info ---- ----" COLOUR_BLUE},
    {0x0010, VR_US, "Huffman:"},
    {0x0012, VR_US, "Nb. Huffman Values:"},
    {0x0013, VR_SS, "Huffman Values:"},
};
static const Known_Element ELEMENTS_7Fxx[] = {
    {0x0000, VR_UL, "Siemens Compression: Group Name"},
    {0x0010, VR_OB, "Siemens Compression: Data"},
    {0x0011, VR_OW, "Siemens Compression: Next Group"},
};
// clang-format on

static void Describe_Known (Window window, Attribute *attribute, const Known_Element *elements, size_t count) {
    for (size_t i = 0; i < count; i++)
        if (elements[i].element == attribute->element)
            Describe (window, attribute, elements[i].vr, elements[i].description);
}

int SPI_Complement_1000 (Window window, Attribute *attribute) {
    Log_Message (window, LOG_TRACE5, "in SPI_Complement_1000(%04x,%04x)", attribute->group, attribute->element);
    Describe_Known (window, attribute, ELEMENTS_1000, sizeof ELEMENTS_1000 / sizeof *ELEMENTS_1000);
    return 1;
}

int SPI_Complement_7Fxx (Window window, Attribute *attribute) {
    Log_Message (window, LOG_TRACE5, "in SPI_Complement_7Fxx(%04x,%04x)", attribute->group, attribute->element);
    Describe_Known (window, attribute, ELEMENTS_7Fxx, sizeof ELEMENTS_7Fxx / sizeof *ELEMENTS_7Fxx);
    return 1;
}

// --- structure -------------------------------------------------------------

static void Describe_Structure (Window window, Attribute *attribute) {
    switch (attribute->element) {
    case ELEMENT_ITEM: Describe (window, attribute, 0, COLOUR_BLUE "Item"); break;
    case ELEMENT_ITEM_END: Describe (window, attribute, 0, COLOUR_BLUE "Item Delimitation Item"); break;
    case ELEMENT_SEQUENCE_END: Describe (window, attribute, 0, COLOUR_BLUE "Sequence Delimitation Item"); break;
    default: break;
    }
}

// --- the pass --------------------------------------------------------------

static void Look_Up (Window window, Attribute *attribute) {
    if (!attribute->definition)
        attribute->definition = Dictionary_Lookup (window, attribute->group, attribute->element);
    if (attribute->definition && !attribute->vr) attribute->vr = attribute->definition->vr[0];
}

// Plain attributes, which most are: the rules of Complement_One have nothing for them. Of a tag without an entry nothing is
// known later either, unless there was no memory for the dictionary; pixel data, items and delimiters are of the groups
// from GROUP_PIXEL on, which hold little else.
int DICOM_Attribute_Is_Complete (const Attribute *attribute) {
    uint16_t group = attribute->group;
    if ((group & 1) || group >= GROUP_PIXEL || !attribute->element || (attribute->flags & PRIVATE)) return 0;
    return attribute->definition ? attribute->vr != 0 : Dictionary_Is_Unknown (group, attribute->element);
}

__attribute__ ((noinline)) static void Complement_Special_Group (Window window, Attribute *attribute) {
    uint16_t group      = attribute->group;
    int      is_private = attribute->flags & PRIVATE;

    if (is_private && group == GROUP_SPECIAL) SPI_Complement_1000 (window, attribute);
    if (is_private && group >= 0x7F00 && group <= 0x7FDF) SPI_Complement_7Fxx (window, attribute);
    if (group == GROUP_PIXEL && attribute->element == ELEMENT_PIXELS) Describe (window, attribute, VR_OB, "Pixel Data");
    if (group == GROUP_DELIMITER) Describe_Structure (window, attribute);
}

// A later rule replaces what an earlier one said. It is part of the walk, which has thousands of private attributes of one
// creator; what few attributes need stays out of it.
static inline void Complement_One (Window window, const Settings *settings, Creators *creators, Attribute *attribute) {
    Look_Up (window, attribute);
    if (attribute->element == 0 && !attribute->description) Describe_Group_Length (window, attribute);
    if (attribute->group & 1) Complement_Private (window, settings, creators, attribute);
    if (attribute->group >= GROUP_SPECIAL) Complement_Special_Group (window, attribute);
}

static void Complement_List (Window window, SequenceCursor *cursor, Creators *creators, Attribute *list, int items);

static void Complement_Items (Window window, SequenceCursor *cursor, Creators *creators, Attribute *attribute) {
    DICOM_Attribute_Sequence_Start (window, cursor, attribute->group, attribute->element, attribute->flags, LOG_TRACE5);
    for (int32_t i = 0; i < attribute->nb_item && attribute->item[i]; i++) {
        DICOM_Attribute_Item_Start (window, cursor, LOG_TRACE5);
        Complement_List (window, cursor, creators, attribute->item[i], 1);
        DICOM_Attribute_Item_Stop (window, cursor, LOG_TRACE5);
    }
    DICOM_Attribute_Sequence_Stop (window, cursor, LOG_TRACE5);
}

// items is 0 when the list's items are left alone.
static void Complement_List (Window window, SequenceCursor *cursor, Creators *creators, Attribute *list, int items) {
    Log_Message (window, LOG_TRACE4, "in DICOM_Attribute_Complement()");
    for (Attribute *record = list; record; record = record->next) {
        Log_Message (window, LOG_TRACE5, "DICOM_Attribute_Complement (%04x,%04x)", record->group, record->element);
        Complement_One (window, cursor->settings, creators, record);
        if (items && record->item) Complement_Items (window, cursor, creators, record);
    }
}

static int Complement (Window window, SequenceCursor *cursor, Attribute *first, int items) {
    Creators creators = {};
    creators.meets    = !items && first && !first->unordered;
    if (!creators.meets) Creators_Gather (window, &creators, first);
    Complement_List (window, cursor, &creators, first, items);
    if (creators.named) DICOM_Module_Private_Look_Anew ();
    Memory_Free (creators.slots);
    return 0;
}

int DICOM_Attribute_Complement (Window window, SequenceCursor *cursor, Attribute *first) {
    return Complement (window, cursor, first, 1);
}

int DICOM_Attribute_Complement_Top (Window window, SequenceCursor *cursor, Attribute *first) {
    return Complement (window, cursor, first, 0);
}
