// Both walks go through two lists like a merge: whichever side has the smaller tag goes first, equal tags go together.
// Lists are taken in the order in which they were read; a file that isn't sorted therefore still equals itself. Texts are
// built only where somebody reads them: for a merged record, or for a line of the audit file.
#include "compare/attribute_comparison.h"

#include <stdio.h>
#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/value.h"
#include "nema/NEMA_Read_Value.h"
#include "tables/data_dictionary.h"
#include "util/my_error_fct.h"
#include "util/text.h"

static const char *const MODULE = "attribute_comparison";

static const int VALUE_COLUMN    = 60;    // Characters of a value text in a pair.
static const int VALUES_SHOWN    = 10;    // Of a numeric value.
static const int BYTES_SHOWN     = 16;    // Of a binary value.
static const int HEAD_COLUMN     = 50;    // Where the description begins in an audit line, display codes counted.
static const int INDENT_COLUMNS  = 6;     // Depth marks and pad together, as long as the marks leave room.
static const int COMPARE_BLOCK   = FILE_BUFFER_SIZE;   // Compared at once; the positions of an equal block aren't counted.
static const int COMPARE_SLICE   = 64 * COMPARE_BLOCK; // Bytes after which a view gives its memory back.
static const int PAIR_TEXT_SIZE  = 2 * VALUE_COLUMN + 8;
static const int AUDIT_LINE_SIZE = 512;

struct Walk;
typedef int (*Classification) (const Walk *walk, Attribute *a, Attribute *b, int depth, int skipped);

// What a walk passes along as it is.
struct Walk {
    Window          window;
    SequenceCursor *cursor;
    Attribute      *merged;
    Classification  classify;
    int             passes_same; // Nothing but a trace tells of attributes that are the same on both sides.
};

// --- value text ------------------------------------------------------------

static void Add_Characters (char *text, size_t size, size_t *used, const Attribute *attribute) {
    int count = attribute->data ? attribute->length : 0;
    if (count > VALUE_COLUMN) count = VALUE_COLUMN;
    if (count < 0) count = 0;
    Text_Append (text, size, used, "\"%.*s\"", count, count ? reinterpret_cast<const char *> (attribute->data) : "");
}

static void Add_Bytes (char *text, size_t size, size_t *used, const Attribute *attribute, int unit) {
    static const char DIGITS[] = "0123456789ABCDEF";

    char  shown[3 * BYTES_SHOWN + 1]; // Formatting each byte would cost more than all else about a short difference.
    char *end   = shown;
    int   count = attribute->length < BYTES_SHOWN ? attribute->length : BYTES_SHOWN;
    for (int i = 0; attribute->data && i < count; i++) {
        *end++ = DIGITS[attribute->data[i] >> 4];
        *end++ = DIGITS[attribute->data[i] & 15];
        if (i % unit == unit - 1 || i == attribute->length - 1) *end++ = ' ';
    }
    *end = 0;
    Text_Append (text, size, used, "%s%s", shown, attribute->length > BYTES_SHOWN ? "..." : "");
}

// The attribute with no more values of size bytes than decide about its text; a long table isn't decoded as a whole. The
// copy borrows the value. A value that isn't made of whole numbers keeps its length, so that it is refused as it is.
static Attribute First_Values (const Attribute *attribute, int size) {
    Attribute first = *attribute;
    int       limit = (VALUES_SHOWN + 1) * size;
    if (first.length > limit && first.length % size == 0) first.length = limit;
    return first;
}

static void Add_Integers (Window window, char *text, size_t size, size_t *used, const Attribute *attribute,
                          int number) {
    Attribute first  = First_Values (attribute, number);
    int32_t  *values = first.data ? V_Int (window, &first, 0) : nullptr;
    for (int i = 0; values && i < first.vm && i < VALUES_SHOWN; i++)
        Text_Append (text, size, used, "%s%-d", i ? " \\ " : "", values[i]);
    if (values && first.vm > VALUES_SHOWN) Text_Append (text, size, used, "...");
}

// With more values than are shown, the dots stand behind every one of them.
static void Add_Floats (Window window, char *text, size_t size, size_t *used, const Attribute *attribute, int number) {
    Attribute   first  = First_Values (attribute, number);
    float      *values = first.data ? V_Float (window, &first, 0) : nullptr;
    const char *dots   = values && first.vm > VALUES_SHOWN ? "..." : "";
    for (int i = 0; values && i < first.vm && i < VALUES_SHOWN; i++)
        Text_Append (text, size, used, "%s%-.3f%s", i ? " \\ " : "", static_cast<double> (values[i]), dots);
}

const char *Value_Text (Window window, Attribute *attribute) {
    static char text[VALUE_TEXT_LENGTH + 1];
    size_t      used = 0;

    if (!attribute) return "(no tag)";
    if (attribute->length == 0) return "(empty)";

    text[0] = 0;
    switch (Attribute_VR (attribute)) {
    case VR_AE:
    case VR_AS:
    case VR_CS:
    case VR_DA:
    case VR_DS:
    case VR_DT:
    case VR_IS:
    case VR_LO:
    case VR_LT:
    case VR_PN:
    case VR_SH:
    case VR_ST:
    case VR_TM:
    case VR_UI:
    case VR_UT: Add_Characters (text, sizeof text, &used, attribute); break;
    case VR_SL:
    case VR_UL: Add_Integers (window, text, sizeof text, &used, attribute, 4); break;
    case VR_SS:
    case VR_US: Add_Integers (window, text, sizeof text, &used, attribute, 2); break;
    case VR_FL: Add_Floats (window, text, sizeof text, &used, attribute, 4); break;
    case VR_FD: Add_Floats (window, text, sizeof text, &used, attribute, 8); break;
    case VR_OB: Add_Bytes (text, sizeof text, &used, attribute, 1); break;
    case VR_OW: Add_Bytes (text, sizeof text, &used, attribute, 2); break;
    case VR_SQ: return "(sequence)";
    default: break;
    }
    return text;
}

// The text of A is kept aside, since the second call takes the shared buffer.
static void Pair_Text (Window window, Attribute *a, Attribute *b, char *pair) {
    char text_a[VALUE_TEXT_LENGTH + 1];
    Text_Copy (text_a, sizeof text_a, Value_Text (window, a));
    snprintf (pair, PAIR_TEXT_SIZE, "%*.*s /vs/ %-.*s", VALUE_COLUMN, VALUE_COLUMN, text_a, VALUE_COLUMN,
              Value_Text (window, b));
}

static const char *Description (const Attribute *a, const Attribute *b) {
    if (a && a->description) return a->description;
    if (b && b->description) return b->description;
    if (a && a->definition) return a->definition->name;
    if (b && b->definition) return b->definition->name;
    return nullptr;
}

// --- merged record ---------------------------------------------------------

// The merged record of a tag. In batch mode there is no merged list, but a trace tells of the search all the same.
static Attribute *Merged_Get (const Walk *walk, const Attribute *tag) {
    if (!walk->merged && !Log_Is_Read (LOG_TRACE5)) return nullptr;
    return DICOM_Attribute_Get_Exact (walk->window, walk->cursor, walk->merged, tag->group, tag->element);
}

// Makes a record of the merged list ready for its difference code. 1, or 0 after a memory message.
static int Merged_Describe (Window window, Attribute *tag, const char *value, const char *description) {
    tag->flags = DIFFERENCE_NONE;
    if (!Value_Set_Text (window, HERE ("tag->data", 0, 0), tag, value)) return 0;

    Memory_Free (tag->description);
    tag->description = nullptr;
    if (!description) return 1;
    tag->description = Memory_Strdup (window, HERE ("tag->description", 0, 0), description);
    return tag->description != nullptr;
}

// --- two files -------------------------------------------------------------

struct Difference {
    uint16_t code;
    int32_t  quantity_a;
    int32_t  quantity_b;
};

// The sum of as many as a byte can hold is a byte, so that the compiler takes as many positions at once as it can.
static int32_t Count_Positions (const uint8_t *a, const uint8_t *b, size_t count) {
    static const size_t PART = 240;

    int32_t different = 0;
    for (size_t start = 0; start < count; start += PART) {
        size_t  end  = count - start < PART ? count : start + PART;
        uint8_t part = 0;
        for (size_t i = start; i < end; i++) part = static_cast<uint8_t> (part + (a[i] != b[i]));
        different += part;
    }
    return different;
}

// Positions at which two values of the same length differ. A value without bytes differs everywhere from one with bytes.
static int32_t Different_Bytes (const Attribute *a, const Attribute *b) {
    if (a->length <= 0 || a->data == b->data) return 0;
    if (!a->data || !b->data) return a->length;

    size_t  length    = static_cast<size_t> (a->length);
    int32_t different = 0;
    if (length < COMPARE_BLOCK && !memcmp (a->data, b->data, length)) return 0; // Not worth giving back what is a view.
    for (size_t start = 0; start < length; start += COMPARE_BLOCK) {
        size_t count = length - start < COMPARE_BLOCK ? length - start : COMPARE_BLOCK;
        if (memcmp (a->data + start, b->data + start, count))
            different += Count_Positions (a->data + start, b->data + start, count);
        if ((start + count) % COMPARE_SLICE == 0 || start + count == length) {
            size_t slice = start / COMPARE_SLICE * COMPARE_SLICE;
            Value_Looked_At (a, slice, start + count - slice);
            Value_Looked_At (b, slice, start + count - slice);
        }
    }
    return different;
}

static Difference Compare (const Attribute *a, const Attribute *b) {
    if (!b) return {DIFFERENCE_ONLY_A, 0, 0};
    if (!a) return {DIFFERENCE_ONLY_B, 0, 0};
    if (a->vr_file != b->vr_file) {
        if (Attribute_VR (a) != Attribute_VR (b)) return {DIFFERENCE_VR, a->vr_file, b->vr_file};
        if (!a->vr_file) return {DIFFERENCE_IMPLICIT_EXPLICIT, 0, 0};
        return {DIFFERENCE_EXPLICIT_IMPLICIT, 0, 0};
    }
    if (a->length != b->length) return {DIFFERENCE_LENGTH, a->length, b->length};

    int32_t different = Different_Bytes (a, b);
    if (different) return {DIFFERENCE_BYTES, different, 0};
    return {DIFFERENCE_NONE, 0, 0};
}

static void Merged_Mark (Attribute *tag, const Difference *difference) {
    tag->flags = difference->code;
    switch (difference->code) {
    case DIFFERENCE_LENGTH:
    case DIFFERENCE_VR:
        tag->diff_b = difference->quantity_b;
        tag->diff_a = difference->quantity_a;
        break;
    case DIFFERENCE_BYTES: tag->diff_a = difference->quantity_a; break;
    default: break;
    }
}

static int Is_Skipped (const Settings *settings, uint16_t group, uint16_t element) {
    for (int i = 0; settings && i < settings->Nb_Skip; i++)
        if (DICOM_Attribute_Tag_Match (settings->Skip_Group[i], settings->Skip_Element[i], group, element)) return 1;
    return 0;
}

// Mark, depth, tag and VR; the pad keeps the VR column in its place as deep as the marks leave room.
static void Add_Head (char *line, size_t *used, const char *mark, const Attribute *tag, uint16_t vr, int depth) {
    int marks = depth < SEQUENCE_DEPTHS ? depth : SEQUENCE_DEPTHS;
    int pad   = INDENT_COLUMNS - marks - (depth > 0);
    Text_Append (line, AUDIT_LINE_SIZE, used, EMPHASIS COLOUR_RED "%s" COLOUR_BLACK " %.*s%s(%04X,%04X) %*s%c%c", mark,
                 marks, ">>>>>>>>>>", depth > 0 ? " " : "", tag->group, tag->element, pad > 0 ? pad : 0, "",
                 Code_First (vr, '-'), Code_Second (vr, '-'));
}

// In the heads that name both sides, B stands before A, although the value texts stand the other way round.
static void Add_Outcome (char *line, size_t *used, const Difference *difference, const Attribute *a, const Attribute *b,
                         int depth) {
    const Attribute *tag = a ? a : b;
    uint16_t         vr  = a && Attribute_VR (a) ? Attribute_VR (a) : b ? Attribute_VR (b) : 0;

    switch (difference->code) {
    case DIFFERENCE_ONLY_A:
        Add_Head (line, used, "-", tag, vr, depth);
        Text_Append (line, AUDIT_LINE_SIZE, used, " (%4d)", a->length);
        break;
    case DIFFERENCE_ONLY_B:
        Add_Head (line, used, "+", tag, vr, depth);
        Text_Append (line, AUDIT_LINE_SIZE, used, " (%4d)", b->length);
        break;
    case DIFFERENCE_BYTES:
        Add_Head (line, used, "!", tag, vr, depth);
        Text_Append (line, AUDIT_LINE_SIZE, used, " (%4d) %d bytes diff", a->length, difference->quantity_a);
        break;
    case DIFFERENCE_LENGTH:
        Add_Head (line, used, "!", tag, vr, depth);
        Text_Append (line, AUDIT_LINE_SIZE, used, " (%d/vs/%d)", b->length, a->length);
        break;
    case DIFFERENCE_VR:
        Add_Head (line, used, "!", tag, b->vr_file, depth);
        Text_Append (line, AUDIT_LINE_SIZE, used, " /vs/ %c%c", Code_First (a->vr_file, '-'),
                     Code_Second (a->vr_file, '-'));
        break;
    case DIFFERENCE_EXPLICIT_IMPLICIT:
        Add_Head (line, used, "!", tag, vr, depth);
        Text_Append (line, AUDIT_LINE_SIZE, used, " explicit/vs/implicit");
        break;
    default:
        Add_Head (line, used, "!", tag, vr, depth);
        Text_Append (line, AUDIT_LINE_SIZE, used, " implicit/vs/explicit");
        break;
    }
}

static void Audit (Window window, const Difference *difference, const Attribute *a, const Attribute *b, int depth,
                   const char *pair) {
    char        line[AUDIT_LINE_SIZE];
    size_t      used        = 0;
    const char *description = Description (a, b);

    Add_Outcome (line, &used, difference, a, b, depth);
    if (used < HEAD_COLUMN) Text_Append (line, sizeof line, &used, "%*s", static_cast<int> (HEAD_COLUMN - used), "");
    Text_Append (line, sizeof line, &used, "%-40.40s %s", description ? description : "(no database def.)", pair);
    Log_Message (window, LOG_AUDIT, "%s", line);
}

// --- walking ---------------------------------------------------------------

// Which of two lists, not both at their end, goes on: A below 0, B above 0, both at 0.
static int Next_Side (const Attribute *a, const Attribute *b) {
    if (!b) return -1;
    if (!a) return 1;
    return Tag_Compare (a->group, a->element, b->group, b->element);
}

// Two attributes of which Diff_Pair says nothing, skipped or not, found out without all that it prepares: the same tag and
// VR, no difference to Compare, and no items. What is rare or long is left to it.
static int Is_Same (const Attribute *a, const Attribute *b) {
    if (a->group != b->group || a->element != b->element || a->vr_file != b->vr_file || a->length != b->length)
        return 0;
    if (a->nb_item || b->nb_item || a->length < 0 || a->length >= COMPARE_BLOCK) return 0;
    return !a->length || (a->data && b->data && !memcmp (a->data, b->data, static_cast<size_t> (a->length)));
}

static int Walk_Lists (const Walk *walk, Attribute *list_a, Attribute *list_b, int depth, int skipped) {
    int count = 0;
    for (;;) {
        if (walk->passes_same && !Log_Is_Read (LOG_TRACE5)) {
            while (list_a && list_b && Is_Same (list_a, list_b)) {
                list_a = list_a->next;
                list_b = list_b->next;
            }
        }
        if (!list_a && !list_b) return count;

        int        order = Next_Side (list_a, list_b);
        Attribute *a     = order <= 0 ? list_a : nullptr;
        Attribute *b     = order >= 0 ? list_b : nullptr;
        count += walk->classify (walk, a, b, depth, skipped);
        if (a) list_a = a->next;
        if (b) list_b = b->next;
    }
}

static Attribute *Item_List (const Attribute *attribute, int32_t i) {
    return attribute && attribute->item && i < attribute->nb_item ? attribute->item[i] : nullptr;
}

// Items are paired by their number only.
static int Walk_Items (const Walk *walk, Attribute *a, Attribute *b, int depth, int skipped) {
    const Attribute *tag     = a ? a : b;
    int32_t          count_a = a ? a->nb_item : 0;
    int32_t          count_b = b ? b->nb_item : 0;
    int32_t          items   = count_a > count_b ? count_a : count_b;
    int              count   = 0;
    if (items <= 0) return 0;

    DICOM_Attribute_Sequence_Start (walk->window, walk->cursor, tag->group, tag->element, tag->flags, 0);
    for (int32_t i = 0; i < items; i++) {
        DICOM_Attribute_Item_Start (walk->window, walk->cursor, 0);
        count += Walk_Lists (walk, Item_List (a, i), Item_List (b, i), depth + 1, skipped);
        DICOM_Attribute_Item_Stop (walk->window, walk->cursor, 0);
    }
    DICOM_Attribute_Sequence_Stop (walk->window, walk->cursor, 0);
    return count;
}

static int Diff_Pair (const Walk *walk, Attribute *a, Attribute *b, int depth, int skipped) {
    const Attribute *tag        = a ? a : b;
    Attribute       *record     = Merged_Get (walk, tag);
    Difference       difference = {DIFFERENCE_SKIPPED, 0, 0};
    char             pair[PAIR_TEXT_SIZE];

    if (!skipped) skipped = Is_Skipped (walk->cursor->settings, tag->group, tag->element);
    if (!skipped) difference = Compare (a, b);

    bool counts = !skipped && difference.code != DIFFERENCE_NONE;
    if (record || counts) Pair_Text (walk->window, a, b, pair);
    if (record) {
        if (!Merged_Describe (walk->window, record, pair, Description (a, b))) return 0;
        Merged_Mark (record, &difference);
    }
    if (counts) Audit (walk->window, &difference, a, b, depth, pair);
    return counts + Walk_Items (walk, a, b, depth, skipped);
}

static Walk Diff_Walk (Window window, SequenceCursor *cursor, Attribute *merged) {
    return {window, cursor, merged, Diff_Pair, !merged};
}

int Diff_Attribute (Window window, SequenceCursor *cursor, Attribute *merged, Attribute *a, Attribute *b, int depth,
                    int skipped) {
    Walk walk = Diff_Walk (window, cursor, merged);
    return a || b ? Diff_Pair (&walk, a, b, depth, skipped) : 0;
}

int Diff_Lists (Window window, SequenceCursor *cursor, Attribute *merged, Attribute *list_a, Attribute *list_b,
                int depth, int skipped) {
    Walk walk = Diff_Walk (window, cursor, merged);
    return Walk_Lists (&walk, list_a, list_b, depth, skipped);
}

// --- a file and its definition ---------------------------------------------

// Every attribute of the file counts, whether the definition knows it or not.
static int Modality_Pair (const Walk *walk, Attribute *a, Attribute *d, int depth, int skipped) {
    const Attribute *tag    = a ? a : d;
    Attribute       *record = Merged_Get (walk, tag);
    if (record) {
        char text[PAIR_TEXT_SIZE] = "";
        if (a) snprintf (text, sizeof text, "       %-.*s", VALUE_COLUMN, Value_Text (walk->window, a));
        if (!Merged_Describe (walk->window, record, text, Description (a, d))) return 0;
        record->flags = a && d ? DIFFERENCE_FILE_AND_DEFINITION : a ? DIFFERENCE_FILE_ONLY : DIFFERENCE_NONE;
    }
    return (a != nullptr) + Walk_Items (walk, a, d, depth, skipped);
}

int Modality_Diff_Attribute (Window window, SequenceCursor *cursor, Attribute *merged, Attribute *a, Attribute *d,
                             int depth, int skipped) {
    Walk walk = {window, cursor, merged, Modality_Pair, 0};
    return a || d ? Modality_Pair (&walk, a, d, depth, skipped) : 0;
}

int Modality_Diff_Lists (Window window, SequenceCursor *cursor, Attribute *merged, Attribute *list_a, Attribute *list_d,
                         int depth, int skipped) {
    Walk walk = {window, cursor, merged, Modality_Pair, 0};
    return Walk_Lists (&walk, list_a, list_d, depth, skipped);
}
