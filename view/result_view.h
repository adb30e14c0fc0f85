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
static const int VIEW_HEADING        = 18;      // Height of a pane's heading strip.
static const int VIEW_STRIP          = WIDGET_SLIDER_THICKNESS + 2 * WIDGET_MARGIN;    // Of a pane's edge with a slider.

// Background of the panes. Blue, green, black and yellow texts stand on it; its luminance is the one at which the worst
// contrast of the four is best (WCAG: blue 4.44, green 1.80, black 10.86, yellow 1.80), and its cool tint sets the
// yellow off further. Lighter loses the yellow, darker the green.
static const int16_t VIEW_PANE_COLOUR[4] = {184, 186, 196, 255};

// What a line's difference code says in colour.
static const uint32_t VIEW_BLUE   = Drawing_Colour (0, 0, 255);     // No difference.
static const uint32_t VIEW_GREEN  = Drawing_Colour (0, 160, 0);     // Skipped.
static const uint32_t VIEW_YELLOW = Drawing_Colour (255, 255, 0);   // In the file, not in the definition.
static const uint32_t VIEW_BLACK  = Drawing_Colour (0, 0, 0);       // Any other difference.

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

// Lays the window out anew after a separator was moved; set by app/, which knows the layout. None: nothing is laid out.
void Layout_Set (void (*layout) (Window window, int width, int height));

// --- drawing ---------------------------------------------------------------

// The three panes, less the strips that their sliders lie in. Nothing while the vertical slider is hidden, and no pane
// whose own slider is. All boxes must be initialised.
void Redraw (Box_Widget *tree, Box_Widget *description, Box_Widget *value, Slider *vertical, Slider *tree_slider,
             Slider *description_slider, Slider *value_slider);
// Ranges, thumbs and states of the sliders that are not hidden, after a change of sizes or lines; draws them and the
// strips that they lie in. 1.
int  SetScrollRanges (Box_Widget *tree, Box_Widget *description, Box_Widget *value, Slider *vertical,
                      Slider *tree_slider, Slider *description_slider, Slider *value_slider);
void Redraw_All (void);                         // Redraw of Result's own widgets.
void Draw_All (Window window);                  // Everything in the window.
void ResetView (Window window);                 // The same, separators released.

// --- mouse -----------------------------------------------------------------

// The pointer is that of Device::Pointer_Get.
void OnButton (Window window, int mouse_state); // MOUSE_PRESSED; any other state is a release.
void OnMouseMove (Window window, int held);     // held: the left button is down.
void RestoreCursor (void);                      // The window's own, when the view has changed it.

// --- labels ----------------------------------------------------------------

// Each is valid until its next call.
const char *DiffLabel (const Row *row);
const char *SizeLabel (const Row *row);
const char *VrLabel   (const Row *row);

// --- limits ----------------------------------------------------------------

// A level above VIEW_LEVELS or a description of VIEW_DESCRIPTION characters or more: the first one is reported in a box
// and ends the program; nothing is drawn from then on.
static const int FATAL_EXIT = 3;    // The program's exit code then.

void Exit (void);                   // Releases fonts and widgets, for a new window.

// --- fonts -----------------------------------------------------------------

enum View_Font { FONT_REGULAR, FONT_BOLD, FONT_FIXED, FONT_FIXED_BOLD, FONT_COUNT };
Drawing_Font Font (View_Font font);     // Borrowed; none before the first Redraw.

}
