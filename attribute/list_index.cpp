// How often an index is built is bounded by what was walked before: building costs a step a record, and it happens only
// after as many steps of searches as the list had records when the last index was built.
#include "attribute/list_index.h"

#include <string.h>

#include "util/memory.h"

static const char *const MODULE = "list_index";

static const int32_t SPACING     = 12;   // Records between two landmarks.
static const int32_t STEPS_FREE  = 64;   // A walk that isn't worth an index.
static const int32_t STEPS_LEAST = 1024; // Walked before the first index is built.

struct Landmark {
    Attribute *record;  // Borrowed from the list.
    uint32_t   highest; // Tag of the records behind the first one up to here.
};

struct List_Index {
    Landmark   *landmarks; // Owned, in the order of the list; none when they are not built.
    int32_t     landmark_count;
    int32_t     landmark_room;
    Attribute **slots; // Owned table with open addressing; at least half of them are none. None when it is not built.
    uint32_t    mask;  // Number of slots - 1.
    uint32_t    used;
    int32_t     count; // Records of the list when this was built.
};

static uint32_t Key (uint16_t group, uint16_t element) { return static_cast<uint32_t> (group) << 16 | element; }

static uint32_t Key_Of (const Attribute *record) { return Key (record->group, record->element); }

// --- table -----------------------------------------------------------------

// The slot of the record with this tag, or the empty one where it would stand.
static Attribute **Slot (const List_Index *index, uint32_t key) {
    uint32_t slot = (key * 2654435761u >> 7) & index->mask;
    while (index->slots[slot] && Key_Of (index->slots[slot]) != key) slot = (slot + 1) & index->mask;
    return &index->slots[slot];
}

static void Table_Free (List_Index *index) {
    Memory_Free (index->slots);
    index->slots = nullptr;
    index->used  = 0;
}

// Enters a record if it is the first with its tag; the table has room.
static void Table_Enter (List_Index *index, Attribute *record) {
    Attribute **slot = Slot (index, Key_Of (record));
    if (*slot) return;
    *slot = record;
    index->used++;
}

static void Table_Build (Window window, List_Index *index, Attribute *first) {
    size_t size = 64;
    while (size < 4 * static_cast<size_t> (index->count)) size *= 2;
    Table_Free (index);
    index->mask = static_cast<uint32_t> (size - 1);
    index->slots =
        static_cast<Attribute **> (Memory_Calloc (window, HERE ("index->slots", size, 8), size * sizeof (Attribute *)));
    for (Attribute *record = first; record && index->slots; record = record->next) Table_Enter (index, record);
}

// --- landmarks -------------------------------------------------------------

static void Landmarks_Free (List_Index *index) {
    Memory_Free (index->landmarks);
    index->landmarks      = nullptr;
    index->landmark_count = 0;
    index->landmark_room  = 0;
}

static int Landmarks_Grow (Window window, List_Index *index, int32_t room) {
    void *landmarks = Memory_Realloc (window, HERE ("index->landmarks", room, sizeof (Landmark)), index->landmarks,
                                      static_cast<size_t> (room) * sizeof (Landmark));
    if (!landmarks) return 0;
    index->landmarks     = static_cast<Landmark *> (landmarks);
    index->landmark_room = room;
    return 1;
}

static void Landmarks_Build (Window window, List_Index *index, Attribute *first) {
    Landmarks_Free (index);
    if (!Landmarks_Grow (window, index, index->count / SPACING + 16)) return;
    uint32_t         highest  = 0;
    int32_t          distance = 0;
    const Attribute *previous = first;
    for (Attribute *record = first->next; record; previous = record, record = record->next) {
        if (Key_Of (record) > highest) highest = Key_Of (record);
        if (++distance < SPACING || Key_Of (record) == Key_Of (previous)) continue;
        index->landmarks[index->landmark_count++] = {record, highest};
        distance                                  = 0;
    }
}

// --- building --------------------------------------------------------------

static int32_t Count_Records (const Attribute *first) {
    int32_t count = 0;
    for (; first && count < INT32_MAX; first = first->next) count++;
    return count;
}

void List_Index_Free (Attribute *first) {
    List_Index *index = first->index;
    if (!index) return;
    first->index  = nullptr;
    first->walked = -index->count;
    Table_Free (index);
    Landmarks_Free (index);
    Memory_Free (index);
}

void List_Index_Walked (Window window, Attribute *first, List_Short_Cut kind, int32_t steps) {
    if (steps <= STEPS_FREE) return;
    int64_t walked = static_cast<int64_t> (first->walked) + steps;
    first->walked  = static_cast<int32_t> (walked < INT32_MAX ? walked : INT32_MAX);
    if (first->walked < STEPS_LEAST) return;

    if (!first->index)
        first->index = static_cast<List_Index *> (
            Memory_Calloc (window, HERE ("first->index", 1, sizeof (List_Index)), sizeof (List_Index)));
    int32_t count = Count_Records (first);
    first->walked = -count;
    if (!first->index) return;
    first->index->count = count;
    if (kind == LIST_TABLE) Table_Build (window, first->index, first);
    else Landmarks_Build (window, first->index, first);
}

// --- searching -------------------------------------------------------------

int List_Index_Find (const Attribute *first, uint16_t group, uint16_t element, Attribute **found) {
    if (!first->index || !first->index->slots) return 0;
    *found = *Slot (first->index, Key (group, element));
    return 1;
}

int32_t List_Index_Landmark (const Attribute *first, uint16_t group, uint16_t element, int or_equal) {
    const List_Index *index = first->index;
    if (!index || !index->landmarks) return -1;
    int64_t limit = static_cast<int64_t> (Key (group, element)) + (or_equal ? 1 : 0);
    int32_t below = 0, above = index->landmark_count; // The one sought stands before the first that isn't below limit.
    while (below < above) {
        int32_t half = below + (above - below) / 2;
        if (index->landmarks[half].highest < limit) below = half + 1;
        else above = half;
    }
    return below - 1;
}

Attribute *List_Index_Record (const Attribute *first, int32_t landmark) {
    return first->index->landmarks[landmark].record;
}

void List_Index_Add (Window window, Attribute *first, int32_t landmark, Attribute *record) {
    List_Index *index = first->index;
    if (!index || !index->landmarks) return;
    if (index->landmark_count == index->landmark_room && !Landmarks_Grow (window, index, 2 * index->landmark_room))
        return;
    int32_t          place   = landmark + 1;
    const Attribute *walk    = landmark < 0 ? first : index->landmarks[landmark].record;
    uint32_t         highest = landmark < 0 ? 0 : index->landmarks[landmark].highest;
    while (walk != record) {
        walk = walk->next;
        if (Key_Of (walk) > highest) highest = Key_Of (walk);
    }
    Landmark *at = &index->landmarks[place];
    memmove (at + 1, at, sizeof *at * static_cast<size_t> (index->landmark_count - place));
    *at = {record, highest};
    index->landmark_count++;
}

// --- changes ---------------------------------------------------------------

// The table holds the first record of each tag, so it stays as it is when the tag was there. One that is full goes, and
// comes back larger when it is missed.
static void Table_Add (List_Index *index, Attribute *record) {
    if (!index->slots) return;
    if (2 * index->used >= index->mask) Table_Free (index);
    else Table_Enter (index, record);
}

void List_Index_Appended (Attribute *first, Attribute *record) { Table_Add (first->index, record); }

// A record of the same tag may stand before the new one or behind it.
void List_Index_Placed (Attribute *first, Attribute *record) {
    List_Index *index = first->index;
    if (!index || !index->slots) return;
    if (*Slot (index, Key_Of (record))) Table_Free (index);
    else Table_Add (index, record);
}

// The former first record counts among those that the landmarks know now.
void List_Index_Moved (Attribute *former, Attribute *first) {
    List_Index *index = former->index;
    first->index      = index;
    first->walked     = former->walked;
    former->index     = nullptr;
    former->walked    = 0;
    if (!index) return;
    if (first->unordered) Landmarks_Free (index);
    if (index->slots && *Slot (index, Key_Of (first))) *Slot (index, Key_Of (first)) = first;
    else Table_Add (index, first);
}
