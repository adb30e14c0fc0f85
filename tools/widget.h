// The fields that every widget starts with, their colour rule and their check. A widget is a plain record owned by its
// user; zero bytes are a widget that was never initialised.
#pragma once

#include <stdint.h>

#include "platform/window.h"
#include "tools/device.h"

// --- metrics ---------------------------------------------------------------

static const int WIDGET_BORDER           = 3;
static const int WIDGET_MARGIN           = 6;
static const int WIDGET_SLIDER_THICKNESS = 16;

// --- state -----------------------------------------------------------------

enum : uint32_t {
    WIDGET_INACTIVE      = 1u << 0,     // Fills skip it.
    WIDGET_MOUSE_IGNORED = 1u << 1,
    WIDGET_VERTICAL      = 1u << 2,
    WIDGET_FIXED         = 1u << 4,     // Never highlighted.
    WIDGET_TEXT_BLUE     = 1u << 5,
    WIDGET_LABEL_FREE    = 1u << 8,     // Box, button: the label is not moved to the top.
    WIDGET_ALIGN_TOP     = 1u << 9,
    WIDGET_ALIGN_BOTTOM  = 1u << 10,
    WIDGET_ALIGN_LEFT    = 1u << 13,
    WIDGET_ALIGN_RIGHT   = 1u << 14,
    WIDGET_INSET_WIDE    = 1u << 16,    // Box: its highlight keeps a fixed distance from the frame.
    WIDGET_TEXT_WHITE    = 1u << 18,
    WIDGET_HIDDEN        = 1u << 20,    // Slider.
    WIDGET_ARROWS        = 1u << 20,    // Button.
    WIDGET_ARROWS_ACROSS = 1u << 21,    // Button: its arrows point left and right, else up and down.
    WIDGET_NO_OUTLINE    = 1u << 22,
    WIDGET_REVERSED      = 1u << 26,    // Slider: its maximum is at the left or at the bottom.
    WIDGET_SLIDER        = 1u << 27
};

// What a fill or a frame is told about itself; the same bit as WIDGET_FIXED.
static const uint32_t FILL_NONE = 1u << 4;

// --- validity --------------------------------------------------------------

enum : uint16_t { WIDGET_INITIALISED = 1, WIDGET_WARNED = 2 };

// --- the record ------------------------------------------------------------

struct Widget_Rectangle {
    int16_t x, y, w, h;
};

struct Widget {
    uint32_t          state;
    const char       *name;             // Borrowed; none shows "no name".
    int16_t           x, y, w, h;       // (x, y) is the bottom-left corner.
    int16_t           colour[4];        // Background: red, green, blue, alpha.
    Widget_Rectangle  clip;             // Applied when its w is not 0.
    Window            window;           // Set by the kind's Init.
    Device::Region   *region;           // Owned: the rectangle, made by Init.
    int32_t           left, bottom, right, top;     // Bounds, made by Init: x, y, x + w + 1, y + h + 1.
    uint16_t          validity;
    uint16_t          initial_w, initial_h;         // Size at Init.
};

// The four components as one device colour: 256 and more is 255, 0 and less is 0.
uint32_t Widget_Colour (const int16_t colour[4]);

// Reports a widget that was not initialised or holds bad data, once a widget (LOG_TRACE1); type is the operation, such as
// "Tools::Clear". The operation goes on.
void Widget_Check (Widget *widget, const char *type);

// What all Inits begin with: takes the window over (none keeps the one that is stored), makes region and bounds,
// remembers the size and marks the widget as initialised. 0, and nothing of this done, after the warning that there is no
// window (type is the Init) or the memory message.
int Widget_Init (Widget *widget, Window window, const char *type);

// Releases the region; the widget is then one that was never initialised.
void Widget_Exit (Widget *widget);

int Widget_Contains (const Widget *widget, int x, int y);   // 1 inside the bounds. 0 for zero width or height.
int Widget_Resized (const Widget *widget);                  // 1 when the size is not that of Init.

// A session on the widget's window with the widget's clip, if it has one. 1 or 0.
int  Widget_Begin (const Widget *widget, const char *caller);
void Widget_End (const Widget *widget);     // Takes the clip away and ends the session.
