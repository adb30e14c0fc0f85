// A button is a raised box. Its arrows stand at the ends that they point to, and the label between them. A long bar that
// has nothing else on it shows that it can be dragged by a grip in its middle.
#include "tools/buttons.h"

#include <algorithm>

#include "tools/boxes_private.h"
#include "tools/device.h"

static int Has_Arrows (const Button_Widget *button) { return (button->widget.state & WIDGET_ARROWS) != 0; }

static const int SMALLEST_ARROW = 4;

// --- arrows ----------------------------------------------------------------

static int Is_Across (const Button_Widget *button) { return (button->widget.state & WIDGET_ARROWS_ACROSS) != 0; }

// Arrows stay inside the frame, and two of them take no more than its whole length.
static int Arrow_Size (const Button_Widget *button) {
    const Widget &widget = button->widget;
    int           frame  = Look_Bevel (&widget, &button->look) + 1;
    int           across = Is_Across (button);
    int           length = (across ? widget.w : widget.h) - 2 * frame;
    int           side   = (across ? widget.h : widget.w) - 2 * frame;
    int           size   = button->arrow_size > 0 ? button->arrow_size : std::min (length, side);
    return std::max (0, std::min ({size, length / 2, side}));
}

// An arrow in a square whose lower left corner this is.
static void Draw_Arrow (Button_Widget *button, int direction, int x, int y, int size) {
    Tools::Arrow (&button->widget, direction, 0, x, x + size, y, y + size);
}

static void Draw_Arrows (Button_Widget *button) {
    const Widget &widget = button->widget;
    int           size   = Arrow_Size (button);
    int           frame  = Look_Bevel (&widget, &button->look) + 1;
    int           x      = widget.x + (widget.w - size) / 2;
    int           y      = widget.y + (widget.h - size) / 2;
    if (size < SMALLEST_ARROW) return;
    if (Is_Across (button)) {
        Draw_Arrow (button, Tools::ARROW_LEFT, widget.x + frame, y, size);
        Draw_Arrow (button, Tools::ARROW_RIGHT, widget.x + widget.w - frame - size, y, size);
    } else {
        Draw_Arrow (button, Tools::ARROW_DOWN, x, widget.y + frame, size);
        Draw_Arrow (button, Tools::ARROW_UP, x, widget.y + widget.h - frame - size, size);
    }
}

// --- grip ------------------------------------------------------------------

static const int GRIP_LENGTH   = 6; // A bar is this many times as long as it is thick, or more.
static const int GRIP_THINNEST = 6;
static const int GRIP_DOTS     = 5; // Odd: one lies in the middle.
static const int GRIP_PITCH    = 6;

static int Has_Grip (const Button_Widget *button) {
    const Widget   &widget = button->widget;
    const Box_Look &look   = button->look;
    int             thick  = std::min (widget.w, widget.h);
    int             marked = (look.label && look.label[0]) || look.image || look.image_highlight || Has_Arrows (button);
    return !marked && !(widget.state & WIDGET_INACTIVE) && thick >= GRIP_THINNEST &&
           std::max (widget.w, widget.h) >= GRIP_LENGTH * thick;
}

// A raised dot of 2 x 2 pixels around (x, y).
static void Draw_Dot (int x, int y) {
    Device::Colour_Set (Drawing_Colour (90, 90, 90));
    Device::FillRect (x, y - 2, x + 2, y);
    Device::Colour_Set (Drawing_Colour (255, 255, 255));
    Device::FillRect (x, y - 1, x + 1, y);
}

static void Draw_Grip (Button_Widget *button) {
    Widget *widget = &button->widget;
    if (!Widget_Begin (widget, "Button::Draw")) return;
    int x = widget->x + widget->w / 2;
    int y = widget->y + widget->h / 2;
    for (int i = -(GRIP_DOTS / 2); i <= GRIP_DOTS / 2; i++) {
        int along = i * GRIP_PITCH;
        if (widget->w > widget->h) Draw_Dot (x + along, y);
        else Draw_Dot (x, y + along);
    }
    Widget_End (widget);
}

// --- button ----------------------------------------------------------------

static void Draw_Label (Button_Widget *button) {
    Widget &widget = button->widget;
    int     size   = Has_Arrows (button) ? Arrow_Size (button) : 0;
    int     across = Is_Across (button) ? size : 0;
    int     down   = Is_Across (button) ? 0 : size;
    Look_Label (&widget, &button->look, Look_Inset (&button->look), widget.x + across, widget.y + down,
                widget.w - 2 * across, widget.h - 2 * down);
}

static void Draw_Inside (Button_Widget *button) {
    Look_Fill (&button->widget, &button->look, Look_Inset (&button->look));
    if (Has_Arrows (button)) Draw_Arrows (button);
    if (Has_Grip (button)) Draw_Grip (button);
    Draw_Label (button);
}

void Buttons::Init (Button_Widget *button, Window window) {
    if (Widget_Init (&button->widget, window, "Buttons::Init")) Look_Init (&button->look);
}

void Buttons::Exit (Button_Widget *button) {
    Widget_Exit (&button->widget);
    button->look.hover = HOVER_UNKNOWN;
}

int Buttons::Select (Button_Widget *button, int mouse_state) {
    Widget_Check (&button->widget, "Buttons::Select");
    int changed;
    int inside = Look_Select (&button->widget, &button->look, mouse_state, &changed);
    if (changed) Draw_Inside (button);
    return inside;
}

void Button::Draw (Button_Widget *button) {
    Widget_Check (&button->widget, "Button::Draw");
    if (button->widget.w < 1 || button->widget.h < 1) return;
    Look_Draw (&button->widget, &button->look, Tools::CADRE_RAISED);
    Draw_Inside (button);
}

int Button::Select (Button_Widget *button, int mouse_state) { return Buttons::Select (button, mouse_state); }
