// Sliders: scroll bars with an arrow at each end, a track, and a thumb whose length shows how much is seen. Values are
// read from a table with one entry for each pixel that the thumb can be moved by.
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

enum Slider_Part { SLIDER_NOTHING, SLIDER_THUMB, SLIDER_LESS, SLIDER_MORE, SLIDER_PAGE_LESS, SLIDER_PAGE_MORE };

struct Slider {
    Widget    widget;
    int16_t   arrow_size;           // At least 1; 0 at Init stands for the border width.
    float     value, minimum, maximum;
    float     step;                 // Of one Scroll; 1 when 0 at Init.
    int32_t   half;                 // Half the thumb's length in pixels.
    float     positions[SLIDER_POSITIONS];  // Values from the minimum to the maximum.
    int       position_count;       // 0: there is no track to move along.
    int       drag;                 // 1 while the thumb follows the mouse.
    int       grip;                 // While dragging: pixels from the thumb's middle to where it was taken.
    int       pressed;              // Slider_Part under the pressed button: arrows and track act, the thumb is dragged.
};

namespace Sliders {

void Init (Slider *slider, Window window);      // See the fields. Needs a positive width and height.
void Exit (Slider *slider);                     // Releases what Init made.

// The thumb's length as the part visible of total.
void Proportion (Slider *slider, int visible, int total);

void Draw (Slider *slider);
void Adjust (Slider *slider);                   // Draws track and thumb anew at the value.

// 1 when the mouse acts on the slider: a press on it, or a move while it is dragged. The user then takes the new value
// from Read, stores it, and calls Adjust. On an arrow Read gives the value one step on, on the track beside the thumb one
// thumb's length on.
int   Select (Slider *slider, int mouse_state);
float Read (Slider *slider);                    // The value under the mouse.
void  Deselect (Slider *slider);                // After a drag; draws it released.

// Moves the value by steps times step, towards the maximum for positive steps, towards the minimum with WIDGET_REVERSED;
// draws it. The new value.
float Scroll (Slider *slider, int steps);

// --- geometry, for drawing and tests ---

int  Track (const Slider *slider);              // Pixels that the thumb can be moved by; may be negative.
int  Thumb (const Slider *slider);              // Offset of the thumb's start from the slider's start.
Slider_Part Part_At (const Slider *slider, int x, int y);

}
