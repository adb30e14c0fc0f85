// The rows grow in tree order, so the inside of a container is what was added since its own row: its differences are
// counted there when it ends, once at every container around them. A row's line is found by an index that the layout
// writes; without it, after a memory failure, the rows are searched.
#include "compare/difference_list.h"

#include <algorithm>
#include <limits.h>
#include <string.h>

#include "util/memory.h"
#include "util/text.h"

static const char *const MODULE = "difference_list";

static const int      ROW_CHUNK       = 10;     // Rows that the memory messages count in,
static const int      ROW_STATED_SIZE = 32;     // and the size of one.
static const uint16_t OWN_DIFFERENCE  = 0x0FFF; // The difference codes of a record.
static const int      NO_ROW          = -1;

Row_List Rows;

// --- growing ---------------------------------------------------------------

// Room for one row more; what is behind the last row is zero bytes. The array is enlarged ahead. 1, or 0 after the message.
static int Rows_Grow (Window window) {
    if (Rows.count < Rows.capacity) return 1;
    if (Rows.capacity > INT_MAX / 2) return 0;

    int   capacity = std::max (ROW_CHUNK, 2 * Rows.capacity);
    void *grown    = Memory_Realloc (window, HERE ("(*list)", Rows.count + ROW_CHUNK, ROW_STATED_SIZE), Rows.rows,
                                     static_cast<size_t> (capacity) * sizeof (Row));
    if (!grown) return 0;
    Rows.rows = static_cast<Row *> (grown);
    memset (Rows.rows + Rows.count, 0, static_cast<size_t> (capacity - Rows.count) * sizeof (Row));
    Rows.capacity = capacity;
    return 1;
}

static int16_t Row_Level (int depth) { return static_cast<int16_t> (std::min (depth, INT16_MAX)); }

static uint16_t Row_Kind (uint16_t kind, bool last) { return static_cast<uint16_t> (last ? kind | ROW_LAST : kind); }

static char *Name_Create (Window window, Memory_Site site) {
    return static_cast<char *> (Memory_Calloc (window, site, ROW_NAME_SIZE));
}

// Large numbers don't fit: such a name is cut.
static void Name_Item (char *name, int number, int count) {
    size_t used = 0;
    Text_Append (name, ROW_NAME_SIZE, &used, "Item %-d", number);
    if (count > 0) Text_Append (name, ROW_NAME_SIZE, &used, " (%d diff)", count);
}

static void Name_Sequence (char *name, int count) {
    size_t used = 0;
    Text_Append (name, ROW_NAME_SIZE, &used, "(%d diff)", count);
}

// --- counting --------------------------------------------------------------

// Differences among the rows behind the one given, up to the last one; their codes together go into codes.
static int Count_Inside (int start, uint16_t *codes) {
    int count = 0;
    for (int i = start + 1; i < Rows.count; i++) {
        uint16_t code = Rows.rows[i].code;
        if (!code || code & ROW_CONTAINER) continue;
        *codes = static_cast<uint16_t> (*codes | code);
        count++;
    }
    return count;
}

// An item keeps the mark of a container, so that it is counted nowhere itself.
static void Item_Count (int start, int number) {
    Row *row = &Rows.rows[start];
    Name_Item (row->name, number, Count_Inside (start, &row->code));
}

// A sequence loses it: it shows the differences inside, and counts for one in the containers around it. 1, or 0 after the
// message.
static int Sequence_Count (Window window, int start, uint16_t own_code) {
    Row *row  = &Rows.rows[start];
    row->code = 0;
    int count = Count_Inside (start, &row->code) + (own_code & OWN_DIFFERENCE ? 1 : 0);
    if (count <= 0) return 1;
    row->name = Name_Create (window, HERE ("(*list)[start].name", ROW_NAME_SIZE, 1));
    if (row->name) Name_Sequence (row->name, count);
    return row->name != nullptr;
}

// --- building --------------------------------------------------------------

static int Add_List (Window window, Attribute *list, int depth);

static int Add_Item (Window window, Attribute *sequence, int slot, int depth) {
    if (!Rows_Grow (window)) return 0;
    char *name = Name_Create (window, HERE ("(*list)[line].name", ROW_NAME_SIZE, 1));
    if (!name) return 0;
    Name_Item (name, slot + 1, 0);

    int start        = Rows.count++;
    Rows.rows[start] = {
        ROW_CONTAINER, 0, Row_Level (depth), Row_Kind (ROW_UNFOLDED, slot == sequence->nb_item - 1), name, nullptr};
    if (!Add_List (window, sequence->item[slot], depth + 1)) return 0;
    Item_Count (start, slot + 1);
    return 1;
}

static int Add_Sequence (Window window, Attribute *record, int depth, bool last) {
    uint16_t code    = static_cast<uint16_t> (record->flags | ROW_CONTAINER);
    int      start   = Rows.count++;
    Rows.rows[start] = {code, 0, Row_Level (depth), Row_Kind (ROW_FOLDED, last), nullptr, record};
    for (int slot = 0; slot < record->nb_item && record->item[slot]; slot++)
        if (!Add_Item (window, record, slot, depth + 1)) return 0;
    return Sequence_Count (window, start, record->flags);
}

static int Add_Record (Window window, Attribute *record, int depth) {
    bool last = !record->next;
    if (!Rows_Grow (window)) return 0;
    if (record->nb_item) return Add_Sequence (window, record, depth, last);

    Rows.rows[Rows.count++] = {record->flags, 0, Row_Level (depth), Row_Kind (ROW_ATTRIBUTE, last), nullptr, record};
    return 1;
}

static int Add_List (Window window, Attribute *list, int depth) {
    for (Attribute *record = list; record; record = record->next)
        if (!Add_Record (window, record, depth)) return 0;
    return 1;
}

int Rows_Build (Window window, Attribute *merged_first) {
    Rows_Free ();
    Rows.rows = static_cast<Row *> (Memory_Calloc (window, HERE ("(*list)", ROW_CHUNK, ROW_STATED_SIZE),
                                                   static_cast<size_t> (ROW_CHUNK) * sizeof (Row)));
    if (!Rows.rows) return 0;
    Rows.capacity     = ROW_CHUNK;
    Rows.count        = 1;
    Rows.rows[0].kind = ROW_UNFOLDED;
    Add_List (window, merged_first, 1);
    return Rows.count;
}

int Rows_Title (Window window, const char *title) {
    if (!Rows.count) return 1;
    char *name = Memory_Strdup (window, HERE ("List->name", 0, 0), title);
    if (!name) return 0;
    Memory_Free (Rows.rows[0].name);
    Rows.rows[0].name = name;
    return 1;
}

void Rows_Free () {
    for (int i = 0; i < Rows.count; i++) Memory_Free (Rows.rows[i].name);
    Memory_Free (Rows.rows);
    Memory_Free (Rows.line_rows);
    Rows = {};
}

// --- lines -----------------------------------------------------------------

// Room in the index for a line of every row; without it there is no index.
static void Index_Grow () {
    if (Rows.count <= Rows.line_capacity) return;
    Memory_Free (Rows.line_rows);
    Rows.line_rows     = nullptr; // The rows may be drawn while a message is shown.
    Rows.line_rows     = static_cast<int *> (Memory_Malloc (nullptr, HERE ("line_rows", Rows.count, sizeof (int)),
                                                            static_cast<size_t> (Rows.count) * sizeof (int)));
    Rows.line_capacity = Rows.line_rows ? Rows.count : 0;
}

static void Line_Give (int row) {
    if (Rows.line_rows) Rows.line_rows[Rows.visible] = row;
    Rows.rows[row].line = Rows.visible++;
}

int Rows_Layout () {
    Index_Grow ();
    Rows.visible = 0;
    for (int i = 0; i < Rows.count;) {
        const Row *container = &Rows.rows[i];
        bool       folded    = container->kind & ROW_FOLDED;
        Line_Give (i++);
        for (; folded && i < Rows.count && Rows.rows[i].level > container->level; i++) Rows.rows[i].line = -1;
    }
    return Rows.visible;
}

// The root's index 0 is a row like the others here.
static int Row_Find (int line) {
    if (line < 0 || line >= Rows.visible) return NO_ROW;
    if (Rows.line_rows) return Rows.line_rows[line];
    for (int i = 0; i < Rows.count; i++)
        if (Rows.rows[i].line == line) return i;
    return NO_ROW;
}

int Rows_At (int line) { return std::max (0, Row_Find (line)); }

// --- folding and selection -------------------------------------------------

int Rows_Toggle (int line, int column) {
    int index = Row_Find (line);
    if (index == NO_ROW) return 0;
    Row *row = &Rows.rows[index];
    if (column != row->level - 1 || row->kind & (ROW_ATTRIBUTE | ROW_MARK)) return 0;
    row->kind = static_cast<uint16_t> (row->kind ^ (ROW_FOLDED | ROW_UNFOLDED));
    Rows_Layout ();
    return 1;
}

int Rows_Select (int line) {
    int index = Row_Find (line);
    if (index == NO_ROW || Rows.rows[index].kind & ROW_MARK) return 0;
    Row *before = &Rows.rows[Rows.selected];
    if (Rows.selected) before->kind = static_cast<uint16_t> (before->kind & ~ROW_SELECTED);
    Rows.selected         = index;
    Rows.rows[index].kind = static_cast<uint16_t> (Rows.rows[index].kind | ROW_SELECTED);
    return index;
}
