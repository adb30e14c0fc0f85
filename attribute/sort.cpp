// To whoever looks on, sorting is bubble passes: neighbours are compared and exchanged, pass after pass, until a pass
// exchanges nothing. Each comparison of two definitions of one tag merges their marks, and warns when both override,
// so how often and in which order they are compared can be seen from outside. The passes cost quadratic time; this
// source finds out what they would do:
//
// - A pass carries the largest record met so far to the right and compares it with every record that follows. So two
//   records of one tag are compared only when no record with a larger tag stands before the second.
// - A record behind n records with larger tags loses one of them in each pass: from pass n on (the first is 0) it is
//   compared with the definition of its tag that stands before it.
// - What decides about an exchange is never changed by a merge, so the final order is that of a stable sort, and the
//   number of passes is one more than the greatest number of records that any record has to be moved in front of.
//
// So a stable merge sort counts the larger tags before each record, and the passes are then made over the definitions
// of each tag only, over as many of them as take part in the pass. Within a pass tags are met in ascending order.
#include "attribute/sort.h"

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/list_index.h"
#include "attribute/messages.h"
#include "util/memory.h"

static const char *const MODULE = "sort";

static const uint16_t MARK_TABLES  = 0x0200; // Set and understood by the definition tables only.
static const uint16_t MARKS_MERGED = MARK_TABLES | DELETED | INVALID;

// --- two records -----------------------------------------------------------

static int Tag_Order (const Attribute *a, const Attribute *b) {
    return Tag_Compare (a->group, a->element, b->group, b->element);
}

static const int RANKS = 9;

// The place of a record among the definitions of its tag: overriding ones first, in any order; then those with a value,
// those that are no default, and those with a description.
static int Rank (const Attribute *record) {
    if (record->flags & FORCED) return 0;
    return 1 + (record->data ? 0 : 4) + (record->flags & DEFAULT ? 2 : 0) + (record->description ? 0 : 1);
}

static int Both_Override (const Attribute *a, const Attribute *b) { return a->flags & b->flags & FORCED; }

// Gives both definitions of a tag what one of them says; two overriding ones only the type. 1 when that changed one.
static int Merge_Marks (Attribute *a, Attribute *b) {
    int changed = a->type != b->type;
    if (a->type < b->type) b->type = a->type;
    else a->type = b->type;
    if (Both_Override (a, b)) return changed;

    uint16_t marks = static_cast<uint16_t> ((a->flags | b->flags) & MARKS_MERGED);
    if (((a->flags ^ b->flags) & MARKS_MERGED) || !a->vr != !b->vr) changed = 1;
    a->flags = static_cast<uint16_t> (a->flags | marks);
    b->flags = static_cast<uint16_t> (b->flags | marks);
    if (!a->vr) a->vr = b->vr;
    if (!b->vr) b->vr = a->vr;
    return changed;
}

int DICOM_Attribute_Sort_Swap (Window window, const SequenceCursor *cursor, Attribute *a, Attribute *b) {
    int order = Tag_Order (a, b);
    if (order != 0) return order > 0;

    Merge_Marks (a, b);
    if (Both_Override (a, b)) {
        Log_Message (window, Sequence_Kind_Warning (cursor),
                     EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK " " TAG_TEXT " Tag is defined as OVERRIDE twice!",
                     a->group, a->element);
        return 0;
    }
    return Rank (a) > Rank (b);
}

// --- merge sort ------------------------------------------------------------

struct Sort_Node {
    Attribute *record;
    int32_t    larger; // Records with a larger tag that stood before this one.
};

// Orders count nodes by tag; equal tags stay as they stood. room holds count nodes, too.
static void Nodes_Sort (Sort_Node *nodes, Sort_Node *room, int32_t count) {
    if (count < 2) return;
    int32_t half = count / 2;
    Nodes_Sort (nodes, room, half);
    Nodes_Sort (nodes + half, room, count - half);

    for (int32_t i = 0; i < half; i++) room[i] = nodes[i];
    int32_t left = 0, right = half;
    for (int32_t to = 0; left < half && right < count; to++) {
        if (Tag_Order (room[left].record, nodes[right].record) <= 0) {
            nodes[to] = room[left++];
        } else {
            nodes[to] = nodes[right++];
            nodes[to].larger += half - left;
        }
    }
    for (; left < half; left++) nodes[right - half + left] = room[left];
}

// --- the definitions of one tag --------------------------------------------

// They are numbered as they stood. Records are exchanged, the numbers of larger tags stay: as many definitions from the
// first one on take part in a pass as have no larger tag before them by then.
struct Definitions {
    Sort_Node *nodes;
    int32_t    count;
    int32_t    active;
};

static Definitions Definitions_At (Sort_Node *nodes, const Sort_Node *end) {
    Definitions definitions = {nodes, 1, 1};
    while (nodes + definitions.count < end && Tag_Order (nodes->record, nodes[definitions.count].record) == 0)
        definitions.count++;
    return definitions;
}

static void Activate (Definitions *definitions, int32_t pass) {
    while (definitions->active < definitions->count && definitions->nodes[definitions->active].larger <= pass)
        definitions->active++;
}

static void Exchange (Sort_Node *a, Sort_Node *b) {
    Attribute *record = a->record;
    a->record         = b->record;
    b->record         = record;
}

// The passes that the definitions of this tag need to come into order.
static int32_t Passes_Needed (const Definitions *definitions) {
    int32_t ranked[RANKS] = {};
    int32_t needed        = 1;
    for (int32_t i = 0; i < definitions->count; i++) {
        int     rank  = Rank (definitions->nodes[i].record);
        int32_t moves = definitions->nodes[i].larger;
        for (int above = rank + 1; above < RANKS; above++) moves += ranked[above];
        ranked[rank]++;
        if (moves >= needed) needed = moves + 1;
    }
    return needed;
}

// 1 when two definitions override, so that comparing them gives a warning.
static int Overrides_Twice (const Definitions *definitions) {
    int forced = 0;
    for (int32_t i = 0; i < definitions->count; i++) forced += Rank (definitions->nodes[i].record) == 0;
    return forced > 1;
}

// 1 when no merge of two definitions changes anything.
static int All_Alike (const Definitions *definitions) {
    const Attribute *first = definitions->nodes[0].record;
    for (int32_t i = 1; i < definitions->count; i++) {
        const Attribute *record = definitions->nodes[i].record;
        if (record->type != first->type || ((record->flags ^ first->flags) & MARKS_MERGED) || !record->vr != !first->vr)
            return 0;
    }
    return 1;
}

// One pass that warns.
static void Pass_Aloud (Window window, const SequenceCursor *cursor, Definitions *definitions) {
    Sort_Node *nodes = definitions->nodes;
    for (int32_t i = 1; i < definitions->active; i++)
        if (DICOM_Attribute_Sort_Swap (window, cursor, nodes[i - 1].record, nodes[i].record))
            Exchange (&nodes[i - 1], &nodes[i]);
}

// One pass over definitions that have no warning to give. 1 when it changed something.
static int Pass_Silent (Definitions *definitions) {
    Sort_Node *nodes   = definitions->nodes;
    int        changed = 0;
    for (int32_t i = 1; i < definitions->active; i++) {
        changed |= Merge_Marks (nodes[i - 1].record, nodes[i].record);
        if (Rank (nodes[i - 1].record) <= Rank (nodes[i].record)) continue;
        Exchange (&nodes[i - 1], &nodes[i]);
        changed = 1;
    }
    return changed;
}

// All passes of a tag without warnings, leaving out those that change nothing.
static void Merge_Silent (Definitions *definitions, int32_t passes) {
    for (int32_t pass = 0; pass < passes && !All_Alike (definitions);) {
        Activate (definitions, pass);
        int changed = Pass_Silent (definitions);
        if (changed) pass++;
        else if (definitions->active < definitions->count) pass = definitions->nodes[definitions->active].larger;
        else return;
    }
}

// Puts the definitions of a tag, merged, into the order that the passes end with.
static void Rank_Sort (Definitions *definitions, Sort_Node *room) {
    int32_t to = 0;
    for (int rank = 0; rank < RANKS; rank++)
        for (int32_t i = 0; i < definitions->count; i++)
            if (Rank (definitions->nodes[i].record) == rank) room[to++] = definitions->nodes[i];
    for (int32_t i = 0; i < to; i++) definitions->nodes[i] = room[i];
}

// --- all definitions -------------------------------------------------------

// The passes over all tags that give warnings, in the order in which they come.
static void Merge_Aloud (Window window, const SequenceCursor *cursor, Definitions *loud, int32_t count,
                         int32_t passes) {
    for (int32_t pass = 0; pass < passes; pass++) {
        for (int32_t i = 0; i < count; i++) {
            Activate (&loud[i], pass);
            Pass_Aloud (window, cursor, &loud[i]);
        }
    }
}

// Everything that the passes do to the records beside bringing the tags into order. loud has room for every tag with
// two definitions.
static void Merge_Definitions (Window window, const SequenceCursor *cursor, Sort_Node *nodes, Sort_Node *room,
                               int32_t count, Definitions *loud) {
    Sort_Node *end    = nodes + count;
    int32_t    passes = 1;
    for (Sort_Node *node = nodes; node < end;) {
        Definitions definitions = Definitions_At (node, end);
        int32_t     needed      = Passes_Needed (&definitions);
        if (needed > passes) passes = needed;
        node += definitions.count;
    }

    int32_t nb_loud = 0;
    for (Sort_Node *node = nodes; node < end;) {
        Definitions definitions = Definitions_At (node, end);
        node += definitions.count;
        if (definitions.count == 1) continue;
        if (Sequence_Kind_Warning (cursor) && Overrides_Twice (&definitions)) {
            loud[nb_loud++] = definitions;
        } else {
            Merge_Silent (&definitions, passes);
            Rank_Sort (&definitions, room);
        }
    }
    Merge_Aloud (window, cursor, loud, nb_loud, passes);
}

// --- one list --------------------------------------------------------------

static int32_t Count_Records (const Attribute *first) {
    int32_t count = 0;
    for (const Attribute *record = first; record; record = record->next) count++;
    return count;
}

static int In_Order (const Attribute *first) {
    for (const Attribute *record = first; record->next; record = record->next) {
        int order = Tag_Order (record, record->next);
        if (order > 0 || (order == 0 && Rank (record) > Rank (record->next))) return 0;
    }
    return 1;
}

static void Relink (Attribute **place, const Sort_Node *nodes, int32_t count) {
    *place = nodes[0].record;
    for (int32_t i = 0; i < count; i++) nodes[i].record->next = i + 1 < count ? nodes[i + 1].record : nullptr;
}

// 1, or 0 after a memory message: the list is as it was.
static int Sort_Disordered (Window window, const SequenceCursor *cursor, Attribute **place) {
    int32_t    count = Count_Records (*place);
    size_t     size  = static_cast<size_t> (count);
    Sort_Node *nodes = static_cast<Sort_Node *> (
        Memory_Malloc (window, HERE ("nodes", count, 2 * sizeof (Sort_Node)), 2 * size * sizeof (Sort_Node)));
    Definitions *loud =
        nodes ? static_cast<Definitions *> (Memory_Malloc (window, HERE ("loud", count / 2, sizeof (Definitions)),
                                                           size / 2 * sizeof (Definitions)))
              : nullptr;
    if (loud) {
        Sort_Node *node = nodes;
        for (Attribute *record = *place; record; record = record->next) *node++ = {record, 0};
        Nodes_Sort (nodes, nodes + count, count);
        Merge_Definitions (window, cursor, nodes, nodes + count, count, loud);
        Relink (place, nodes, count);
    }
    Memory_Free (loud);
    Memory_Free (nodes);
    return loud != nullptr;
}

// The notes that the store keeps on a first record don't hold for another order.
static void Forget_Places (Attribute *first) {
    first->last      = nullptr;
    first->seek      = nullptr;
    first->unordered = 0;
    List_Index_Free (first);
    first->walked = 0;
}

static int Sort_List (Window window, const SequenceCursor *cursor, Attribute **place) {
    if (In_Order (*place)) { // One pass, which exchanges nothing.
        for (Attribute *record = *place; record->next; record = record->next)
            DICOM_Attribute_Sort_Swap (window, cursor, record, record->next);
    } else {
        Attribute *former = *place;
        if (!Sort_Disordered (window, cursor, place)) return 0;
        Forget_Places (former);
    }
    Forget_Places (*place);
    return 1;
}

// --- all lists -------------------------------------------------------------

static int Sort_Items (Window window, SequenceCursor *cursor, Attribute *record) {
    int sorted = 1;
    DICOM_Attribute_Sequence_Start (window, cursor, record->group, record->element, record->flags, LOG_TRACE5);
    for (int32_t i = 0; i < record->nb_item && record->item[i]; i++) {
        DICOM_Attribute_Item_Start (window, cursor, LOG_TRACE5);
        if (!DICOM_Attribute_Sort (window, cursor, &record->item[i])) sorted = 0;
        DICOM_Attribute_Item_Stop (window, cursor, LOG_TRACE5);
    }
    DICOM_Attribute_Sequence_Stop (window, cursor, LOG_TRACE5);
    return sorted;
}

int DICOM_Attribute_Sort (Window window, SequenceCursor *cursor, Attribute **place) {
    for (; place && *place; place = DICOM_Attribute_Item_Slot (window, cursor, *place, 0)) {
        Log_Message (window, LOG_TRACE5, "in DICOM_Attribute_Sort(level=%d)", (*place)->level);
        if ((*place)->level >= cursor->depth) break;
    }
    if (!place || !*place) return 0;

    int sorted = Sort_List (window, cursor, place);
    for (Attribute *record = *place; record; record = record->next)
        if (record->item && !Sort_Items (window, cursor, record)) sorted = 0;
    return sorted;
}
