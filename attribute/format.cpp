// The pass that turns a stream's flat list into the nested one. It keeps the file positions at which sequences and items of
// defined length end, a depth each; whatever ends by a delimiter has no position. Faults of real encoders are warned about
// and read on.
#include "attribute/format.h"

#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/NEMA_Tag_Complement.h"
#include "attribute/NEMA_Tag_Copy.h"
#include "attribute/adopt.h"
#include "attribute/messages.h"
#include "nema/NEMA_Read_Data.h"
#include "tables/data_dictionary.h"

// --- VR check --------------------------------------------------------------

static const int32_t GUESS_LENGTH_LIMIT = 1025; // From this length on an unknown value is taken as bytes.

// Explicit VRs that are kept. UT is not among them on purpose: an explicit UT is treated as if the VR were missing.
static constexpr uint16_t known_explicit[] = {VR_AE, VR_AS, VR_AT, VR_CS, VR_DA, VR_DS, VR_DT, VR_FD, VR_FL,
                                              VR_IS, VR_LO, VR_LT, VR_OB, VR_OW, VR_PN, VR_SH, VR_SL, VR_SQ,
                                              VR_SS, VR_ST, VR_TM, VR_UH, VR_UI, VR_UL, VR_UN, VR_US};

// Of each first letter the second ones, a bit each.
struct VR_Set {
    uint32_t seconds[32];
};

static constexpr VR_Set VR_Set_Make (void) {
    VR_Set set = {};
    for (uint16_t vr : known_explicit) set.seconds[(vr >> 8) - 'A'] |= 1u << ((vr & 0xFF) - 'A');
    return set;
}

static constexpr VR_Set known_explicit_set = VR_Set_Make ();

static inline int Is_Known_Explicit (uint16_t vr) {
    unsigned first = (vr >> 8) - 'A', second = (vr & 0xFF) - 'A';
    return first < 32 && second < 32 && (known_explicit_set.seconds[first] >> second & 1);
}

static void Clean_Explicit (Window window, const Settings *settings, Attribute *attribute) {
    if (attribute->vr_file == VR_OX) {
        Log_Message (window, settings->kind_warning, WARNING_TEXT TAG_TEXT " Explicit VR=OX is invalid!",
                     attribute->group, attribute->element);
        attribute->flags |= SYNTAX_ERROR;
        attribute->vr_file = VR_OW;
    } else if (!Is_Known_Explicit (attribute->vr_file)) {
        attribute->vr_file = 0;
    }
}

static int Dictionary_VR_Count (const Dictionary_Entry *entry) {
    return entry->nb_vr < 0 ? -entry->nb_vr : entry->nb_vr;
}

int DICOM_Attribute_VR_Match (Window window, const Settings *settings, const Attribute *attribute, uint16_t vr) {
    static const char *const formats[] = {
        "    (%04x,%04x)  Explicit VR (=%c%c) does not match definition! (=%c%c)",
        "    (%04x,%04x)  Explicit VR (=%c%c) does not match definition! (=%c%c or %c%c)",
        "    (%04x,%04x)  Explicit VR (=%c%c) does not match definition! (=%c%c, %c%c or %c%c)"};

    const Dictionary_Entry *entry = attribute->definition;
    if (!entry) return 1;
    int count = Dictionary_VR_Count (entry);
    for (int i = 0; i < count; i++)
        if (entry->vr[i] == vr) return 1;
    if (count == 0) return 1;

    const uint16_t *allowed = entry->vr;
    Log_Message (window, settings->kind_note, formats[count - 1], attribute->group, attribute->element,
                 Code_First (vr, '-'), Code_Second (vr, '-'), Code_First (allowed[0], '-'),
                 Code_Second (allowed[0], '-'), Code_First (allowed[1], '-'), Code_Second (allowed[1], '-'),
                 Code_First (allowed[2], '-'), Code_Second (allowed[2], '-'));
    return 0;
}

// A dictionary VR that depends on the value's length.
static uint16_t Resolve_Length_VR (int32_t length) { return length == 2 ? VR_US : length == 4 ? VR_UL : VR_OB; }

// --- guessing from text ----------------------------------------------------

// A value that may be text: its bytes without one padding zero, and the shape of its pieces between backslashes.
struct Guess_Text {
    const char *bytes;
    int32_t     length;
    int         padded;     // 1 when a zero byte followed.
    int32_t     longest;    // Bytes of the longest piece, its backslash counted.
    int32_t     separators; // Backslashes.
};

// 1 when every byte is printable (PS3.5 6.1), but for one zero at the end.
static int Guess_Text_Read (const Attribute *attribute, Guess_Text *text) {
    text->bytes  = reinterpret_cast<const char *> (attribute->data);
    text->length = attribute->length;
    text->padded = text->length > 0 && text->bytes[text->length - 1] == '\0';
    text->length -= text->padded;
    text->longest = text->separators = 0;

    int32_t piece = 0;
    for (int32_t i = 0; i < text->length; i++) {
        if (text->bytes[i] < 0x20 || text->bytes[i] > 0x7E) return 0;
        piece++;
        if (piece > text->longest) text->longest = piece;
        if (text->bytes[i] != '\\') continue;
        text->separators++;
        piece = 0;
    }
    return 1;
}

// Backslashes separate values and belong to every set.
static int Consists_Of (const Guess_Text *text, const char *set) {
    for (int32_t i = 0; i < text->length; i++)
        if (text->bytes[i] != '\\' && !strchr (set, text->bytes[i])) return 0;
    return 1;
}

// Of blanks: a value with a tab is no text.
static void Trim (Guess_Text *text) {
    while (text->length && *text->bytes == ' ') {
        text->bytes++;
        text->length--;
    }
    while (text->length && text->bytes[text->length - 1] == ' ') text->length--;
}

static uint16_t Guess_From_Text (Guess_Text *text) {
    int32_t longest = text->longest;
    if ((text->padded || (longest > 16 && longest < 65)) && Consists_Of (text, "0123456789./")) return VR_UI;
    Trim (text);
    if (longest < 13 && Consists_Of (text, "0123456789+-/")) return VR_IS;
    if (longest < 17 && Consists_Of (text, "0123456789.+-eE/")) return VR_DS;
    if (longest < 17 && Consists_Of (text, "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_ /")) return VR_CS;
    return text->separators > 0 && longest <= 16 ? VR_SH : VR_ST;
}

// --- guessing from bytes ---------------------------------------------------

static uint16_t Guess_From_Number (const Attribute *attribute) {
    if (attribute->length == 2) return VR_SS;
    if (attribute->length != 4) return 0;
    int32_t number = static_cast<int32_t> (Swap_Long (attribute->mode, attribute->data));
    if (number >= -999999 && number <= 999999) return VR_SL;
    float real = Swap_Float (attribute->mode, attribute->data);
    return real != 0 && real > -100000 && real < 100000 ? VR_FL : 0;
}

static int Is_Private_Creator (const Attribute *attribute) {
    return (attribute->group & 1) && attribute->element >= 0x0010 && attribute->element <= 0x00FF;
}

static uint16_t Guess (const Attribute *attribute) {
    if (attribute->length >= GUESS_LENGTH_LIMIT) return VR_OB;
    if (attribute->element == 0) return VR_UL;
    if (Is_Private_Creator (attribute)) return VR_LO;
    Guess_Text text;
    return Guess_Text_Read (attribute, &text) ? Guess_From_Text (&text) : Guess_From_Number (attribute);
}

int DICOM_Attribute_VR_Check (Window window, const Settings *settings, Attribute *attribute) {
    Clean_Explicit (window, settings, attribute);
    if (attribute->vr_file && attribute->definition && Dictionary_VR_Count (attribute->definition) > 0 &&
        !DICOM_Attribute_VR_Match (window, settings, attribute, attribute->vr_file))
        return 0;
    if (attribute->vr == VR_RT) attribute->vr = Resolve_Length_VR (attribute->length);
    if (attribute->vr_file || attribute->vr) return 1;

    attribute->flags |= VR_UNKNOWN;
    if (!attribute->data) return 1;
    attribute->vr = Guess (attribute);
    return attribute->vr != 0;
}

// --- the pass --------------------------------------------------------------

static int Is_Tag (const Attribute *record, uint16_t group, uint16_t element) {
    return record && record->group == group && record->element == element;
}

// Where a value of defined length ends in the file.
static int32_t End_Position (const Attribute *record) {
    int64_t end = static_cast<int64_t> (record->pos_data) + record->length;
    return static_cast<int32_t> (end < INT32_MAX ? end : INT32_MAX);
}

static int Is_Reached (int32_t end, const Attribute *record) {
    return end >= 0 && static_cast<uint32_t> (end) <= record->pos_tag;
}

// --- steps of the cursor ---------------------------------------------------

static void Sequence_Start (Format_Pass *pass, const Attribute *record) {
    int32_t depth =
        DICOM_Attribute_Sequence_Start (pass->window, &pass->cursor, record->group, record->element, record->flags, 0);
    Insert_Path_Cut (&pass->path, depth - 1);
}

static void Sequence_Stop (Format_Pass *pass) {
    Insert_Path_Cut (&pass->path, DICOM_Attribute_Sequence_Stop (pass->window, &pass->cursor, 0));
}

// Items that stand in no sequence are counted, but the top list is no item.
static void Item_Start (Format_Pass *pass) {
    DICOM_Attribute_Item_Start (pass->window, &pass->cursor, 0);
    if (pass->cursor.depth > 0) Insert_Path_Cut (&pass->path, pass->cursor.depth - 1);
}

// --- ends and marks --------------------------------------------------------

static void Mark_Retired_And_Private (Format_Pass *pass, Attribute *record) {
    if (record->definition && record->definition->nb_vr <= 0) {
        record->flags |= RETIRED;
        Log_Message (pass->window, pass->settings->kind_note, "    (%04x,%04x) Retired from DICOM (%s)", record->group,
                     record->element, record->definition->name);
    }
    if (record->group & 1) record->flags |= PRIVATE;
}

static inline void Stop_Sequences_By_Size (Format_Pass *pass, const Attribute *record) {
    SequenceCursor *cursor = &pass->cursor;
    while (Is_Reached (pass->End_Of_Sequence[cursor->depth], record)) {
        pass->End_Of_Sequence[cursor->depth] = -1;
        Sequence_Stop (pass);
        Log_Message (pass->window, LOG_TRACE4, "\"Stop of Sequence\" from size");
    }
}

static inline void Stop_Item_By_Size (Format_Pass *pass, const Attribute *record) {
    int32_t depth = pass->cursor.depth;
    if (!Is_Reached (pass->End_Of_Item[depth], record)) return;
    pass->End_Of_Item[depth] = -1;
    DICOM_Attribute_Item_Stop (pass->window, &pass->cursor, 0);
    Log_Message (pass->window, LOG_TRACE4, "\"Stop of Item\" from size");
}

static void Follow_Item_Tags (Format_Pass *pass, const Attribute *record) {
    SequenceCursor *cursor = &pass->cursor;
    if (Is_Tag (record, GROUP_DELIMITER, ELEMENT_SEQUENCE_END)) {
        Sequence_Stop (pass);
        Log_Message (pass->window, LOG_TRACE4, "\"Stop of Sequence\" tag (%04x,%04x) size=%d (End_Of_Item:%04X)",
                     record->group, record->element, record->length, pass->End_Of_Item[cursor->depth]);
    } else if (Is_Tag (record, GROUP_DELIMITER, ELEMENT_ITEM)) {
        Item_Start (pass);
        if (record->length != LENGTH_UNDEFINED) pass->End_Of_Item[cursor->depth] = End_Position (record);
        Log_Message (pass->window, LOG_TRACE4, "\"Start of Item\" tag (%04x,%04x) size=%d (End_Of_Item[%d]:%04X)",
                     record->group, record->element, record->length, cursor->depth, pass->End_Of_Item[cursor->depth]);
    }
}

// Tags ascend (PS3.5 7.1). One that doesn't is a fault at the top; inside a sequence whose end isn't known it means that
// the encoder forgot to close the sequence.
static inline void Check_Order (Format_Pass *pass, const Attribute *record) {
    SequenceCursor *cursor = &pass->cursor;
    int32_t         depth  = cursor->depth;
    if ((record->flags & ORIGIN_MASK) != ORIGIN_DICOM || record->group == GROUP_DELIMITER) return;
    if (cursor->group[depth] == GROUP_DELIMITER) return;
    if (Tag_Compare (record->group, record->element, cursor->group[depth], cursor->element[depth]) >= 0) return;

    if (depth == 0) {
        if (!pass->sort_warned)
            Log_Message (pass->window, pass->settings->kind_warning, WARNING_TEXT TAG_TEXT " tags should be sorted!",
                         record->group, record->element);
        pass->sort_warned = 1;
    } else if (pass->End_Of_Sequence[depth] < 1) {
        Log_Message (pass->window, pass->settings->kind_warning, WARNING_TEXT TAG_TEXT " missing end of sequence tag!",
                     record->group, record->element);
        pass->End_Of_Sequence[depth] = -1;
        Sequence_Stop (pass);
    }
}

// --- opening sequences -----------------------------------------------------

static void Open_Sequence (Format_Pass *pass, const Attribute *record) {
    Sequence_Start (pass, record);
    pass->End_Of_Sequence[pass->cursor.depth] = -1;
    pass->End_Of_Item[pass->cursor.depth]     = -1;
}

static void Syntax_Error (Format_Pass *pass, const Attribute *record, Attribute *target, const char *format) {
    Log_Message (pass->window, pass->settings->kind_warning, format, record->group, record->element,
                 Code_First (pass->vr, '-'), Code_Second (pass->vr, '-'));
    target->flags |= DELETED;
}

// What looked like a sequence isn't followed by what a sequence holds.
static void Refuse_Sequence (Format_Pass *pass, const Attribute *record, Attribute *target, const char *format) {
    Syntax_Error (pass, record, target, format);
    Sequence_Stop (pass);
}

static void Open_SQ (Format_Pass *pass, const Attribute *record, Attribute *target) {
    Open_Sequence (pass, record);
    if (record->length != LENGTH_UNDEFINED) pass->End_Of_Sequence[pass->cursor.depth] = End_Position (record);
    else if (!pass->next || pass->next->group != GROUP_DELIMITER)
        Refuse_Sequence (pass, record, target,
                         WARNING_TEXT TAG_TEXT " Syntax Error! VR=SQ should be followed by an \"item\" tag");
    Log_Message (pass->window, LOG_TRACE4, "\"Start of Sequence\" tag (%04x,%04x) size=%d (End_Of_Sequence[%d]:%04X)",
                 record->group, record->element, record->length, pass->cursor.depth,
                 pass->End_Of_Sequence[pass->cursor.depth]);
}

// OB, OW or UN of undefined length: fragments (PS3.5 A.4).
static void Open_Encapsulated (Format_Pass *pass, const Attribute *record, Attribute *target) {
    Open_Sequence (pass, record);
    if (!Is_Tag (pass->next, GROUP_DELIMITER, ELEMENT_ITEM))
        Refuse_Sequence (pass, record, target,
                         WARNING_TEXT TAG_TEXT
                         " Syntax Error! VR=%c%c Variable length tag should be followed by an \"item\" tag");
    Log_Message (pass->window, LOG_TRACE4, "\"Start of Sequence\" tag (%04x,%04x) size=%d (End_Of_Sequence:%04X)",
                 record->group, record->element, record->length, pass->End_Of_Sequence[pass->cursor.depth]);
}

// A tag that nobody knows, followed by an item: a sequence, unless the item is the next one of the sequence around it.
static void Open_Unknown (Format_Pass *pass, const Attribute *record, Attribute *target) {
    int32_t end = pass->End_Of_Item[pass->cursor.depth];
    if (end >= 0 && static_cast<uint32_t> (end) == pass->next->pos_tag) return;
    Open_Sequence (pass, record);
    if (record->length == LENGTH_UNDEFINED) return;
    pass->End_Of_Sequence[pass->cursor.depth] = End_Position (record);
    target->length                            = LENGTH_UNDEFINED;
}

// 1 when the tag was unknown and followed by an item, which ends the handling of the record.
static int Open_What_Follows (Format_Pass *pass, const Attribute *record, Attribute *target) {
    if (record->group == GROUP_DELIMITER) return 0;
    uint16_t vr        = pass->vr;
    int      undefined = record->length == LENGTH_UNDEFINED;
    if (vr == 0 && Is_Tag (pass->next, GROUP_DELIMITER, ELEMENT_ITEM)) {
        Open_Unknown (pass, record, target);
        return 1;
    }
    if (vr == VR_SQ) Open_SQ (pass, record, target);
    else if (vr == VR_UT && undefined)
        Syntax_Error (pass, record, target,
                      WARNING_TEXT TAG_TEXT " Syntax Error! Variable length tag is not allowed for VR=%c%c");
    else if ((vr == VR_OB || vr == VR_OW || vr == VR_UN) && undefined) Open_Encapsulated (pass, record, target);
    return 0;
}

static void Stop_Item_By_Tag (Format_Pass *pass, const Attribute *record) {
    if (!Is_Tag (record, GROUP_DELIMITER, ELEMENT_ITEM_END)) return;
    DICOM_Attribute_Item_Stop (pass->window, &pass->cursor, 0);
    Log_Message (pass->window, LOG_TRACE4, "\"Stop of Item\" tag (%04x,%04x) size=%d (End_Of_Item:%04X)", record->group,
                 record->element, record->length, pass->End_Of_Item[pass->cursor.depth]);
}

static int Is_Structure (const Attribute *record) {
    return Is_Tag (record, GROUP_DELIMITER, ELEMENT_ITEM) || Is_Tag (record, GROUP_DELIMITER, ELEMENT_ITEM_END) ||
           Is_Tag (record, GROUP_DELIMITER, ELEMENT_SEQUENCE_END);
}

// Makes room for a record where one of structure stood for it so far.
static inline void Replace_Structure (Format_Pass *pass, Attribute **place) {
    if (!*place || (*place)->next || !Is_Structure (*place)) return;
    DICOM_Attribute_Free (pass->window, *place);
    *place = nullptr;
    pass->structure--;
}

// The record, which is in the list or is shed, that is, it is still the caller's. None when memory ran out.
static Attribute *Place_Lean (Format_Pass *pass, Attribute *record, int *shed) {
    Attribute **place = DICOM_Attribute_Adopt_Place (pass->window, &pass->cursor, &pass->path, record);
    if (!place) return nullptr;
    *shed = *place && Is_Structure (record);
    if (*shed) {
        Attribute_Copy_Kept (pass->window, &pass->cursor, record);
        return record;
    }
    Replace_Structure (pass, place);
    pass->structure += record->group == GROUP_DELIMITER;
    DICOM_Attribute_Adopt_At (pass->window, &pass->cursor, place, record);
    return record;
}

// The record of the nested list, or none when memory ran out.
static Attribute *Place (Format_Pass *pass, Attribute *record, int *shed) {
    if (pass->is_right) return Place_Lean (pass, record, shed);
    if (!pass->owns) return DICOM_Attribute_Insert (pass->window, &pass->cursor, &pass->list, record, 0);
    return DICOM_Attribute_Adopt (pass->window, &pass->cursor, &pass->path, record) ? record : nullptr;
}

// Records of structure are counted instead, since most of them don't stay.
static inline int Is_To_Complete (const Attribute *record, int depth) {
    return depth > 0 && record->group != GROUP_DELIMITER && !DICOM_Attribute_Is_Complete (record);
}

static inline void Look_At (Format_Pass *pass, Attribute *record) {
    record->right = pass->is_right (record) ? 1 : 0;
    if (!record->right) pass->left |= FORMAT_LEFT_VALUES;
    if (Is_To_Complete (record, record->level)) pass->left |= FORMAT_LEFT_DESCRIPTIONS;
}

// --- plain records ---------------------------------------------------------

// Asked for every record of a file, as are the rules of ends and order, so they are inline.

// 1 for an attribute that is no sequence, isn't retired, and has a VR that nobody has to choose.
static inline int Has_Plain_VR (const Attribute *record) {
    if (record->group == GROUP_DELIMITER || record->length == LENGTH_UNDEFINED || record->vr == VR_RT) return 0;
    if (record->definition && record->definition->nb_vr <= 0) return 0;
    if (!record->vr_file) return record->vr && record->vr != VR_SQ;
    return record->vr_file != VR_SQ && Is_Known_Explicit (record->vr_file);
}

static inline void Note_Mismatch (Format_Pass *pass, const Attribute *record) {
    if (Log_Is_Read (pass->settings->kind_note) && record->vr_file && record->definition)
        DICOM_Attribute_VR_Match (pass->window, pass->settings, record, record->vr_file);
}

// The usual record of a lean list: of the rules for all records only those of ends, order and match have to be asked.
static inline int Is_Plain (const Format_Pass *pass, const Attribute *record) {
    return pass->is_right && Has_Plain_VR (record);
}

// 0 when memory ran out.
static int Format_Plain (Format_Pass *pass, Attribute *record) {
    if (record->group & 1) record->flags |= PRIVATE;
    Stop_Sequences_By_Size (pass, record);
    Stop_Item_By_Size (pass, record);
    Check_Order (pass, record);
    Note_Mismatch (pass, record);
    pass->next        = record->next;
    Attribute **place = DICOM_Attribute_Adopt_Place (pass->window, &pass->cursor, &pass->path, record);
    if (!place) return 0;
    Replace_Structure (pass, place);
    DICOM_Attribute_Adopt_At (pass->window, &pass->cursor, place, record);
    Stop_Item_By_Size (pass, record);
    Look_At (pass, record);
    return 1;
}

// --- all records -----------------------------------------------------------

// 0 when memory ran out.
static int Format_Record (Format_Pass *pass, Attribute *record) {
    Log_Message (pass->window, LOG_TRACE4, "DICOM_Attribute_Format (%04x,%04x) (pos:%04X)", record->group,
                 record->element, record->pos_tag);
    Mark_Retired_And_Private (pass, record);
    Stop_Sequences_By_Size (pass, record);
    Stop_Item_By_Size (pass, record);
    Follow_Item_Tags (pass, record);
    Check_Order (pass, record);
    DICOM_Attribute_VR_Check (pass->window, pass->settings, record);
    pass->next        = record->next;
    pass->vr          = Attribute_VR (record);
    int        shed   = 0;
    Attribute *target = Place (pass, record, &shed);
    if (!target) return 0;
    int opened = Open_What_Follows (pass, record, target);
    if (!opened) {
        Stop_Item_By_Tag (pass, record);
        Stop_Item_By_Size (pass, record);
    }
    if (shed) DICOM_Attribute_Free (pass->window, record);
    else if (pass->is_right) Look_At (pass, record);
    return 1;
}

static void Start (Format_Pass *pass, Window window, const Settings *settings, int owns, Attribute_Test is_right) {
    static const Settings silent = {};

    Log_Message (window, LOG_TRACE4, "in DICOM_Attribute_Format()");
    *pass                 = {};
    pass->window          = window;
    pass->settings        = settings ? settings : &silent;
    pass->cursor.settings = pass->settings;
    pass->owns            = owns;
    pass->is_right        = is_right;
    pass->path.place[0]   = &pass->list;
    for (int depth = 0; depth < SEQUENCE_DEPTHS; depth++) pass->End_Of_Sequence[depth] = pass->End_Of_Item[depth] = -1;
    DICOM_Attribute_Sequence_Reset (window, &pass->cursor);
}

int DICOM_Attribute_Format_Next (Format_Pass *pass, Attribute *record) {
    if (pass->failed) return 0;
    if (Is_Plain (pass, record) ? Format_Plain (pass, record) : Format_Record (pass, record)) return 1;
    pass->failed = 1;
    DICOM_Attribute_Sequence_Reset (pass->window, &pass->cursor);
    DICOM_Attribute_Delete (pass->window, &pass->cursor, &pass->list, TAG_ANY, TAG_ANY);
    return 0;
}

// The nested list, or none. The record that there was no memory for is left in *flat.
static Attribute *Format (Window window, const Settings *settings, Attribute **flat, int owns) {
    Format_Pass pass;
    Start (&pass, window, settings, owns, nullptr);
    while (*flat && DICOM_Attribute_Format_Next (&pass, *flat)) *flat = pass.next;
    return pass.list;
}

Attribute *DICOM_Attribute_Format (Window window, const Settings *settings, Attribute *flat_first) {
    return Format (window, settings, &flat_first, 0);
}

Attribute *DICOM_Attribute_Format_Own (Window window, const Settings *settings, Attribute **flat) {
    return Format (window, settings, flat, 1);
}

void DICOM_Attribute_Format_Start (Format_Pass *pass, Window window, const Settings *settings,
                                   Attribute_Test is_right) {
    Start (pass, window, settings, 1, is_right);
}

Attribute *DICOM_Attribute_Format_End (const Format_Pass *pass, unsigned *left) {
    *left = pass->left | (pass->structure ? FORMAT_LEFT_STRUCTURE | FORMAT_LEFT_DESCRIPTIONS : 0);
    return pass->list;
}
