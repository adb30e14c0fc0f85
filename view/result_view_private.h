// What the sources of the view share: the place of a pane's lines, fonts, colours, and the way out when a limit is passed.
#pragma once

#include "view/result_view.h"

namespace View {

// --- panes -----------------------------------------------------------------

// A pane as it is being drawn or clicked. Lines are numbered from the top, the root's is 0.
struct Pane {
    Box_Widget *box;
    int         x0;             // Left edge of the content: the box's less the horizontal scroll value.
    int         y0;             // Bottom of the band of line 0; each later one is VIEW_PITCH lower.
    int         first, end;     // Lines seen: first <= line < end.
    int         left, bottom, right, top;   // Pixels of the pane without the strips of its sliders; right, top left out.
};

// Which lines are seen is decided by the tree pane's height for all three.
Pane Pane_Of (Box_Widget *box, const Slider *horizontal, const Box_Widget *tree, const Slider *vertical);

inline int Band_Bottom (const Pane *pane, int line) { return pane->y0 - VIEW_PITCH * line; }

// Inside a session: what lies below the heading.
void Clip_Lines (const Pane *pane);

// A slider's value in whole pixels, within bounds that any sum of it stays in an int.
int Scroll_Value (const Slider *slider);

inline int Is_Hidden (const Slider *slider) { return (slider->widget.state & WIDGET_HIDDEN) != 0; }

// --- one pane each ---------------------------------------------------------

// Inside a session. The line functions give 0 when a limit was passed; then drawing must stop.
void Tree_Heading (const Pane *pane, int y);
int  Tree_Lines (const Pane *pane);
void Value_Heading (const Pane *pane, int y);
int  Value_Lines (const Pane *pane);
void Description_Heading (const Pane *pane, int y);
int  Description_Lines (const Pane *pane);

// --- rows ------------------------------------------------------------------

uint32_t Row_Colour (const Row *row);
inline int Row_Is_Selected (const Row *row) { return (row->kind & ROW_SELECTED) != 0; }

// --- limits ----------------------------------------------------------------

// Remembers a limit for the box behind the session; nothing is drawn any more then. 0, for the caller to return.
int Limit_Passed (const char *what, int value, int limit, const Row *row);
int Limit_Is_Passed (void);

// --- sliders ---------------------------------------------------------------

void Set_Ranges (void);             // SetScrollRanges of Result's own widgets.

// --- separators ------------------------------------------------------------

void Separators_Forget (void);      // No drag is on.

}
