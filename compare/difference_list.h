// The rows that the window shows: one for the root, one for every merged record at every depth, one for every item, in
// tree order; with folding and one selected row. The state of the last interactive run is kept for the view.
#pragma once

#include "attribute/attribute.h"
#include "platform/window.h"

enum : uint16_t {
    ROW_FOLDED     = 1,     // Container whose rows are hidden.
    ROW_UNFOLDED   = 2,
    ROW_ATTRIBUTE  = 4,     // Plain attribute.
    ROW_MARK       = 8,     // Can't be selected.
    ROW_LAST       = 16,    // Of its parent.
    ROW_SELECTED   = 128,

    ROW_CONTAINER  = 0x8000 // In code: a container whose own row is no difference.
};

static const int ROW_NAME_SIZE = 20;    // Bytes of a row's name, with its zero; what is longer is cut.

struct Row {
    uint16_t   code;        // Difference code; of a container the codes inside it together.
    int32_t    line;        // Where it is shown now; -1 inside a folded container.
    int16_t    level;       // 0 the root, 1 a top-level attribute, 2 an item of it, 3 an attribute of that item, ...
    uint16_t   kind;        // ROW_ flags.
    char      *name;        // Owned, or none.
    Attribute *attribute;   // Merged record, owned by the merged list; none for the root and for items.
};

struct Row_List {
    Row  *rows;             // Owned.
    int   count;
    int   visible;          // Lines shown in the current folding state.
    int   selected;         // Index of the selected row, 0 when none.
    int  *line_rows;        // Owned: the row on each visible line. None after a memory failure: the rows know their lines.
    int   capacity;         // Rows that there is room for; the further ones are zero bytes.
    int   line_capacity;    // The same of line_rows.
};

extern Row_List Rows;

// Replaces all rows by those of a merged list, which has to outlive them. Sequences are folded, items unfolded; the lines
// are those of the next Rows_Layout. The row count; after a memory failure that of the rows made so far.
int  Rows_Build (Window window, Attribute *merged_first);

// Gives the root row its title, of any length. 1, or 0 after the memory message.
int  Rows_Title (Window window, const char *title);

int  Rows_Layout (void);                    // Numbers the lines; the visible line count.
int  Rows_At (int line);                    // Index of the row on a line; 0 when none is there.
int  Rows_Toggle (int line, int column);    // Folds or unfolds the container on the line when column is its box. 1 or 0.
int  Rows_Select (int line);                // Index of the row that is selected now; 0 when nothing or the root was.
void Rows_Free (void);                      // Before the merged list goes: the rows point into it.
