// The store. Lists are searched from their start by rule, but files are written in tag order and walks go through lists
// in that order, so the first record of a list remembers where the last search ended (seek): the next search goes on from
// there when the list is in order, and an item is entered without any search while its sequence stays the same. Tags that
// come in no order are found by short cuts (attribute/list_index.h) once the walks get long. What is found is what the
// search from the start would find.
#include "attribute/NEMA_Tag_Attribute.h"

#include <stdio.h>

#include "attribute/NEMA_Tag_Copy.h"
#include "attribute/adopt.h"
#include "attribute/list_index.h"
#include "attribute/messages.h"
#include "attribute/value.h"
#include "util/text.h"

static const char *const MODULE = "NEMA_Tag_Attribute";

// The size that the failure texts state for a record. What the program keeps behind the described fields isn't counted.
static const int RECORD_SIZE_STATED = 96;
static const int SLOT_SIZE_STATED   = 8;

// --- one list --------------------------------------------------------------

static int Tag_Compare_To (const Attribute *attribute, uint16_t group, uint16_t element) {
    return Tag_Compare (attribute->group, attribute->element, group, element);
}

// The record at which the search for a tag starts: the first one, or where the last search ended when all records before
// that one are smaller than the tag. seek is always the first record with its own tag.
static Attribute *List_Search_Start (Attribute *first, uint16_t group, uint16_t element) {
    Attribute *seek = first->seek;
    if (!seek) return first;
    int order = Tag_Compare_To (seek, group, element);
    return order == 0 || (order < 0 && !first->unordered) ? seek : first;
}

static const int32_t STEPS_NEAR = 4;  // Of a walk before short cuts are asked: tags mostly come in order.
static const int32_t STEPS_LONG = 24; // Of a walk behind a landmark that is worth another one,
static const int32_t STEPS_HALF = 12; // and where it is put.

// First record of a list that isn't in order with exactly this tag, or none.
static Attribute *Unordered_Find (Window window, Attribute *first, uint16_t group, uint16_t element) {
    Attribute *record = List_Search_Start (first, group, element);
    int32_t    steps  = 0;
    if (record == first && !List_Index_Find (first, group, element, &record)) {
        for (; record && Tag_Compare_To (record, group, element) != 0; record = record->next) steps++;
        List_Index_Walked (window, first, LIST_TABLE, steps);
    }
    if (record) first->seek = record;
    return record;
}

// A walk through tags that are smaller than the one sought, or not greater.
struct List_Walk {
    Attribute *record;   // The last one that the walk may stand on.
    Attribute *run;      // The first record with its tag.
    Attribute *half;     // A record on the way that may become a landmark.
    int32_t    landmark; // From which it went on, -1 for none.
    int32_t    steps;
};

// Goes on while the next record's tag is smaller (or_equal: not greater), limit steps at most. 1 when it came to its end.
static int Walk_On (List_Walk *walk, uint16_t group, uint16_t element, int or_equal, int32_t limit) {
    for (; limit > 0; limit--) {
        Attribute *next = walk->record->next;
        if (!next || Tag_Compare_To (next, group, element) >= or_equal) return 1;
        walk->record = next;
        walk->steps++;
        if (Tag_Compare_To (next, walk->run->group, walk->run->element) == 0) continue;
        walk->run = next;
        if (!walk->half && walk->steps >= STEPS_HALF) walk->half = next;
    }
    return 0;
}

// The walk from start, which is the first record of the list or one that stands before the tag, to its end.
static List_Walk Walk_From (Window window, Attribute *first, Attribute *start, uint16_t group, uint16_t element,
                            int or_equal) {
    List_Walk walk = {start, start, nullptr, -1, 0};
    if (Walk_On (&walk, group, element, or_equal, STEPS_NEAR)) return walk;

    int32_t landmark = List_Index_Landmark (first, group, element, or_equal);
    if (landmark >= 0) {
        Attribute *record = List_Index_Record (first, landmark);
        if (first->unordered ||
            Tag_Compare (walk.record->group, walk.record->element, record->group, record->element) < 0)
            walk = {record, record, nullptr, landmark, 0};
    }
    Walk_On (&walk, group, element, or_equal, INT32_MAX);
    if (walk.landmark >= 0 && walk.steps > STEPS_LONG && walk.half)
        List_Index_Add (window, first, walk.landmark, walk.half);
    List_Index_Walked (window, first, LIST_LANDMARKS, walk.steps);
    return walk;
}

// First record of the list with exactly this tag, or none.
static Attribute *List_Find (Window window, Attribute *first, uint16_t group, uint16_t element) {
    if (first->unordered) return Unordered_Find (window, first, group, element);

    Attribute *start = List_Search_Start (first, group, element);
    int        order = Tag_Compare_To (start, group, element);
    if (order > 0) return nullptr;
    if (order < 0) {
        List_Walk  walk  = Walk_From (window, first, start, group, element, 0);
        Attribute *found = walk.record->next;
        if (!found || Tag_Compare_To (found, group, element) != 0) {
            first->seek = walk.run;
            return nullptr;
        }
        start = found;
    }
    first->seek = start;
    return start;
}

// Takes the record behind previous (none: the first one) out of the list at place and releases it.
static void List_Remove (Window window, Attribute **place, Attribute *previous) {
    Attribute *first   = *place;
    Attribute *removed = previous ? previous->next : first;
    first->seek        = nullptr;
    List_Index_Free (first);
    if (previous) {
        previous->next = removed->next;
        if (first->last == removed) first->last = previous;
    } else {
        Attribute *successor = removed->next;
        if (successor) {
            successor->last      = removed->last == removed ? successor : removed->last;
            successor->unordered = removed->unordered;
            successor->seek      = nullptr;
            successor->walked    = removed->walked;
        }
        *place = successor;
    }
    DICOM_Attribute_Free (window, removed);
}

// --- items -----------------------------------------------------------------

// Room for item slots grows in powers of two, so that sequences of many items, which grow by one slot at a time, cost
// linear time.
static int32_t Slot_Capacity (int32_t count) {
    int64_t capacity = 1;
    while (capacity < count) capacity *= 2;
    return static_cast<int32_t> (capacity < INT32_MAX ? capacity : INT32_MAX);
}

int Attribute_Grow_Items (Window window, Memory_Site site, Attribute *attribute, int32_t count) {
    if (count <= attribute->nb_item) return 1;
    if (!attribute->item || Slot_Capacity (count) != Slot_Capacity (attribute->nb_item)) {
        size_t bytes = static_cast<size_t> (Slot_Capacity (count)) * sizeof (Attribute *);
        void  *item  = Memory_Realloc (window, site, attribute->item, bytes);
        if (!item) return 0;
        attribute->item = static_cast<Attribute **> (item);
    }
    while (attribute->nb_item < count) attribute->item[attribute->nb_item++] = nullptr;
    return 1;
}

static Attribute *Record_New (Window window) {
    return static_cast<Attribute *> (
        Memory_Calloc (window, HERE ("insert", 1, RECORD_SIZE_STATED), sizeof (Attribute)));
}

// A sequence that the cursor stands in but the list lacks: one empty item slot, not linked yet. None on failure.
static Attribute *Sequence_New (Window window, const SequenceCursor *cursor, int32_t level) {
    Attribute *sequence = Record_New (window);
    if (!sequence) return nullptr;
    sequence->item = static_cast<Attribute **> (
        Memory_Calloc (window, HERE ("insert->item", 1, SLOT_SIZE_STATED), sizeof (Attribute *)));
    if (!sequence->item) {
        Memory_Free (sequence);
        return nullptr;
    }
    sequence->nb_item = 1;
    sequence->level   = static_cast<uint8_t> (level);
    sequence->vr_file = VR_SQ;
    sequence->vr      = VR_SQ;
    DICOM_Attribute_Sequence_Get (window, cursor, level, &sequence->group, &sequence->element, &sequence->flags);
    return sequence;
}

Attribute **DICOM_Attribute_Item_Slot (Window window, SequenceCursor *cursor, Attribute *first, int) {
    int32_t level = first->level;
    if (level >= cursor->depth) return nullptr;

    int32_t index = DICOM_Attribute_Sequence_End (window, cursor, level + 1);
    if (index < 0) index = 0;

    Attribute *sequence = List_Find (window, first, cursor->group[level], cursor->element[level]);
    if (sequence) {
        Memory_Site site = HERE ("pt->item", sequence->nb_item + 1, SLOT_SIZE_STATED);
        return Attribute_Grow_Items (window, site, sequence, index + 1) ? &sequence->item[index] : nullptr;
    }
    sequence = Sequence_New (window, cursor, level);
    if (!sequence) return nullptr;
    List_Append (first, sequence);
    return &sequence->item[0];
}

// --- navigation ------------------------------------------------------------

// The place of the list in which the cursor stands, or of an empty list on the way; none when a place can't be made. The
// trace is written at the start and after each step.
static Attribute **Descend (Window window, SequenceCursor *cursor, Attribute **place, const char *trace, uint16_t group,
                            uint16_t element) {
    if (trace) Log_Message (window, LOG_TRACE5, trace, group, element);
    while (place && *place && (*place)->level < cursor->depth) {
        place = DICOM_Attribute_Item_Slot (window, cursor, *place, 0);
        if (trace) Log_Message (window, LOG_TRACE5, trace, group, element);
    }
    return place;
}

// --- finding ---------------------------------------------------------------

static int Tag_Is (const Attribute *attribute, uint16_t group, uint16_t element) {
    return (group == TAG_ANY || attribute->group == group) && (element == TAG_ANY || attribute->element == element);
}

static const char *const GET_TRACE = "in DICOM_Attribute_Get(%04x,%04x)";

Attribute *DICOM_Attribute_Get (Window window, SequenceCursor *cursor, Attribute *first, uint16_t group,
                                uint16_t element, int) {
    if (group != TAG_ANY && element != TAG_ANY)
        return DICOM_Attribute_Get_Exact (window, cursor, first, group, element);

    Attribute **place  = Descend (window, cursor, &first, GET_TRACE, group, element);
    Attribute  *record = place ? *place : nullptr;
    while (record && !Tag_Is (record, group, element)) record = record->next;
    return record;
}

Attribute *DICOM_Attribute_Get_Exact (Window window, SequenceCursor *cursor, Attribute *first, uint16_t group,
                                      uint16_t element) {
    Attribute **place = Descend (window, cursor, &first, GET_TRACE, group, element);
    return place && *place ? List_Find (window, *place, group, element) : nullptr;
}

int DICOM_Attribute_Tag_Match (const char *pattern_group, const char *pattern_element, uint16_t group,
                               uint16_t element) {
    if (!pattern_group || !pattern_element) return 0;
    char digits[5];
    snprintf (digits, sizeof digits, "%04X", group);
    if (!Text_Match (pattern_group, digits)) return 0;
    snprintf (digits, sizeof digits, "%04X", element);
    return Text_Match (pattern_element, digits);
}

// --- adding ----------------------------------------------------------------

static void Trace_Insert (Window window, uint16_t group, uint16_t element, uint16_t vr_file, int32_t length) {
    Log_Message (window, LOG_TRACE5, "in DICOM_Attribute_Insert(%04x,%04x) %c%c %d bytes", group, element,
                 Code_First (vr_file, '-'), Code_Second (vr_file, '-'), length);
}

static void Trace_Insert (Window window, const Attribute *source) {
    Trace_Insert (window, source->group, source->element, source->vr_file, source->length);
}

// Fills a new record, which the list at first has or will have behind its end.
static Attribute *Insert_Filled (Window window, SequenceCursor *cursor, Attribute **place, Attribute *insert,
                                 const Attribute *source) {
    insert->group   = source->group;
    insert->element = source->element;
    if (*place) {
        List_Append (*place, insert);
    } else {
        insert->last = insert;
        *place       = insert;
    }
    if (DICOM_Attribute_Copy_Tag (window, cursor, place, insert, source)) return insert;
    Log_Message (window, Sequence_Kind_Warning (cursor), WARNING_TEXT "Failed in DICOM_Attribute_Copy(%04x,%04x)",
                 source->group, source->element);
    return nullptr;
}

// The slot one level below the list at place, in which the cursor's sequence is made when it is missing. None on failure.
static Attribute **Insert_Step (Window window, SequenceCursor *cursor, Attribute **place, const Attribute *source,
                                int32_t level) {
    if (!*place) {
        Attribute *sequence = Sequence_New (window, cursor, level);
        if (!sequence) return nullptr;
        sequence->last = sequence;
        *place         = sequence;
        return &sequence->item[0];
    }
    place = DICOM_Attribute_Item_Slot (window, cursor, *place, 0);
    if (!place)
        Log_Message (window, Sequence_Kind_Warning (cursor),
                     "    " EMPHASIS COLOUR_YELLOW "Failed" COLOUR_BLACK " to insert tag(" COLOUR_BLUE
                     "%04X" COLOUR_BLACK "," COLOUR_BLUE "%04X" COLOUR_BLACK ")",
                     source->group, source->element);
    return place;
}

// The place of the list that source is appended to, or none. level is the depth of the list at place.
static Attribute **Insert_Place (Window window, SequenceCursor *cursor, Attribute **place, const Attribute *source,
                                 int32_t level) {
    Trace_Insert (window, source);
    while (place && (*place ? (*place)->level : level) < cursor->depth) {
        place = Insert_Step (window, cursor, place, source, level++);
        if (place) Trace_Insert (window, source);
    }
    return place;
}

Attribute *DICOM_Attribute_Insert (Window window, SequenceCursor *cursor, Attribute **place, const Attribute *source,
                                   int32_t level) {
    place             = Insert_Place (window, cursor, place, source, level);
    Attribute *insert = place ? Record_New (window) : nullptr;
    return insert ? Insert_Filled (window, cursor, place, insert, source) : nullptr;
}

void Attribute_New_Failed (Window window, const Element_Header *header) {
    static const Memory_Site site = HERE ("insert", 1, RECORD_SIZE_STATED);

    Trace_Insert (window, header->group, header->element, header->vr_file, header->length);
    Memory_Report (window, &site, "calloc");
}

Attribute **Insert_Path_Make (Window window, SequenceCursor *cursor, Insert_Path *path, const Attribute *record) {
    Trace_Insert (window, record);
    while (path->depth < cursor->depth) {
        Attribute **place = Insert_Step (window, cursor, path->place[path->depth], record, path->depth);
        if (!place) return nullptr;
        path->place[++path->depth] = place;
        Trace_Insert (window, record);
    }
    return path->place[cursor->depth];
}

// Puts a new record before the first one.
static void List_Prepend (Attribute **place, Attribute *record) {
    Attribute *former = *place;
    record->next      = former;
    record->last      = record;
    *place            = record;
    if (!former) return;
    record->unordered = former->unordered;
    List_Index_Moved (former, record);
}

// Puts a new record behind previous, as tag order wants it.
static void List_Link_Behind (Attribute *first, Attribute *previous, Attribute *record) {
    record->next   = previous->next;
    previous->next = record;
    first->last    = record;
    first->seek    = first->unordered ? nullptr : record;
    List_Index_Placed (first, record);
}

Attribute *DICOM_Attribute_Find_Or_Insert (Window window, SequenceCursor *cursor, Attribute **place, uint16_t group,
                                           uint16_t element) {
    place = Descend (window, cursor, place, nullptr, group, element);
    if (!place) return nullptr;
    DICOM_Attribute_Sequence_Set (window, cursor, cursor->depth, group, element, 0);

    Attribute *first    = *place;
    Attribute *previous = nullptr; // The last record that is not greater, or the first one.
    if (first) {
        Attribute *start = first->unordered ? first : List_Search_Start (first, group, element);
        List_Walk  walk  = Walk_From (window, first, start, group, element, 1);
        previous         = walk.record;
        if (!first->unordered) first->seek = walk.run;
        if (Tag_Compare_To (previous, group, element) == 0) return previous;
    }

    Attribute *insert = Record_New (window);
    if (!insert) return nullptr;
    insert->group   = group;
    insert->element = element;
    insert->level   = static_cast<uint8_t> (cursor->depth);
    if (!first || (previous == first && Tag_Compare_To (first, group, element) > 0)) List_Prepend (place, insert);
    else List_Link_Behind (first, previous, insert);
    return insert;
}

// --- changing --------------------------------------------------------------

static void Set_Type_One (Window window, SequenceCursor *cursor, Attribute *reference_first, Attribute *record) {
    Attribute *reference = DICOM_Attribute_Get_Exact (window, cursor, reference_first, record->group, record->element);
    if (reference) {
        record->type = reference->type;
        if (!record->vr) record->vr = reference->vr;
    }
    // Below a sequence that the reference lacks nothing can be found, and looking would create it there.
    if (!record->item || !reference || !reference->nb_item) return;

    DICOM_Attribute_Sequence_Start (window, cursor, record->group, record->element, record->flags, LOG_TRACE5);
    DICOM_Attribute_Item_Start (window, cursor, LOG_TRACE5);
    for (int32_t i = 0; i < record->nb_item; i++)
        if (record->item[i]) DICOM_Attribute_Set_Type (window, cursor, reference_first, record->item[i]);
    DICOM_Attribute_Item_Stop (window, cursor, LOG_TRACE5);
    DICOM_Attribute_Sequence_Stop (window, cursor, LOG_TRACE5);
}

void DICOM_Attribute_Set_Type (Window window, SequenceCursor *cursor, Attribute *reference_first,
                               Attribute *list_first) {
    for (Attribute *record = list_first; record; record = record->next)
        Set_Type_One (window, cursor, reference_first, record);
}

// --- walking ---------------------------------------------------------------

static void Walk_Items (Window window, SequenceCursor *cursor, Attribute *attribute, int kind,
                        Attribute_Action action) {
    DICOM_Attribute_Sequence_Start (window, cursor, attribute->group, attribute->element, attribute->flags, kind);
    for (int32_t i = 0; i < attribute->nb_item && attribute->item[i]; i++) {
        DICOM_Attribute_Item_Start (window, cursor, kind);
        Attribute_Walk (window, cursor, attribute->item[i], kind, action);
        DICOM_Attribute_Item_Stop (window, cursor, kind);
    }
    DICOM_Attribute_Sequence_Stop (window, cursor, kind);
}

void Attribute_Walk (Window window, SequenceCursor *cursor, Attribute *list, int kind, Attribute_Action action) {
    for (Attribute *attribute = list; attribute; attribute = attribute->next) {
        action (window, cursor, attribute);
        if (attribute->item) Walk_Items (window, cursor, attribute, kind, action);
    }
}

// --- removing --------------------------------------------------------------

static void Delete_In_Items (Window window, SequenceCursor *cursor, Attribute *record, uint16_t group,
                             uint16_t element) {
    DICOM_Attribute_Sequence_Start (window, cursor, record->group, record->element, record->flags, LOG_TRACE5);
    for (int32_t i = 0; i < record->nb_item && record->item[i]; i++) {
        DICOM_Attribute_Item_Start (window, cursor, LOG_TRACE5);
        DICOM_Attribute_Delete (window, cursor, &record->item[i], group, element);
        DICOM_Attribute_Item_Stop (window, cursor, LOG_TRACE5);
    }
    DICOM_Attribute_Sequence_Stop (window, cursor, LOG_TRACE5);
}

static int List_Free (Window window, Attribute **place);

// What few records own. It stays out of Record_Free, which for all others is a few steps.
__attribute__ ((noinline)) static void Branches_Free (Window window, Attribute *record) {
    // Every slot, also behind an empty one: an item that lost all its attributes leaves an empty slot before full ones.
    for (int32_t i = 0; i < record->nb_item; i++) List_Free (window, &record->item[i]);
    if (record->index) List_Index_Free (record);
    Memory_Free (record->item);
}

static inline void Record_Free (Window window, Attribute *record) {
    Log_Message (window, LOG_TRACE5, "in DICOM_Attribute_Free(%04x,%04x)", record->group, record->element);
    if (record->nb_item || record->index) Branches_Free (window, record);
    Memory_Free (record->description);
    Value_Record_Free (record);
}

// A whole list goes without looking for what follows its first record each time.
static int List_Free (Window window, Attribute **place) {
    for (Attribute *record = *place; record;) {
        Attribute *next = record->next;
        Record_Free (window, record);
        record = next;
    }
    *place = nullptr;
    return 1;
}

int DICOM_Attribute_Delete (Window window, SequenceCursor *cursor, Attribute **place, uint16_t group,
                            uint16_t element) {
    place = Descend (window, cursor, place, "in DICOM_Attribute_Delete(%04x,%04x)", group, element);
    if (!place || !*place) return 0;
    if (group == TAG_ANY && element == TAG_ANY) return List_Free (window, place);

    while (*place && Tag_Is (*place, group, element)) List_Remove (window, place, nullptr);
    for (Attribute *previous = *place; previous && previous->next;) {
        if (Tag_Is (previous->next, group, element)) List_Remove (window, place, previous);
        else previous = previous->next;
    }
    for (Attribute *record = *place; record; record = record->next)
        if (record->item) Delete_In_Items (window, cursor, record, group, element);
    return 1;
}

void DICOM_Attribute_Free (Window window, Attribute *attribute) {
    if (attribute) Record_Free (window, attribute);
}
