// Presses, drags and cursors. The first widget that takes a press keeps it: separators, the text list, sliders, panes.
#include <algorithm>

#include "tools/keyboard.h"
#include "tools/primitives.h"
#include "util/my_error_fct.h"
#include "view/result_view_private.h"

// --- separators ------------------------------------------------------------

static const int SEPARATOR_GAP  = 18; // At least between the two vertical ones.
static const int STRIP_EDGE     = 8;  // What the horizontal one leaves above and below,
static const int LEFT_EDGE      = 8;  // and the vertical ones on either side.
static const int LEFT_FAR_EDGE  = 38;
static const int RIGHT_EDGE     = 28;
static const int RIGHT_FAR_EDGE = 18;
static const int FAR_RIGHT      = 32001;  // A pointer left of the window counts from here,
static const int FAR_DOWN       = -32000; // one above it below this, where positions have 16 bits.

struct Dragged {
    int strip, left, right;
};

static Dragged dragged;
static Window  cursor_window; // Whose cursor the view has changed, or none.
static void (*lay_out) (Window window, int width, int height);

void View::Layout_Set (void (*layout) (Window window, int width, int height)) { lay_out = layout; }

void View::Separators_Forget (void) { dragged = {}; }

static int Is_Dragging (void) { return dragged.strip || dragged.left || dragged.right; }

void View::RestoreCursor (void) {
    if (cursor_window) Cursor::Restore (cursor_window);
    cursor_window = nullptr;
}

static Dragged Separators_Under (int x, int y) {
    return {Widget_Contains (&Result.strip_separator.widget, x, y),
            Widget_Contains (&Result.left_separator.widget, x, y),
            Widget_Contains (&Result.right_separator.widget, x, y)};
}

static void Show_Cursor (Window window, const Dragged *over) {
    const int is_upright = over->left || over->right;
    if (!is_upright && !over->strip) {
        View::RestoreCursor ();
        return;
    }
    cursor_window = window;
    Cursor::Set (window, is_upright && over->strip ? WINDOW_CURSOR_ALL
                         : is_upright              ? WINDOW_CURSOR_WEST_EAST
                                                   : WINDOW_CURSOR_NORTH_SOUTH);
}

// In a window too small for both edges the lower one counts.
static int Within (int position, int low, int high) { return std::max (low, std::min (position, high)); }

static void Move_Strip (int y, int height) {
    const int position  = y < FAR_DOWN ? height - STRIP_EDGE : y - 5;
    Result.strip_height = std::max (1, height - Within (position, STRIP_EDGE, height - STRIP_EDGE));
}

static void Move_Left (int x, int width) {
    Result.left  = Within (x >= FAR_RIGHT ? LEFT_EDGE : x - 4, LEFT_EDGE, width - LEFT_FAR_EDGE);
    Result.right = std::max (Result.right, Result.left + SEPARATOR_GAP);
}

static void Move_Right (int x, int width) {
    Result.right = Within (x >= FAR_RIGHT ? RIGHT_EDGE : x - 4, RIGHT_EDGE, width - RIGHT_FAR_EDGE);
    Result.left  = std::min (Result.left, Result.right - SEPARATOR_GAP);
}

static void Clear_Panes (void) {
    for (Box_Widget *box : {&Result.tree, &Result.description, &Result.value}) Tools::Clear (&box->widget);
    for (Slider *slider : {&Result.vertical, &Result.tree_slider, &Result.description_slider, &Result.value_slider})
        Tools::Clear (&slider->widget);
}

static void Drag_Separators (Window window, int x, int y) {
    int width, height;
    Window_Client_Size (window, &width, &height);
    x = std::max (x, -FAR_RIGHT);
    if (dragged.strip) Move_Strip (y, height);
    if (dragged.left) Move_Left (x, width);
    if (dragged.right) Move_Right (x, width);
    if (lay_out) lay_out (window, width, height);
    Clear_Panes ();
    View::Draw_All (window);
}

// All that lie under the pointer, so that a crossing moves both.
static int Press_Separators (void) {
    dragged.strip = Buttons::Select (&Result.strip_separator, MOUSE_PRESSED);
    dragged.left  = Buttons::Select (&Result.left_separator, MOUSE_PRESSED);
    dragged.right = Buttons::Select (&Result.right_separator, MOUSE_PRESSED);
    return Is_Dragging ();
}

// --- sliders ---------------------------------------------------------------

static Slider *const sliders[] = {&Result.vertical, &Result.tree_slider, &Result.description_slider,
                                  &Result.value_slider};

// 1 when a slider takes the mouse.
static int Use_Sliders (int mouse_state) {
    for (Slider *slider : sliders) {
        if (View::Is_Hidden (slider) || !Sliders::Select (slider, mouse_state)) continue;
        slider->value = Sliders::Read (slider);
        Sliders::Adjust (slider);
        View::Redraw_All ();
        return 1;
    }
    return 0;
}

static void Release_Sliders (void) {
    for (Slider *slider : sliders)
        if (slider->drag || slider->pressed) Sliders::Deselect (slider);
}

// --- panes -----------------------------------------------------------------

static const int LINE_REACH = 9;  // Pixels of a band's bottom that a line takes the mouse on either side of.
static const int BOX_LEFT   = 17; // Where the columns of the fold boxes begin.
static const int BOX_BEFORE = 2;

static View::Pane Pane_Under (Box_Widget *box, const Slider *slider) {
    return View::Pane_Of (box, slider, &Result.tree, &Result.vertical);
}

// What was drawn of the lines, so neither the heading nor the sliders' strips.
static int Is_On_Lines (const View::Pane *pane, const Slider *slider, int x, int y) {
    return !View::Is_Hidden (&Result.vertical) && !View::Is_Hidden (slider) && x >= pane->left && x < pane->right &&
           y >= pane->bottom && y < pane->top - VIEW_HEADING;
}

static int Line_Under (const View::Pane *pane, int y) { return (pane->y0 + LINE_REACH - y) / VIEW_PITCH; }

static int Is_Line (int line) { return line >= 0 && line < Rows.visible; }

// Below the heading there may be a strip of the line above the first one seen, of which nobody knows what it is.
static int Is_Seen (const View::Pane *pane, int line) { return line >= pane->first && Is_Line (line); }

// The fold box of a column begins two pixels before the column does; on the line's own box they belong to it.
static int Column_Under (const View::Pane *pane, int line, int x) {
    const int beside = x - pane->x0 - BOX_LEFT;
    const int level  = Is_Line (line) ? Rows.rows[Rows_At (line)].level : 0;
    const int before = beside - (level - 1) * VIEW_PITCH;
    return level > 0 && before < 0 && before >= -BOX_BEFORE ? level - 1 : beside / VIEW_PITCH;
}

// The root's index 0 reads like "nothing selected", but the root turns bold.
static void Select_Line (int line) {
    if (Rows_Select (line) || line == 0) View::Redraw_All ();
}

static int Press_Tree (Window window, int x, int y) {
    View::Pane pane = Pane_Under (&Result.tree, &Result.tree_slider);
    if (!Is_On_Lines (&pane, &Result.tree_slider, x, y)) return 0;
    const int line = Line_Under (&pane, y), pos = Column_Under (&pane, line, x);
    Log_Message (window, LOG_TRACE4, "In box 1 line:%d pos:%d", line, pos);
    if (!Is_Seen (&pane, line)) return 1;
    if (!Rows_Toggle (line, pos)) {
        Select_Line (line);
        return 1;
    }
    View::Set_Ranges ();
    View::Redraw_All ();
    return 1;
}

static int Press_Text_Pane (Box_Widget *box, const Slider *slider, int x, int y) {
    View::Pane pane = Pane_Under (box, slider);
    if (!Is_On_Lines (&pane, slider, x, y)) return 0;
    const int line = Line_Under (&pane, y);
    if (Is_Seen (&pane, line)) Select_Line (line);
    return 1;
}

static void Press_Panes (Window window) {
    int x, y;
    Device::Pointer_Get (&x, &y);
    if (Press_Tree (window, x, y)) return;
    if (Press_Text_Pane (&Result.description, &Result.description_slider, x, y)) return;
    Press_Text_Pane (&Result.value, &Result.value_slider, x, y);
}

// --- events ----------------------------------------------------------------

static int Is_Shown (void) { return Rows.count > 0; }

// Before the first comparison only the text list answers: the log may be longer than the list then, too.
static void Press (Window window) {
    if (Is_Dragging ()) return;
    if (Is_Shown () && Press_Separators ()) return;
    if (Texts::Select (&Result.text, MOUSE_PRESSED) || !Is_Shown ()) return;
    if (!Use_Sliders (MOUSE_PRESSED)) Press_Panes (window);
}

static void Release (Window window) {
    Texts::Select (&Result.text, MOUSE_RELEASED);
    Release_Sliders ();
    if (Is_Dragging ()) View::ResetView (window);
}

void View::OnButton (Window window, int mouse_state) {
    if (Limit_Is_Passed ()) return;
    if ((mouse_state & 15) == MOUSE_PRESSED) Press (window);
    else Release (window);
}

void View::OnMouseMove (Window window, int held) {
    if (Limit_Is_Passed ()) return;
    int x, y;
    Device::Pointer_Get (&x, &y);
    if (Is_Dragging () && !held) Release (window); // The button went up where nobody saw it.
    Dragged over = Is_Dragging () ? dragged : Separators_Under (x, y);
    Show_Cursor (window, &over);
    if (Is_Dragging ()) {
        Drag_Separators (window, x, y);
        return;
    }
    if (!held) Release_Sliders ();
    const int state = held ? MOUSE_HELD : MOUSE_MOVED;
    Texts::Select (&Result.text, state);
    if (held && Is_Shown ()) Use_Sliders (state);
}
