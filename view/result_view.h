// The result of a comparison in three panes that scroll together: a tree of rows, the values of both sides, and the
// descriptions. Draws with tools/, reads the rows of compare/difference_list.h, turns clicks into folding and selection,
// and lets the separators be dragged. Owns no window: app/main_window.h calls it.
#pragma once

#include "compare/difference_list.h"
#include "tools/boxes.h"
#include "tools/buttons.h"
#include "tools/sliders.h"
#include "tools/texts.h"

static const int VIEW_PITCH          = 18;      // Of a line, in all panes.
static const int VIEW_LEVELS         = 100;
static const int VIEW_DESCRIPTION    = 180;     // Characters of a description, with its zero.
static const int VIEW_TREE_WIDTH     = 500;     // What the panes show, as wide as it can get.
static const int VIEW_DETAIL_WIDTH   = 300;
static const int VIEW_VALUE_WIDTH    = 1100;

// Everything that the main window shows. One instance; app/ lays it out, the view draws it.
struct Result_View {
    Box_Widget    frame;                        // The whole client area.
    Box_Widget    tree, description, value;     // Panes.
    Slider        vertical;                     // Of all panes; lies in the tree pane.
    Slider        tree_slider, description_slider, value_slider;    // Horizontal.
    Button_Widget strip_separator;              // Between text list and panes.
    Button_Widget left_separator, right_separator;
    Text_Widget   text;                         // The log's list.
    int           strip_height;                 // Layout values that the separators change.
    int           left, right;
};

extern Result_View Result;

namespace View {

// Lays the window out anew after a separator was moved; set by app/, which knows the layout.
void Layout_Set (void (*layout) (Window window, int width, int height));

// --- drawing ---------------------------------------------------------------

void Redraw (Box_Widget *tree, Box_Widget *description, Box_Widget *value, Slider *vertical, Slider *tree_slider,
             Slider *description_slider, Slider *value_slider);
int  SetScrollRanges (Box_Widget *tree, Box_Widget *description, Box_Widget *value, Slider *vertical,
                      Slider *tree_slider, Slider *description_slider, Slider *value_slider);
void Redraw_All (void);                         // Redraw of Result's own widgets.
void ResetView (Window window);

// --- mouse -----------------------------------------------------------------

void OnButton (Window window, int mouse_state);
void OnMouseMove (Window window, int held);     // held: the left button is down.
void RestoreCursor (void);

// --- labels ----------------------------------------------------------------

// Each is valid until its next call.
const char *DiffLabel (const Row *row);
const char *SizeLabel (const Row *row);
const char *VrLabel   (const Row *row);

// --- limits ----------------------------------------------------------------

static const int FATAL_EXIT = 3;    // The program's exit code after a limit of the view was passed.

void Exit (void);                   // Releases fonts and widgets, for a new window.

}
