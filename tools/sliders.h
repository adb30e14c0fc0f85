// Sliders: scroll bars with an arrow at each end, a track, and a thumb whose length shows how much is seen. Values are
// read from a table with one entry for each pixel that the thumb can be moved by.
//
// A horizontal slider has its minimum at the left, a vertical one at the bottom, as coordinates grow; WIDGET_REVERSED
// turns that around. So a list whose value counts lines downwards is SLIDER_VERTICAL, reversed: the thumb at the top shows
// its first line.
//
// How the mouse drives a slider, on a press and on every move while the button is held:
//
//     if (Sliders::Select (slider, state)) {
//         slider->value = Sliders::Read (slider);
//         Sliders::Adjust (slider);
//     }
//
// and Sliders::Deselect on release. An arrow goes one step, the track beside the thumb one page, each once a press; the
// thumb follows the pointer by the point at which it was taken.
#pragma once

#include "tools/mouse.h"
#include "tools/widget.h"

static const int SLIDER_POSITIONS = 4096;

// States of the result view's sliders.
static const uint32_t SLIDER_HORIZONTAL          = WIDGET_SLIDER;
static const uint32_t SLIDER_VERTICAL            = WIDGET_SLIDER | WIDGET_REVERSED | WIDGET_VERTICAL;
static const uint32_t SLIDER_DISABLED            = WIDGET_INACTIVE | WIDGET_MOUSE_IGNORED | WIDGET_TEXT_BLUE;
static const uint32_t SLIDER_HORIZONTAL_DISABLED = SLIDER_HORIZONTAL | SLIDER_DISABLED;
static const uint32_t SLIDER_VERTICAL_DISABLED   = SLIDER_VERTICAL | SLIDER_DISABLED;

// Less and more are those of the value, wherever they lie.
enum Slider_Part { SLIDER_NOTHING, SLIDER_THUMB, SLIDER_LESS, SLIDER_MORE, SLIDER_PAGE_LESS, SLIDER_PAGE_MORE };

struct Slider {
    Widget    widget;               // Colour (170,170,170) when red, green and blue are 0 at Init.
    int16_t   arrow_size;           // The thumb's frame; at least 1. 0 at Init stands for the border width.
    float     value, minimum, maximum;
    float     step;                 // Of one Scroll and of the arrows; 1 when 0 at Init.
    int32_t   half;                 // Half the thumb's length in pixels, without its frame.
    float     positions[SLIDER_POSITIONS];  // Values from the minimum to the maximum.
    int       position_count;       // 0: there is no track to move along.
    int       visible, total;       // As Proportion was told. 0: it wasn't, and a page is what the thumb covers.
    int       drag;                 // 1 while the thumb follows the mouse.
    int       grip;                 // While dragging: pixels from the thumb's middle to where it was taken.
    int       pressed;              // Slider_Part under the pressed button: arrows and track act, the thumb is dragged.
    float     target;               // Where the pressed arrow or track leads.
};

namespace Sliders {

// Once, and again after every change of its rectangle or range; a drag goes on. Needs a positive width and height. The
// value is taken into the range; a range that is empty, turned around or not of numbers holds its minimum alone.
void Init (Slider *slider, Window window);
void Exit (Slider *slider);                     // Releases what Init made.

// The thumb's length as the part visible of total.
void Proportion (Slider *slider, int visible, int total);

// Nothing when hidden. Disabled, it is drawn pale and without a thumb.
void Draw (Slider *slider);
void Adjust (Slider *slider);                   // Draws track and thumb anew at the value.

// 1 when the mouse acts on the slider: a press on it, or a move while its thumb is dragged. Releases it when no button is
// held. A slider that is hidden, inactive or ignores the mouse never takes it.
int   Select (Slider *slider, int mouse_state);
float Read (Slider *slider);                    // The value under the mouse; reading it again changes nothing.
void  Deselect (Slider *slider);                // After a press; draws it released.

// Moves the value by steps times step, towards the maximum for positive steps, towards the minimum with WIDGET_REVERSED:
// so positive steps move the thumb to the right or up. Draws it. The new value. Nothing when it ignores the mouse.
float Scroll (Slider *slider, int steps);

// Scrolls by notches of a wheel, positive away from the user: those move the thumb to the left or up.
float Wheel (Slider *slider, int notches);

// --- geometry, for drawing and tests ---

int  Track (const Slider *slider);              // Entries that the table would have without its limit; may be negative.
int  Thumb (const Slider *slider);              // Offset of the thumb's start from the slider's start.
Slider_Part Part_At (const Slider *slider, int x, int y);

}
