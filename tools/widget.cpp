// What all kinds of widgets have in common. A widget that is used before its Init is a mistake of the program: it is
// reported and drawn all the same.
#include "tools/widget.h"

#include <algorithm>

#include "util/my_error_fct.h"

// --- colour ----------------------------------------------------------------

static uint32_t Component (int16_t value) { return static_cast<uint32_t> (std::clamp<int> (value, 0, 255)); }

uint32_t Widget_Colour (const int16_t colour[4]) {
    return Component (colour[0]) | Component (colour[1]) << 8 | Component (colour[2]) << 16 |
           Component (colour[3]) << 24;
}

// --- validity --------------------------------------------------------------

static const char *Name (const Widget *widget) { return widget->name ? widget->name : "no name"; }

void Widget_Check (Widget *widget, const char *type) {
    if (widget->validity & (WIDGET_INITIALISED | WIDGET_WARNED)) return;
    Log_Message (widget->window, LOG_TRACE1, "Tools: WARNING ! ");
    Log_Message (widget->window, LOG_TRACE1,
                 widget->validity ? "   bad data in device's structure" : "   you must call *_Init() first");
    Log_Message (widget->window, LOG_TRACE1, "   type: %s   name: %s\n", type, Name (widget));
    widget->validity = WIDGET_WARNED;
}

static void Report_No_Window (const Widget *widget, const char *type) {
    Log_Message (nullptr, LOG_TRACE1, "Tools: WARNING ! ");
    Log_Message (nullptr, LOG_TRACE1, "   you must provide a window");
    Log_Message (nullptr, LOG_TRACE1, "   type: %s   name: %s", type, Name (widget));
}

// --- init and exit ---------------------------------------------------------

static void Set_Bounds (Widget *widget) {
    widget->left      = widget->x;
    widget->bottom    = widget->y;
    widget->right     = widget->x + widget->w + 1;
    widget->top       = widget->y + widget->h + 1;
    widget->initial_w = static_cast<uint16_t> (widget->w);
    widget->initial_h = static_cast<uint16_t> (widget->h);
}

int Widget_Init (Widget *widget, Window window, const char *type) {
    if (!window) window = widget->window;
    if (!window) {
        Report_No_Window (widget, type);
        return 0;
    }
    Device::Region *region = Device::Region_Create (window, widget->x, widget->y, widget->w, widget->h);
    if (!region) return 0;
    Device::Region_Free (widget->region);
    widget->window = window;
    widget->region = region;
    Set_Bounds (widget);
    widget->validity |= WIDGET_INITIALISED;
    return 1;
}

void Widget_Exit (Widget *widget) {
    Device::Region_Free (widget->region);
    widget->region   = nullptr;
    widget->validity = 0;
}

// --- place -----------------------------------------------------------------

int Widget_Contains (const Widget *widget, int x, int y) {
    return widget->w > 0 && widget->h > 0 && x >= widget->left && x < widget->right && y >= widget->bottom &&
           y < widget->top;
}

int Widget_Resized (const Widget *widget) {
    return static_cast<uint16_t> (widget->w) != widget->initial_w ||
           static_cast<uint16_t> (widget->h) != widget->initial_h;
}

// --- session ---------------------------------------------------------------

int Widget_Begin (const Widget *widget, const char *caller) {
    if (!Device::Begin (widget->window, widget->region, caller)) return 0;
    if (widget->clip.w) Device::ClipTo (widget->clip.x, widget->clip.y, widget->clip.w, widget->clip.h);
    return 1;
}

void Widget_End (const Widget *widget) {
    if (widget->clip.w) Device::ClipToClient ();
    Device::End ();
}
