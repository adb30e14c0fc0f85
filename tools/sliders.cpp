// Along a slider lie an arrow button as long as the slider is thick, the track, and the other arrow button. Neighbours
// share the line between them. The thumb is two halves and a frame of the arrow size at both ends, so it touches an
// arrow button at each end of its travel. The table has a few entries more than the thumb has places, so a drag is scaled
// from places to entries; then each end of the travel is an end of the table.
#include "tools/sliders.h"

#include <math.h>

#include <algorithm>

#include "tools/device.h"
#include "tools/primitives.h"

static const int16_t DEFAULT_COLOUR = 170;
static const int     SHORTEST_THUMB = WIDGET_SLIDER_THICKNESS / 2;
static const int     LONGEST_HALF   = INT16_MAX; // No widget is longer than that.
static const int     FARTHEST       = 100000;    // Of the pointer: far outside of every window.

// --- measures --------------------------------------------------------------

static int Is_Vertical (const Slider *slider) { return (slider->widget.state & WIDGET_VERTICAL) != 0; }
static int Is_Reversed (const Slider *slider) { return (slider->widget.state & WIDGET_REVERSED) != 0; }
static int Is_Empty (const Slider *slider) { return slider->widget.w < 1 || slider->widget.h < 1; }

static int Length (const Slider *slider) { return Is_Vertical (slider) ? slider->widget.h : slider->widget.w; }
static int Thickness (const Slider *slider) { return Is_Vertical (slider) ? slider->widget.w : slider->widget.h; }
static int Arrow_Size (const Slider *slider) { return slider->arrow_size > 0 ? slider->arrow_size : WIDGET_BORDER; }
static int Half (const Slider *slider) { return std::clamp (slider->half, 0, LONGEST_HALF); }

static int Start (const Slider *slider) { return Is_Vertical (slider) ? slider->widget.y : slider->widget.x; }

// Pixels that the thumb can really be moved by.
static int Travel (const Slider *slider) {
    return std::max (0, Length (slider) - 2 * Half (slider) - 2 * Arrow_Size (slider) - 2 * Thickness (slider));
}

static int Thumb_Length (const Slider *slider) {
    return std::min (2 * Half (slider) + 2 * Arrow_Size (slider), Length (slider) - 2 * Thickness (slider));
}

static int Has_Thumb (const Slider *slider) {
    return !(slider->widget.state & WIDGET_INACTIVE) && Thumb_Length (slider) >= SHORTEST_THUMB;
}

static int Pointer_Offset (const Slider *slider) {
    int x, y;
    Device::Pointer_Get (&x, &y);
    return std::clamp (Is_Vertical (slider) ? y : x, -FARTHEST, FARTHEST) - Start (slider);
}

int Sliders::Track (const Slider *slider) {
    return Length (slider) - 2 * Thickness (slider) - Arrow_Size (slider) - 2 * Half (slider);
}

// --- values ----------------------------------------------------------------

static int Is_Range (const Slider *slider) {
    return isfinite (slider->minimum) && isfinite (slider->maximum) && slider->minimum < slider->maximum;
}

// Not a number becomes the minimum.
static float Within (const Slider *slider, double value) {
    if (!Is_Range (slider)) return isfinite (slider->minimum) ? slider->minimum : 0;
    if (!(value > slider->minimum)) return slider->minimum;
    return value < slider->maximum ? static_cast<float> (value) : slider->maximum;
}

static double Extent (const Slider *slider) {
    return Is_Range (slider) ? static_cast<double> (slider->maximum) - slider->minimum : 0;
}

// How far the thumb has gone from the slider's start, 0 to 1.
static double Way (const Slider *slider) {
    double extent = Extent (slider);
    double way    = extent > 0 ? (static_cast<double> (Within (slider, slider->value)) - slider->minimum) / extent : 0;
    return Is_Reversed (slider) ? 1 - way : way;
}

int Sliders::Thumb (const Slider *slider) {
    return Thickness (slider) + static_cast<int> (floor (Way (slider) * Travel (slider) + 0.5));
}

static void Fill_Positions (Slider *slider) {
    int track              = Sliders::Track (slider);
    int count              = track > 1 ? std::min (track, SLIDER_POSITIONS) : 0;
    slider->position_count = count;
    for (int i = 0; i < count; i++)
        slider->positions[i] = Within (slider, slider->minimum + Extent (slider) / (count - 1) * i);
}

// The table's value for a place counted from the slider's start.
static float Position (const Slider *slider, int place) {
    int last  = slider->position_count - 1;
    int index = std::clamp (place, 0, last);
    return slider->positions[Is_Reversed (slider) ? last - index : index];
}

static float Step (const Slider *slider) { return isfinite (slider->step) && slider->step != 0 ? slider->step : 1; }

// What is seen at once, so that paging skips nothing. Of a thumb that shows its true proportion this is its own length.
static double Page (const Slider *slider) {
    if (slider->visible > 0 && slider->total > slider->visible)
        return Extent (slider) * slider->visible / (static_cast<double> (slider->total) - slider->visible);
    return Extent (slider) * 2 * Half (slider) / std::max (1, Sliders::Track (slider));
}

// --- drawing ---------------------------------------------------------------

static const int BEVEL         = 2;
static const int TRACK_SHADE   = -24;
static const int PRESSED_SHADE = -20;
static const int PALE_SHADE    = -40; // Lines of a disabled slider.
static const int GRIP_LIGHT    = 60;
static const int GRIP_DARK     = -70;
static const int GRIP_PITCH    = 3;
static const int GRIP_INSET    = 5;  // Of the grip's lines from the thumb's long edges.
static const int SHORTEST_HEAD = 6;  // A smaller button has no room for an arrow head in its frame.
static const int SHORTEST_GRIP = 24; // A shorter thumb has no lines.

// Pixels, all included.
struct Slider_Area {
    int left, right, bottom, top;
};

// The part of the slider from one offset to another, less inset lines at its long edges.
static Slider_Area Part_Area (const Slider *slider, int from, int to, int inset) {
    const Widget &widget = slider->widget;
    if (Is_Vertical (slider)) return {widget.x + inset, widget.x + widget.w - inset, widget.y + from, widget.y + to};
    return {widget.x + from, widget.x + to, widget.y + inset, widget.y + widget.h - inset};
}

static uint32_t Shade (const Slider *slider, int by) {
    int16_t shaded[4] = {};
    for (int i = 0; i < 3; i++)
        shaded[i] = static_cast<int16_t> (std::clamp<int> (slider->widget.colour[i], 0, 255) + by);
    return Widget_Colour (shaded);
}

static void Fill (const Slider_Area &area, uint32_t colour) {
    Device::Colour_Set (colour);
    Device::FillRect (area.left, area.bottom - 1, area.right + 1, area.top);
}

static void Outline (const Slider_Area &area, uint32_t colour) {
    Device::Colour_Set (colour);
    Device::Rectangle (area.left, area.bottom, area.right, area.top);
}

static void Fill_Outlined (const Slider_Area &area, uint32_t fill, uint32_t line) {
    Fill (area, fill);
    Outline (area, line);
}

static void Draw_Knob (Slider *slider, const Slider_Area &area, Tools::Cadre_Direction direction, int pressed) {
    Widget *widget = &slider->widget;
    if (!Widget_Begin (widget, "Sliders::Draw")) return;
    Fill (area, Shade (slider, pressed ? PRESSED_SHADE : 0));
    Widget_End (widget);
    Tools::Cadre (widget, widget->state, direction, BEVEL, area.left, area.right, area.bottom, area.top);
}

static void Draw_Pale (Slider *slider, const Slider_Area &area) {
    if (!Widget_Begin (&slider->widget, "Sliders::Draw")) return;
    Fill_Outlined (area, Shade (slider, 0), Shade (slider, PALE_SHADE));
    Widget_End (&slider->widget);
}

// A slider shorter than two squares shares its length between its arrows.
static int Arrow_Length (const Slider *slider) { return std::min (Thickness (slider), Length (slider) / 2); }

static Slider_Part Part_At_End (const Slider *slider, int far_end) {
    return far_end == Is_Reversed (slider) ? SLIDER_LESS : SLIDER_MORE;
}

// far_end: the right or the top one.
static void Draw_Arrow (Slider *slider, int far_end) {
    int         length    = Arrow_Length (slider);
    int         from      = far_end ? Length (slider) - length : 0;
    int         direction = Is_Vertical (slider) ? (far_end ? Tools::ARROW_UP : Tools::ARROW_DOWN)
                                                 : (far_end ? Tools::ARROW_RIGHT : Tools::ARROW_LEFT);
    int         pressed   = slider->pressed == Part_At_End (slider, far_end);
    Slider_Area area      = Part_Area (slider, from, from + length, 0);
    if (slider->widget.state & WIDGET_INACTIVE) Draw_Pale (slider, area);
    else Draw_Knob (slider, area, pressed ? Tools::CADRE_SUNKEN : Tools::CADRE_RAISED, pressed);
    if (length >= SHORTEST_HEAD && Thickness (slider) >= SHORTEST_HEAD)
        Tools::Arrow (&slider->widget, direction, pressed, area.left, area.right, area.bottom, area.top);
}

static void Draw_Arrows (Slider *slider) {
    Draw_Arrow (slider, 0);
    Draw_Arrow (slider, 1);
}

// The bare track from one offset to another; the lines at both belong to it and to its neighbours.
static void Draw_Track (Slider *slider, int from, int to, int pressed) {
    if (from >= to || !Widget_Begin (&slider->widget, "Sliders::Draw")) return;
    uint32_t line = slider->widget.state & WIDGET_NO_OUTLINE ? Shade (slider, TRACK_SHADE) : Drawing_Colour (0, 0, 0);
    Fill_Outlined (Part_Area (slider, from, to, 0), Shade (slider, TRACK_SHADE + (pressed ? PRESSED_SHADE : 0)), line);
    Widget_End (&slider->widget);
}

static void Draw_Grip (Slider *slider, int middle) {
    if (!Widget_Begin (&slider->widget, "Sliders::Draw")) return;
    for (int at = middle - GRIP_PITCH; at <= middle + GRIP_PITCH; at += GRIP_PITCH) {
        Fill (Part_Area (slider, at, at, GRIP_INSET), Shade (slider, GRIP_DARK));
        Fill (Part_Area (slider, at + 1, at + 1, GRIP_INSET), Shade (slider, GRIP_LIGHT));
    }
    Widget_End (&slider->widget);
}

static void Draw_Thumb (Slider *slider, int from, int to) {
    Draw_Knob (slider, Part_Area (slider, from, to, 0), Tools::CADRE_RAISED, slider->drag);
    if (to - from >= SHORTEST_GRIP && Thickness (slider) > 2 * GRIP_INSET) Draw_Grip (slider, (from + to) / 2);
}

// Draws only beside the thumb what the thumb doesn't cover, so that it doesn't flicker while it is dragged.
static void Draw_Track_And_Thumb (Slider *slider) {
    int low  = Arrow_Length (slider);
    int high = Length (slider) - low;
    if (slider->widget.state & WIDGET_INACTIVE) {
        if (low < high) Draw_Pale (slider, Part_Area (slider, low, high, 0));
    } else if (!Has_Thumb (slider)) {
        Draw_Track (slider, low, high, 0);
    } else {
        int before = Is_Reversed (slider) ? SLIDER_PAGE_MORE : SLIDER_PAGE_LESS;
        int behind = Is_Reversed (slider) ? SLIDER_PAGE_LESS : SLIDER_PAGE_MORE;
        int from   = Sliders::Thumb (slider);
        int to     = from + Thumb_Length (slider);
        Draw_Track (slider, low, from, slider->pressed == before);
        Draw_Track (slider, to, high, slider->pressed == behind);
        Draw_Thumb (slider, from, to);
    }
}

static int Is_Shown (const Slider *slider) { return !Is_Empty (slider) && !(slider->widget.state & WIDGET_HIDDEN); }

void Sliders::Draw (Slider *slider) {
    Widget_Check (&slider->widget, "Sliders::Draw");
    if (!Is_Shown (slider)) return;
    Draw_Arrows (slider);
    Draw_Track_And_Thumb (slider);
}

void Sliders::Adjust (Slider *slider) {
    Widget_Check (&slider->widget, "Sliders::Adjust");
    if (Is_Shown (slider)) Draw_Track_And_Thumb (slider);
}

// --- init and exit ---------------------------------------------------------

static void Set_Defaults (Slider *slider) {
    int16_t *colour = slider->widget.colour;
    if (!colour[0] && !colour[1] && !colour[2]) colour[0] = colour[1] = colour[2] = DEFAULT_COLOUR;
    if (slider->arrow_size == 0) slider->arrow_size = WIDGET_BORDER;
    if (slider->arrow_size < 1) slider->arrow_size = 1;
    slider->step = Step (slider);
    slider->half = std::max (slider->half, SHORTEST_THUMB);
    slider->half = std::max (0, std::min (slider->half, Length (slider) / 2 - Thickness (slider)));
}

void Sliders::Init (Slider *slider, Window window) {
    if (Is_Empty (slider) || !Widget_Init (&slider->widget, window, "Sliders::Init")) return;
    Set_Defaults (slider);
    Fill_Positions (slider);
    slider->value = Within (slider, slider->value);
}

void Sliders::Exit (Slider *slider) {
    Widget_Exit (&slider->widget);
    slider->drag = slider->pressed = 0;
}

// The thumb and its travel share the track between the arrows.
void Sliders::Proportion (Slider *slider, int visible, int total) {
    Widget_Check (&slider->widget, "Sliders::Proportion");
    int shared = Sliders::Track (slider) + 2 * Half (slider);
    if (shared <= 1) return;
    double ratio    = visible >= total ? 1 : std::max (0, visible) / static_cast<double> (total);
    slider->visible = visible;
    slider->total   = total;
    slider->half    = std::max (SHORTEST_THUMB, static_cast<int> (ratio * shared / 2));
    Fill_Positions (slider);
}

// --- scrolling -------------------------------------------------------------

static float Move (Slider *slider, double steps) {
    if (Is_Reversed (slider)) steps = -steps;
    slider->value = Within (slider, Within (slider, slider->value) + steps * Step (slider));
    Sliders::Adjust (slider);
    return slider->value;
}

float Sliders::Scroll (Slider *slider, int steps) {
    Widget_Check (&slider->widget, "Sliders::Scroll");
    return slider->widget.state & WIDGET_MOUSE_IGNORED ? slider->value : Move (slider, steps);
}

float Sliders::Wheel (Slider *slider, int notches) {
    Widget_Check (&slider->widget, "Sliders::Wheel");
    if (slider->widget.state & WIDGET_MOUSE_IGNORED) return slider->value;
    return Move (slider, Is_Vertical (slider) ? notches : -static_cast<double> (notches));
}

// --- mouse -----------------------------------------------------------------

static Slider_Part Part_On_Track (const Slider *slider, int offset) {
    int from = Sliders::Thumb (slider);
    if (!Has_Thumb (slider)) return SLIDER_NOTHING;
    if (offset >= from && offset <= from + Thumb_Length (slider)) return SLIDER_THUMB;
    return (offset < from) != Is_Reversed (slider) ? SLIDER_PAGE_LESS : SLIDER_PAGE_MORE;
}

Slider_Part Sliders::Part_At (const Slider *slider, int x, int y) {
    if (!Widget_Contains (&slider->widget, x, y)) return SLIDER_NOTHING;
    int offset = (Is_Vertical (slider) ? y : x) - Start (slider);
    int arrow  = Arrow_Length (slider);
    if (offset < arrow) return Part_At_End (slider, 0);
    if (offset > Length (slider) - arrow) return Part_At_End (slider, 1);
    return Part_On_Track (slider, offset);
}

static float Target (const Slider *slider, int part) {
    double value = Within (slider, slider->value);
    switch (part) {
    case SLIDER_LESS: return Within (slider, value - Step (slider));
    case SLIDER_MORE: return Within (slider, value + Step (slider));
    case SLIDER_PAGE_LESS: return Within (slider, value - Page (slider));
    case SLIDER_PAGE_MORE: return Within (slider, value + Page (slider));
    default: return Within (slider, value);
    }
}

// The value is worked out at the press: whoever stores it and reads again gets the same one.
static int Press (Slider *slider) {
    int x, y;
    Device::Pointer_Get (&x, &y);
    if (!Widget_Contains (&slider->widget, x, y)) return 0;
    slider->pressed = Sliders::Part_At (slider, x, y);
    slider->drag    = slider->pressed == SLIDER_THUMB;
    slider->grip    = Pointer_Offset (slider) - (Sliders::Thumb (slider) + Arrow_Size (slider) + Half (slider));
    slider->target  = Target (slider, slider->pressed);
    Sliders::Draw (slider);
    return 1;
}

static void Release (Slider *slider) {
    int was_pressed = slider->pressed;
    slider->drag = slider->pressed = 0;
    if (was_pressed) Sliders::Draw (slider);
}

static int Takes_Mouse (const Slider *slider) {
    return Is_Shown (slider) && !(slider->widget.state & (WIDGET_INACTIVE | WIDGET_MOUSE_IGNORED));
}

int Sliders::Select (Slider *slider, int mouse_state) {
    Widget_Check (&slider->widget, "Sliders::Select");
    int state = mouse_state & 15;
    if (!Takes_Mouse (slider) || state == MOUSE_RELEASED || state == MOUSE_MOVED) {
        Release (slider);
        return 0;
    }
    return state & MOUSE_PRESSED ? Press (slider) : slider->drag;
}

void Sliders::Deselect (Slider *slider) {
    Widget_Check (&slider->widget, "Sliders::Deselect");
    Release (slider);
}

// Coming back to where the thumb is keeps the value, which may lie between two entries.
static float Dragged_Value (const Slider *slider) {
    int travel = Travel (slider);
    int thumb  = Pointer_Offset (slider) - slider->grip - Arrow_Size (slider) - Half (slider);
    if (!slider->position_count || !travel || thumb == Sliders::Thumb (slider)) return Within (slider, slider->value);
    int gone = std::clamp (thumb - Thickness (slider), 0, travel);
    return Position (slider, (gone * (slider->position_count - 1) + travel / 2) / travel);
}

static int Is_On_Track (const Slider *slider) {
    int x, y;
    Device::Pointer_Get (&x, &y);
    int offset = Pointer_Offset (slider);
    return Widget_Contains (&slider->widget, x, y) && offset >= Thickness (slider) &&
           offset <= Length (slider) - Thickness (slider);
}

float Sliders::Read (Slider *slider) {
    Widget_Check (&slider->widget, "Sliders::Read");
    if (Is_Empty (slider) || slider->widget.state & WIDGET_MOUSE_IGNORED) return 0;
    if (slider->drag) return Dragged_Value (slider);
    if (slider->pressed) return slider->target;
    if (!slider->position_count || !Is_On_Track (slider)) return Within (slider, slider->value);
    return Position (slider, Pointer_Offset (slider) - Arrow_Size (slider) - Half (slider));
}
